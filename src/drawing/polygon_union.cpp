#include "drawing/polygon_union.h"

#include <polyclipping/clipper.hpp>

namespace kerno {

std::vector<Polygon> UnionOf(const std::vector<Polygon>& polygons, FillRule rule) {
  ClipperLib::Clipper clipper;
  clipper.PreserveCollinear(true);
  ClipperLib::Path path;
  for (const Polygon& polygon : polygons) {
    path.clear();
    for (const GridPoint& p : polygon) path.emplace_back(p.x, p.y);
    clipper.AddPath(path, ClipperLib::ptSubject, true);
  }
  const auto fill = rule == FillRule::kNonZero ? ClipperLib::pftNonZero : ClipperLib::pftPositive;
  ClipperLib::Paths outlines;
  clipper.Execute(ClipperLib::ctUnion, outlines, fill, fill);
  std::vector<Polygon> result;
  for (const ClipperLib::Path& outline : outlines) {
    Polygon& polygon = result.emplace_back();
    for (const ClipperLib::IntPoint& p : outline) {
      polygon.push_back({static_cast<int32_t>(p.X), static_cast<int32_t>(p.Y)});
    }
  }
  return result;
}

}  // namespace kerno
