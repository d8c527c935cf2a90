#include "app/status_text.h"

#include <cmath>

#include "app/captions.h"
#include "app/face_choice.h"
#include "app/height_text.h"
#include "app/shortcomings.h"
#include "base/number_text.h"
#include "base/text.h"

namespace kerno {
namespace {

const std::u16string kGap = u"  ·  ";
constexpr int32_t kBentBelow = 20;  // units of height
constexpr size_t kNamedCharacters =
    5;  // characters without a glyph that are named; the rest is counted

std::u16string Counted(const char16_t* one, const char16_t* many, size_t count) {
  std::string digits;
  AppendInteger(&digits, static_cast<int64_t>(count));
  return Say(count == 1 ? one : many, {Utf8ToUtf16Lossy(digits)});
}

// One decimal where the number is small.
std::u16string Length(double units) {
  std::string text;
  const double rounded = std::fabs(units) < 100 ? std::round(units * 10) / 10 : std::round(units);
  AppendGeneral(&text, rounded, 9);
  return Utf8ToUtf16Lossy(text);
}

std::u16string SizeText(const Extent3& box) {
  return Say(u"{} × {} units", {Length(box.max.x - box.min.x), Length(box.max.y - box.min.y)});
}

// The first characters by name, the rest by number.
std::u16string Named(const std::vector<char32_t>& characters) {
  std::u16string names;
  for (size_t i = 0; i < characters.size() && i < kNamedCharacters; ++i) {
    if (i > 0) names += u' ';
    if (IsUnseen(characters[i])) {
      names += Utf8ToUtf16Lossy(CodeOf(characters[i]));
    } else {
      AppendCharacter(&names, characters[i]);
    }
  }
  if (characters.size() > kNamedCharacters) {
    names += u' ';
    names += Counted(u"and {} other", u"and {} others", characters.size() - kNamedCharacters);
  }
  return names;
}

bool IsSubstitute(const TypesetText& set, const FaceForm& wanted) {
  return !IsNameOf(wanted, set.face);
}

}  // namespace

std::u16string DescribeText(const TypesetText& set, const FaceForm& wanted, const Extent3& box) {
  std::u16string text = Counted(u"{} character", u"{} characters", set.characters);
  text += kGap + Counted(u"{} contour", u"{} contours", set.contours.size());
  text += kGap + Counted(u"{} point", u"{} points", set.contours.point_count());
  text += kGap + SizeText(box);
  if (!IsSubstitute(set, wanted)) text += kGap + set.face;
  return text;
}

std::u16string DescribeWarnings(const TypesetText& set, const FaceForm& wanted) {
  std::u16string text;
  const auto add = [&text](const std::u16string& warning) { text += kGap + warning; };
  if (IsSubstitute(set, wanted)) {
    add(Say(u"{} in place of {}, which is not installed", {set.face, SystemFaceName(wanted)}));
  }
  if (!set.missing.empty()) add(Say(u"no glyph for {}", {Named(set.missing)}));
  if (!set.notes.refused.empty()) {
    add(Say(u"no outline of this size for {}", {Named(set.notes.refused)}));
  }
  if (set.ended_by_nul) add(Say(u"the text ends at a NUL character"));
  return text;
}

std::u16string DescribeUnshaped(std::u16string_view text) {
  std::u16string told;
  for (const ScriptNeeds& needs : NeedsOf(text)) {
    std::u16string lacks;
    for (const std::u16string_view lack : ShortcomingsFor(needs)) {
      if (!lacks.empty()) lacks += Say(u", ");
      lacks += Say(lack);
    }
    const std::u16string name = Say(Utf8ToUtf16Lossy(needs.name));
    told += kGap;
    told += name.empty() ? Say(u"text: {} (Cut shapes it)", {lacks})
                         : Say(u"{} text: {} (Cut shapes it)", {name, lacks});
  }
  return told;
}

std::u16string DescribeLicence(std::u16string_view face) {
  return kGap + Say(u"{} does not permit embedding: check what its licence permits", {face});
}

std::u16string DescribeHeight(std::u16string_view height) {
  const int32_t number = HeightNumber(height);
  if (number == 0 || number >= kBentBelow || number <= -kBentBelow) return {};
  return kGap + Say(u"letters as low as this are bent to whole units; Cut keeps their shape");
}

std::u16string DescribeParts(const PartsA& parts, std::u16string_view file, const Extent3& box) {
  std::u16string text(file);
  text += kGap + Counted(u"{} part", u"{} parts", PartsView(parts).size());
  text += kGap + SizeText(box);
  text += kGap + Say(u"typing shows the text again");
  return text;
}

std::u16string DescribeUnseen(const PictureNotes& notes) {
  std::u16string text;
  const auto add = [&](size_t count, const char16_t* one, const char16_t* many) {
    if (count > 0) text += kGap + Counted(one, many, count);
  };
  add(notes.left_out,
      u"{} element not shown: a coordinate is missing or no number that can be drawn",
      u"{} elements not shown: coordinates are missing or no numbers that can be drawn");
  add(notes.texts_too_large, u"{} text not shown: it has too many points",
      u"{} texts not shown: they have too many points");
  add(notes.texts_no_size, u"{} text not shown: it is too small or too large here",
      u"{} texts not shown: they are too small or too large here");
  return text;
}

Color StatusInk(StatusKind kind, Color normal, Color paper) {
  if (kind == StatusKind::kNormal) return normal;
  const bool fails = kind == StatusKind::kFailure;
  const Color dark = fails ? RgbColor(170, 0, 0) : RgbColor(130, 75, 0);
  return Contrasts(dark, paper) ? dark : fails ? RgbColor(255, 130, 120) : RgbColor(255, 200, 110);
}

}  // namespace kerno
