#include "ui/qt/painter_context.h"

#include <QFontMetricsF>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

class PainterPen final : public Pen {
 public:
  explicit PainterPen(const PenData& data) : data_(data) {}
  const PenData& Data() const override { return data_; }

 private:
  PenData data_;
};

class PainterBrush final : public Brush {
 public:
  explicit PainterBrush(const BrushData& data) : data_(data) {}
  const BrushData& Data() const override { return data_; }

 private:
  BrushData data_;
};

bool IsFinite(const DevicePoint& p) {
  return std::isfinite(p.x) && std::isfinite(p.y);
}

QPointF ToPoint(const DevicePoint& p) {
  return {std::clamp(p.x, -kMaxDevice, kMaxDevice), std::clamp(p.y, -kMaxDevice, kMaxDevice)};
}

// Appends a line through the points that are finite. Whether there were two at least.
bool AppendLine(std::span<const DevicePoint> points, QPainterPath* path) {
  size_t count = 0;
  for (const DevicePoint& p : points) {
    if (!IsFinite(p)) continue;
    if (count++ == 0) {
      path->moveTo(ToPoint(p));
    } else {
      path->lineTo(ToPoint(p));
    }
  }
  return count >= 2;
}

Qt::BrushStyle HatchStyle(int32_t hatch) {
  static constexpr Qt::BrushStyle kStyles[] = {Qt::HorPattern,   Qt::VerPattern,
                                               Qt::FDiagPattern, Qt::BDiagPattern,
                                               Qt::CrossPattern, Qt::DiagCrossPattern};
  return hatch >= 0 && hatch < 6 ? kStyles[hatch] : Qt::SolidPattern;
}

QPen ToQPen(const PenData& data) {
  if (data.style == PenStyle::kNull) return QPen(Qt::NoPen);
  QPen pen(ToQColor(data.color));
  // A hairline is as thin as a line can be and still be seen on every density.
  const double width = data.width > 0 ? data.width : 1;
  pen.setWidthF(width);
  pen.setJoinStyle(Qt::RoundJoin);
  pen.setCapStyle(Qt::FlatCap);
  const std::vector<double> dashes = DashLengths(data);
  if (!dashes.empty()) {
    QList<qreal> pattern;
    for (const double length : dashes) pattern.append(std::max(length / width, 0.01));
    pen.setDashPattern(pattern);
  }
  return pen;
}

}  // namespace

PainterContext::PainterContext(QPainter& painter, DeviceContext& fonts)
    : painter_(painter),
      fonts_(fonts),
      stock_pen_(std::make_unique<PainterPen>(PenData{})),
      stock_brush_(std::make_unique<PainterBrush>(BrushData{})) {
  painter_.setRenderHint(QPainter::Antialiasing);
}

std::unique_ptr<Font> PainterContext::CreateFontIndirect(const LogFont& wanted) {
  return fonts_.CreateFontIndirect(wanted);
}

std::unique_ptr<Pen> PainterContext::CreatePenIndirect(const PenData& data) {
  return std::make_unique<PainterPen>(data);
}

std::unique_ptr<Brush> PainterContext::CreateBrushIndirect(const BrushData& data) {
  return std::make_unique<PainterBrush>(data);
}

Pen* PainterContext::SelectPen(Pen* pen) {
  return std::exchange(pen_, pen);
}

Brush* PainterContext::SelectBrush(Brush* brush) {
  return std::exchange(brush_, brush);
}

const Pen* PainterContext::CurrentPen() const {
  return pen_ ? pen_ : stock_pen_.get();
}

const Brush* PainterContext::CurrentBrush() const {
  return brush_ ? brush_ : stock_brush_.get();
}

uint32_t PainterContext::SetTextColor(uint32_t color) {
  return std::exchange(text_color_, color);
}

FillMode PainterContext::SetFillMode(FillMode mode) {
  return std::exchange(fill_mode_, mode);
}

int32_t PainterContext::SetLogicalUnits(int32_t per_pixel) {
  return std::exchange(units_per_pixel_, std::max(per_pixel, 1));
}

void PainterContext::Paint(const QPainterPath& path) {
  const BrushData& brush = CurrentBrush()->Data();
  if (brush.style != BrushStyle::kHollow) {
    const bool hatched = brush.style == BrushStyle::kHatched;
    painter_.fillPath(
        path, QBrush(ToQColor(brush.color), hatched ? HatchStyle(brush.hatch) : Qt::SolidPattern));
  }
  if (CurrentPen()->Data().style != PenStyle::kNull) {
    painter_.strokePath(path, ToQPen(CurrentPen()->Data()));
  }
}

bool PainterContext::PolyPolygon(std::span<const IntPoint> points,
                                 std::span<const int32_t> counts) {
  std::vector<DevicePoint> pixels;
  pixels.reserve(points.size());
  for (const IntPoint& p : points) {
    pixels.push_back(
        {static_cast<double>(p.x) / units_per_pixel_, static_cast<double>(p.y) / units_per_pixel_});
  }
  std::vector<uint32_t> sizes;
  sizes.reserve(counts.size());
  for (const int32_t count : counts) {
    if (count < 0) return false;
    sizes.push_back(static_cast<uint32_t>(count));
  }
  return DrawPolygons(pixels, sizes);
}

bool PainterContext::DrawPolygons(std::span<const DevicePoint> points,
                                  std::span<const uint32_t> counts) {
  QPainterPath path;
  path.setFillRule(fill_mode_ == FillMode::kWinding ? Qt::WindingFill : Qt::OddEvenFill);
  path.reserve(static_cast<int>(std::min<size_t>(points.size() + counts.size(), 1u << 28)));
  size_t first = 0;
  for (const uint32_t count : counts) {
    if (count > points.size() - first) return false;
    if (AppendLine(points.subspan(first, count), &path)) path.closeSubpath();
    first += count;
  }
  Paint(path);
  return true;
}

bool PainterContext::DrawPolyline(std::span<const DevicePoint> points) {
  QPainterPath path;
  if (!AppendLine(points, &path)) return true;
  const DevicePoint& first = points.front();
  const DevicePoint& last = points.back();
  if (points.size() > 2 && first.x == last.x && first.y == last.y) path.closeSubpath();
  painter_.strokePath(path, ToQPen(CurrentPen()->Data()));
  return true;
}

bool PainterContext::DrawCircle(DevicePoint centre, double radius) {
  if (!IsFinite(centre) || !std::isfinite(radius)) return true;
  QPainterPath path;
  const double r = std::min(std::fabs(radius), kMaxDevice);
  path.addEllipse(ToPoint(centre), r, r);
  Paint(path);
  return true;
}

bool PainterContext::DrawArc(DevicePoint centre, double radius, double start, double sweep) {
  return DrawPolyline(ArcPoints(centre, radius, start, sweep));
}

bool PainterContext::TextOut(int32_t x, int32_t y, std::u16string_view text) {
  TextMetrics metrics;
  (void)fonts_.GetTextMetrics(&metrics);
  const double height = static_cast<double>(metrics.tmHeight) / units_per_pixel_;
  QFont font = painter_.font();
  if (const Font* selected = fonts_.SelectedFont()) {
    font.setFamily(ToQString(selected->FaceName()));
  }
  font.setPixelSize(std::max(1, static_cast<int>(height)));
  painter_.setFont(font);
  painter_.setPen(ToQColor(text_color_));
  const double ascent = QFontMetricsF(font).ascent();
  painter_.drawText(QPointF(static_cast<double>(x) / units_per_pixel_,
                            static_cast<double>(y) / units_per_pixel_ + ascent),
                    ToQString(text));
  return true;
}

}  // namespace kerno
