#include "app/text_coding.h"

#include <array>
#include <utility>

#include "base/text.h"
#include "platform/code_page.h"

namespace kerno {
namespace {

struct CodingWord {
  const char16_t* name;  // in lower case
  TextCoding coding;
};
constexpr std::array<CodingWord, 10> kWords = {{{u"utf-8", TextCoding::kUtf8},
                                                {u"utf8", TextCoding::kUtf8},
                                                {u"utf-16le", TextCoding::kUtf16Le},
                                                {u"utf-16be", TextCoding::kUtf16Be},
                                                {u"cp932", TextCoding::kCodePage932},
                                                {u"shift_jis", TextCoding::kCodePage932},
                                                {u"sjis", TextCoding::kCodePage932},
                                                {u"windows-31j", TextCoding::kCodePage932},
                                                {u"euc-jp", TextCoding::kEucJp},
                                                {u"eucjp", TextCoding::kEucJp}}};

uint32_t ByteAt(std::string_view bytes, size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}

bool IsBetween(uint32_t value, uint32_t first, uint32_t last) {
  return value >= first && value <= last;
}

// A character and how many bytes it takes; none of them where the bytes stand for none.
struct Decoded {
  char16_t unit = 0;
  size_t size = 0;
};

// Of one single byte or pair that code page 932 may know.
Decoded FromCodePage(uint32_t lead, uint32_t trail, size_t size) {
  constexpr char16_t kInvalid = u'\u30FB';  // what the code page gives for bytes of no character
  constexpr uint32_t kDotLead = 0x81, kDotTrail = 0x45;  // and that character's own bytes
  std::string pair(1, static_cast<char>(lead));
  if (trail != 0) pair.push_back(static_cast<char>(trail));
  const std::u16string text = DecodeCodePage932(pair);
  const bool is_dot = lead == kDotLead && trail == kDotTrail;
  if (text.size() != 1 || (text[0] == kInvalid && !is_dot)) return {};
  return {text[0], size};
}

Decoded DecodeShiftJis(std::string_view bytes, size_t at) {
  const uint32_t lead = ByteAt(bytes, at);
  if (lead < 0x80) return {static_cast<char16_t>(lead), 1};
  if (IsBetween(lead, 0xA1, 0xDF)) return FromCodePage(lead, 0, 1);
  if (lead == 0x80 || lead == 0xA0 || lead > 0xFC) return {};
  const uint32_t trail = ByteAt(bytes, at + 1);
  return trail < 0x40 ? Decoded{} : FromCodePage(lead, trail, 2);
}

// Rows and columns of JIS X 0208 from 0xA1 on; two rows share a lead byte of Shift_JIS.
Decoded DecodeEucJp(std::string_view bytes, size_t at) {
  constexpr uint32_t kHalfWidthKana = 0x8E, kFirst = 0xA1, kLast = 0xFE;
  const uint32_t lead = ByteAt(bytes, at), trail = ByteAt(bytes, at + 1);
  if (lead < 0x80) return {static_cast<char16_t>(lead), 1};
  if (lead == kHalfWidthKana && IsBetween(trail, kFirst, 0xDF)) return FromCodePage(trail, 0, 2);
  if (!IsBetween(lead, kFirst, kLast) || !IsBetween(trail, kFirst, kLast)) return {};
  const uint32_t row = lead - kFirst, column = trail - kFirst;
  const uint32_t shifted_lead = row / 2 + (row < 62 ? 0x81 : 0xC1);
  const uint32_t even_row_trail = column + (column < 63 ? 0x40 : 0x41);  // 0x7F is left out
  const uint32_t shifted_trail = row % 2 == 0 ? even_row_trail : column + 0x9F;
  return FromCodePage(shifted_lead, shifted_trail, 2);
}

Status NotCoded(const char* what, std::u16string_view name, size_t offset) {
  const std::string why =
      std::string("is not ") + what + " (byte offset " + std::to_string(offset) + ")";
  return Status::Error(Failure::kOther, std::u16string(name), Utf8ToUtf16Lossy(why));
}

Status DecodeUnits(TextCoding coding, std::string_view bytes, std::u16string_view name,
                   std::u16string* text) {
  constexpr char16_t kMark = 0xFEFF, kSwappedMark = 0xFFFE;
  if (bytes.size() % 2 != 0) {
    return NotCoded("UTF-16: half a unit stands at the end", name, bytes.size() - 1);
  }
  std::u16string decoded;
  decoded.reserve(bytes.size() / 2);
  for (size_t i = 0; i < bytes.size(); i += 2) {
    const uint32_t first = ByteAt(bytes, i), second = ByteAt(bytes, i + 1);
    const uint32_t unit =
        coding == TextCoding::kUtf16Be ? first << 8 | second : second << 8 | first;
    decoded.push_back(static_cast<char16_t>(unit));
  }
  if (decoded.starts_with(kSwappedMark)) return NotCoded(CodingName(coding), name, 0);
  if (decoded.starts_with(kMark)) decoded.erase(0, 1);
  *text = std::move(decoded);
  return Status::Ok();
}

Status DecodeJapanese(TextCoding coding, std::string_view bytes, std::u16string_view name,
                      std::u16string* text) {
  std::u16string decoded;
  decoded.reserve(bytes.size());
  for (size_t at = 0; at < bytes.size();) {
    const Decoded next =
        coding == TextCoding::kEucJp ? DecodeEucJp(bytes, at) : DecodeShiftJis(bytes, at);
    if (next.size == 0) return NotCoded(CodingName(coding), name, at);
    decoded.push_back(next.unit);
    at += next.size;
  }
  *text = std::move(decoded);
  return Status::Ok();
}

}  // namespace

const char* CodingName(TextCoding coding) {
  switch (coding) {
    case TextCoding::kUtf8:
      return "UTF-8";
    case TextCoding::kUtf16Le:
      return "UTF-16LE";
    case TextCoding::kUtf16Be:
      return "UTF-16BE";
    case TextCoding::kCodePage932:
      return "CP932";
    case TextCoding::kEucJp:
      break;
  }
  return "EUC-JP";
}

std::optional<TextCoding> FindCoding(std::string_view name) {
  const std::u16string wanted = AsciiLower(Utf8ToUtf16Lossy(name));
  for (const CodingWord& word : kWords) {
    if (wanted == word.name) return word.coding;
  }
  return std::nullopt;
}

Status DecodeAs(TextCoding coding, std::string_view bytes, std::u16string_view name,
                std::u16string* text) {
  switch (coding) {
    case TextCoding::kUtf8: {
      const size_t mark = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
      size_t offset = 0;
      auto decoded = Utf8ToUtf16(bytes.substr(mark), &offset);
      if (!decoded) return NotCoded(CodingName(coding), name, offset + mark);
      *text = std::move(*decoded);
      return Status::Ok();
    }
    case TextCoding::kUtf16Le:
    case TextCoding::kUtf16Be:
      return DecodeUnits(coding, bytes, name, text);
    case TextCoding::kCodePage932:
    case TextCoding::kEucJp:
      break;
  }
  return DecodeJapanese(coding, bytes, name, text);
}

std::optional<TextCoding> GuessCoding(std::string_view bytes) {
  std::u16string text;
  for (const TextCoding coding : {TextCoding::kEucJp, TextCoding::kCodePage932}) {
    if (DecodeAs(coding, bytes, {}, &text).ok()) return coding;
  }
  return std::nullopt;
}

}  // namespace kerno
