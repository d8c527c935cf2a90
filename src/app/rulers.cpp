#include "app/rulers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "app/number_strokes.h"
#include "base/number_text.h"
#include "export/fit.h"

namespace kerno {
namespace {

// In frame pixels.
constexpr double kLeastFigures = 56;  // from figure to figure
constexpr double kLeastMarks = 6;     // from mark to mark
constexpr double kLongMark = 9, kShortMark = 4;
constexpr double kFigureHeight = 8, kFigureGap = 3;
constexpr double kMostMarks = 20000;  // in sight; more say that the scale is no number

constexpr std::array<double, 3> kInDecade = {1, 2, 5};
constexpr int kFinestHalf = 7;  // an inch halved so often

double StepAt(LengthUnit unit, int i) {
  if (unit == LengthUnit::kInch && i < 0) return std::ldexp(1, i);
  const int decade = static_cast<int>(std::floor(i / 3.0));
  const double power = std::pow(10.0, std::abs(decade));
  const double digit = kInDecade[static_cast<size_t>(i - 3 * decade)];
  return decade < 0 ? digit / power : digit * power;
}

// Filled boxes of one colour.
class Boxes {
 public:
  void Add(double left, double top, double right, double bottom) {
    points_.insert(points_.end(), {{left, top}, {right, top}, {right, bottom}, {left, bottom}});
    counts_.push_back(4);
  }
  void Fill(DrawingContext& dc, Color color) {
    const auto pen = dc.CreatePenIndirect({.style = PenStyle::kNull});
    const auto brush = dc.CreateBrushIndirect({.color = color});
    Pen* const pen_before = dc.SelectPen(pen.get());
    Brush* const brush_before = dc.SelectBrush(brush.get());
    const FillMode mode_before = dc.SetFillMode(FillMode::kWinding);
    dc.DrawPolygons(points_, counts_);
    dc.SetFillMode(mode_before);
    dc.SelectPen(pen_before);
    dc.SelectBrush(brush_before);
  }

 private:
  std::vector<DevicePoint> points_;
  std::vector<uint32_t> counts_;
};

// One way through the picture: what is across for one ruler is down for the other.
struct Way {
  double length = 0;  // of the picture
  double scale = 1;   // pixels of a unit, below 0 where units grow against pixels
  double origin = 0;  // where 0 is

  double At(double value) const { return origin + value * scale; }
};

Way Across(const RulerFrame& frame) {
  return {frame.width, frame.fit.xx, frame.fit.Apply({0, 0}).x};
}
Way Down(const RulerFrame& frame) {
  return {frame.height, frame.fit.yy, frame.fit.Apply({0, 0}).y};
}

// Calls `visit` with each multiple of the step that lies in the picture, and with its pixel.
template <class Visit>
void EachStep(const Way& way, double step, const Visit& visit) {
  const double a = -way.origin / way.scale / step;
  const double b = (way.length - way.origin) / way.scale / step;
  const double first = std::ceil(std::min(a, b)), last = std::floor(std::max(a, b));
  if (!(last - first < kMostMarks)) return;
  for (double n = first; n <= last; ++n) visit(n * step, std::floor(way.At(n * step)));
}

RulerSteps StepsOf(const RulerFrame& frame) {
  return RulerStepsFor(frame.unit, PixelsPerUnit(frame.fit) / frame.density);
}

// Figures of whole pixels, so that they are sharp.
class FigurePen {
 public:
  FigurePen(DrawingContext& dc, Color color, double density)
      : dc_(dc),
        height_(2 * std::round(kFigureHeight * density / 2)),
        pen_(dc.CreatePenIndirect({.color = color})),
        before_(dc.SelectPen(pen_.get())) {}
  ~FigurePen() { dc_.SelectPen(before_); }
  FigurePen(const FigurePen&) = delete;
  FigurePen& operator=(const FigurePen&) = delete;

  // From the lower left corner of the first figure; upwards instead of to the right where `turned`.
  void Write(const std::string& figures, DevicePoint at, bool turned) {
    double left = 0;
    std::vector<DevicePoint> points;
    for (const char figure : figures) {
      for (const ShapePath& stroke : FigureStrokes(figure, height_)) {
        points.clear();
        const auto add = [&](const P2& p) {
          const double along = left + std::round(p.x);
          points.push_back(turned ? DevicePoint{at.x - p.y, at.y - along}
                                  : DevicePoint{at.x + along, at.y - p.y});
        };
        add(stroke.path.start);
        for (const Segment& segment : stroke.path.segments) add(segment.end);
        dc_.DrawPolyline(points);
      }
      left += std::round(FigureAdvance(figure, height_));
    }
  }

 private:
  DrawingContext& dc_;
  double height_;
  std::unique_ptr<Pen> pen_;
  Pen* before_;
};

}  // namespace

RulerSteps RulerStepsFor(LengthUnit unit, double pixels_per_unit) {
  RulerSteps steps = {1, 1};
  if (!(pixels_per_unit > 0) || !std::isfinite(pixels_per_unit)) return steps;
  int i = 3 * static_cast<int>(std::floor(std::log10(kLeastFigures / pixels_per_unit))) - 1;
  if (unit == LengthUnit::kInch) i = std::max(i, -kFinestHalf);
  while (StepAt(unit, i) * pixels_per_unit < kLeastFigures) ++i;
  steps.figures = steps.marks = StepAt(unit, i);
  for (int finer = i - 1; finer >= i - 4; --finer) {
    const double step = StepAt(unit, finer), times = steps.figures / step;
    if (step * pixels_per_unit < kLeastMarks) break;
    if (std::fabs(times - std::round(times)) < 1e-9) steps.marks = step;
  }
  return steps;
}

std::string RulerFigure(double value) {
  std::string text;
  AppendGeneral(&text, value == 0 ? 0 : value, 9);
  return text;
}

void PaintGrid(DrawingContext& dc, const RulerFrame& frame, const PreviewInks& inks) {
  const RulerSteps steps = StepsOf(frame);
  const auto paint = [&](double step, Color color) {
    Boxes lines;
    EachStep(Across(frame), step, [&](double, double x) { lines.Add(x, 0, x + 1, frame.height); });
    EachStep(Down(frame), step, [&](double, double y) { lines.Add(0, y, frame.width, y + 1); });
    lines.Fill(dc, color);
  };
  paint(steps.marks, inks.grid);
  paint(steps.figures, inks.grid_far);
  const double x = std::floor(Across(frame).At(0)), y = std::floor(Down(frame).At(0));
  Boxes axes;
  axes.Add(x, 0, x + 1, frame.height);
  axes.Add(0, y, frame.width, y + 1);
  axes.Fill(dc, inks.axis);
}

void PaintRulers(DrawingContext& dc, const RulerFrame& frame, const PreviewInks& inks) {
  const RulerSteps steps = StepsOf(frame);
  const double edge = std::round(kRulerWidth * frame.density);
  Boxes ground;
  ground.Add(0, 0, frame.width, edge);
  ground.Add(0, 0, edge, frame.height);
  ground.Fill(dc, inks.ruler);
  Boxes marks;
  marks.Add(edge - 1, edge - 1, frame.width, edge);
  marks.Add(edge - 1, edge - 1, edge, frame.height);
  const auto mark = [&](double step, double length) {
    const double from = edge - std::round(length * frame.density);
    EachStep(Across(frame), step, [&](double, double x) {
      if (x >= edge) marks.Add(x, from, x + 1, edge);
    });
    EachStep(Down(frame), step, [&](double, double y) {
      if (y >= edge) marks.Add(from, y, edge, y + 1);
    });
  };
  mark(steps.marks, kShortMark);
  mark(steps.figures, kLongMark);
  marks.Fill(dc, inks.ruler_ink);

  FigurePen figures(dc, inks.ruler_ink, frame.density);
  const double gap = std::round(kFigureGap * frame.density) + 0.5;
  const double foot = std::round((2 + kFigureHeight) * frame.density) + 0.5;
  EachStep(Across(frame), steps.figures, [&](double value, double x) {
    if (x >= edge) figures.Write(RulerFigure(value), {x + gap, foot}, false);
  });
  EachStep(Down(frame), steps.figures, [&](double value, double y) {
    if (y >= edge) figures.Write(RulerFigure(value), {foot, y - gap + 1}, true);
  });
  Boxes corner;  // over what reaches into it
  corner.Add(0, 0, edge - 1, edge - 1);
  corner.Fill(dc, inks.ruler);
}

}  // namespace kerno
