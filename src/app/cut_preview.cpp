#include "app/cut_preview.h"

#include <algorithm>
#include <cmath>

namespace kerno {
namespace {

constexpr double kSnap = 6;   // frame pixels within which a node draws a click to it
constexpr double kCross = 6;  // half a cross at an end of what is measured
constexpr double kMeasureWidth = 1.5;

Extent3 PictureExtent(const CutDrawing* drawing) {
  const Box2 box = drawing ? PictureOf(drawing->drawing) : Box2{};
  if (!(box.min.x <= box.max.x)) return {};
  return {{box.min.x, box.min.y, 0}, {box.max.x, box.max.y, 0}};
}

}  // namespace

void CutPreview::ShowFrame() {
  model_.SetFrame(std::max(1.0, width_ - Edge()), std::max(1.0, height_ - Edge()));
}

void CutPreview::SetFrame(double width, double height, double density) {
  width_ = width;
  height_ = height;
  density_ = density;
  ShowFrame();
}

void CutPreview::SetDrawing(std::shared_ptr<const CutDrawing> drawing, const DrawingStyle& style) {
  drawing_ = std::move(drawing);
  if (drawing_) unit_ = drawing_->drawing.unit;
  painter_.SetDrawing(drawing_ ? &drawing_->drawing : nullptr, style);
  model_.SetDrawing(PictureExtent(drawing_.get()));
}

void CutPreview::SetRulers(bool shown) {
  if (shows_rulers_ == shown) return;
  shows_rulers_ = shown;
  ShowFrame();
}

void CutPreview::ZoomAt(double x, double y, double steps) {
  model_.ZoomAt(x - Edge(), y - Edge(), steps);
}

void CutPreview::ZoomBy(double steps) {
  model_.ZoomAt(model_.width() / 2, model_.height() / 2, steps);
}

double CutPreview::UnitsPerMillimetre() const {
  return unit_ == LengthUnit::kInch ? 1 / kMillimetresPerInch : 1;
}

void CutPreview::ShowTrueSize(double pixels_per_mm) {
  model_.ShowScale(pixels_per_mm / UnitsPerMillimetre(), model_.width() / 2, model_.height() / 2);
}

double CutPreview::Percent(double pixels_per_mm) const {
  return 100 * PixelsPerUnit(model_.fit()) * UnitsPerMillimetre() / pixels_per_mm;
}

P2 CutPreview::InFrame(const P2& in_drawing) const {
  return model_.fit().Apply(in_drawing) + P2{Edge(), Edge()};
}

P2 CutPreview::InDrawing(double x, double y) const {
  const Affine& fit = model_.fit();
  return {(x - Edge() - fit.to.x) / fit.xx, (y - Edge() - fit.to.y) / fit.yy};
}

P2 CutPreview::SnappedAt(double x, double y) const {
  const P2 at = InDrawing(x, y);
  return drawing_ ? NearestNode(drawing_->drawing, at, kSnap / PixelsPerUnit(model_.fit())) : at;
}

void CutPreview::MeasureClick(double x, double y) {
  const P2 at = SnappedAt(x, y);
  if (!measure_ || measure_->ended) {
    measure_ = {at, at, false};
  } else {
    measure_->to = at;
    measure_->ended = true;
  }
}

bool CutPreview::MeasureMove(double x, double y) {
  if (!measure_ || measure_->ended) return false;
  measure_->to = SnappedAt(x, y);
  return true;
}

std::u16string CutPreview::MeasuredText() const {
  return measure_ ? DistanceText(*measure_, unit_) : std::u16string();
}

bool CutPreview::PointAt(double x, double y, P2* in_drawing) const {
  if (!drawing_ || x < Edge() || y < Edge() || x >= width_ || y >= height_) return false;
  *in_drawing = InDrawing(x, y);
  return true;
}

std::u16string CutPreview::PointText(double x, double y) const {
  P2 at;
  return PointAt(x, y, &at) ? kerno::PointText(at, unit_) : std::u16string();
}

// A line with a cross at each end.
void CutPreview::PaintMeasure(DrawingContext& dc, const Affine& fit,
                              const PreviewInks& inks) const {
  const auto pen = dc.CreatePenIndirect({.width = kMeasureWidth * density_, .color = inks.measure});
  Pen* const before = dc.SelectPen(pen.get());
  const DevicePoint ends[] = {Placed(fit, measure_->from), Placed(fit, measure_->to)};
  dc.DrawPolyline(ends);
  const double arm = kCross * density_;
  for (const DevicePoint& end : ends) {
    const DevicePoint across[] = {{end.x - arm, end.y}, {end.x + arm, end.y}};
    const DevicePoint down[] = {{end.x, end.y - arm}, {end.x, end.y + arm}};
    dc.DrawPolyline(across);
    dc.DrawPolyline(down);
  }
  dc.SelectPen(before);
}

std::unique_ptr<BitmapSurface> CutPreview::Paint(const PreviewInks& inks) {
  const auto pixels = [&](double length) {
    return static_cast<int>(std::lround(length * density_));
  };
  auto surface = CreatePreviewSurface(pixels(width_), pixels(height_), inks.paper);
  if (!surface) return nullptr;
  DrawingContext& dc = surface->Context();
  const double scale = PixelsPerUnit(model_.fit()) * density_;
  const P2 origin = InFrame({}) * density_;
  const Affine fit = FlippedY(scale, origin);
  const double width = surface->Width(), height = surface->Height();
  const RulerFrame frame = {width, height, density_, fit, unit_};
  if (shows_grid_) PaintGrid(dc, frame, inks);
  painter_.Paint(dc, {fit, width, height, density_}, look_, inks);
  if (measure_) PaintMeasure(dc, fit, inks);
  if (shows_rulers_) PaintRulers(dc, frame, inks);
  return surface;
}

}  // namespace kerno
