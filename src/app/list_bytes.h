// The bytes of a list as they come, piece by piece, whatever it is encoded in: a list may be larger
// than memory.
//
// ASCII stands as itself in every piece: commas, quotes and line ends can be looked for as bytes.
// UTF-16 comes as UTF-8; a lone surrogate then makes bytes that are not UTF-8.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "app/text_coding.h"
#include "platform/held_file.h"
#include "platform/status.h"

namespace kerno {

// Where a piece of a list begins.
struct PiecePlace {
  uint64_t offset = 0;  // in the file
  std::string left;     // what the piece before has left over
  char16_t high_half = 0;
};

enum class IfHeld { kWait, kFail };

class ListBytes {
 public:
  // Without a coding the list is UTF-8, or UTF-16 by the mark at its start. Marks are left out.
  // *list is set on success only.
  // `name` is that of failures, where it is not the file's. A file that another process holds is
  // waited for, or kSharingViolation.
  [[nodiscard]] static Status Open(const std::filesystem::path& path, const std::u16string& name,
                                   std::optional<TextCoding> coding, IfHeld if_held,
                                   std::unique_ptr<ListBytes>* list);

  // Replaces *piece by the next one; it is empty at the end.
  [[nodiscard]] Status Next(std::string* piece);

  // Where the piece begins that Next gives; nothing before the second one. Next goes on at a place
  // of the same list.
  std::optional<PiecePlace> Place() const;
  void GoTo(const PiecePlace& place);

  // Makes UTF-8 of bytes of the list; false, with *text untouched, where they stand for no
  // characters.
  [[nodiscard]] bool Decode(std::string* text) const;

  // Bytes of a piece as they stand in the file, and the mark that such a file begins with.
  std::string AsInFile(std::string_view bytes) const;
  std::string Mark() const;

  const char* coding_name() const { return CodingName(coding_); }

 private:
  ListBytes(std::unique_ptr<HeldFile> file, std::u16string name)
      : file_(std::move(file)), name_(std::move(name)) {}
  bool IsWide() const { return coding_ == TextCoding::kUtf16Le || coding_ == TextCoding::kUtf16Be; }
  [[nodiscard]] Status Read(std::string* bytes);
  std::string FromUnits(std::string bytes);

  std::unique_ptr<HeldFile> file_;
  std::u16string name_;
  TextCoding coding_ = TextCoding::kUtf8;
  bool marked_ = false;     // the file begins with a mark
  uint64_t offset_ = 0;     // of what is read next
  std::string first_;       // what was read to see the mark
  std::string left_;        // the odd byte of a piece
  char16_t high_half_ = 0;  // of a pair whose other half comes with the next piece
};

}  // namespace kerno
