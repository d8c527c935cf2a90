#include "parts/ipx_arrays.h"

#include <algorithm>
#include <string_view>

#include "parts/ipx_elements.h"

namespace kerno::ipx {
namespace {

void WriteHeader(Writer* out, size_t count, int32_t id, std::string_view tag) {
  out->Integer(static_cast<int64_t>(count));
  out->Integer(id);
  out->Raw(tag);
  out->EndLine();
}

// The count of elements as it is stated; never negative.
size_t ReadHeader(Lines* lines, int32_t* id) {
  const std::string_view line = lines->Next();
  const char* stop = nullptr;
  const int64_t count = LeadingInteger(line, &stop);
  const std::string_view rest = line.substr(static_cast<size_t>(stop - line.data()));
  Tokens tokens(rest);
  if (!rest.empty() && !IsSeparator(rest.front())) tokens.Skip();
  *id = 0;
  tokens.Integer(id);
  return static_cast<size_t>(std::max<int64_t>(count, 0));
}

// Room for the elements that are stated, but for no more than the lines left can be.
size_t Room(size_t count, const Lines& lines) {
  constexpr size_t kShortestLine = 6;
  return std::min(count, lines.unread() / kShortestLine + 1);
}

template <class Item>
void WriteItems(Writer* out, const ElementArray<Item>& array, std::string_view tag) {
  WriteHeader(out, array.items.size(), array.id, tag);
  for (const Item& item : array.items) {
    Write(out, item);
    out->EndLine();
  }
}

template <class Item>
void ReadItems(Lines* lines, ElementArray<Item>* array) {
  const size_t count = ReadHeader(lines, &array->id);
  array->items.clear();
  array->items.reserve(Room(count, *lines));
  for (size_t i = 0; i < count && !lines->AtEnd(); ++i) {
    Tokens line(lines->Next());
    Read(&line, &array->items.emplace_back());
  }
}

}  // namespace

// The tag of the vertex pool alone ends in an underscore, which is meant.
void Write(Writer* out, const P3A& array) {
  WriteHeader(out, array.size(), array.id, ";\tP3A_\t");
  for (const P3& point : array) {
    Write(out, point);
    out->EndLine();
  }
}

void Read(Lines* lines, P3A* array) {
  const size_t count = ReadHeader(lines, &array->id);
  array->Clear();
  array->Reserve(Room(count, *lines));
  for (size_t i = 0; i < count && !lines->AtEnd(); ++i) {
    Tokens line(lines->Next());
    P3 point;
    Read(&line, &point);
    array->Append(point);
  }
}

void Write(Writer* out, const TextA& array) {
  WriteItems(out, array, ";\tTextA\t");
}
void Read(Lines* lines, TextA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const LineA& array) {
  WriteItems(out, array, ";\tLineA\t");
}
void Read(Lines* lines, LineA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const CircleA& array) {
  WriteItems(out, array, ";\tCircleA\t");
}
void Read(Lines* lines, CircleA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const FaceA& array) {
  WriteItems(out, array, ";\tFaceA\t");
}
void Read(Lines* lines, FaceA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const EdgeA& array) {
  WriteItems(out, array, ";\tEdgeA\t");
}
void Read(Lines* lines, EdgeA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const PointA& array) {
  WriteItems(out, array, ";\tPointA\t");
}
void Read(Lines* lines, PointA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const TextHA& array) {
  WriteItems(out, array, ";\tTextHA\t");
}
void Read(Lines* lines, TextHA* array) {
  ReadItems(lines, array);
}

void Write(Writer* out, const TextVA& array) {
  WriteItems(out, array, ";\tTextVA\t");
}
void Read(Lines* lines, TextVA* array) {
  ReadItems(lines, array);
}

}  // namespace kerno::ipx
