#include "app/text_coding.h"

#include <algorithm>
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
constexpr std::array<CodingWord, 15> kWords = {{{u"utf-8", TextCoding::kUtf8},
                                                {u"utf8", TextCoding::kUtf8},
                                                {u"utf-16le", TextCoding::kUtf16Le},
                                                {u"utf-16be", TextCoding::kUtf16Be},
                                                {u"cp932", TextCoding::kCodePage932},
                                                {u"shift_jis", TextCoding::kCodePage932},
                                                {u"sjis", TextCoding::kCodePage932},
                                                {u"windows-31j", TextCoding::kCodePage932},
                                                {u"euc-jp", TextCoding::kEucJp},
                                                {u"eucjp", TextCoding::kEucJp},
                                                {u"cp1252", TextCoding::kCodePage1252},
                                                {u"windows-1252", TextCoding::kCodePage1252},
                                                {u"iso-8859-1", TextCoding::kLatin1},
                                                {u"latin-1", TextCoding::kLatin1},
                                                {u"latin1", TextCoding::kLatin1}}};

uint32_t ByteAt(std::string_view bytes, size_t at) {
  return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0;
}

bool IsAsciiLetter(uint32_t ch) {
  return (ch >= 'A' && ch <= 'Z') || (ch >= 'a' && ch <= 'z');
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

// The bytes from 0x80 to 0x9F of code page 1252; 0 where it has no character.
constexpr std::array<char16_t, 32> kFrom0x80 = {
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

Decoded DecodeLatin(TextCoding coding, std::string_view bytes, size_t at) {
  const uint32_t byte = ByteAt(bytes, at);
  if (coding == TextCoding::kLatin1 || !IsBetween(byte, 0x80, 0x9F)) {
    return {static_cast<char16_t>(byte), 1};
  }
  const char16_t unit = kFrom0x80[byte - 0x80];
  return unit == 0 ? Decoded{} : Decoded{unit, 1};
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

Decoded DecodeOne(TextCoding coding, std::string_view bytes, size_t at) {
  switch (coding) {
    case TextCoding::kEucJp:
      return DecodeEucJp(bytes, at);
    case TextCoding::kCodePage1252:
    case TextCoding::kLatin1:
      return DecodeLatin(coding, bytes, at);
    default:
      return DecodeShiftJis(bytes, at);
  }
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
  for (size_t at = 0; at < decoded.size();) {
    const size_t first = at;
    if (IsBetween(NextCharacter(decoded, &at), 0xD800, 0xDFFF)) {
      return NotCoded("UTF-16: half of a pair stands alone", name, 2 * first);
    }
  }
  if (decoded.starts_with(kMark)) decoded.erase(0, 1);
  *text = std::move(decoded);
  return Status::Ok();
}

Status DecodeBytes(TextCoding coding, std::string_view bytes, std::u16string_view name,
                   std::u16string* text) {
  std::u16string decoded;
  decoded.reserve(bytes.size());
  for (size_t at = 0; at < bytes.size();) {
    const Decoded next = DecodeOne(coding, bytes, at);
    if (next.size == 0) return NotCoded(CodingName(coding), name, at);
    decoded.push_back(next.unit);
    at += next.size;
  }
  *text = std::move(decoded);
  return Status::Ok();
}

bool IsHalfWidthKana(char16_t unit) {
  return IsBetween(unit, 0xFF61, 0xFF9F);
}

// How a text looks that bytes are as one of the Japanese codings.
struct Reading {
  bool likely = false;
  size_t half_width_kana = 0;
};

// A stretch of bytes above ASCII, with the ASCII bytes that belong to their pairs.
struct Stretch {
  size_t start = 0, end = 0;  // bytes
  std::u16string text;
};

// Whether it looks like a letter or sign of a western coding amid ASCII: "Stra\xDFe" would hold a
// single half-width kana, "it\x92s" a kanji of the last byte and the letter after it.
bool LooksWestern(std::string_view bytes, const Stretch& stretch) {
  const bool after_letter = stretch.start > 0 && IsAsciiLetter(ByteAt(bytes, stretch.start - 1));
  const bool before_letter = IsAsciiLetter(ByteAt(bytes, stretch.end));
  const bool takes_letter = IsAsciiLetter(ByteAt(bytes, stretch.end - 1));
  const bool is_half = std::ranges::all_of(stretch.text, IsHalfWidthKana);
  const bool is_rare = ByteAt(bytes, stretch.start) >= 0xD0;  // kanji of the second level
  if (stretch.text.size() == 1) {
    return is_half || (after_letter && (takes_letter || (is_rare && before_letter)));
  }
  return stretch.text.size() == 2 && is_half && (after_letter || before_letter);
}

Reading ReadAs(TextCoding coding, std::string_view bytes) {
  Reading reading;
  size_t western = 0, japanese = 0;  // characters
  for (size_t at = 0; at < bytes.size();) {
    Stretch stretch = {at, at, {}};
    while (stretch.end < bytes.size() && ByteAt(bytes, stretch.end) >= 0x80) {
      const Decoded next = DecodeOne(coding, bytes, stretch.end);
      if (next.size == 0 || IsBetween(next.unit, 0xE000, 0xF8FF)) return {};  // or private use
      stretch.text.push_back(next.unit);
      stretch.end += next.size;
      if (IsHalfWidthKana(next.unit)) ++reading.half_width_kana;
    }
    at = std::max(stretch.end, at + 1);
    if (stretch.text.empty()) continue;
    (LooksWestern(bytes, stretch) ? western : japanese) += stretch.text.size();
  }
  reading.likely = japanese > western;
  return reading;
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
    case TextCoding::kCodePage1252:
      return "CP1252";
    case TextCoding::kLatin1:
      return "ISO-8859-1";
    case TextCoding::kEucJp:
      break;
  }
  return "EUC-JP";
}

std::string CodingNames(std::string_view separator) {
  std::string names;
  for (const TextCoding coding :
       {TextCoding::kUtf8, TextCoding::kUtf16Le, TextCoding::kUtf16Be, TextCoding::kCodePage932,
        TextCoding::kEucJp, TextCoding::kCodePage1252, TextCoding::kLatin1}) {
    if (!names.empty()) names += separator;
    names += CodingName(coding);
  }
  return names;
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
    default:
      break;
  }
  return DecodeBytes(coding, bytes, name, text);
}

std::optional<TextCoding> GuessCoding(std::string_view bytes) {
  const Reading euc = ReadAs(TextCoding::kEucJp, bytes);
  const Reading page = ReadAs(TextCoding::kCodePage932, bytes);
  // Half-width kana are rare, but many bytes are such in the wrong coding.
  const bool is_page = page.likely && (!euc.likely || page.half_width_kana == 0 ||
                                       page.half_width_kana < euc.half_width_kana);
  if (is_page) return TextCoding::kCodePage932;
  return euc.likely ? std::optional(TextCoding::kEucJp) : std::nullopt;
}

}  // namespace kerno
