// The elements of a part and their arrays as lines of the parts file, and back: one list of fields
// for each kind serves both directions.
//
// A block is a header line of count, identifier and tag, then a line for each element. Reading
// looks at no tag; a count beyond the lines that are left is cut to them, a negative one is 0. A
// field that a line lacks stays at its default.
#pragma once

#include <algorithm>
#include <concepts>
#include <string_view>
#include <type_traits>

#include "parts/elements.h"
#include "parts/ipx_lexer.h"
#include "parts/parts.h"
#include "parts/vertex_pool.h"

namespace kerno::ipx {

// An element as it is written (constant) or read.
template <class Item, class Kind>
concept Of = std::same_as<std::remove_const_t<Item>, Kind>;

template <class Line>
void Fields(Line* line, Of<P3> auto& point) {
  line->Number(point.x);
  line->Number(point.y);
  line->Number(point.z);
}

template <class Line>
void Fields(Line* line, Of<TextItem> auto& item) {
  line->Integer(item.anchor);
  line->EscapedText(item.text);
}

template <class Line>
void Fields(Line* line, Of<LineItem> auto& item) {
  line->Integer(item.start);
  line->Integer(item.end);
}

template <class Line>
void Fields(Line* line, Of<CircleItem> auto& item) {
  line->Integer(item.centre);
  line->Number(item.radius);
  line->Integer(item.attribute);
  line->Integer(item.first);
  line->Integer(item.second);
}

template <class Line>
void Fields(Line* line, Of<FaceItem> auto& item) {
  // Classic: the count of the loop stands twice, files in the field have three counts.
  line->Count(item.vertices.size());
  line->Count(item.vertices.size());
  line->Count(item.parallel.size());
  line->List(item.vertices);
  line->List(item.parallel);
  line->Integer(item.attribute);
  line->Integer(item.code);
}

template <class Line>
void Fields(Line* line, Of<EdgeItem> auto& item) {
  line->Integer(item.start);
  line->Integer(item.end);
  line->Integer(item.mark);
  for (auto& value : item.carried) line->Integer(value);
}

template <class Line>
void Fields(Line* line, Of<PointSet> auto& item) {
  line->Integer(item.attribute_a);
  line->Integer(item.attribute_b);
  line->Integer(item.attribute_c);
  line->List(item.vertices);
}

template <class Line>
void Fields(Line* line, Of<TextLine> auto& item) {
  line->Integer(item.anchor);
  line->EscapedText(item.text);
  line->Number(item.height);
  line->Number(item.width);
  line->Number(item.rotation);
  line->Number(item.oblique);
  line->Text(item.face_name);
  line->Integer(item.code);
  line->Points(item.outline);
}

// Classic: the tag of the vertex pool alone ends in an underscore, files in the field have it so.
constexpr std::string_view TagOf(const P3A&) {
  return ";\tP3A_\t";
}
constexpr std::string_view TagOf(const TextA&) {
  return ";\tTextA\t";
}
constexpr std::string_view TagOf(const LineA&) {
  return ";\tLineA\t";
}
constexpr std::string_view TagOf(const CircleA&) {
  return ";\tCircleA\t";
}
constexpr std::string_view TagOf(const FaceA&) {
  return ";\tFaceA\t";
}
constexpr std::string_view TagOf(const EdgeA&) {
  return ";\tEdgeA\t";
}
constexpr std::string_view TagOf(const PointA&) {
  return ";\tPointA\t";
}
constexpr std::string_view TagOf(const TextHA&) {
  return ";\tTextHA\t";
}
constexpr std::string_view TagOf(const TextVA&) {
  return ";\tTextVA\t";
}

template <class Array>
concept IsArray = requires(const Array& array) {
  TagOf(array);
};

template <class Array>
void WriteItems(Writer* out, const Array& array, size_t count, const auto& items) {
  out->Count(count);
  out->Integer(array.id);
  out->Raw(TagOf(array));
  out->EndLine();
  for (const auto& item : items) {
    Fields(out, item);
    out->EndLine();
  }
}

inline void Write(Writer* out, const P3A& array) {
  WriteItems(out, array, array.size(), array);
}
template <IsArray Array>
void Write(Writer* out, const Array& array) {
  WriteItems(out, array, array.items.size(), array.items);
}

// The header line of a block. How many elements it states, but never less than 0.
size_t ReadBlockHeader(Lines* lines, int32_t* id);

// Room for the elements that are stated, but for no more than the lines left can be.
inline size_t RoomFor(size_t count, const Lines& lines) {
  constexpr size_t kShortestLine = 6;
  return std::min(count, lines.unread() / kShortestLine + 1);
}

inline void Read(Lines* lines, P3A* array) {
  const size_t count = ReadBlockHeader(lines, &array->id);
  array->Clear();
  array->Reserve(RoomFor(count, *lines));
  for (size_t i = 0; i < count && !lines->AtEnd(); ++i) {
    Tokens line(lines->Next());
    P3 point;
    Fields(&line, point);
    array->Append(point);
  }
}

template <IsArray Array>
void Read(Lines* lines, Array* array) {
  const size_t count = ReadBlockHeader(lines, &array->id);
  array->items.clear();
  array->items.reserve(RoomFor(count, *lines));
  for (size_t i = 0; i < count && !lines->AtEnd(); ++i) {
    Tokens line(lines->Next());
    Fields(&line, array->items.emplace_back());
  }
}

}  // namespace kerno::ipx
