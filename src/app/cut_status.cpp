#include "app/cut_status.h"

#include <algorithm>

#include "app/captions.h"
#include "base/text.h"
#include "export/fixed_number.h"

namespace kerno {
namespace {

std::u16string Fixed(double value, int decimals) {
  std::string text;
  AppendFixed(&text, value, decimals);
  if (CurrentLanguage() == Language::kGerman) std::ranges::replace(text, '.', ',');
  return Utf8ToUtf16Lossy(text);
}

std::u16string Count(size_t count) {
  return Utf8ToUtf16Lossy(std::to_string(count));
}

std::u16string_view UnitName(const CutDrawing& made) {
  return made.drawing.unit == LengthUnit::kInch ? u"in" : u"mm";
}

// One text where the count is one, another where it is more; "{}" is the count.
std::u16string Counted(size_t count, std::u16string_view one, std::u16string_view many) {
  return count == 1 ? Say(one) : Say(many, {Count(count)});
}

constexpr size_t kMostNamed = 8;  // characters

std::u16string Named(const std::vector<char32_t>& characters) {
  std::u16string names;
  for (size_t i = 0; i < std::min(characters.size(), kMostNamed); ++i) {
    if (!names.empty()) names += u", ";
    // Where the face has no glyph, the window's own font may have none either.
    if (characters[i] > 0x20 && !IsDirectionControl(characters[i])) {
      AppendCharacter(&names, characters[i]);
      names += u' ';
    }
    names += Utf8ToUtf16Lossy(CodeOf(characters[i]));
  }
  if (characters.size() > kMostNamed) names += u" …";
  return names;
}

}  // namespace

std::u16string SizeOf(const CutDrawing& made) {
  const int decimals = made.drawing.unit == LengthUnit::kInch ? 4 : 3;
  std::u16string text = Fixed(std::max(made.ink.Width(), 0.0), decimals);
  text += u" × " + Fixed(std::max(made.ink.Height(), 0.0), decimals) + u" ";
  text += UnitName(made);
  return text;
}

std::u16string DescribeCut(const CutDrawing& made) {
  const DrawingFacts& facts = made.facts;
  std::u16string text;
  if (facts.closed > 0 || facts.open == 0) {
    text = Counted(facts.closed, u"1 closed path", u"{} closed paths") + u", ";
  }
  if (facts.open > 0) text += Counted(facts.open, u"1 open path", u"{} open paths") + u", ";
  return text + Say(u"{} {} to cut", {Fixed(facts.length, 1), UnitName(made)});
}

std::vector<std::u16string> WarningsOf(const CutDrawing& made) {
  std::vector<std::u16string> warnings;
  if (!made.missing.empty()) {
    warnings.push_back(Say(u"No glyph for: {}", {Named(made.missing)}));
  }
  if (made.crossing > 0) {
    warnings.push_back(Counted(made.crossing, u"1 path crosses itself or another one",
                               u"{} paths cross themselves or each other"));
  }
  if (made.facts.open > 0 && !made.drawing.strokes) {
    warnings.push_back(Counted(made.facts.open, u"1 path is open", u"{} paths are open"));
  }
  if (made.vanished > 0) {
    warnings.push_back(Counted(made.vanished, u"1 path vanished: it is thinner than the offset",
                               u"{} paths vanished: they are thinner than the offset"));
  }
  if (made.touching > 0) {
    warnings.push_back(Counted(made.touching, u"1 path touches itself or another one",
                               u"{} paths touch themselves or each other"));
  }
  for (const CutFace& face : made.faces) {
    const bool is_first = &face == made.faces.data();
    if (face.characters > 0 && !is_first) {
      warnings.push_back(Counted(face.characters, u"1 character is of another face",
                                 u"{} characters are of other faces") +
                         u": " + face.family);
    }
    if (face.made_bold || face.made_slanted) {
      warnings.push_back(
          Say(u"{} has no such style: its letters are made of others", {face.family}));
    }
    if (face.no_embedding && (is_first || face.characters > 0)) {
      warnings.push_back(
          Say(u"{} does not permit embedding: check what its licence permits", {face.family}));
    }
  }
  return warnings;
}

}  // namespace kerno
