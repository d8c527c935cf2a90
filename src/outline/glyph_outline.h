// One character's outline: the rasteriser's native records flattened into closed contours.
//
// The native form is a sequence of polygons: a 16-byte header (size of the polygon in bytes, type
// 24, start point) and records of a 16-bit type (1 line, 2 quadratic spline), a 16-bit count and
// that many points. Numbers are 16.16 in the machine's byte order, y points up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "drawing/path.h"
#include "outline/glyph_contours.h"
#include "platform/device_context.h"

namespace kerno {

// A point of the native form: two 16.16 numbers.
struct PointFx {
  int32_t x = 0;
  int32_t y = 0;
};

// The outline of a character in the font selected into `dc`, as closed paths (y up), curves kept;
// none for a blank and on failure. *metrics receives the glyph's metrics unless the call fails.
// Where the rasteriser has no outline to give, "GDI_ERROR" is drawn into the context at (0, 0).
std::vector<Path> GetGlyphPaths(DeviceContext& dc, char32_t ch, GlyphMetrics* metrics);

// The same flattened by the classic rule. Returns the number of contours, which replace what was in
// *contours; it stays untouched on failure.
uint32_t GetGlyphContours(DeviceContext& dc, char32_t ch, GlyphMetrics* metrics,
                          GlyphContours* contours);

// The polygons of a buffer of native records as closed paths (y up), curves kept; reads nothing
// outside the buffer. The walk ends at a polygon of another type, at one that is too short for its
// header and at its first damaged or unknown record, whose polygon is dropped.
std::vector<Path> ReadNativeOutline(const void* buffer, size_t size);

// Appends a path of lines and quadratic curves as one contour, by the classic rule. Classic: the
// contour begins at the end of its first segment and closes with the path's start and that first
// point again, because the parts of every file in the field begin so; its point count has 16 bits
// and wraps.
void FlattenClassic(const Path& path, GlyphContours* contours);

// ReadNativeOutline and FlattenClassic in one: *contours is replaced. Returns the number of
// contours.
uint32_t ParseNativeOutline(const void* buffer, size_t size, GlyphContours* contours);

// Appends the end points of n chords of the quadratic from a over control b to c, without a itself,
// and returns n: a third of the largest extent of the control triangle in whole units, at least 2,
// and 30 where that is above 20. Classic: the jump from 20 to 30, so that drawings of the same text
// keep their points.
uint32_t FlattenQSpline(std::vector<P2>* points, PointFx a, PointFx b, PointFx c);

}  // namespace kerno
