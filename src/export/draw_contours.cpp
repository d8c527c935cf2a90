#include <algorithm>

#include "export/draw_parts.h"
#include "export/point_run.h"
#include "parts/shapes.h"

namespace kerno {

void DrawContours(DrawingContext& dc, const TextContours& contours, const Affine& fit,
                  const DrawOptions& options) {
  PointRun run(options.detail);
  std::vector<uint32_t> counts;
  counts.reserve(contours.size());
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
      counts.push_back(static_cast<uint32_t>(kept));
    }
  }
  dc.DrawPolygons(run.points(), counts);
}

}  // namespace kerno
