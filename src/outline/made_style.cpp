#include "outline/made_style.h"

#include <cmath>
#include <utility>

#include "drawing/measures.h"
#include "drawing/offset.h"
#include "drawing/segment.h"
#include "drawing/weld.h"

namespace kerno {
namespace {

// Cubic curves in place of an arc, each of an eighth of a circle at most: there they stray from it
// by less than 5 millionths of its radius.
void AppendCubics(const Piece& arc, std::vector<Segment>* segments) {
  constexpr double kEighth = 0.19891236737965800;  // the tangent of a quarter of 45 degrees
  // The tangent of a sum of angles, as the platforms' own functions differ in the last digit.
  const double bulge = std::fabs(arc.segment.bulge) * (1 - 1e-9);
  int parts = 1;
  for (double gone = kEighth; gone < bulge && gone * kEighth < 1; ++parts) {
    gone = (gone + kEighth) / (1 - gone * kEighth);
  }
  for (int i = 0; i < parts; ++i) {
    const double from = static_cast<double>(i) / parts, to = static_cast<double>(i + 1) / parts;
    const Piece part = Between(arc, from, to);
    const double reach = 4.0 / 3 * std::fabs(part.segment.bulge) * RadiusOf(part);
    const P2 first = part.start + DirectionAt(part, 0) * reach;
    const P2 second = part.segment.end - DirectionAt(part, 1) * reach;
    segments->push_back({SegmentKind::kCubic, part.segment.end, first, second});
  }
}

// What is left of a counter that has all but closed: thinner, all over, than a share of the way
// that its outline went.
bool IsSpeck(const Path& path, double distance) {
  constexpr double kThin = 0.1;
  return 2 * std::fabs(SignedAreaOf(path)) < kThin * distance * LengthOf(path);
}

}  // namespace

std::vector<Path> Emboldened(const std::vector<Path>& paths, double distance, double tolerance) {
  std::vector<Path> welded;
  for (WeldedPath& path : Weld(paths, tolerance).paths) welded.push_back(std::move(path.path));
  std::vector<Path> moved = Offset(welded, distance, tolerance).paths;
  std::erase_if(moved, [&](const Path& path) { return IsSpeck(path, distance); });
  for (Path& path : moved) {
    std::vector<Segment> segments;
    for (const Piece& piece : PiecesOf(path)) {
      const bool curved = piece.segment.kind == SegmentKind::kArc && std::isfinite(RadiusOf(piece));
      if (curved) {
        AppendCubics(piece, &segments);
      } else {
        segments.push_back({.end = piece.segment.end});
      }
    }
    path.segments = std::move(segments);
  }
  return moved;
}

}  // namespace kerno
