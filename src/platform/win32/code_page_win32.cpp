#include "platform/code_page.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

constexpr UINT kCodePage = 932;
constexpr char16_t kInvalid = u'\u30FB';  // what stands for bytes without a character
constexpr size_t kLongest = 0x10000000;   // units or bytes of one call

bool IsLead(unsigned char byte) {
  return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}
bool IsTrail(unsigned char byte) {
  return byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
}

// Appends the bytes of units without surrogates; true when one of them had no mapping.
bool AppendEncoded(std::u16string_view text, char default_byte, std::string* bytes) {
  const std::wstring wide = ToWide(text);
  const auto length = static_cast<int>(wide.size());
  const size_t before = bytes->size();
  BOOL used = FALSE;
  const char default_text[] = {default_byte, '\0'};  // the system looks for a second byte
  bytes->resize(before + 2 * wide.size());
  const int written = WideCharToMultiByte(kCodePage, 0, wide.data(), length, bytes->data() + before,
                                          static_cast<int>(2 * wide.size()), default_text, &used);
  bytes->resize(before + static_cast<size_t>(written));
  return used != FALSE;
}

// The character of one valid lead and trail byte, or of one single byte.
char16_t DecodeOne(std::string_view bytes) {
  // Single bytes without a character, some of which a strict reading refuses.
  switch (static_cast<unsigned char>(bytes[0])) {
    case 0x80:
      return u'\u0080';
    case 0xA0:
      return u'\uF8F0';
    case 0xFD:
      return u'\uF8F1';
    case 0xFE:
      return u'\uF8F2';
    case 0xFF:
      return u'\uF8F3';
  }
  wchar_t unit[2] = {};
  const int length = MultiByteToWideChar(kCodePage, MB_ERR_INVALID_CHARS, bytes.data(),
                                         static_cast<int>(bytes.size()), unit, 2);
  return length == 1 ? static_cast<char16_t>(unit[0]) : kInvalid;
}

}  // namespace

std::string EncodeCodePage932(std::u16string_view text, char default_byte, bool* used_default) {
  std::string bytes;
  bytes.reserve(text.size() * 2);
  bool used = false;
  // The system takes a surrogate pair for one character; each of its units counts here.
  for (size_t at = 0; at < text.size();) {
    size_t end = at;
    while (end < text.size() && !IsSurrogate(text[end]) && end - at < kLongest) ++end;
    if (end > at) used |= AppendEncoded(text.substr(at, end - at), default_byte, &bytes);
    for (; end < text.size() && IsSurrogate(text[end]); ++end) {
      bytes.push_back(default_byte);
      used = true;
    }
    at = end;
  }
  if (used_default) *used_default = used;
  return bytes;
}

std::u16string DecodeCodePage932(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (size_t at = 0; at < bytes.size();) {
    const auto byte = static_cast<unsigned char>(bytes[at]);
    if (byte < 0x80) {
      text.push_back(byte);
      ++at;
      continue;
    }
    const bool lead = IsLead(byte);
    const bool pair =
        lead && at + 1 < bytes.size() && IsTrail(static_cast<unsigned char>(bytes[at + 1]));
    text.push_back(lead && !pair ? kInvalid : DecodeOne(bytes.substr(at, pair ? 2 : 1)));
    at += pair ? 2 : 1;
  }
  return text;
}

}  // namespace kerno
