// The element kinds of a part. Vertices are zero-based indices into the part's vertex pool.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "drawing/geometry.h"

namespace kerno {

// A set of vertices with three attributes that are carried, not interpreted.
struct PointSet {
  int32_t attribute_a = -1;
  int32_t attribute_b = 0;
  int32_t attribute_c = -1;
  std::vector<int32_t> vertices;
};

// Height of a text that says none, in model units: the usual lettering of drawings.
inline constexpr double kDefaultTextHeight = 2.5;

struct TextItem {
  int32_t anchor = -1;
  std::u16string text;
};

// A line of text set in a face. Lengths are in model units, angles in degrees; the model carries
// any number. Pictures and SVG take the magnitude of a height below 0, DXF kDefaultTextHeight.
struct TextLine {
  int32_t anchor = -1;
  std::u16string text;
  double height = 0;         // of the letters; 0: kDefaultTextHeight
  double width = 0;          // of an average letter; 0: the face's own
  double rotation = 0;       // counter-clockwise about the anchor
  double oblique = 0;        // slant of the letters
  std::u16string face_name;  // empty: the setting's face for the writing direction
  int32_t code = 0;          // carried
  std::vector<P2> outline;   // carried
};

struct LineItem {
  int32_t start = -1;
  int32_t end = -1;
};

// A circle or, when both further vertices differ from -1 and from each other, the arc that runs
// counter-clockwise from the first to the second.
struct CircleItem {
  int32_t centre = -1;
  double radius = 0;
  int32_t attribute = 0;
  int32_t first = -1;
  int32_t second = -1;
};

struct FaceItem {
  int32_t attribute = 0;
  std::vector<int32_t> vertices;  // the loop, in order
  std::vector<int32_t> parallel;  // as long as the loop, or empty
  int32_t code = 0;
};

struct EdgeItem {
  int32_t start = -1;
  int32_t end = -1;
  int32_t mark = 45;  // Classic: unlike its neighbours not -1, files hold the code of "-"
  std::array<int32_t, 4> carried = {-1, -1, 0, -1};
};

// An array of elements with the identifier of its header line.
template <class Item>
struct ElementArray {
  int32_t id = 0;
  std::vector<Item> items;
};

using PointA = ElementArray<PointSet>;
using TextA = ElementArray<TextItem>;
using LineA = ElementArray<LineItem>;
using CircleA = ElementArray<CircleItem>;
using FaceA = ElementArray<FaceItem>;
using EdgeA = ElementArray<EdgeItem>;
// The same elements; the arrays differ in the direction of writing.
struct TextHA : ElementArray<TextLine> {};
struct TextVA : ElementArray<TextLine> {};

}  // namespace kerno
