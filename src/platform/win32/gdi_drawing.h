// Drawing through the graphics device interface.
//
// The interface draws in whole pixels: the context works on a device context that is `scale` times
// finer than the surface that it stands for, so that edges come out smooth when the surface is
// made of it. What lies far from the surface is cut off before: the interface counts in few digits.
#pragma once

#include <span>
#include <utility>
#include <vector>

#include "platform/surface_context.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class GdiDrawingContext final : public SurfaceContext {
 public:
  // Draws on `dc`, which outlives it; `width` and `height` in pixels of the surface.
  GdiDrawingContext(HDC dc, int scale, int width, int height);
  GdiDrawingContext(const GdiDrawingContext&) = delete;
  GdiDrawingContext& operator=(const GdiDrawingContext&) = delete;

  bool DrawPolygons(std::span<const DevicePoint> points, std::span<const uint32_t> counts) override;
  bool DrawPolyline(std::span<const DevicePoint> points) override;

  // Whether something was drawn since the last call.
  bool TakeDrawn() { return std::exchange(drawn_, false); }

 private:
  void BeginPath() override;
  void MoveTo(DevicePoint to) override;
  void LineTo(DevicePoint to) override;
  void CurveTo(DevicePoint from, DevicePoint control, DevicePoint to) override;
  void CloseFigure() override;
  bool FillPath(uint32_t color) override;

  double Far() const;
  POINT ToFine(DevicePoint point) const;
  HPEN MakePen(double length) const;
  bool FillPolygons(const std::vector<POINT>& points, const std::vector<INT>& counts);
  bool OutlinePolygons(const std::vector<POINT>& points, const std::vector<INT>& counts);
  bool DrawPiece(const std::vector<DevicePoint>& points);
  void FillWithPattern(const BrushData& brush);

  HDC dc_;
  int scale_;
  int width_;
  int height_;
  bool drawn_ = true;
};

}  // namespace kerno
