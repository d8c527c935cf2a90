// Text files that are read and written whole.
//
// A file that another process holds is waited for (base/file_wait.h). The 8-bit code page is 932.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

enum class TextForm {
  kDetect,    // by the mark at the start, else by an XML declaration, else the 8-bit code page
  kRawUtf16,  // UTF-16 little-endian as it stands, a mark included
};

// The text of a file's bytes. An odd byte at the end of UTF-16 is dropped; what is not UTF-8 in
// UTF-8 becomes U+FFFD.
std::u16string DecodeText(std::string_view bytes, TextForm form = TextForm::kDetect);

// The bytes of a whole file, which others may not write meanwhile. After a failure they are none.
Status ReadFileBytes(const std::filesystem::path& path, std::string* bytes,
                     size_t most = std::string::npos);

// Reads a whole file. False, with an empty text, when the path is empty, or the file does not
// exist, is empty, or cannot be read; ReadFileBytes and DecodeText tell why.
[[nodiscard]] bool ReadText(const std::filesystem::path& path, std::u16string* text,
                            TextForm form = TextForm::kDetect);

enum class TextEncoding {
  kUtf16,        // little-endian after the mark FF FE
  kUtf8,         // without a mark
  kCodePage932,  // "_" for what has no mapping
};

std::string EncodeText(std::u16string_view text, TextEncoding encoding);

// Replaces a file by a text, whole or not at all. A failure is also reported as a message.
Status WriteText(const std::filesystem::path& path, std::u16string_view text,
                 TextEncoding encoding);

// Whether a file begins with a UTF-16 mark (FF FE or FE FF); false for a missing or empty file.
bool IsUtf16File(const std::filesystem::path& path);
bool HasUtf16Mark(std::string_view bytes);

// Converts a text file in place to UTF-16 little-endian with a mark, unless it has a UTF-16 mark
// already. An empty file stays empty. A failure is also reported as a message.
Status MakeUtf16File(const std::filesystem::path& path);

// The program's numbers for encodings; kept in files, so they never change.
inline constexpr int kNoXmlEncoding = 0;
inline constexpr int kXmlUtf8 = 8;
inline constexpr int kXmlUtf16 = 16;
inline constexpr int kXmlShiftJis = 74;

// The encoding that an XML declaration in the first ten lines (ended by CR LF) names, or
// kNoXmlEncoding.
int DetectXmlEncoding(std::u16string_view text);

}  // namespace kerno
