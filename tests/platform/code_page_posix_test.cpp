#include <gtest/gtest.h>
#include <iconv.h>

#include <array>
#include <string>

#include "platform/code_page.h"

namespace kerno {
namespace {

class Iconv {
 public:
  Iconv() : handle_(iconv_open("UTF-16LE", "CP932")) {}
  ~Iconv() { iconv_close(handle_); }
  Iconv(const Iconv&) = delete;
  Iconv& operator=(const Iconv&) = delete;

  // Empty for bytes without a character.
  std::u16string Decode(std::string bytes) {
    std::array<char16_t, 8> text{};
    char* in = bytes.data();
    char* out = reinterpret_cast<char*>(text.data());
    size_t in_left = bytes.size();
    size_t out_left = sizeof text;
    iconv(handle_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(handle_, &in, &in_left, &out, &out_left) != 0) return {};
    return {text.data(), (sizeof text - out_left) / 2};
  }

 private:
  iconv_t handle_;
};

// The C library decides which bytes have a character and which one. It knows no character for the
// single bytes 80, A0 and FD to FF, which the desktop's code page keeps.
TEST(CodePagePosix, DecodesAsTheCLibraryDoes) {
  Iconv iconv;
  int characters = 0;
  for (uint32_t first = 0; first <= 0xFF; ++first) {
    const bool pair = (first >= 0x81 && first <= 0x9F) || (first >= 0xE0 && first <= 0xFC);
    for (uint32_t second = pair ? 0x40 : 0; second <= (pair ? 0xFC : 0); ++second) {
      if (second == 0x7F || first == 0x80 || first == 0xA0 || first >= 0xFD) continue;
      std::string bytes(1, static_cast<char>(first));
      if (pair) bytes.push_back(static_cast<char>(second));
      const std::u16string wanted = iconv.Decode(bytes);
      EXPECT_EQ(DecodeCodePage932(bytes), wanted.empty() ? u"\u30FB" : wanted)
          << std::hex << first << ' ' << second;
      characters += !wanted.empty();
    }
  }
  EXPECT_GT(characters, 9700);
  EXPECT_EQ(DecodeCodePage932("\x80\xA0\xFD\xFE\xFF"), u"\u0080\uF8F0\uF8F1\uF8F2\uF8F3");
}

}  // namespace
}  // namespace kerno
