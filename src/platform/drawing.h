// Drawing: pens, brushes, polygons, lines and text on a device context, and a bitmap to draw on.
//
// Device units are pixels: x to the right, y down, (0, 0) the upper left corner of the upper left
// pixel. Coordinates with fractions are device units; whole coordinates are logical units, of which
// SetLogicalUnits says how many make a pixel. Colours hold red in the low byte, then green, then
// blue. A point with a coordinate that is not finite is passed over; coordinates past kMaxDevice
// are taken as kMaxDevice.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/device_context.h"

namespace kerno {

inline constexpr double kMaxDevice = 1e7;

struct IntPoint {
  int32_t x = 0, y = 0;
};

struct DevicePoint {
  double x = 0, y = 0;
};

enum class PenStyle : int32_t {
  kSolid = 0,       // PS_SOLID
  kDash = 1,        // PS_DASH
  kDot = 2,         // PS_DOT
  kDashDot = 3,     // PS_DASHDOT
  kDashDotDot = 4,  // PS_DASHDOTDOT
  kNull = 5,        // PS_NULL: draws nothing
};

// LOGPEN, with the length of the dash pattern besides.
struct PenData {
  PenStyle style = PenStyle::kSolid;
  double width = 0;  // pixels; 0 is a hairline of one pixel
  uint32_t color = 0;
  double pattern_length = 0;  // pixels of one dash pattern; 0 leaves it to the style
  bool operator==(const PenData&) const = default;
};

enum class BrushStyle : int32_t {
  kSolid = 0,    // BS_SOLID
  kHollow = 1,   // BS_NULL: fills nothing
  kHatched = 2,  // BS_HATCHED
};

// LOGBRUSH. `hatch` counts only when hatched: 0 horizontal, 1 vertical, 2 falling to the right,
// 3 rising to the right, 4 cross, 5 diagonal cross (the HS_ values); any other fills solidly.
struct BrushData {
  BrushStyle style = BrushStyle::kSolid;
  uint32_t color = 0xFFFFFF;
  int32_t hatch = 0;
  bool operator==(const BrushData&) const = default;
};

// How polygons of one call that lie over each other are filled (SetPolyFillMode).
enum class FillMode : int32_t {
  kAlternate = 1,  // ALTERNATE: every second one is a hole
  kWinding = 2,    // WINDING: holes are only where opposite turns cancel
};

class Pen {
 public:
  virtual ~Pen() = default;
  virtual const PenData& Data() const = 0;  // GetObject
};

class Brush {
 public:
  virtual ~Brush() = default;
  virtual const BrushData& Data() const = 0;  // GetObject
};

// A context that draws. One pen and one brush are selected at a time; until the first selection
// they are the stock ones: a black hairline and a white solid brush. Outlines are drawn by the pen
// over what the brush filled; polygons are filled by the alternate rule until another is set, so
// that a contour within another is a hole. Drawing operations answer false when the surface cannot
// take them.
class DrawingContext : public DeviceContext {
 public:
  virtual std::unique_ptr<Pen> CreatePenIndirect(const PenData& data) = 0;
  virtual std::unique_ptr<Brush> CreateBrushIndirect(const BrushData& data) = 0;

  // Each selects an object (null: the stock one) and returns the one selected before (null: the
  // stock one). The caller keeps ownership and destroys an object only after another is selected.
  virtual Pen* SelectPen(Pen* pen) = 0;
  virtual Brush* SelectBrush(Brush* brush) = 0;

  // GetCurrentObject: the selected object, the stock one included; never null.
  virtual const Pen* CurrentPen() const = 0;
  virtual const Brush* CurrentBrush() const = 0;

  // The colour of TextOut, black at first; returns the one before.
  virtual uint32_t SetTextColor(uint32_t color) = 0;

  // The rule by which polygons are filled; returns the one before.
  virtual FillMode SetFillMode(FillMode mode) = 0;

  // How many logical units make a pixel, 1 at first and never below; returns the number before.
  // Fonts, PolyPolygon and TextOut count in logical units, everything else in pixels.
  virtual int32_t SetLogicalUnits(int32_t per_pixel) = 0;

  // Polygons in whole logical units, filled and outlined together. counts[i] points belong to
  // polygon i; a polygon is closed whether or not its last point repeats the first.
  virtual bool PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) = 0;

  // The same with fractions, in pixels.
  virtual bool DrawPolygons(std::span<const DevicePoint> points,
                            std::span<const uint32_t> counts) = 0;

  // A line through the points; one whose last point equals its first is joined there.
  virtual bool DrawPolyline(std::span<const DevicePoint> points) = 0;

  // A filled and outlined circle.
  virtual bool DrawCircle(DevicePoint centre, double radius) = 0;

  // The part of a circle from the angle `start` over `sweep` further, in degrees, both growing
  // counter-clockwise as seen; drawn by the pen alone.
  virtual bool DrawArc(DevicePoint centre, double radius, double start, double sweep) = 0;
};

// The lengths of dash, gap, dash, gap ... in pixels; empty for a solid pen. Without a pattern
// length of its own a style has the lengths of the system's cosmetic pens, widened with the pen.
std::vector<double> DashLengths(const PenData& pen);

// Points on a circle or an arc, in drawing order, so close that no chord strays more than 1/16 unit
// from the curve (4,096 steps at most). Angles as in DrawArc; a full turn repeats the first point.
std::vector<DevicePoint> ArcPoints(DevicePoint centre, double radius, double start, double sweep);

// An off-screen bitmap in memory.
class BitmapSurface {
 public:
  virtual ~BitmapSurface() = default;
  virtual DrawingContext& Context() = 0;
  virtual int Width() const = 0;
  virtual int Height() const = 0;

  // Rows from the top down without padding, 4 bytes a pixel: blue, green, red, 255.
  virtual std::span<const uint8_t> Pixels() const = 0;
};

inline constexpr int kMaxSurfaceSide = 32767;

// An anti-aliased surface filled with `background`. Null when a side is not 1 to kMaxSurfaceSide or
// memory does not suffice.
std::unique_ptr<BitmapSurface> CreateBitmapSurface(int width, int height, uint32_t background);

// A quicker one, whose pictures are the same on every system: for the screen.
std::unique_ptr<BitmapSurface> CreatePreviewSurface(int width, int height, uint32_t background);

}  // namespace kerno
