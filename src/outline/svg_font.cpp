#include <algorithm>
#include <cmath>
#include <utility>

#include "base/text.h"
#include "outline/stroke_font.h"
#include "outline/stroke_font_parts.h"
#include "outline/svg_path_data.h"
#include "outline/xml_tags.h"

namespace kerno {
namespace {

constexpr double kUsualEm = 1000, kLeastEm = 0.001;

class SvgFontReader {
 public:
  Status Read(std::string_view bytes, StrokeFont* font);

 private:
  void Face(const XmlTag& tag);
  bool Glyph(const XmlTag& tag);
  void Finish();

  StrokeFont made_;
  double usual_advance_ = 0;
  double ascent_ = NAN, descent_ = NAN, cap_height_ = NAN;
  size_t segments_ = 0;
};

double NumberOf(const XmlTag& tag, std::string_view attribute, double otherwise) {
  const auto value = tag.Attribute(attribute);
  if (!value) return otherwise;
  std::string_view text = Trimmed(*value);
  const auto number = TakeNumber(&text);
  return number && text.empty() ? *number : NAN;
}

void SvgFontReader::Face(const XmlTag& tag) {
  if (const auto family = tag.Attribute("font-family")) {
    made_.family = Utf8ToUtf16Lossy(XmlText(*family));
  }
  made_.units_per_em = NumberOf(tag, "units-per-em", kUsualEm);
  ascent_ = NumberOf(tag, "ascent", NAN);
  descent_ = NumberOf(tag, "descent", NAN);
  cap_height_ = NumberOf(tag, "cap-height", NAN);
}

// False when the font becomes too large.
bool SvgFontReader::Glyph(const XmlTag& tag) {
  const bool missing = tag.name == "missing-glyph";
  const std::u16string text =
      missing ? std::u16string() : Utf8ToUtf16Lossy(XmlText(tag.Attribute("unicode").value_or("")));
  size_t end = 0;
  const char32_t character = text.empty() ? 0 : NextCharacter(text, &end);
  // Ligatures and the forms of vertical lines are passed over.
  if (!missing && (text.empty() || end != text.size() || tag.Attribute("orientation") == "v")) {
    return true;
  }
  StrokeGlyph glyph;
  glyph.advance = NumberOf(tag, "horiz-adv-x", usual_advance_);
  if (!std::isfinite(glyph.advance) || glyph.advance < 0) {
    glyph.bad_line = tag.line;
    glyph.fault = u"its horiz-adv-x is no width";
    glyph.advance = usual_advance_;
  } else if (!ReadSvgPathData(tag.Attribute("d").value_or(""), &glyph.strokes, &glyph.fault)) {
    glyph.bad_line = tag.line;
    glyph.strokes.clear();
  }
  const size_t segments = CountSegments(glyph);
  if (segments > kMostGlyphSegments) {
    glyph.strokes.clear();
    glyph.bad_line = tag.line;
    glyph.fault = kGlyphTooLarge;
  }
  segments_ += segments;
  if (segments_ > kMostStrokeSegments) return false;
  if (missing) {
    made_.glyphs[0] = std::move(glyph);
  } else {
    made_.Add(character, std::move(glyph), StrokeFont::IfKnown::kKeep);
  }
  return true;
}

void SvgFontReader::Finish() {
  const double em = made_.units_per_em;
  made_.ascent = ascent_ > 0 ? ascent_ : 0.8 * em;
  made_.descent = std::isfinite(descent_) ? -std::fabs(descent_) : -0.2 * em;
  made_.line_pitch = std::max(em, made_.ascent - made_.descent);
  // What fonts say of their capitals is often a pattern's value: their "H" knows better.
  const double height = HeightOfH(made_);
  made_.cap_height = height > 0 ? height : cap_height_ > 0 ? cap_height_ : 0;
}

Status SvgFontReader::Read(std::string_view bytes, StrokeFont* font) {
  XmlTags tags(bytes);
  bool inside = false, face = false, ended = false;
  for (XmlTag tag; !ended;) {
    if (!tags.Next(&tag)) return StrokeFontFault(tag.line, u"is no XML from here on");
    if (tag.name.empty()) break;
    if (tag.name == "font") {
      if (!tag.begins && !inside) continue;
      ended = tag.ends;
      inside = true;
      if (tag.begins) usual_advance_ = NumberOf(tag, "horiz-adv-x", 0);
      if (!(usual_advance_ >= 0)) {
        return StrokeFontFault(tag.line, u"the font's horiz-adv-x is no width");
      }
    } else if (inside && tag.begins && tag.name == "font-face") {
      Face(tag);
      face = true;
      if (!(made_.units_per_em >= kLeastEm)) {
        return StrokeFontFault(tag.line, u"the font's units-per-em is not 0.001 or more");
      }
    } else if (inside && tag.begins && (tag.name == "glyph" || tag.name == "missing-glyph")) {
      if (!Glyph(tag)) return StrokeFontFault(tag.line, u"makes the font too large");
    }
  }
  if (!inside) return StrokeFontFault(0, u"holds no <font>: an SVG font has one");
  if (!ended) return StrokeFontFault(0, u"ends before </font>");
  if (made_.numbers.empty()) return StrokeFontFault(0, u"holds no character of a stroke font");
  if (!face) made_.units_per_em = kUsualEm;
  Finish();
  *font = std::move(made_);
  return Status::Ok();
}

}  // namespace

Status ReadSvgFont(std::string_view bytes, StrokeFont* font) {
  return SvgFontReader().Read(bytes, font);
}

}  // namespace kerno
