// Welding a text whose every letter overlaps the next one against the polygon library's own union
// of the same chords; and how welding, fitting and ordering grow with the text.

#include <benchmark/benchmark.h>
#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <span>
#include <string>
#include <vector>

#include "drawing/chord_grid.h"
#include "drawing/cutting_order.h"
#include "drawing/fit_arcs.h"
#include "drawing/polygon_union.h"
#include "drawing/weld.h"
#include "ratio.h"

namespace kerno {
namespace {

constexpr double kTolerance = 0.01;
constexpr double kEm = 20;
constexpr size_t kLineLength = 100;

P2 PointOf(const FT_Vector& v) {
  return {static_cast<double>(v.x), static_cast<double>(v.y)};
}

void Append(void* to, const Segment& segment) {
  static_cast<std::vector<Path>*>(to)->back().segments.push_back(segment);
}

// The letter's own curves, in units of the font.
std::vector<Path> OutlineOf(FT_Face face, char letter) {
  std::vector<Path> paths;
  FT_Outline_Funcs functions = {};
  functions.move_to = [](const FT_Vector* start, void* to) {
    static_cast<std::vector<Path>*>(to)->push_back({PointOf(*start), {}, true});
    return 0;
  };
  functions.line_to = [](const FT_Vector* end, void* to) {
    Append(to, {SegmentKind::kLine, PointOf(*end), {}, {}, 0});
    return 0;
  };
  functions.conic_to = [](const FT_Vector* first, const FT_Vector* end, void* to) {
    Append(to, {SegmentKind::kQuadratic, PointOf(*end), PointOf(*first), {}, 0});
    return 0;
  };
  functions.cubic_to = [](const FT_Vector*, const FT_Vector*, const FT_Vector*, void*) {
    return 1;
  };
  const auto code = static_cast<FT_ULong>(letter);
  if (FT_Load_Char(face, code, FT_LOAD_NO_SCALE) == 0) {
    FT_Outline_Decompose(&face->glyph->outline, &functions, &paths);
  }
  return paths;
}

void Place(double scale, const P2& at, std::vector<Path>* paths) {
  const auto place = [&](P2* p) { *p = *p * scale + at; };
  for (Path& path : *paths) {
    place(&path.start);
    for (Segment& s : path.segments) {
      place(&s.end);
      place(&s.first);
      place(&s.second);
    }
  }
}

// Lines of letters, each as wide as `share` of its advance.
std::vector<Path> TextOf(int64_t letters, double share) {
  const std::string alphabet = "SphinxofblackquartzjudgemyvowPACK8boxes";
  std::vector<Path> text;
  FT_Library library = nullptr;
  FT_Face face = nullptr;
  if (FT_Init_FreeType(&library) != 0) return text;
  if (FT_New_Face(library, "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", 0, &face) == 0) {
    const double scale = kEm / face->units_per_EM;
    P2 at;
    for (size_t i = 0; i < static_cast<size_t>(letters); ++i) {
      if (i > 0 && i % kLineLength == 0) at = {0, at.y - 1.5 * kEm};
      std::vector<Path> letter = OutlineOf(face, alphabet[i % alphabet.size()]);
      Place(scale, at, &letter);
      text.insert(text.end(), letter.begin(), letter.end());
      at.x += static_cast<double>(face->glyph->advance.x) * scale * share;
    }
  }
  FT_Done_FreeType(library);
  return text;
}

constexpr double kOverlapping = 0.7;

std::vector<Polygon> PolygonsOf(const std::vector<Path>& text) {
  const ChordGrid grid(text, kTolerance * 0.125, ChordGrid::Closing::kAll);
  std::vector<Polygon> polygons(grid.PathCount());
  for (const Chord& chord : grid.Chords()) polygons[chord.path].push_back(chord.from);
  return polygons;
}

void LibraryUnion(benchmark::State& state) {
  const std::vector<Polygon> polygons = PolygonsOf(TextOf(state.range(0), kOverlapping));
  for (auto _ : state) benchmark::DoNotOptimize(UnionOf(polygons, FillRule::kNonZero));
}

void WeldText(benchmark::State& state) {
  const std::vector<Path> text = TextOf(state.range(0), kOverlapping);
  size_t left = 0;
  for (auto _ : state) left = Weld(text, kTolerance).paths.size();
  state.counters["outlines"] = static_cast<double>(left);
  state.counters["of"] = static_cast<double>(text.size());
}

void FitText(benchmark::State& state) {
  const std::vector<Path> text = TextOf(state.range(0), 1);
  for (auto _ : state) {
    for (const Path& path : text) benchmark::DoNotOptimize(FitArcs(path, kTolerance));
  }
}

void OrderText(benchmark::State& state) {
  const std::vector<Path> text = TextOf(state.range(0), 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(OrderForCutting(text, kTolerance, CutOrder::kInsideFirst));
  }
}

const bool registered = [] {
  const auto add = [](const std::string& stage, auto function) {
    benchmark::RegisterBenchmark(stage.c_str(), function)
        ->Unit(benchmark::kMillisecond)
        ->Arg(1000)
        ->Arg(10000);
    if (stage != "cut_union") DeclareRatio(stage + "/10000", stage + "/1000", 12);
  };
  add("cut_union", LibraryUnion);
  add("cut_weld", WeldText);
  add("cut_fit", FitText);
  add("cut_order", OrderText);
  DeclareRatio("cut_weld/1000", "cut_union/1000", 1.5);
  return true;
}();

}  // namespace
}  // namespace kerno
