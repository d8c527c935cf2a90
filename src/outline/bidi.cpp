#include "outline/bidi.h"

#include <fribidi.h>

#include <algorithm>

namespace kerno {
namespace {

FriBidiParType TypeOf(ParagraphDirection direction) {
  switch (direction) {
    case ParagraphDirection::kLeftToRight:
      return FRIBIDI_PAR_LTR;
    case ParagraphDirection::kRightToLeft:
      return FRIBIDI_PAR_RTL;
    case ParagraphDirection::kAuto:
      break;
  }
  return FRIBIDI_PAR_ON;
}

}  // namespace

BidiLine LevelsOf(std::u32string_view line, ParagraphDirection direction) {
  const std::vector<FriBidiChar> characters(line.begin(), line.end());
  const auto count = static_cast<FriBidiStrIndex>(line.size());
  std::vector<FriBidiCharType> types(line.size());
  std::vector<FriBidiBracketType> brackets(line.size());
  std::vector<FriBidiLevel> levels(line.size());
  fribidi_get_bidi_types(characters.data(), count, types.data());
  fribidi_get_bracket_types(characters.data(), count, types.data(), brackets.data());
  FriBidiParType base = TypeOf(direction);
  BidiLine result;
  // Either fails for lack of memory alone, and then leaves the line in one direction.
  const bool known =
      fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &base,
                                          levels.data()) > 0 &&
      fribidi_reorder_line(0, types.data(), count, 0, base, levels.data(), nullptr, nullptr) > 0;
  if (!known) std::ranges::fill(levels, FriBidiLevel{0});
  result.levels.reserve(line.size());
  result.brackets.reserve(line.size());
  for (size_t i = 0; i < line.size(); ++i) {
    // Without a level are the controls of an empty embedding.
    result.levels.push_back(static_cast<uint8_t>(std::max<int>(levels[i], 0)));
    result.brackets.push_back(
        {FRIBIDI_BRACKET_ID(brackets[i]), FRIBIDI_IS_BRACKET_OPEN(brackets[i]) != 0});
  }
  return result;
}

}  // namespace kerno
