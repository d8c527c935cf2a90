#include "platform/posix/utf16_bytes.h"

#include "platform/code_page.h"

namespace kerno::posix {

std::u16string TextOfBytes(std::string_view bytes, ByteForm* form) {
  const std::string_view mark = bytes.substr(0, 2);
  *form = mark == "\xFF\xFE"   ? ByteForm::kUtf16
          : mark == "\xFE\xFF" ? ByteForm::kUtf16BigEndian
                               : ByteForm::kCodePage932;
  if (*form == ByteForm::kCodePage932) return DecodeCodePage932(bytes);
  const size_t low = *form == ByteForm::kUtf16 ? 0 : 1;
  std::u16string text(bytes.size() / 2 - 1, u'\0');
  const auto* pair = reinterpret_cast<const unsigned char*>(bytes.data()) + 2;
  for (char16_t& unit : text) {
    unit = static_cast<char16_t>(pair[low] | pair[1 - low] << 8);
    pair += 2;
  }
  return text;
}

std::string BytesOfText(std::u16string_view text, ByteForm form) {
  if (form == ByteForm::kCodePage932) return EncodeCodePage932(text, '_');
  const bool little = form == ByteForm::kUtf16;
  std::string bytes(little ? "\xFF\xFE" : "\xFE\xFF");
  bytes.reserve(2 + 2 * text.size());
  for (const char16_t unit : text) {
    const char low = static_cast<char>(unit & 0xFF);
    const char high = static_cast<char>(unit >> 8);
    bytes.push_back(little ? low : high);
    bytes.push_back(little ? high : low);
  }
  return bytes;
}

}  // namespace kerno::posix
