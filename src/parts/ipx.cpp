#include "parts/ipx.h"

#include "parts/ipx_arrays.h"
#include "parts/ipx_elements.h"
#include "parts/ipx_lexer.h"
#include "parts/ipx_parts.h"

namespace kerno {
namespace {

template <class Item>
std::u16string TextOf(const Item& item) {
  ipx::Writer out;
  Write(&out, item);
  return ipx::Unpack(out.text());
}

// From the fields of a line.
template <class Item>
void ElementOf(std::u16string_view text, Item* item) {
  const std::string packed = ipx::Pack(text);
  ipx::Tokens line(packed);
  *item = Item();
  Read(&line, item);
}

// From the lines of a block or a part.
template <class Item>
void BlockOf(std::u16string_view text, Item* item) {
  const std::string packed = ipx::Pack(text);
  ipx::Lines lines(packed);
  Read(&lines, item);
}

}  // namespace

std::u16string ToText(const P3& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, P3* item) {
  ElementOf(line, item);
}

std::u16string ToText(const TextItem& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, TextItem* item) {
  ElementOf(line, item);
}

std::u16string ToText(const TextLine& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, TextLine* item) {
  ElementOf(line, item);
}

std::u16string ToText(const LineItem& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, LineItem* item) {
  ElementOf(line, item);
}

std::u16string ToText(const CircleItem& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, CircleItem* item) {
  ElementOf(line, item);
}

std::u16string ToText(const FaceItem& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, FaceItem* item) {
  ElementOf(line, item);
}

std::u16string ToText(const EdgeItem& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, EdgeItem* item) {
  ElementOf(line, item);
}

std::u16string ToText(const PointSet& item) {
  return TextOf(item);
}
void FromText(std::u16string_view line, PointSet* item) {
  ElementOf(line, item);
}

std::u16string ToText(const P3A& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, P3A* array) {
  BlockOf(block, array);
}

std::u16string ToText(const TextA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, TextA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const LineA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, LineA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const CircleA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, CircleA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const FaceA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, FaceA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const EdgeA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, EdgeA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const PointA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, PointA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const TextHA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, TextHA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const TextVA& array) {
  return TextOf(array);
}
void FromText(std::u16string_view block, TextVA* array) {
  BlockOf(block, array);
}

std::u16string ToText(const PartsElement& part) {
  return TextOf(part);
}
void FromText(std::u16string_view text, PartsElement* part) {
  BlockOf(text, part);
}

std::u16string ToText(const PartsA& container, std::u16string_view program) {
  ipx::Writer out;
  if (!Write(&out, container, program)) return {};
  return ipx::Unpack(out.text());
}

bool FromText(std::u16string_view text, PartsA* container) {
  const std::string packed = ipx::Pack(text);
  ipx::Lines lines(packed);
  return Read(&lines, container);
}

}  // namespace kerno
