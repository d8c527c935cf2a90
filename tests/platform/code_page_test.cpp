#include "platform/code_page.h"

#include <gtest/gtest.h>
#include <iconv.h>

#include <array>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

namespace kerno {
namespace {

std::map<uint32_t, std::string> RecordedMapping() {
  std::map<uint32_t, std::string> mapping;
  std::ifstream file(KERNO_TEST_DATA "/cp932.tsv");
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    uint32_t unit = 0;
    std::string hex;
    std::istringstream(line) >> std::hex >> unit >> hex;
    for (size_t i = 0; i < hex.size(); i += 2) {
      mapping[unit].push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
  }
  return mapping;
}

TEST(CodePage, EncodesEveryUnitAsRecorded) {
  auto recorded = RecordedMapping();
  ASSERT_EQ(recorded.size(), 9484u);
  recorded[0] = std::string(1, '\0');
  for (uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const char16_t text[] = {static_cast<char16_t>(unit)};
    bool used_default = false;
    const std::string bytes = EncodeCodePage932({text, 1}, '_', &used_default);
    const auto found = recorded.find(unit);
    ASSERT_EQ(bytes, found == recorded.end() ? "_" : found->second) << std::hex << unit;
    ASSERT_EQ(used_default, found == recorded.end()) << std::hex << unit;
  }
}

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
TEST(CodePage, DecodesAsTheCLibraryDoes) {
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

TEST(CodePage, DecodesDamagedBytes) {
  const struct {
    std::string_view bytes;
    std::u16string_view text;
  } kCases[] = {
      {"a\x81", u"a\u30FB"},              // a lead byte at the end
      {"\x81 b", u"\u30FB b"},            // a lead byte before what cannot follow it
      {"\x81\x7F", u"\u30FB\u007F"},      // 7F is no trail byte
      {"\x81\xAD!", u"\u30FB!"},          // a pair without a character
      {"\x88\x9F\xFF", u"\u4E9C\uF8F3"},  // a character, then a byte of the private range
  };
  for (const auto& c : kCases) EXPECT_EQ(DecodeCodePage932(c.bytes), c.text) << c.bytes;
  EXPECT_EQ(DecodeCodePage932(std::string_view("a\0b", 3)), std::u16string_view(u"a\0b", 3));
}

}  // namespace
}  // namespace kerno
