#include "parts/shapes.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace kerno {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Writes down what it is given, a shape a word: its kind and its vertices by their indices.
class Recorder final : public ShapeSink {
 public:
  std::string text() const { return text_.str(); }

 private:
  void BeginPart(const PartsElement& part) override { text_ << "part" << part.pen.color << " "; }
  void BeginPool(std::span<const P3> pool) override { text_ << "pool" << pool.size() << " "; }
  void Polyline(const Vertices& points) override { Put("lines", points); }
  void Face(const Vertices& loop) override { Put("face", loop); }
  void Points(const Vertices& points) override { Put("points", points); }
  void Circle(const CircleShape& c) override { text_ << "circle" << c.centre.x << " "; }
  void Arc(const ArcShape& a) override {
    text_ << "arc" << a.start_angle << "-" << a.end_angle << "/" << a.Sweep() << " ";
  }
  void PlainText(const P3& at, std::u16string_view text) override {
    text_ << "plain" << at.x << ":" << text.size() << " ";
  }
  void SetText(const P3& at, const TextLine& line, WritingDirection direction) override {
    text_ << (direction == WritingDirection::kVertical ? "vertical" : "horizontal") << at.x << ":"
          << line.text.size() << " ";
  }
  void Put(const char* kind, const Vertices& points) {
    text_ << kind;
    for (size_t i = 0; i < points.size(); ++i) text_ << (i ? "," : "") << points[i].x;
    text_ << " ";
  }

  std::ostringstream text_;
};

// A part of ten vertices whose x is their index; the last three are out of one rule or another.
PartsElement TenVertices() {
  PartsElement part;
  for (int i = 0; i < 7; ++i) part.vertices.Append({1.0 * i, 0, 0});
  part.vertices.Append({7, kNan, 0});
  part.vertices.Append({8, 1e200, 0});
  part.vertices.Append({9, 0, kInfinity});
  return part;
}

struct Visited {
  std::string text;
  size_t left_out;
};
Visited Visit(const PartsElement& part, ShapeOrder order = ShapeOrder::kPainting,
              const VertexRule& rule = kFiniteXYZ) {
  PartsA model;
  model.parts.push_back(part);
  Recorder sink;
  const size_t left_out = VisitShapes(model, order, rule, &sink);
  return {sink.text().substr(13), left_out};  // after "part0 pool10 "
}

TEST(Shapes, LinesThatFollowOneAnotherAreOnePolyline) {
  const struct {
    std::vector<LineItem> lines;
    const char* polylines;
    size_t left_out;
  } cases[] = {
      {{{0, 1}, {1, 2}, {2, 0}, {0, 3}}, "lines0,1,2,0,3 ", 0},
      {{{0, 1}, {2, 3}, {3, 2}, {1, 2}}, "lines0,1 lines2,3,2 lines1,2 ", 0},
      {{{0, 1}, {1, 99}, {99, 2}, {2, 3}}, "lines0,1 lines2,3 ", 2},
      {{{-1, -1}, {7, 0}, {0, 7}, {0, 1}, {1, 2}}, "lines0,1,2 ", 3},
  };
  for (const auto& c : cases) {
    PartsElement part = TenVertices();
    part.lines.items = c.lines;
    const Visited visited = Visit(part);
    EXPECT_EQ(visited.text, c.polylines);
    EXPECT_EQ(visited.left_out, c.left_out) << c.polylines;
  }
}

// Each element names one of the vertices that a rule may not take, and some that are not there.
TEST(Shapes, ElementsWithVerticesThatTheRuleDoesNotTakeAreCountedOnce) {
  const struct {
    VertexRule rule;
    std::string shown;
  } rules[] = {{kFiniteXY, "89"}, {kFiniteXYZ, "8"}, {kPicturedXY, "9"}, {kPicturedXYZ, ""}};
  constexpr int kMax = std::numeric_limits<int32_t>::max();
  for (const auto& [rule, shown] : rules) {
    PartsElement part = TenVertices();
    std::string expected[4];
    for (const int32_t bad : {7, 8, 9, 10, -1, kMax}) {
      part.edges.items.push_back({.start = 0, .end = bad});
      part.circles.items.push_back({bad, 1, 0, -1, -1});
      part.circles.items.push_back({0, 1, 0, 1, bad == -1 ? -2 : bad});
      part.texts.items.push_back({bad, u"x"});
      part.vertical_texts.items.emplace_back().anchor = bad;
      part.faces[2].items.push_back({0, {0, bad, bad}, {}, 0});
      part.point_sets.items.push_back({0, 0, 0, {bad, 1, bad}});
    }
    Visited visited = Visit(part, ShapeOrder::kPainting, rule);
    EXPECT_EQ(visited.left_out, (6 - shown.size()) * 8) << shown;
    std::istringstream words(visited.text);
    size_t shapes = 0;
    for (std::string word; words >> word;) shapes += word != "points1";
    EXPECT_EQ(shapes, shown.size() * 7) << shown;
    part = TenVertices();
    part.circles.items = {{0, kNan, 0, -1, -1}, {1, 1e150, 0, -1, -1}, {2, -3, 0, -1, -1}};
    visited = Visit(part, ShapeOrder::kPainting, rule);
    EXPECT_EQ(visited.text, rule.most > 1e100 ? "circle1 circle2 " : "circle2 ");
  }
}

TEST(Shapes, ArcsRunCounterClockwiseBetweenTheirEnds) {
  const std::vector<P3> points = {{0, 0}, {5, 0}, {0, 5}, {-5, 0}, {0, -5}, {3, -0.0}};
  const struct {
    int32_t first, second;
    const char* shape;
  } cases[] = {
      {4, 1, "arc270-0/90 "}, {1, 5, "arc0-0/360 "}, {1, 1, "circle0 "}, {2, -1, "circle0 "}};
  for (const auto& c : cases) {
    PartsElement part;
    for (const P3& p : points) part.vertices.Append(p);
    part.circles.items = {{0, 5, 0, c.first, c.second}};
    Recorder sink;
    EXPECT_EQ(VisitShapes(part, ShapeOrder::kPainting, kFiniteXYZ, &sink), 0u);
    EXPECT_EQ(sink.text(), std::string("part0 pool6 ") + c.shape);
  }
}

}  // namespace
}  // namespace kerno
