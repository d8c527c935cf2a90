#include "base/text_file.h"

#include <optional>
#include <utility>

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/text.h"
#include "platform/code_page.h"
#include "platform/file_replacement.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr int kDeclarationLines = 10;
constexpr size_t kEncodingNameLength = 20;

bool StartsWith(std::string_view bytes, std::string_view start) {
  return bytes.substr(0, start.size()) == start;
}

enum class ByteOrder { kLittle, kBig };

std::u16string Utf16OfBytes(std::string_view bytes, ByteOrder order) {
  std::u16string text(bytes.size() / 2, u'\0');
  const size_t low = order == ByteOrder::kLittle ? 0 : 1;
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = [&](size_t at) -> unsigned { return static_cast<unsigned char>(bytes[at]); };
    text[i] = static_cast<char16_t>(byte(2 * i + low) | byte(2 * i + 1 - low) << 8);
  }
  return text;
}

// Each byte as a unit, as far as a declaration is looked for: enough to find one in ASCII.
std::u16string Widen(std::string_view bytes) {
  size_t end = 0;
  for (int line = 0; line < kDeclarationLines && end < bytes.size(); ++line) {
    end = bytes.find("\r\n", end);
    end = end == bytes.npos ? bytes.size() : end + 2;
  }
  const std::string_view head = bytes.substr(0, end);
  return {head.begin(), head.end()};
}

void ReportUnsaved(const fs::path& path, const Status& status) {
  CurrentNotices().Message(u"ファイルに保存できません\n" + PathText(path) + u": " + status.why);
}

}  // namespace

std::u16string DecodeText(std::string_view bytes, TextForm form) {
  if (form == TextForm::kRawUtf16) return Utf16OfBytes(bytes, ByteOrder::kLittle);
  if (StartsWith(bytes, kLittleEndianMark)) {
    return Utf16OfBytes(bytes.substr(kLittleEndianMark.size()), ByteOrder::kLittle);
  }
  if (StartsWith(bytes, kBigEndianMark)) {
    return Utf16OfBytes(bytes.substr(kBigEndianMark.size()), ByteOrder::kBig);
  }
  if (StartsWith(bytes, kUtf8Mark)) return Utf8ToUtf16Lossy(bytes.substr(kUtf8Mark.size()));
  if (DetectXmlEncoding(Widen(bytes)) == kXmlUtf8) return Utf8ToUtf16Lossy(bytes);
  return DecodeCodePage932(bytes);
}

Status ReadFileBytes(const fs::path& path, std::string* bytes, size_t most) {
  Status status = WaitForFile(path, FileWait::kRead, [&] {
    Status opened;
    const auto file = HeldFile::Open(path, Deny::kWrite, &opened);
    return file ? file->Read(bytes, most) : opened;
  });
  if (!status.ok()) bytes->clear();
  return status;
}

bool ReadText(const fs::path& path, std::u16string* text, TextForm form) {
  std::string bytes;
  const bool read = ReadFileBytes(path, &bytes).ok() && !bytes.empty();
  *text = read ? DecodeText(bytes, form) : std::u16string();
  return read;
}

std::string EncodeText(std::u16string_view text, TextEncoding encoding) {
  if (encoding == TextEncoding::kUtf8) return Utf16ToUtf8(text);
  if (encoding == TextEncoding::kCodePage932) return ToShiftJis(text);
  std::string bytes(kLittleEndianMark);
  bytes.reserve(bytes.size() + 2 * text.size());
  for (const char16_t unit : text) {
    bytes.push_back(static_cast<char>(unit & 0xFF));
    bytes.push_back(static_cast<char>(unit >> 8));
  }
  return bytes;
}

Status WriteText(const fs::path& path, std::u16string_view text, TextEncoding encoding) {
  const std::string bytes = EncodeText(text, encoding);
  Status status = WaitForFile(path, FileWait::kWrite, [&] {
    return ChangeFile(path, IfMissing::kCreate,
                      [&](std::string_view) { return std::optional<std::string>(bytes); });
  });
  if (!status.ok()) ReportUnsaved(path, status);
  return status;
}

bool HasUtf16Mark(std::string_view bytes) {
  return StartsWith(bytes, kLittleEndianMark) || StartsWith(bytes, kBigEndianMark);
}

bool IsUtf16File(const fs::path& path) {
  std::string bytes;
  return ReadFileBytes(path, &bytes, kLittleEndianMark.size()).ok() && HasUtf16Mark(bytes);
}

Status MakeUtf16File(const fs::path& path) {
  Status status = WaitForFile(path, FileWait::kWrite, [&] {
    return ChangeFile(path, IfMissing::kFail, [](std::string_view bytes) {
      std::optional<std::string> converted;
      if (!bytes.empty() && !HasUtf16Mark(bytes)) {
        converted = EncodeText(DecodeText(bytes), TextEncoding::kUtf16);
      }
      return converted;
    });
  });
  if (!status.ok()) ReportUnsaved(path, status);
  return status;
}

int DetectXmlEncoding(std::u16string_view text) {
  for (int line = 0; line < kDeclarationLines && !text.empty(); ++line) {
    const size_t end = text.find(u"\r\n");
    const std::u16string_view content = text.substr(0, end);
    text.remove_prefix(end == text.npos ? text.size() : end + 2);
    const size_t xml = content.find(u"xml");
    const size_t encoding = xml == content.npos ? xml : content.find(u"encoding", xml);
    if (encoding == content.npos) continue;
    const size_t equals = content.find(u'=', encoding);
    if (equals == content.npos) return kNoXmlEncoding;
    const std::u16string_view name = content.substr(equals + 1, kEncodingNameLength);
    const std::u16string lower = AsciiLower(name);
    constexpr std::pair<std::u16string_view, int> kNames[] = {
        {u"UTF-8", kXmlUtf8}, {u"UTF-16", kXmlUtf16}, {u"Shift_JIS", kXmlShiftJis}};
    for (const auto& [wanted, number] : kNames) {
      if (name.find(wanted) != name.npos || lower.find(AsciiLower(wanted)) != lower.npos) {
        return number;
      }
    }
    return kNoXmlEncoding;
  }
  return kNoXmlEncoding;
}

}  // namespace kerno
