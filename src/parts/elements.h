// The element kinds of a part. Vertices are zero-based indices into the part's vertex pool.
#pragma once

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

struct TextItem {
  int32_t anchor = -1;
  std::u16string text;
};

// A line of text set in a face. The numbers are carried; those who draw it read values[0] as the
// height, values[1] as the width (0: the face's own), values[2] as the rotation and values[3] as
// the oblique angle in degrees. An empty face name means the setting's face for the writing
// direction.
struct TextLine {
  int32_t anchor = -1;
  std::u16string text;
  double values[4] = {0, 0, 0, 0};
  std::u16string face_name;
  int32_t code = 0;
  std::vector<P2> outline;
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

// values[0] and values[1] are the end vertices.
struct EdgeItem {
  int32_t values[7] = {-1, -1, 45, -1, -1, 0, -1};  // 45, the code of "-", is meant
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
