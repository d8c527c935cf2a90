#include "app/list_bytes.h"

#include <algorithm>
#include <utility>

#include "base/file_wait.h"
#include "base/text.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

constexpr size_t kPiece = 1 << 16;
constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";

bool IsAscii(std::string_view bytes) {
  return std::ranges::all_of(bytes, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

void AppendUnit(std::string* out, char16_t unit, TextCoding coding) {
  const char low = static_cast<char>(unit & 0xFF), high = static_cast<char>(unit >> 8);
  out->push_back(coding == TextCoding::kUtf16Be ? high : low);
  out->push_back(coding == TextCoding::kUtf16Be ? low : high);
}

// Three bytes, as UTF-8 would have them if halves of pairs were characters: no reader takes them.
void AppendLoneHalf(std::string* out, char16_t unit) {
  out->push_back(static_cast<char>(0xE0 | unit >> 12));
  out->push_back(static_cast<char>(0x80 | (unit >> 6 & 0x3F)));
  out->push_back(static_cast<char>(0x80 | (unit & 0x3F)));
}

}  // namespace

Status ListBytes::Open(const std::filesystem::path& path, const std::u16string& name,
                       std::optional<TextCoding> coding, IfHeld if_held,
                       std::unique_ptr<ListBytes>* list) {
  std::unique_ptr<HeldFile> file;
  const auto open = [&] {
    Status status;
    file = HeldFile::Open(path, Deny::kWrite, &status);
    return status;
  };
  Status opened = if_held == IfHeld::kWait ? WaitForFile(path, FileWait::kRead, open) : open();
  const std::u16string told = name.empty() ? PathText(path) : name;
  if (!opened.ok()) return Status::Error(opened.failure, told, opened.why);
  std::unique_ptr<ListBytes> made(new ListBytes(std::move(file), told));
  if (Status read = made->Read(&made->first_); !read.ok()) return read;
  std::string& first = made->first_;
  const TextCoding marked = first.starts_with("\xFF\xFE")   ? TextCoding::kUtf16Le
                            : first.starts_with("\xFE\xFF") ? TextCoding::kUtf16Be
                                                            : TextCoding::kUtf8;
  made->coding_ = coding.value_or(marked);
  const size_t mark = marked != TextCoding::kUtf8 ? 2 : first.starts_with(kUtf8Mark) ? 3 : 0;
  if (mark > 0 && made->coding_ == marked) {
    made->marked_ = true;
    first.erase(0, mark);
  }
  *list = std::move(made);
  return Status::Ok();
}

Status ListBytes::Read(std::string* bytes) {
  bytes->clear();
  Status read = file_->ReadPiece(offset_, kPiece, bytes);
  offset_ += bytes->size();
  if (!read.ok()) read.what = name_;
  return read;
}

std::optional<PiecePlace> ListBytes::Place() const {
  if (!first_.empty()) return std::nullopt;
  return PiecePlace{offset_, left_, high_half_};
}

void ListBytes::GoTo(const PiecePlace& place) {
  first_.clear();
  offset_ = place.offset;
  left_ = place.left;
  high_half_ = place.high_half;
}

Status ListBytes::Next(std::string* piece) {
  if (!first_.empty()) {
    *piece = std::exchange(first_, {});
  } else if (Status read = Read(piece); !read.ok()) {
    return read;
  }
  if (!IsWide()) return Status::Ok();
  const bool ends = piece->empty();
  if (ends && !left_.empty()) {
    return Status::Error(Failure::kOther, name_, u"is not UTF-16: half a unit stands at the end");
  }
  *piece = FromUnits(std::move(*piece));
  if (ends && high_half_ != 0) AppendLoneHalf(piece, std::exchange(high_half_, u'\0'));
  return Status::Ok();
}

std::string ListBytes::FromUnits(std::string bytes) {
  bytes.insert(0, std::exchange(left_, {}));
  std::string text;
  text.reserve(bytes.size());
  size_t i = 0;
  for (; i + 1 < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    const bool big = coding_ == TextCoding::kUtf16Be;
    const auto unit = static_cast<char16_t>(big ? first << 8 | second : second << 8 | first);
    const bool is_low = unit >= 0xDC00 && unit < 0xE000;
    if (high_half_ != 0 && is_low) {
      text += Utf16ToUtf8(std::u16string{std::exchange(high_half_, u'\0'), unit});
      continue;
    }
    if (high_half_ != 0) AppendLoneHalf(&text, std::exchange(high_half_, u'\0'));
    if (is_low) {
      AppendLoneHalf(&text, unit);
    } else if (unit >= 0xD800 && unit < 0xDC00) {
      high_half_ = unit;
    } else if (unit < 0x80) {
      text.push_back(static_cast<char>(unit));
    } else {
      text += Utf16ToUtf8({&unit, 1});
    }
  }
  left_ = bytes.substr(i);
  return text;
}

bool ListBytes::Decode(std::string* text) const {
  if (IsAscii(*text)) return true;
  if (coding_ == TextCoding::kUtf8 || IsWide()) return Utf8ToUtf16(*text).has_value();
  std::u16string decoded;
  if (!DecodeAs(coding_, *text, {}, &decoded).ok()) return false;
  *text = Utf16ToUtf8(decoded);
  return true;
}

std::string ListBytes::AsInFile(std::string_view bytes) const {
  if (!IsWide()) return std::string(bytes);
  std::string out;
  for (const char16_t unit : Utf8ToUtf16Lossy(bytes)) AppendUnit(&out, unit, coding_);
  return out;
}

std::string ListBytes::Mark() const {
  if (!marked_) return {};
  if (!IsWide()) return kUtf8Mark;
  std::string mark;
  AppendUnit(&mark, 0xFEFF, coding_);
  return mark;
}

}  // namespace kerno
