#include "parts/ipx_pieces.h"

#include "base/text.h"
#include "parts/ipx_packed.h"
#include "platform/code_page.h"

namespace kerno::ipx {
namespace {

constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr size_t kPiece = 1 << 16;  // an even number: half a unit of UTF-16 is nothing

// Line breaks are never half of a character, so that what lies between them is decoded by itself.
void AppendCodePage(std::string* packed, std::string_view bytes) {
  while (!bytes.empty()) {
    const size_t plain = AsciiPrefix(bytes);
    packed->append(bytes.substr(0, plain));
    bytes.remove_prefix(plain);
    size_t line = 0;
    while (line < bytes.size() && bytes[line] != '\r' && bytes[line] != '\n') ++line;
    AppendPacked(packed, DecodeCodePage932(bytes.substr(0, line)));
    bytes.remove_prefix(line);
  }
}

// Where `end` stands after a multiple of two bytes, from `at` on.
size_t FindUnits(std::string_view bytes, std::string_view end, size_t at) {
  while ((at = bytes.find(end, at)) != bytes.npos && at % 2 != 0) ++at;
  return at;
}

}  // namespace

bool Pieces::Next(std::string_view* piece) {
  while (rest_.size() <= kPiece && Fill()) {
  }
  if (form_ == Form::kUnknown) FindForm();
  if (rest_.empty()) return false;
  const std::string_view bytes = Cut();
  const bool plain = form_ == Form::kCodePage || form_ == Form::kUtf8;
  if (plain && AsciiPrefix(bytes) == bytes.size()) {
    *piece = bytes;
    return true;
  }
  Convert(bytes);
  *piece = packed_;
  return true;
}

bool Pieces::Fill() {
  if (!more_) return false;
  buffer_.erase(0, buffer_.size() - rest_.size());
  const bool filled = more_(&buffer_);
  rest_ = buffer_;
  if (!filled) more_ = nullptr;
  return filled;
}

void Pieces::FindForm() {
  const auto take = [&](std::string_view mark) {
    if (rest_.substr(0, mark.size()) != mark) return false;
    rest_.remove_prefix(mark.size());
    return true;
  };
  form_ = take(kLittleEndianMark) ? Form::kLittleEndian
          : take(kBigEndianMark)  ? Form::kBigEndian
          : take(kUtf8Mark)       ? Form::kUtf8
                                  : Form::kCodePage;
}

// Takes whole lines off the rest: some more than a piece, all when no line ends after that.
std::string_view Pieces::Cut() {
  size_t from = kPiece;
  size_t end = EndOfLine(from);
  while (end == rest_.npos) {
    // What was looked through is not looked through again, but for the start of a line's end.
    if (rest_.size() > kPiece + 4) from = (rest_.size() - 4) / 2 * 2;
    if (!Fill()) break;
    end = EndOfLine(from);
  }
  const std::string_view bytes = rest_.substr(0, end);
  rest_.remove_prefix(bytes.size());
  return bytes;
}

// The position after the first end of a line at or after `from`.
size_t Pieces::EndOfLine(size_t from) const {
  if (form_ == Form::kLittleEndian || form_ == Form::kBigEndian) {
    constexpr std::string_view kLittle("\r\0\n\0", 4);
    constexpr std::string_view kBig("\0\r\0\n", 4);
    const size_t at = FindUnits(rest_, form_ == Form::kBigEndian ? kBig : kLittle, from);
    return at == rest_.npos ? at : at + kLittle.size();
  }
  const size_t at = rest_.find("\r\n", from);
  return at == rest_.npos ? at : at + 2;
}

void Pieces::Convert(std::string_view bytes) {
  packed_.clear();
  switch (form_) {
    case Form::kLittleEndian:
      AppendPackedBytes(&packed_, bytes, ByteOrder::kLittle);
      break;
    case Form::kBigEndian:
      AppendPackedBytes(&packed_, bytes, ByteOrder::kBig);
      break;
    case Form::kUtf8:
      AppendPacked(&packed_, Utf8ToUtf16Lossy(bytes));
      break;
    case Form::kCodePage:
    case Form::kUnknown:
      AppendCodePage(&packed_, bytes);
      break;
  }
}

}  // namespace kerno::ipx
