// Fonts of strokes in all three formats: reading ends, coordinates are numbers, and what is drawn
// once is no longer than the strokes were.
#include <cmath>
#include <cstdlib>
#include <string_view>

#include "drawing/measures.h"
#include "drawing/strokes.h"
#include "outline/stroke_font.h"
#include "outline/text_block.h"

namespace {

using namespace kerno;

void Check(bool holds) {
  if (!holds) std::abort();
}

double LengthOfAll(const std::vector<Path>& paths) {
  double length = 0;
  for (const Path& path : paths) {
    Check(!path.segments.empty());
    for (const Segment& segment : path.segments)
      Check(std::isfinite(segment.end.x + segment.end.y));
    length += LengthOf(path);
  }
  return length;
}

void CheckFont(const StrokeFont& font) {
  Check(font.units_per_em > 0 && font.cap_height >= 0 && font.line_pitch >= 0);
  for (const auto& [character, number] : font.numbers) {
    const StrokeGlyph& glyph = font.glyphs.at(number);
    Check(glyph.advance >= 0 && std::isfinite(glyph.advance));
    Check(glyph.bad_line == 0 || (!glyph.fault.empty() && glyph.strokes.empty()));
    const double length = LengthOfAll(glyph.strokes);
    const auto once = WithShortWays(DrawnOnce(glyph.strokes, 1e-6 * font.units_per_em));
    Check(LengthOfAll(once) <= length * 1.000001 + 0.001 * font.units_per_em);
    for (const Path& path : once) Check(LengthOfAll({WithoutArcs(path)}) <= 2 * length);
  }
  Check(SetStrokeBlock(font, u"A B\nH", {}).glyphs.size() == 4);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  StrokeFont font;
  if (ReadStrokeFont(bytes, u"seed", &font).ok()) CheckFont(font);
  if (ReadHersheyFont(bytes, u"japanese", &font).ok()) CheckFont(font);
  return 0;
}
