#include "outline/draw_outline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "base/settings_table.h"

namespace kerno {
namespace {

// Towards zero; what no unit can hold becomes the nearest one that can, not-a-number 0.
int32_t WholeUnit(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kLow = std::numeric_limits<int32_t>::min();
  constexpr double kHigh = std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(std::clamp(value, kLow, kHigh));
}

IntPoint WholePoint(const P2& p) {
  return {WholeUnit(p.x), WholeUnit(p.y)};
}

// The polygons of one PolyPolygon call.
struct PolygonList {
  std::vector<IntPoint> points;
  std::vector<int32_t> counts;
};

// Draws with copies of the selected pen and brush, which it selects back at the end.
class CopiedObjects {
 public:
  explicit CopiedObjects(DrawingContext& dc)
      : dc_(dc),
        pen_(dc.CreatePenIndirect(dc.CurrentPen()->Data())),
        brush_(dc.CreateBrushIndirect(dc.CurrentBrush()->Data())),
        pen_before_(dc.SelectPen(pen_.get())),
        brush_before_(dc.SelectBrush(brush_.get())) {}
  ~CopiedObjects() {
    dc_.SelectPen(pen_before_);
    dc_.SelectBrush(brush_before_);
  }
  CopiedObjects(const CopiedObjects&) = delete;
  CopiedObjects& operator=(const CopiedObjects&) = delete;

 private:
  DrawingContext& dc_;
  std::unique_ptr<Pen> pen_;
  std::unique_ptr<Brush> brush_;
  Pen* pen_before_;
  Brush* brush_before_;
};

PolygonList WholePolygons(const GlyphContours& contours) {
  PolygonList list;
  list.points.reserve(contours.points.size());
  std::transform(contours.points.begin(), contours.points.end(), std::back_inserter(list.points),
                 WholePoint);
  list.counts.assign(contours.counts.begin(), contours.counts.end());
  return list;
}

// The per-contour path: each contour in an array of its own, as the conversion to parts keeps them.
std::vector<std::vector<P2>> SplitContours(const GlyphContours& contours) {
  std::vector<std::vector<P2>> split;
  split.reserve(contours.counts.size());
  size_t at = 0;
  for (uint32_t count : contours.counts) {
    const size_t end = std::min(contours.points.size(), at + count);
    split.emplace_back(contours.points.begin() + static_cast<ptrdiff_t>(at),
                       contours.points.begin() + static_cast<ptrdiff_t>(end));
    at = end;
  }
  return split;
}

PolygonList GatherContours(const std::vector<std::vector<P2>>& contours) {
  PolygonList list;
  for (const std::vector<P2>& contour : contours) {
    std::transform(contour.begin(), contour.end(), std::back_inserter(list.points), WholePoint);
    list.counts.push_back(static_cast<int32_t>(contour.size()));
  }
  return list;
}

bool IsTooLarge(const GlyphContours& contours) {
  return contours.points.size() > kMaxOutlinePoints || contours.counts.size() > kMaxOutlineContours;
}

// Whether the text is too large in letters `height` high as well.
bool IsTooLargeAt(DrawingContext& dc, TextRequest request, int32_t height) {
  const double smaller = static_cast<double>(height) / request.height;
  request.width = static_cast<int32_t>(std::ceil(request.width * smaller));
  request.height = height;
  GlyphContours contours;
  StringOutline(dc, request, &contours);
  return IsTooLarge(contours);
}

// In pixels, however fine the logical units are.
void DrawTooLarge(DrawingContext& dc) {
  const int32_t units = dc.SetLogicalUnits(1);
  dc.TextOut(0, 0, u"文字列を分割して指定してください");
  dc.SetLogicalUnits(units);
}

}  // namespace

OutlineDrawing DrawOutline(DrawingContext& dc, const TextRequest& request, int32_t own_height) {
  const bool one_by_one = Get(kOutlinesOneByOne);
  GlyphContours contours;
  StringOutline(dc, request, &contours);

  const CopiedObjects copies(dc);
  if (one_by_one) {
    const PolygonList list = GatherContours(SplitContours(contours));
    dc.PolyPolygon(list.points, list.counts);
    return OutlineDrawing::kDrawn;
  }
  const bool is_finer = own_height > 0 && own_height < request.height;
  if (IsTooLarge(contours) && (!is_finer || IsTooLargeAt(dc, request, own_height))) {
    DrawTooLarge(dc);
    return OutlineDrawing::kTooLarge;
  }
  const PolygonList list = WholePolygons(contours);
  dc.PolyPolygon(list.points, list.counts);
  return OutlineDrawing::kDrawn;
}

}  // namespace kerno
