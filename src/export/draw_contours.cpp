#include <algorithm>

#include "drawing/overlaps.h"
#include "export/draw_parts.h"
#include "export/point_run.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

// The polygons of a glyph, or of glyphs that overlap.
struct Figures {
  size_t first = 0, polygons = 0;  // of the counts
  size_t point = 0, points = 0;
  Box2 box;
};

// Polygons that share no pixel's worth of area are drawn one after the other, which is quicker;
// what overlaps is drawn together, so that it cancels out by the alternate rule.
class FigureDrawer {
 public:
  FigureDrawer(DrawingContext& dc, std::span<const DevicePoint> points,
               std::span<const uint32_t> counts)
      : dc_(dc), points_(points), counts_(counts) {}

  void Draw(const std::vector<Figures>& figures) {
    std::vector<Box2> boxes;
    boxes.reserve(figures.size());
    for (const Figures& figure : figures) boxes.push_back(figure.box);
    for (const std::vector<size_t>& group : Overlapping(boxes)) DrawGroup(figures, group);
  }

 private:
  void DrawGroup(const std::vector<Figures>& figures, const std::vector<size_t>& group) {
    together_.clear();
    together_counts_.clear();
    for (const size_t i : group) {
      const auto points = points_.subspan(figures[i].point, figures[i].points);
      const auto counts = counts_.subspan(figures[i].first, figures[i].polygons);
      if (group.size() == 1) {
        dc_.DrawPolygons(points, counts);
        return;
      }
      together_.insert(together_.end(), points.begin(), points.end());
      together_counts_.insert(together_counts_.end(), counts.begin(), counts.end());
    }
    dc_.DrawPolygons(together_, together_counts_);
  }

  DrawingContext& dc_;
  std::span<const DevicePoint> points_;
  std::span<const uint32_t> counts_;
  std::vector<DevicePoint> together_;
  std::vector<uint32_t> together_counts_;
};

}  // namespace

void DrawContours(DrawingContext& dc, const TextContours& contours, const Affine& fit,
                  const DrawOptions& options) {
  PointRun run(options.detail);
  std::vector<uint32_t> counts;
  counts.reserve(contours.size());
  std::vector<Figures> figures;
  size_t glyph = 0;
  std::vector<P2> room;
  for (size_t i = 0; i < contours.size(); ++i) {
    run.Begin();
    DevicePoint min, max;
    size_t pictured = 0;
    for (const P2& p : contours.Contour(i, &room)) {
      if (!kPicturedXY.Takes(P3{p.x, p.y})) continue;
      const DevicePoint placed = Placed(fit, p);
      if (pictured++ == 0) min = max = placed;
      min = {std::min(min.x, placed.x), std::min(min.y, placed.y)};
      max = {std::max(max.x, placed.x), std::max(max.y, placed.y)};
      run.Add(placed);
    }
    size_t kept = run.End();
    const bool is_flat = max.x - min.x < options.detail || max.y - min.y < options.detail;
    if (is_flat && pictured > 2) kept = run.EndAsBox(min, max);
    if (kept < 2) {
      run.DropLine();
    } else {
      if (figures.empty() || contours.GlyphOf(i) != glyph) {
        glyph = contours.GlyphOf(i);
        figures.push_back({.first = counts.size(), .point = run.points().size() - kept, .box = {}});
      }
      counts.push_back(static_cast<uint32_t>(kept));
      Figures& figure = figures.back();
      ++figure.polygons;
      figure.points += kept;
      Include(&figure.box, P2{min.x, min.y});
      Include(&figure.box, P2{max.x, max.y});
    }
  }
  FigureDrawer(dc, run.points(), counts).Draw(figures);
}

}  // namespace kerno
