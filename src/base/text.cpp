#include "base/text.h"

#include <cstdio>
#include <utility>

#include "platform/code_page.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool IsLowSurrogate(char32_t unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// Length of the well-formed UTF-8 sequence at `at` with its character, or 0.
size_t DecodeUtf8(std::string_view text, size_t at, char32_t* character) {
  const auto byte = [&](size_t i) -> uint32_t { return static_cast<unsigned char>(text[i]); };
  const uint32_t lead = byte(at);
  if (lead < 0x80) {
    *character = lead;
    return 1;
  }
  const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || at + length > text.size()) return 0;
  char32_t value = lead & (0x7Fu >> length);
  for (size_t i = 1; i < length; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return 0;
    value = (value << 6) | (byte(at + i) & 0x3F);
  }
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool surrogate = IsHighSurrogate(value) || IsLowSurrogate(value);
  if (value < kSmallest[length] || value > 0x10FFFF || surrogate) return 0;
  *character = value;
  return length;
}

}  // namespace

std::optional<std::u16string> Utf8ToUtf16(std::string_view utf8, size_t* bad_offset) {
  std::u16string text;
  text.reserve(utf8.size());
  for (size_t at = 0; at < utf8.size();) {
    char32_t character = 0;
    const size_t length = DecodeUtf8(utf8, at, &character);
    if (length == 0) {
      if (bad_offset) *bad_offset = at;
      return std::nullopt;
    }
    AppendCharacter(&text, character);
    at += length;
  }
  return text;
}

std::u16string Utf8ToUtf16Lossy(std::string_view utf8) {
  std::u16string text;
  for (size_t at = 0; at < utf8.size();) {
    char32_t character = kReplacement;
    const size_t length = DecodeUtf8(utf8, at, &character);
    AppendCharacter(&text, length ? character : kReplacement);
    at += length ? length : 1;
  }
  return text;
}

std::string Utf16ToUtf8(std::u16string_view utf16) {
  std::string text;
  text.reserve(utf16.size() * 3);
  for (size_t at = 0; at < utf16.size();) {
    char32_t c = NextCharacter(utf16, &at);
    if (IsHighSurrogate(c) || IsLowSurrogate(c)) c = kReplacement;
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | (c >> 6));
      put(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      put(0xE0 | (c >> 12));
      put(0x80 | ((c >> 6) & 0x3F));
      put(0x80 | (c & 0x3F));
    } else {
      put(0xF0 | (c >> 18));
      put(0x80 | ((c >> 12) & 0x3F));
      put(0x80 | ((c >> 6) & 0x3F));
      put(0x80 | (c & 0x3F));
    }
  }
  return text;
}

std::u16string PathText(const std::filesystem::path& path) {
  return Utf8ToUtf16Lossy(PathBytes(path));
}

std::filesystem::path TextPath(std::u16string_view text) {
  const std::string bytes = Utf16ToUtf8(text);
  return std::filesystem::path(std::u8string(bytes.begin(), bytes.end()));
}

char32_t NextCharacter(std::u16string_view text, size_t* position) {
  const char32_t first = text[(*position)++];
  if (!IsHighSurrogate(first) || *position >= text.size() || !IsLowSurrogate(text[*position])) {
    return first;
  }
  const char32_t second = text[(*position)++];
  return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

void AppendCharacter(std::u16string* text, char32_t character) {
  if (character < 0x10000) {
    text->push_back(static_cast<char16_t>(character));
    return;
  }
  const char32_t rest = character - 0x10000;
  text->push_back(static_cast<char16_t>(0xD800 + (rest >> 10)));
  text->push_back(static_cast<char16_t>(0xDC00 + (rest & 0x3FF)));
}

bool IsUnseen(char32_t character) {
  static constexpr std::pair<char32_t, char32_t> kRanges[] = {
      {0, 0x20},        {0x7F, 0xA0},     {0xAD, 0xAD},       {0x61C, 0x61C},   {0x2000, 0x200F},
      {0x2028, 0x202F}, {0x205F, 0x206F}, {0x3000, 0x3000},   {0xD800, 0xDFFF}, {0xFE00, 0xFE0F},
      {0xFEFF, 0xFEFF}, {0xFFF9, 0xFFFB}, {0xE0000, 0xE0FFF},
  };
  for (const auto& [first, last] : kRanges) {
    if (character >= first && character <= last) return true;
  }
  return false;
}

bool IsDirectionControl(char32_t character) {
  return character == 0x61C || character == 0x200E || character == 0x200F ||
         (character >= 0x202A && character <= 0x202E) ||
         (character >= 0x2066 && character <= 0x2069);
}

std::string CodeOf(char32_t character) {
  char code[16];
  std::snprintf(code, sizeof code, "U+%04X", static_cast<unsigned>(character));
  return code;
}

std::string ToShiftJis(std::u16string_view text) {
  return EncodeCodePage932(text, '_');
}

std::u16string AsciiLower(std::u16string_view text) {
  std::u16string lower(text);
  for (char16_t& unit : lower) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + (u'a' - u'A'));
  }
  return lower;
}

std::u16string Extension(std::u16string_view path) {
  const size_t name = path.find_last_of(u"/\\");
  if (name != path.npos) path.remove_prefix(name + 1);
  const size_t point = path.rfind(u'.');
  return point == path.npos ? std::u16string() : std::u16string(path.substr(point + 1));
}

std::u16string StripSpaces(std::u16string_view text) {
  std::u16string kept;
  for (const char16_t unit : text) {
    if (unit != u' ') kept.push_back(unit);
  }
  return kept;
}

std::u16string EscapeText(std::u16string_view text) {
  std::u16string escaped;
  escaped.reserve(text.size());
  for (const char16_t unit : text) {
    switch (unit) {
      case u'\t':
        escaped += u"\\t";
        break;
      case u'\n':
        escaped += u"\\n";
        break;
      case u'\r':
        escaped += u"\\r";
        break;
      case u'"':
        escaped += u"\\x22";
        break;
      case u'\'':
        escaped += u"\\x27";
        break;
      case u',':
        escaped += u"\\x2c";
        break;
      case u'\\':
        escaped += u"\\\\";
        break;
      default:
        escaped.push_back(unit);
    }
  }
  return escaped;
}

std::u16string QuoteText(std::u16string_view text, char16_t quote) {
  std::u16string quoted(1, quote);
  quoted.append(text);
  quoted.push_back(quote);
  return quoted;
}

std::u16string_view Unquote(std::u16string_view text) {
  if (text.size() < 2 || text.front() != text.back()) return text;
  if (text.front() != u'"' && text.front() != u'\'') return text;
  return text.substr(1, text.size() - 2);
}

}  // namespace kerno
