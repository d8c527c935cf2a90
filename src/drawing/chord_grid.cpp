#include "drawing/chord_grid.h"

#include <algorithm>

#include "drawing/measures.h"

namespace kerno {
namespace {

// Units across all paths.
constexpr double kGridReach = 1 << 29;
constexpr double kUnitsInTolerance = 256;
constexpr double kFinestShareOfPath = 1.0 / 512;

bool IsFinite(const Path& path) {
  const auto finite = [](const P2& p) { return std::isfinite(p.x) && std::isfinite(p.y); };
  return finite(path.start) && std::ranges::all_of(path.segments, [&](const Segment& s) {
           return finite(s.end) && finite(s.first) && finite(s.second) && std::isfinite(s.bulge);
         });
}

// The least power of two that is not below a positive number.
double PowerOfTwoFrom(double value) {
  int exponent = 0;
  const double fraction = std::frexp(value, &exponent);
  return std::ldexp(1.0, fraction == 0.5 ? exponent - 1 : exponent);
}

// Into so many parts of equal parameter.
int PartsOf(const Piece& piece, double tolerance) {
  constexpr double kMost = 1 << 16;
  double parts = 1;
  if (piece.segment.kind == SegmentKind::kArc) {
    const double radius = RadiusOf(piece);
    const double bulge = std::fabs(piece.segment.bulge);
    // A chord that covers the quarter tangent q strays by about 2 r q^2; near the middle of a long
    // arc it covers more than at its ends.
    if (bulge > 0) parts = bulge * SquareRoot(2 * radius / tolerance) + 2 * bulge;
  } else {
    const Polynomial c = PolynomialOf(piece);
    const double bend = std::max(Length(c.d2), Length(c.d2 + c.d3 * 3));
    parts = SquareRoot(bend / (4 * tolerance));
  }
  return static_cast<int>(std::ceil(std::clamp(parts, 1.0, kMost)));
}

// With horizontal and vertical exchanged for a ray upwards.
int CrossingOfRay(const Chord& c, const GridPoint& p, bool upwards) {
  const int32_t from = upwards ? c.from.x : c.from.y;
  const int32_t to = upwards ? c.to.x : c.to.y;
  const int32_t at = upwards ? p.x : p.y;
  if ((from <= at) == (to <= at)) return 0;
  const int64_t side = Side(c.from, c.to, p);
  // A ray to the right is crossed upwards by chords with the point on their left; one upwards is
  // crossed from right to left by them.
  const bool forwards = upwards ? to <= at : from <= at;
  if (forwards) return side > 0 ? 1 : 0;
  return side < 0 ? -1 : 0;
}

bool IsBetween(const GridPoint& a, const GridPoint& b, const GridPoint& p) {
  return std::min(a.x, b.x) <= p.x && p.x <= std::max(a.x, b.x) && std::min(a.y, b.y) <= p.y &&
         p.y <= std::max(a.y, b.y);
}

int SignOf(int64_t value) {
  return value > 0 ? 1 : value < 0 ? -1 : 0;
}

// The quadrants that a chord's direction belongs to, a bit each. Chords in a row that share one
// make a chain that turns by less than half a circle and meets itself nowhere.
uint8_t QuadrantsOf(const Chord& chord) {
  const bool right = chord.to.x >= chord.from.x, left = chord.to.x <= chord.from.x;
  const bool up = chord.to.y >= chord.from.y, down = chord.to.y <= chord.from.y;
  return static_cast<uint8_t>((right && up ? 1 : 0) | (left && up ? 2 : 0) |
                              (right && down ? 4 : 0) | (left && down ? 8 : 0));
}

}  // namespace

Contact ContactOf(const Chord& a, const Chord& b) {
  const int b_from = SignOf(Side(a.from, a.to, b.from)), b_to = SignOf(Side(a.from, a.to, b.to));
  if (b_from * b_to > 0) return Contact::kNone;
  const int a_from = SignOf(Side(b.from, b.to, a.from)), a_to = SignOf(Side(b.from, b.to, a.to));
  if (a_from * a_to > 0) return Contact::kNone;
  if (b_from * b_to < 0 && a_from * a_to < 0) return Contact::kCross;
  const bool touch = (b_from == 0 && IsBetween(a.from, a.to, b.from)) ||
                     (b_to == 0 && IsBetween(a.from, a.to, b.to)) ||
                     (a_from == 0 && IsBetween(b.from, b.to, a.from)) ||
                     (a_to == 0 && IsBetween(b.from, b.to, a.to));
  return touch ? Contact::kTouch : Contact::kNone;
}

ChordGrid::ChordGrid(std::span<const Path> paths, double tolerance, Closing closing,
                     std::span<const Path> beside)
    : tolerance_(tolerance) {
  Box2 all;
  std::vector<Box2> boxes;
  size_t segments = 0;
  for (const Path& path : paths) {
    segments += path.segments.size();
    boxes.push_back(IsFinite(path) ? kerno::BoxOf(path) : Box2{});
    Include(&all, boxes.back());
  }
  for (const Path& path : beside) {
    if (IsFinite(path)) Include(&all, kerno::BoxOf(path));
  }
  constexpr size_t kUsualParts = 6;
  pieces_.reserve(segments);
  chords_.reserve(segments * kUsualParts);
  const double size = std::max(all.Width(), all.Height());
  if (size > 0) {
    origin_ = Midpoint(all.min, all.max);
    unit_ =
        PowerOfTwoFrom(std::max(size / kGridReach, std::min(tolerance, size) / kUnitsInTolerance));
    per_unit_ = 1 / unit_;
  }
  for (size_t i = 0; i < paths.size(); ++i) {
    const double path_size = std::max(boxes[i].Width(), boxes[i].Height());
    const size_t first = chords_.size();
    if (path_size > 0) Add(paths[i], std::min(tolerance, path_size * kFinestShareOfPath));
    if (chords_.size() > first && !(chords_.back().to == chords_[first].from) &&
        closing == Closing::kAll) {
      Piece closing_line = {InPlane(chords_.back().to), {}};
      closing_line.segment.end = InPlane(chords_[first].from);
      pieces_.push_back(closing_line);
      chords_.push_back({chords_.back().to, chords_[first].from, static_cast<uint32_t>(i),
                         static_cast<uint32_t>(pieces_.size() - 1), 0, 1});
    }
    chords_begin_.push_back(chords_.size());
  }
  MeasureBoxes();
}

void ChordGrid::Add(const Path& path, double tolerance) {
  const auto index = static_cast<uint32_t>(chords_begin_.size() - 1);
  GridPoint at = OnGrid(path.start);
  P2 start = path.start;
  for (const Segment& segment : path.segments) {
    const Piece piece = {start, segment};
    start = segment.end;
    if (IsPoint(piece)) continue;
    const auto piece_index = static_cast<uint32_t>(pieces_.size());
    pieces_.push_back(piece);
    const int parts = PartsOf(piece, tolerance);
    const bool is_arc = segment.kind == SegmentKind::kArc;
    const Polynomial curve = is_arc ? Polynomial{} : PolynomialOf(piece);
    double from = 0;
    for (int i = 1; i <= parts; ++i) {
      const double to = i == parts ? 1 : static_cast<double>(i) / parts;
      const GridPoint next = OnGrid(i == parts ? segment.end
                                    : is_arc   ? PointAt(piece, to)
                                               : PointAt(curve, to));
      if (next == at) continue;
      chords_.push_back({at, next, index, piece_index, from, to});
      at = next;
      from = to;
    }
  }
}

GridPoint ChordGrid::OnGrid(const P2& p) const {
  // The unit is a power of two: its inverse is exact. Coordinates are below 2^30 on the grid, so
  // that whole numbers above 0 come out of adding 2^31 and half a unit.
  constexpr double kLift = 2147483648.5;
  const auto whole = [](double value) {
    return static_cast<int32_t>(static_cast<int64_t>(value + kLift) - int64_t{2147483648});
  };
  return {whole((p.x - origin_.x) * per_unit_), whole((p.y - origin_.y) * per_unit_)};
}

void ChordGrid::MeasureBoxes() {
  std::vector<GridBox> boxes;
  std::vector<uint8_t> ways;
  boxes.reserve(chords_.size());
  ways.reserve(chords_.size());
  path_boxes_.resize(PathCount());
  // Paths take turns with the bits, so that no chain goes on from one into the next.
  int shift = 0;
  for (const Chord& chord : chords_) {
    if (!boxes.empty() && (&chord)[-1].path != chord.path) shift = 4 - shift;
    boxes.push_back(kerno::BoxOf(chord));
    ways.push_back(static_cast<uint8_t>(QuadrantsOf(chord) << shift));
    Include(&path_boxes_[chord.path], boxes.back());
  }
  boxes_ = BoxTree(std::move(boxes), std::move(ways));
}

size_t ChordGrid::ChordBefore(size_t chord) const {
  const uint32_t path = chords_[chord].path;
  return (chord == chords_begin_[path] ? chords_begin_[path + 1] : chord) - 1;
}

size_t ChordGrid::ChordAfter(size_t chord) const {
  const uint32_t path = chords_[chord].path;
  return chord + 1 == chords_begin_[path + 1] ? chords_begin_[path] : chord + 1;
}

Contact ChordGrid::ContactBetween(size_t i, size_t j) const {
  const Chord& a = chords_[i];
  const Chord& b = chords_[j];
  const Contact contact = ContactOf(a, b);
  if (contact != Contact::kTouch || a.path != b.path) return contact;
  const bool a_then_b = a.to == b.from && ChordAfter(i) == j;
  const bool b_then_a = b.to == a.from && ChordAfter(j) == i;
  if (!a_then_b && !b_then_a) return contact;
  // Neighbours: more than the common end where the path turns back on itself.
  if (Side(a.from, a.to, b_then_a ? b.from : b.to) != 0) return Contact::kNone;
  const int64_t ahead = (int64_t{a.to.x} - a.from.x) * (int64_t{b.to.x} - b.from.x) +
                        (int64_t{a.to.y} - a.from.y) * (int64_t{b.to.y} - b.from.y);
  return ahead < 0 ? contact : Contact::kNone;
}

int ChordGrid::Winding(size_t path, const GridPoint& p) const {
  const GridBox& box = path_boxes_[path];
  GridBox ray = {p, p};
  if (!box.Overlaps(ray)) return 0;
  // Along the shorter side, which few chords cross.
  const bool upwards = box.IsWide();
  (upwards ? ray.max.y : ray.max.x) = GridBox::kMost;
  int winding = 0;
  boxes_.ForEachNear(ray, chords_begin_[path], chords_begin_[path + 1],
                     [&](size_t i) { winding += CrossingOfRay(chords_[i], p, upwards); });
  return winding;
}

double ChordGrid::TwiceArea(size_t path) const {
  double area = 0;
  const size_t first = chords_begin_[path];
  for (size_t i = first; i < chords_begin_[path + 1]; ++i) {
    area += static_cast<double>(Side(chords_[first].from, chords_[i].from, chords_[i].to));
  }
  return area;
}

}  // namespace kerno
