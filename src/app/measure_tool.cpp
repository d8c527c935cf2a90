#include "app/measure_tool.h"

#include <charconv>

#include "base/text.h"

namespace kerno {
namespace {

std::string Fixed(double value, LengthUnit unit) {
  const int decimals = unit == LengthUnit::kInch ? 4 : 3;
  char text[64];
  const std::to_chars_result end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
  if (end.ec != std::errc()) return "-";  // too long to be a length
  std::string number(text, end.ptr);
  const bool zero = number.find_first_not_of("-0.") == std::string::npos;
  return zero && number[0] == '-' ? number.substr(1) : number;
}

std::string_view NameOf(LengthUnit unit) {
  return unit == LengthUnit::kInch ? "in" : "mm";
}

// Whether the box, `reach` larger on each side, holds the point.
bool IsNear(const Box2& box, const P2& at, double reach) {
  return box.min.x - reach <= at.x && at.x <= box.max.x + reach && box.min.y - reach <= at.y &&
         at.y <= box.max.y + reach;
}

}  // namespace

std::u16string DistanceText(const Distance& distance, LengthUnit unit) {
  const P2 across = distance.Across();
  return Utf8ToUtf16Lossy(Fixed(distance.Length(), unit) + ' ' + std::string(NameOf(unit)) +
                          " (x " + Fixed(across.x, unit) + ", y " + Fixed(across.y, unit) + ')');
}

std::u16string PointText(const P2& point, LengthUnit unit) {
  return Utf8ToUtf16Lossy(Fixed(point.x, unit) + ", " + Fixed(point.y, unit) + ' ' +
                          std::string(NameOf(unit)));
}

P2 NearestNode(const Drawing& drawing, const P2& at, double reach) {
  std::vector<Box2> boxes(drawing.shapes.size());  // of the nodes
  for (size_t i = 0; i < boxes.size(); ++i) {
    for (const ShapePath& path : drawing.shapes[i]) {
      Include(&boxes[i], path.path.start);
      for (const Segment& segment : path.path.segments) Include(&boxes[i], segment.end);
    }
  }
  P2 nearest = at;
  double least = reach;
  for (const PlacedShape& placed : drawing.placed) {
    const P2 here = at - placed.at;
    if (!IsNear(boxes[placed.shape], here, reach)) continue;
    const auto look = [&](const P2& node) {
      const double distance = Length(node - here);
      if (distance > least) return;
      least = distance;
      nearest = node + placed.at;
    };
    for (const ShapePath& path : drawing.shapes[placed.shape]) {
      look(path.path.start);
      for (const Segment& segment : path.path.segments) look(segment.end);
    }
  }
  return nearest;
}

}  // namespace kerno
