#include "export/hatch.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <numbers>

#include "platform/drawing.h"

namespace kerno {
namespace {

constexpr std::array<std::string_view, 48> kNames = {
    "HS_HORIZONTAL", "HS_VERTICAL",   "HS_FDIAGONAL", "HS_BDIAGONAL",  "HS_CROSS",
    "HS_DIAGCROSS",  "HS_Diag_10",    "HS_Diag_12",   "HS_Diag_15",    "HS_Diag_17",
    "HS_Diag_20",    "HS_Diag_25",    "HS_Diag_30",   "HS_Circ__5",    "HS_Circ__7",
    "HS_Circ_10",    "HS_Circ_14",    "HS_Circ_20",   "HS_XCirc_2",    "HS_XCirc_B",
    "HS_XCirc_F",    "HS_XCirc_H",    "HS_XDotB",     "HS_XDotM",      "HS_XDotS",
    "HS_XRectB",     "HS_XRectH",     "HS_Sl__",      "HS_Sl______",   "HS_SlSl____",
    "HS_SlSlSl__",   "HS_SlDs",       "HS_SlDs____",  "HS_SlDsDs__",   "HS_SlDsSl__",
    "HS_SlSlDs__",   "HS_Ds__",       "HS_Ds______",  "HS_DsDs____",   "HS_DsDsDs__",
    "HS_DsSl____",   "HS_DsSlDs__",   "HS_DsSlSl__",  "PBH::HS_Solid", "PBH::HS_Hollow",
    "PBH::HS_Para",  "PBH::HS_Cross", "PBH::HS_Net"};

constexpr double kSystemPitch = 8;  // of the system's six styles
constexpr double kRowPitch = 4;     // of the styles made of rows
constexpr double kDash = 6;         // of a dashed row: a dash and a gap
constexpr double kDashGap = 3;
constexpr double kStagger = 16;  // cell of the staggered styles
constexpr double kLongestSide = 4096;
constexpr double kShortestSide = 64;
constexpr double kMostSteps = 1e5;  // of a pattern across a box, whatever box and unit are given

// Collects figures over a box.
class Pattern {
 public:
  Pattern(const Extent3& box, double unit) : box_(box), unit_(unit) {}

  void Rows(double pitch, double offset = 0) {
    ForEachStep(box_.min.y, box_.max.y, pitch, offset, [&](double y) {
      Add({box_.min.x, y}, {box_.max.x, y});
    });
  }
  void Columns(double pitch) {
    ForEachStep(box_.min.x, box_.max.x, pitch, 0, [&](double x) {
      Add({x, box_.min.y}, {x, box_.max.y});
    });
  }
  void DashedRows(double pitch, double offset) {
    ForEachStep(box_.min.y, box_.max.y, pitch, offset, [&](double y) {
      ForEachStep(box_.min.x - kDash * unit_, box_.max.x, kDash + kDashGap, 0, [&](double x) {
        const double from = std::max(x, box_.min.x);
        const double to = std::min(x + kDash * unit_, box_.max.x);
        if (from < to) Add({from, y}, {to, y});
      });
    });
  }
  // 45 degrees, rising to the right (y = x + c) or falling (y = c - x); `pitch` along an axis.
  void Diagonals(double pitch, bool rising) {
    const double low = rising ? box_.min.y - box_.max.x : box_.min.y + box_.min.x;
    const double high = rising ? box_.max.y - box_.min.x : box_.max.y + box_.max.x;
    ForEachStep(low, high, pitch, 0, [&](double c) {
      const double at_low_y = rising ? box_.min.y - c : c - box_.min.y;
      const double at_high_y = rising ? box_.max.y - c : c - box_.max.y;
      const double from = std::max(box_.min.x, std::min(at_low_y, at_high_y));
      const double to = std::min(box_.max.x, std::max(at_low_y, at_high_y));
      if (from >= to) return;
      if (rising) {
        Add({from, from + c}, {to, to + c});
      } else {
        Add({from, c - from}, {to, c - to});
      }
    });
  }
  // Calls visit(centre) for a grid of cells, every second row moved by half a cell when staggered.
  template <class Visit>
  void Cells(double pitch, double reach, bool staggered, Visit visit) {
    const double row = staggered ? pitch / 2 : pitch;
    ForEachStep(box_.min.y - reach * unit_, box_.max.y + reach * unit_, row, 0, [&](double y) {
      const bool odd = staggered && std::fmod(std::round(y / (row * unit_)), 2) != 0;
      ForEachStep(box_.min.x - reach * unit_, box_.max.x + reach * unit_, pitch,
                  odd ? pitch / 2 : 0, [&](double x) {
                    visit(P2{x, y});
                  });
    });
  }
  void Circle(const P2& centre, double radius, bool filled) {
    figures_.circles.push_back({centre, radius * unit_, filled});
  }
  void Rectangle(const P2& centre, double half_width, double half_height) {
    const double w = half_width * unit_;
    const double h = half_height * unit_;
    const P2 corners[] = {{centre.x - w, centre.y - h},
                          {centre.x + w, centre.y - h},
                          {centre.x + w, centre.y + h},
                          {centre.x - w, centre.y + h}};
    for (size_t i = 0; i < 4; ++i) Add(corners[i], corners[(i + 1) % 4]);
  }
  HatchFigures Take() { return std::move(figures_); }

 private:
  template <class Visit>
  void ForEachStep(double low, double high, double pitch, double offset, Visit visit) {
    const double step = pitch * unit_;
    const double start = offset * unit_;
    const double first = std::ceil((low - start) / step);
    const double last = std::floor((high - start) / step);
    // Counted apart: far from the origin the next step may be the same number.
    const double steps = std::min(last - first, kMostSteps);
    for (double i = 0; i <= steps; ++i) visit(start + (first + i) * step);
  }
  void Add(const P2& from, const P2& to) { figures_.lines.push_back({from, to}); }

  Extent3 box_;
  double unit_;
  HatchFigures figures_;
};

int NumberAtEnd(std::string_view name) {
  const size_t at = name.find_last_not_of("0123456789") + 1;
  int number = 1;
  std::from_chars(name.data() + at, name.data() + name.size(), number);
  return number;
}

// "HS_SlDs____": two letters a row, solid, dashed or blank.
void AddRows(std::string_view rows, Pattern* pattern) {
  const double period = static_cast<double>(rows.size()) / 2 * kRowPitch;
  for (size_t i = 0; i + 1 < rows.size(); i += 2) {
    const double offset = static_cast<double>(i) / 2 * kRowPitch;
    if (rows.substr(i, 2) == "Sl") pattern->Rows(period, offset);
    if (rows.substr(i, 2) == "Ds") pattern->DashedRows(period, offset);
  }
}

// The staggered styles: circles, dots and rectangles by the letter at the end.
void AddStaggered(std::string_view name, Pattern* pattern) {
  const char size = name.back();
  if (name.starts_with("HS_XRect")) {
    const double half = size == 'B' ? 6 : 3;
    pattern->Cells(kStagger, 6, true, [&](const P2& c) { pattern->Rectangle(c, half, half / 2); });
  } else if (name.starts_with("HS_XDot")) {
    const double radius = size == 'B' ? 3 : size == 'M' ? 2 : 1;
    pattern->Cells(kStagger, radius, true, [&](const P2& c) { pattern->Circle(c, radius, true); });
  } else {
    const double radius = size == 'H' ? 2.5 : 5;
    pattern->Cells(kStagger, radius, true, [&](const P2& c) {
      pattern->Circle(c, radius, size == 'F');
      if (size == '2') pattern->Circle(c, radius / 2, false);
    });
  }
}

void AddSystem(std::string_view name, Pattern* pattern) {
  const bool cross = name.ends_with("HS_CROSS") || name == "PBH::HS_Cross";
  const bool net = name == "HS_DIAGCROSS" || name == "PBH::HS_Net";
  if (name == "HS_HORIZONTAL" || name == "PBH::HS_Para" || cross) pattern->Rows(kSystemPitch);
  if (name == "HS_VERTICAL" || cross) pattern->Columns(kSystemPitch);
  if (name == "HS_FDIAGONAL" || net) pattern->Diagonals(kSystemPitch, false);
  if (name == "HS_BDIAGONAL" || net) pattern->Diagonals(kSystemPitch, true);
}

// The crossings of a line with the loops' edges, as fractions of the line, in order.
std::vector<double> Crossings(const HatchLine& line, std::span<const std::vector<P2>> loops) {
  std::vector<double> at;
  const P2 d = {line.to.x - line.from.x, line.to.y - line.from.y};
  for (const std::vector<P2>& loop : loops) {
    for (size_t i = 0; i < loop.size(); ++i) {
      const P2& a = loop[i];
      const P2& b = loop[i + 1 < loop.size() ? i + 1 : 0];
      // Sides of the line; half open, so that a vertex on the line counts once.
      const double side_a = d.x * (a.y - line.from.y) - d.y * (a.x - line.from.x);
      const double side_b = d.x * (b.y - line.from.y) - d.y * (b.x - line.from.x);
      if ((side_a <= 0) == (side_b <= 0)) continue;
      const double s = side_a / (side_a - side_b);
      const P2 hit = {a.x + s * (b.x - a.x), a.y + s * (b.y - a.y)};
      at.push_back(std::fabs(d.x) > std::fabs(d.y) ? (hit.x - line.from.x) / d.x
                                                   : (hit.y - line.from.y) / d.y);
    }
  }
  std::sort(at.begin(), at.end());
  return at;
}

}  // namespace

HatchKind FillKindOf(const BrushAttributes& brush) {
  if (brush.style == static_cast<int32_t>(BrushStyle::kHollow)) return HatchKind::kHollow;
  if (brush.style != static_cast<int32_t>(BrushStyle::kHatched)) return HatchKind::kSolid;
  return HatchKindOf(brush.hatch);
}

int32_t HatchCount() {
  return static_cast<int32_t>(kNames.size());
}

std::string_view HatchName(int32_t hatch) {
  if (hatch < 0 || hatch >= HatchCount()) return "HS_.....";
  return kNames[static_cast<size_t>(hatch)];
}

HatchKind HatchKindOf(int32_t hatch) {
  const std::string_view name = HatchName(hatch);
  if (name == "PBH::HS_Solid") return HatchKind::kSolid;
  if (name == "PBH::HS_Hollow") return HatchKind::kHollow;
  return HatchKind::kFigures;
}

double HatchUnit(const Extent3& drawing) {
  const double side = std::max(drawing.max.x - drawing.min.x, drawing.max.y - drawing.min.y);
  if (!(side > 0) || !std::isfinite(side)) return 1;
  if (side > kLongestSide) return std::exp2(std::ceil(std::log2(side / kLongestSide)));
  if (side < kShortestSide) return std::exp2(std::floor(std::log2(side / kShortestSide)));
  return 1;
}

HatchFigures HatchOver(int32_t hatch, const Extent3& box, double unit) {
  Pattern pattern(box, unit);
  if (HatchKindOf(hatch) != HatchKind::kFigures) return pattern.Take();
  const std::string_view name = HatchName(hatch);
  if (name.starts_with("HS_Diag_")) {
    pattern.Diagonals(NumberAtEnd(name), true);
  } else if (name.starts_with("HS_Circ_")) {
    const double diameter = NumberAtEnd(name);
    pattern.Cells(diameter * 1.5, diameter / 2, false,
                  [&](const P2& c) { pattern.Circle(c, diameter / 2, false); });
  } else if (name.starts_with("HS_X")) {
    AddStaggered(name, &pattern);
  } else if (name.starts_with("HS_Sl") || name.starts_with("HS_Ds")) {
    AddRows(name.substr(3), &pattern);
  } else if (name == "HS_.....") {
    pattern.Diagonals(kSystemPitch, true);
  } else {
    AddSystem(name, &pattern);
  }
  return pattern.Take();
}

std::vector<HatchLine> ClipToLoops(const HatchLine& line, std::span<const std::vector<P2>> loops) {
  std::vector<HatchLine> pieces;
  const std::vector<double> at = Crossings(line, loops);
  const P2 d = {line.to.x - line.from.x, line.to.y - line.from.y};
  for (size_t i = 0; i + 1 < at.size(); i += 2) {
    const double from = std::max(0.0, at[i]);
    const double to = std::min(1.0, at[i + 1]);
    if (!(from < to)) continue;
    pieces.push_back({{line.from.x + d.x * from, line.from.y + d.y * from},
                      {line.from.x + d.x * to, line.from.y + d.y * to}});
  }
  return pieces;
}

bool IsInside(const P2& point, std::span<const std::vector<P2>> loops) {
  const HatchLine ray = {point, {point.x + 1, point.y}};
  const std::vector<double> at = Crossings(ray, loops);
  return std::count_if(at.begin(), at.end(), [](double t) { return t > 0; }) % 2 != 0;
}

}  // namespace kerno
