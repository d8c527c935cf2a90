// The native outline form of the desktop's graphics interface, written from points of a rasteriser.
//
// A buffer holds one TTPOLYGONHEADER per contour (cb, dwType = 24, pfxStart: 16 bytes), each with
// its TTPOLYCURVE records (wType, cpfx, then cpfx POINTFX of 8 bytes). Coordinates point up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kerno {

// What a point of an outline is: on the curve, or the control point of a quadratic or (always two
// in a row) of a cubic piece.
enum class PointKind : uint8_t { kOn, kQuadratic, kCubic };

struct OutlinePoint {
  int64_t x = 0;  // 26.6
  int64_t y = 0;  // 26.6, up
  PointKind kind = PointKind::kOn;
};

// Contours one after the other; ends[i] is the index after the last point of contour i.
struct Outline {
  std::vector<OutlinePoint> points;
  std::vector<size_t> ends;
};

// Replaces every cubic piece by quadratic ones that stay within 1/16 unit of it, rounding of their
// control points to 26.6 included. The end points stay where they are.
Outline CubicsToQuadratics(Outline outline);

// Writes the buffer for an outline without cubic pieces. False, with an empty buffer, when a
// coordinate does not fit into 16.16.
[[nodiscard]] bool WriteNativeOutline(const Outline& outline, std::vector<std::byte>* buffer);

}  // namespace kerno
