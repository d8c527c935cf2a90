#include <algorithm>

#include "export/draw_parts.h"
#include "export/point_run.h"

namespace kerno {

void DrawContours(DrawingContext& dc, const GlyphContours& contours, const Fit& fit,
                  const DrawOptions& options) {
  PointRun run(options.detail);
  std::vector<uint32_t> counts;
  counts.reserve(contours.counts.size());
  size_t at = 0;
  for (uint32_t count : contours.counts) {
    const size_t end = std::min(contours.points.size(), at + count);
    run.Begin();
    for (; at < end; ++at) {
      const P2& p = contours.points[at];
      if (IsPictured(p.x) && IsPictured(p.y)) run.Add(fit.Apply(p));
    }
    const size_t kept = run.End();
    if (kept < 2) {
      run.DropLine();
    } else {
      counts.push_back(static_cast<uint32_t>(kept));
    }
  }
  dc.DrawPolygons(run.points(), counts);
}

}  // namespace kerno
