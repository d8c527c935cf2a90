// A string as placed contours: characters side by side, lines by CR and LF, the block slanted,
// turned and moved to where the caller wants it.
//
// Units are logical units of the device context, angles degrees, counter-clockwise in y-up
// coordinates. LayoutString works in y-up glyph coordinates with the pen starting at (0, 0);
// PlaceBlock turns y down.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/affine.h"
#include "outline/glyph_cache.h"
#include "outline/glyph_contours.h"
#include "outline/layout_options.h"
#include "platform/device_context.h"

namespace kerno {

// What LayoutString noticed on its way.
struct LayoutNotes {
  uint32_t overlapping = 0;       // characters of vertical text whose ink box meets the one before
  P2 low, high;                   // the box around the points and the pen's origin
  std::vector<char32_t> refused;  // distinct characters that the rasteriser gave no outline for
};

// The fields of SYSTEM_FONT with height, width, weight and face name (at most kMaxFaceName units of
// it) put in, for the default character set.
LogFont BuildLogFont(int32_t height, int32_t width, int32_t weight, std::u16string_view face);

// One character of a laid-out text.
struct PlacedGlyph {
  const CachedGlyph* glyph = nullptr;
  P2 origin;             // where the pen stood, y up
  size_t character = 0;  // its place in the text, in UTF-16 units
};

// The characters of a text in their order; line ends, tabs and what follows a NUL are none. The
// glyphs live in the cache of the font that was selected: use them before another is.
using GlyphRun = std::vector<PlacedGlyph>;

// Lays out the text, up to a NUL or its end, in the font selected into `dc`. CR returns the pen to
// x = 0, LF moves it down by tmHeight, TAB right by tmAveCharWidth; vertical text moves the pen
// down before each character. Characters without an outline add nothing but their advance; one that
// the rasteriser refuses adds nothing at all. *notes is added to.
GlyphRun LayOutGlyphs(DeviceContext& dc, std::u16string_view text, const LayoutOptions& options,
                      LayoutNotes* notes);

// Appends the contours of the run's glyphs, each at its place. Returns their number.
uint32_t AppendContours(const GlyphRun& run, GlyphContours* contours);

// LayOutGlyphs and AppendContours in one; *notes is replaced.
uint32_t LayoutString(DeviceContext& dc, std::u16string_view text, const LayoutOptions& options,
                      GlyphContours* contours, LayoutNotes* notes = nullptr);

// Where a block goes.
struct BlockPlacement {
  P2 insertion;  // where the block's centre lands, y down
  // Leans the block: each point turns about its own x at the height of the centre.
  double slant = 0;
  double angle = 0;  // turns the block about its centre
};

// Slants, turns, negates y and moves: from y-up layout coordinates to y-down drawing coordinates.
// The centre is that of the box around all points and the pen's origin. Classic: the box holds the
// origin, so that texts of one line keep their places whatever their letters are.
// `low` and `high` are that box where it is known already.
void PlaceBlock(std::vector<P2>* points, const BlockPlacement& placement);
void PlaceBlock(std::vector<P2>* points, P2 low, P2 high, const BlockPlacement& placement);

// The maps that PlaceBlock consists of, one after the other.
std::vector<Affine> PlacementMaps(P2 low, P2 high, const BlockPlacement& placement);

// The extent of a text that is set in one line.
struct StringExtent {
  int32_t length = 0;  // along the line
  int32_t height = 0;
};

// Measures the whole string with the system's own extent, or estimates it by columns (two for
// characters above U+007F that are not half-width forms) when `dc` is null or height or width is
// 5,000 or more. Classic: height and width swap their roles for vertical text, as frames of text
// elements in the field were sized so.
StringExtent MeasureString(DeviceContext* dc, std::u16string_view text, bool vertical,
                           int32_t height, int32_t width, double slant, double angle,
                           std::u16string_view face, int32_t weight, bool italic = false);

}  // namespace kerno
