#include "platform/code_page.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "support/run.h"

namespace kerno {
namespace {

std::string Bytes(const std::string& hex) {
  std::string bytes;
  for (size_t i = 0; i < hex.size(); i += 2) {
    bytes.push_back(static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

std::map<uint32_t, std::string> RecordedMapping() {
  std::map<uint32_t, std::string> mapping;
  std::ifstream file(KERNO_TEST_DATA "/cp932.tsv");
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line[0] == '#') continue;
    uint32_t unit = 0;
    std::string hex;
    std::istringstream(line) >> std::hex >> unit >> hex;
    mapping[unit] = Bytes(hex);
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

// The characters of Python's table, one line each: bytes and UTF-16 unit. It agrees with the
// desktop's table but for the single bytes 80, A0 and FD to FF, which the latter keeps.
TEST(CodePage, DecodesAsAnotherTableDoes) {
  std::istringstream lines(
      test::OutputOf(KERNO_PYTHON
                     " -c 'import itertools as i\n"
                     "for n in (1, 2):\n"
                     " for b in map(bytes, i.product(range(256), repeat=n)):\n"
                     "  t = b.decode(\"cp932\", \"replace\")\n"
                     "  if len(t) == 1 and t != chr(0xFFFD): print(b.hex(), hex(ord(t)))'"));
  std::map<std::string, char16_t> characters;
  for (std::string hex, unit; lines >> hex >> unit;) {
    characters[Bytes(hex)] = static_cast<char16_t>(std::stoi(unit, nullptr, 16));
  }
  EXPECT_GT(characters.size(), 9700u);
  for (int first = 0; first <= 0xFF; ++first) {
    const bool pair = (first >= 0x81 && first <= 0x9F) || (first >= 0xE0 && first <= 0xFC);
    for (int second = pair ? 0x40 : 0; second <= (pair ? 0xFC : 0); ++second) {
      if (second == 0x7F || first == 0x80 || first == 0xA0 || first >= 0xFD) continue;
      std::string bytes(1, static_cast<char>(first));
      if (pair) bytes.push_back(static_cast<char>(second));
      const auto found = characters.find(bytes);
      const char16_t wanted = found == characters.end() ? u'\u30FB' : found->second;
      EXPECT_EQ(DecodeCodePage932(bytes), std::u16string(1, wanted)) << first << ' ' << second;
    }
  }
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
