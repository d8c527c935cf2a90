#include "app/number_strokes.h"

#include <span>
#include <string>

#include "base/number_text.h"

namespace kerno {
namespace {

constexpr double kAdvance = 0.9;  // heights from digit to digit
constexpr double kWide = 0.6, kHalf = 0.5, kHigh = 1;

// The corners of a digit's strokes one after the other, each with whether the pen is lifted before.
struct Corner {
  double x, y;
  bool lifted = false;
};
constexpr Corner kZero[] = {{0, 0}, {kWide, 0}, {kWide, kHigh}, {0, kHigh}, {0, 0}};
constexpr Corner kOne[] = {{0.1, 0.75}, {0.35, kHigh}, {0.35, 0}};
constexpr Corner kTwo[] = {{0, kHigh}, {kWide, kHigh}, {kWide, kHalf},
                           {0, kHalf}, {0, 0},         {kWide, 0}};
constexpr Corner kThree[] = {{0, kHigh}, {kWide, kHigh},   {kWide, 0},
                             {0, 0},     {0, kHalf, true}, {kWide, kHalf}};
constexpr Corner kFour[] = {
    {0, kHigh}, {0, kHalf}, {kWide, kHalf}, {kWide, kHigh, true}, {kWide, 0}};
constexpr Corner kFive[] = {{kWide, kHigh}, {0, kHigh}, {0, kHalf},
                            {kWide, kHalf}, {kWide, 0}, {0, 0}};
constexpr Corner kSix[] = {{kWide, kHigh}, {0, kHigh},     {0, 0},
                           {kWide, 0},     {kWide, kHalf}, {0, kHalf}};
constexpr Corner kSeven[] = {{0, kHigh}, {kWide, kHigh}, {0.2, 0}};
constexpr Corner kEight[] = {{0, 0}, {kWide, 0},       {kWide, kHigh}, {0, kHigh},
                             {0, 0}, {0, kHalf, true}, {kWide, kHalf}};
constexpr Corner kNine[] = {{0, 0},     {kWide, 0}, {kWide, kHigh},
                            {0, kHigh}, {0, kHalf}, {kWide, kHalf}};
constexpr Corner kMinus[] = {{0, kHalf}, {kHalf, kHalf}};
constexpr Corner kPoint[] = {{0.1, 0}, {0.1, 0.1}};
constexpr double kPointAdvance = 0.4;
constexpr std::span<const Corner> kDigits[] = {kZero, kOne, kTwo,   kThree, kFour,
                                               kFive, kSix, kSeven, kEight, kNine};

std::span<const Corner> CornersOf(char figure) {
  if (figure == '-') return kMinus;
  if (figure == '.') return kPoint;
  if (figure < '0' || figure > '9') return {};
  return kDigits[figure - '0'];
}

void AddStrokes(char figure, double left, double height, Shape* shape) {
  const std::span<const Corner> corners = CornersOf(figure);
  for (const Corner& corner : corners) {
    const P2 p = P2{left + corner.x, corner.y} * height;
    if (&corner == corners.data() || corner.lifted) {
      Path& path = shape->emplace_back().path;
      path.start = p;
      path.closed = false;
    } else {
      shape->back().path.segments.push_back({SegmentKind::kLine, p});
    }
  }
}

}  // namespace

Shape FigureStrokes(char figure, double height) {
  Shape shape;
  AddStrokes(figure, 0, height, &shape);
  return shape;
}

double FigureAdvance(char figure, double height) {
  return (figure == '.' ? kPointAdvance : kAdvance) * height;
}

Shape NumberStrokes(int64_t number, double height) {
  std::string digits;
  AppendInteger(&digits, number);
  Shape shape;
  double left = 0;
  for (const char digit : digits) {
    if (digit < '0' || digit > '9') continue;
    AddStrokes(digit, left, height, &shape);
    left += kAdvance;
  }
  return shape;
}

double NumberWidth(int64_t number, double height) {
  std::string digits;
  AppendInteger(&digits, number);
  return (kAdvance * static_cast<double>(digits.size() - 1) + kWide) * height;
}

}  // namespace kerno
