#include "app/status_text.h"

#include <cmath>

#include "app/face_choice.h"
#include "base/number_text.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr std::u16string_view kGap = u"  ·  ";
constexpr size_t kNamedCharacters =
    5;  // characters without a glyph that are named; the rest is counted

void AppendCount(std::u16string* out, size_t count, const char16_t* one, const char16_t* many) {
  std::string digits;
  AppendInteger(&digits, static_cast<int64_t>(count));
  *out += Utf8ToUtf16Lossy(digits);
  *out += u' ';
  *out += count == 1 ? one : many;
}

// One decimal where the number is small.
std::u16string Length(double units) {
  std::string text;
  const double rounded = std::fabs(units) < 100 ? std::round(units * 10) / 10 : std::round(units);
  AppendGeneral(&text, rounded, 9);
  return Utf8ToUtf16Lossy(text);
}

void AppendSize(std::u16string* out, const Extent3& box) {
  *out += Length(box.max.x - box.min.x) + u" × " + Length(box.max.y - box.min.y) + u" units";
}

// What the drawing lacks of some characters, with a gap before it; nothing when there are none.
void AppendLost(std::u16string* out, std::u16string_view what,
                const std::vector<char32_t>& characters) {
  if (characters.empty()) return;
  *out += kGap;
  *out += what;
  for (size_t i = 0; i < characters.size() && i < kNamedCharacters; ++i) {
    *out += u' ';
    if (IsUnseen(characters[i])) {
      *out += Utf8ToUtf16Lossy(CodeOf(characters[i]));
    } else {
      AppendCharacter(out, characters[i]);
    }
  }
  if (characters.size() > kNamedCharacters) {
    *out += u" and ";
    AppendCount(out, characters.size() - kNamedCharacters, u"other", u"others");
  }
}

bool IsSubstitute(const TypesetText& set, const FaceForm& wanted) {
  return !IsNameOf(wanted, set.face);
}

}  // namespace

std::u16string DescribeText(const TypesetText& set, const FaceForm& wanted, const Extent3& box) {
  std::u16string text;
  AppendCount(&text, set.characters, u"character", u"characters");
  text += kGap;
  AppendCount(&text, set.contours.size(), u"contour", u"contours");
  text += kGap;
  AppendCount(&text, set.contours.point_count(), u"point", u"points");
  text += kGap;
  AppendSize(&text, box);
  text += kGap;
  text += set.face;
  if (IsSubstitute(set, wanted)) {
    text += u" in place of ";
    text += SystemFaceName(wanted);
    text += u", which is not installed";
  }
  AppendLost(&text, u"no glyph for", set.missing);
  AppendLost(&text, u"no outline of this size for", set.notes.refused);
  if (set.ended_by_nul) text += u"  ·  the text ends at a NUL character";
  return text;
}

std::u16string DescribeParts(const PartsA& parts, std::u16string_view file, const Extent3& box) {
  std::u16string text(file);
  text += u"  ·  ";
  AppendCount(&text, PartsView(parts).size(), u"part", u"parts");
  text += u"  ·  ";
  AppendSize(&text, box);
  text += u"  ·  typing shows the text again";
  return text;
}

bool HasWarning(const TypesetText& set, const FaceForm& wanted) {
  return !set.missing.empty() || !set.notes.refused.empty() || set.ended_by_nul ||
         IsSubstitute(set, wanted);
}

std::u16string DescribeUnseen(const PictureNotes& notes) {
  std::u16string text;
  const auto add = [&](size_t count, const char16_t* one, const char16_t* many) {
    if (count == 0) return;
    text += kGap;
    AppendCount(&text, count, one, many);
  };
  add(notes.left_out, u"element not shown: a coordinate is missing or no number that can be drawn",
      u"elements not shown: coordinates are missing or no numbers that can be drawn");
  add(notes.texts_too_large, u"text not shown: it has too many points",
      u"texts not shown: they have too many points");
  add(notes.texts_no_size, u"text not shown: it is too small or too large here",
      u"texts not shown: they are too small or too large here");
  return text;
}

Color StatusInk(StatusKind kind, Color normal, Color paper) {
  if (kind == StatusKind::kNormal) return normal;
  const bool fails = kind == StatusKind::kFailure;
  const Color dark = fails ? RgbColor(170, 0, 0) : RgbColor(130, 75, 0);
  return Contrasts(dark, paper) ? dark : fails ? RgbColor(255, 130, 120) : RgbColor(255, 200, 110);
}

}  // namespace kerno
