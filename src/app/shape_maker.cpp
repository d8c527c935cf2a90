#include "app/shape_maker.h"

#include <algorithm>
#include <utility>

#include "base/stop.h"
#include "drawing/cutting_order.h"
#include "drawing/fit_arcs.h"
#include "drawing/flatten.h"
#include "drawing/offset.h"
#include "drawing/strokes.h"
#include "drawing/weld.h"

namespace kerno {
namespace {

constexpr double kShare = 0.25;  // of the tolerance, for welding and for an offset

bool HasArcs(const Path& path) {
  return std::ranges::any_of(path.segments,
                             [](const Segment& s) { return s.kind == SegmentKind::kArc; });
}
bool HasCurves(const Path& path) {
  return std::ranges::any_of(path.segments, [](const Segment& s) {
    return s.kind == SegmentKind::kQuadratic || s.kind == SegmentKind::kCubic;
  });
}

Path InForm(Path path, const CutJob& job, double tolerance, bool again) {
  switch (job.curves) {
    case CurveForm::kArcs:
      return again ? FitArcsKeepingNodes(path, tolerance) : FitArcs(path, tolerance);
    case CurveForm::kLines: {
      std::vector<P2> corners;
      FlattenPath(path, tolerance, &corners);
      Path chords;
      if (corners.empty()) return chords;
      chords.start = corners[0];
      for (size_t i = 1; i < corners.size(); ++i) chords.segments.push_back({.end = corners[i]});
      chords.closed = path.closed;
      if (path.closed) chords.segments.push_back({.end = corners[0]});
      return chords;
    }
    case CurveForm::kCurves:
      break;
  }
  if (HasCurves(path) && HasArcs(path)) return WithoutArcs(path);
  return path;
}

// Only welded outlines tell what is outside, be it that of a single glyph.
bool IsWelded(const CutJob& job) {
  return job.weld != WeldScope::kNone || job.offset != 0;
}

// Welds, offsets and fits the outlines of one shape. The tolerance is shared out: welding and
// moving may take part of it, fitting the rest.
std::vector<Path> Formed(std::vector<Path> paths, const CutJob& job, double tolerance,
                         size_t* vanished) {
  double left = tolerance;
  if (IsWelded(job)) {
    WeldResult welded = Weld(paths, kShare * left);
    paths.clear();
    for (WeldedPath& path : welded.paths) paths.push_back(std::move(path.path));
  }
  if (job.offset != 0) {
    OffsetResult offset = Offset(paths, job.offset, kShare * left);
    *vanished = offset.vanished;
    paths = std::move(offset.paths);
    left -= kShare * left;
  }
  for (Path& path : paths) {
    StopIfAsked();
    path = InForm(std::move(path), job, left, tolerance < job.tolerance);
  }
  std::erase_if(paths, [](const Path& path) {
    return path.segments.empty() ||
           (path.segments.size() == 1 && path.segments[0].kind == SegmentKind::kLine);
  });
  return paths;
}

}  // namespace

void Count(const PathFaults& faults, ShapeNotes* notes) {
  notes->crossing = 2 * faults.crossing + faults.self_crossing;
  notes->touching = 2 * faults.touching + faults.self_touching;
}

bool MakeSameShapes(const CutJob& one, const CutJob& other) {
  return one.curves == other.curves && one.tolerance == other.tolerance && one.weld == other.weld &&
         one.offset == other.offset && one.order == other.order;
}

// Makes a shape of outlines, in the order in which it is cut. Contours that all but touch may cross
// when each is bent by the tolerance; these follow their curves more closely, and through all of
// their nodes.
Shape ShapeOfOutlines(std::vector<Path> outlines, const CutJob& job, ShapeNotes* notes) {
  std::erase_if(outlines, [](const Path& path) { return path.segments.empty(); });
  constexpr int kRounds = 4;
  constexpr double kCloser = 0.25;
  Shape shape;
  double tolerance = job.tolerance;
  for (int round = 0; round < kRounds; ++round, tolerance *= kCloser) {
    const std::vector<Path> paths = Formed(outlines, job, tolerance, &notes->vanished);
    const ChordGrid grid(paths, tolerance * 0.25, ChordGrid::Closing::kAll);
    Count(CheckPaths(paths, grid), notes);
    shape.clear();
    for (const CutStep& step : OrderForCutting(paths, grid, job.order)) {
      shape.push_back({PathOf(paths[step.path], step), static_cast<uint32_t>(step.depth)});
    }
    if (notes->crossing == 0 || !IsWelded(job)) break;
  }
  return shape;
}

Shape ShapeOfStrokes(std::vector<Path> strokes, const CutJob& job) {
  for (Path& path : strokes) path = InForm(std::move(path), job, job.tolerance, false);
  std::erase_if(strokes, [](const Path& path) { return path.segments.empty(); });
  if (job.order != CutOrder::kText) strokes = WithShortWays(std::move(strokes));
  Shape shape;
  for (Path& path : strokes) shape.push_back({std::move(path), 0});
  return shape;
}

}  // namespace kerno
