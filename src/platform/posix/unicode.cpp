#include "platform/posix/unicode.h"

#include <fontconfig/fontconfig.h>

#include <cstdlib>

namespace kerno {
namespace {

bool IsHighSurrogate(char16_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}
bool IsLowSurrogate(char16_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

}  // namespace

char32_t NextUtf16Character(std::u16string_view text, size_t* position) {
  const char16_t unit = text[(*position)++];
  if (!IsHighSurrogate(unit) || *position == text.size() || !IsLowSurrogate(text[*position])) {
    return unit;
  }
  const char16_t low = text[(*position)++];
  return 0x10000 + ((static_cast<char32_t>(unit) - 0xD800) << 10) + (low - 0xDC00U);
}

std::u16string FromFontconfigText(std::string_view utf8) {
  std::u16string text;
  const auto* at = reinterpret_cast<const FcChar8*>(utf8.data());
  for (auto left = static_cast<int>(utf8.size()); left > 0;) {
    FcChar32 character = 0;
    const int length = FcUtf8ToUcs4(at, &character, left);
    if (length <= 0) {
      break;
    }
    if (character >= 0x10000) {
      text.push_back(static_cast<char16_t>(0xD7C0 + (character >> 10)));
      text.push_back(static_cast<char16_t>(0xDC00 + (character & 0x3FF)));
    } else {
      text.push_back(static_cast<char16_t>(character));
    }
    at += length;
    left -= length;
  }
  return text;
}

std::string ToFontconfigText(std::u16string_view text) {
  std::string utf8;
  for (size_t i = 0; i < text.size();) {
    FcChar8 bytes[FC_UTF8_MAX_LEN];
    const int length = FcUcs4ToUtf8(NextUtf16Character(text, &i), bytes);
    utf8.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
  }
  return utf8;
}

std::string FaceNameKey(std::u16string_view name, size_t units) {
  std::string cut = ToFontconfigText(name.substr(0, units));
  FcChar8* folded = FcStrDowncase(reinterpret_cast<const FcChar8*>(cut.c_str()));
  if (folded == nullptr) {
    return cut;
  }
  std::string key(reinterpret_cast<const char*>(folded));
  std::free(folded);
  return key;
}

}  // namespace kerno
