#include "outline/text_runs.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/text.h"

namespace kerno {
namespace {

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> parts;
  std::stringstream in(text);
  for (std::string part; std::getline(in, part, at);) parts.push_back(part);
  return parts;
}

// The characters of a line as its runs show them, without those that are only controls.
std::vector<std::string> ShownOrder(const std::u16string& text,
                                    const std::vector<std::string>& levels,
                                    ParagraphDirection direction) {
  std::vector<size_t> character_at;
  for (size_t at = 0, n = 0; at < text.size(); ++n) {
    NextCharacter(text, &at);
    character_at.resize(at, n);
  }
  std::vector<std::string> order;
  for (const TextRun& run : RunsOf(text, {.direction = direction})) {
    std::vector<size_t> characters;
    for (size_t unit = run.start; unit < run.start + run.length; ++unit) {
      const size_t n = character_at[unit];
      if (levels[n] != "x" && (characters.empty() || characters.back() != n)) {
        characters.push_back(n);
      }
    }
    if (run.right_to_left) std::reverse(characters.begin(), characters.end());
    for (const size_t n : characters) order.push_back(std::to_string(n));
  }
  return order;
}

// Lines of the Unicode Character Database: characters; direction; level; levels; shown order.
TEST(TextRuns, OrderOfTheUnicodeConsortiumSTests) {
  std::ifstream file(KERNO_UNICODE_DATA "/BidiCharacterTest.txt");
  constexpr size_t kStep = 5;  // every one of them takes too long
  size_t count = 0, wrong = 0;
  for (std::string line; std::getline(file, line);) {
    const std::vector<std::string> fields = Split(line, ';');
    if (line.starts_with('#') || fields.size() != 5 || ++count % kStep != 0) continue;
    std::u16string text;
    for (const std::string& code : Split(fields[0], ' ')) {
      AppendCharacter(&text, static_cast<char32_t>(std::stoul(code, nullptr, 16)));
    }
    constexpr ParagraphDirection kDirections[] = {ParagraphDirection::kLeftToRight,
                                                  ParagraphDirection::kRightToLeft,
                                                  ParagraphDirection::kAuto};
    const auto direction = kDirections[std::stoul(fields[1])];
    if (ShownOrder(text, Split(fields[3], ' '), direction) != Split(fields[4], ' ') &&
        ++wrong <= 10) {
      ADD_FAILURE() << line;
    }
  }
  EXPECT_EQ(wrong, 0u);
  EXPECT_GT(count, 90000u);
}

}  // namespace
}  // namespace kerno
