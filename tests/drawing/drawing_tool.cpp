// Runs one stage of the room over paths that are given as text and prints what comes out, for tests
// that measure it with other tools. A path is one line: "closed" or "open", its start, then its
// segments: "l x y", "a x y bulge", "q x y x y", "c x y x y x y", control points first.
//
//   drawing_tool flatten|arcs|weld|area TOLERANCE | offset TOLERANCE DISTANCE | tiles TOLERANCE
//   AROUND <paths

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "drawing/filled_area.h"
#include "drawing/fit_arcs.h"
#include "drawing/flatten.h"
#include "drawing/offset.h"
#include "drawing/tiled_union.h"
#include "drawing/weld.h"

namespace kerno {
namespace {

std::vector<Path> ReadPaths(std::istream& in) {
  std::vector<Path> paths;
  std::string line;
  while (std::getline(in, line)) {
    std::istringstream words(line);
    std::string word;
    Path path;
    words >> word >> path.start.x >> path.start.y;
    path.closed = word == "closed";
    while (words >> word) {
      Segment s;
      if (word == "q") {
        s.kind = SegmentKind::kQuadratic;
        words >> s.first.x >> s.first.y;
      } else if (word == "c") {
        s.kind = SegmentKind::kCubic;
        words >> s.first.x >> s.first.y >> s.second.x >> s.second.y;
      }
      words >> s.end.x >> s.end.y;
      if (word == "a") {
        s.kind = SegmentKind::kArc;
        words >> s.bulge;
      }
      path.segments.push_back(s);
    }
    paths.push_back(path);
  }
  return paths;
}

void Print(const Path& path) {
  std::cout << (path.closed ? "closed " : "open ") << path.start.x << ' ' << path.start.y;
  for (const Segment& s : path.segments) {
    std::cout << ' ' << "laqc"[static_cast<int>(s.kind)];
    if (s.kind == SegmentKind::kQuadratic || s.kind == SegmentKind::kCubic) {
      std::cout << ' ' << s.first.x << ' ' << s.first.y;
    }
    if (s.kind == SegmentKind::kCubic) std::cout << ' ' << s.second.x << ' ' << s.second.y;
    std::cout << ' ' << s.end.x << ' ' << s.end.y;
    if (s.kind == SegmentKind::kArc) std::cout << ' ' << s.bulge;
  }
  std::cout << '\n';
}

Path Chords(const Path& path, double tolerance) {
  std::vector<P2> points;
  FlattenPath(path, tolerance, &points);
  Path chords;
  chords.closed = path.closed;
  if (points.empty()) return chords;
  chords.start = points.front();
  if (path.closed) points.push_back(points.front());
  for (size_t i = 1; i < points.size(); ++i) {
    Segment chord;
    chord.end = points[i];
    chords.segments.push_back(chord);
  }
  return chords;
}

std::vector<Polygon> PolygonsOf(const ChordGrid& grid) {
  std::vector<Polygon> polygons(grid.PathCount());
  for (const Chord& chord : grid.Chords()) polygons[chord.path].push_back(chord.from);
  return polygons;
}

// In as many tiles as there can be.
void PrintTiledUnion(const std::vector<Path>& paths, double tolerance, int around) {
  const ChordGrid grid(paths, tolerance, ChordGrid::Closing::kAll);
  GridBox box;
  for (size_t i = 0; i < grid.PathCount(); ++i) Include(&box, grid.BoxOf(i));
  TilingRule rule;
  rule.around = around;
  rule.most_at_once = 0;
  rule.most_in_tile = 12;
  for (const Polygon& outline : TiledUnion(PolygonsOf(grid), box, rule)) {
    Path path;
    path.closed = true;
    path.start = grid.InPlane(outline.back());
    for (const GridPoint& p : outline) path.segments.push_back({.end = grid.InPlane(p)});
    Print(path);
  }
}

// What paths fill that touch each other, by windings and by the polygon library.
void PrintAreas(const std::vector<Path>& paths, double tolerance) {
  const ChordGrid grid(paths, tolerance, ChordGrid::Closing::kAll);
  std::vector<ChordContact> contacts;
  grid.ForEachContact([&](size_t a, size_t b, Contact) { contacts.push_back({a, b}); });
  const FilledArea filled = FilledAreas(grid, UnionRule{}).Of(contacts);
  const double square = grid.Unit() * grid.Unit();
  std::cout << filled.area * square << ' ' << filled.slack * square << ' '
            << AreaOf(UnionOf(PolygonsOf(grid), FillRule::kNonZero)) * square << '\n';
}

// `more` is the distance of an offset, or how often others go around the plane.
int Run(const std::string& stage, double tolerance, double more) {
  std::cout.precision(17);
  const std::vector<Path> paths = ReadPaths(std::cin);
  if (stage == "weld") {
    for (const WeldedPath& welded : Weld(paths, tolerance).paths) Print(welded.path);
  } else if (stage == "area") {
    PrintAreas(paths, tolerance);
  } else if (stage == "tiles") {
    PrintTiledUnion(paths, tolerance, static_cast<int>(more));
  } else if (stage == "offset") {
    for (const Path& path : Offset(paths, more, tolerance).paths) Print(path);
  } else {
    for (const Path& path : paths) {
      Print(stage == "arcs" ? FitArcs(path, tolerance) : Chords(path, tolerance));
    }
  }
  return 0;
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  if (argc < 3) return 2;
  return kerno::Run(argv[1], std::strtod(argv[2], nullptr),
                    argc > 3 ? std::strtod(argv[3], nullptr) : 0);
}
