#include "parts/ipx_elements.h"

#include <string_view>

namespace kerno::ipx {

void Write(Writer* out, const P3& point) {
  out->Point(point);
}

void Read(Tokens* line, P3* point) {
  line->Point(point);
}

void Write(Writer* out, const TextItem& item) {
  out->Integer(item.anchor);
  out->TextField(item.text);
}

// The escaping of a text is not undone, which is meant.
void Read(Tokens* line, TextItem* item) {
  line->Integer(&item->anchor);
  line->Text(&item->text);
}

void Write(Writer* out, const LineItem& item) {
  out->Integer(item.start);
  out->Integer(item.end);
}

void Read(Tokens* line, LineItem* item) {
  line->Integer(&item->start);
  line->Integer(&item->end);
}

void Write(Writer* out, const CircleItem& item) {
  out->Integer(item.centre);
  out->Number(item.radius);
  out->Integer(item.attribute);
  out->Integer(item.first);
  out->Integer(item.second);
}

void Read(Tokens* line, CircleItem* item) {
  line->Integer(&item->centre);
  line->Number(&item->radius);
  line->Integer(&item->attribute);
  line->Integer(&item->first);
  line->Integer(&item->second);
}

// The count of the loop stands twice, which is meant.
void Write(Writer* out, const FaceItem& item) {
  out->Integer(static_cast<int64_t>(item.vertices.size()));
  out->Integer(static_cast<int64_t>(item.vertices.size()));
  out->Integer(static_cast<int64_t>(item.parallel.size()));
  out->List(item.vertices);
  out->List(item.parallel);
  out->Integer(item.attribute);
  out->Integer(item.code);
}

// The lists are as long as they are; the three counts are passed over.
void Read(Tokens* line, FaceItem* item) {
  line->Skip();
  line->Skip();
  line->Skip();
  line->List(&item->vertices);
  line->List(&item->parallel);
  line->Integer(&item->attribute);
  line->Integer(&item->code);
}

void Write(Writer* out, const EdgeItem& item) {
  for (const int32_t value : item.values) out->Integer(value);
}

void Read(Tokens* line, EdgeItem* item) {
  for (int32_t& value : item->values) line->Integer(&value);
}

void Write(Writer* out, const PointSet& item) {
  out->Integer(item.attribute_a);
  out->Integer(item.attribute_b);
  out->Integer(item.attribute_c);
  out->List(item.vertices);
}

void Read(Tokens* line, PointSet* item) {
  line->Integer(&item->attribute_a);
  line->Integer(&item->attribute_b);
  line->Integer(&item->attribute_c);
  line->List(&item->vertices);
}

// No blank follows the closing quote of the points.
void Write(Writer* out, const TextLine& item) {
  out->Integer(item.anchor);
  out->TextField(item.text);
  for (const double value : item.values) out->Number(value);
  out->Field(item.face_name);
  out->Integer(item.code);
  out->Raw("\"");
  for (const P2& point : item.outline) {
    out->Raw("'");
    out->Number(point.x);
    out->Number(point.y);
    out->Raw("' ");
  }
  out->Raw("\"");
}

void Read(Tokens* line, TextLine* item) {
  line->Integer(&item->anchor);
  line->Text(&item->text);
  for (double& value : item->values) line->Number(&value);
  line->Text(&item->face_name);
  line->Integer(&item->code);
  Tokens points = line->Group();
  for (std::string_view token; points.Next(&token);) {
    Tokens numbers(token);
    P2& point = item->outline.emplace_back();
    numbers.Number(&point.x);
    numbers.Number(&point.y);
  }
}

}  // namespace kerno::ipx
