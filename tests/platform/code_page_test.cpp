#include "platform/code_page.h"

#include <gtest/gtest.h>

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
