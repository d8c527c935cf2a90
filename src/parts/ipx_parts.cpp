#include "parts/ipx_parts.h"

#include <algorithm>
#include <string>

#include "base/notices.h"
#include "parts/ipx.h"
#include "parts/ipx_arrays.h"

namespace kerno::ipx {
namespace {

constexpr std::u16string_view kReading = u"読み込み中．．．";
constexpr std::u16string_view kWriting = u"書き込み中．．．";
constexpr size_t kLinesOfPart = 15;  // of one whose arrays are empty
// Parts that a container has beyond those that there are lines for: a file may be cut short, but a
// wild count is no reason to fill the memory.
constexpr size_t kMostMissing = 1000;

void WritePointGroup(Writer* out, const P3& point) {
  out->Raw("\"");
  out->Point(point);
  out->Raw("\" ");
}

void WriteHeaderLine(Writer* out, const PartsElement& part) {
  out->Integer(part.header_first);
  out->Integer(part.header_second);
  out->Field(part.name);
  out->Raw("\"");
  out->IntegerItem(part.pen.color);
  out->NumberItem(part.pen.width);
  out->IntegerItem(part.pen.style);
  out->NumberItem(part.pen.unit_width);
  out->NumberItem(part.pen.unit_length);
  out->Raw("\" \"");
  out->IntegerItem(part.brush.color);
  out->IntegerItem(part.brush.style);
  out->IntegerItem(part.brush.hatch);
  out->Raw("\" ");
  out->Field(part.second_text);
  out->Raw("\"");
  out->NumberItem(part.extra.first);
  out->IntegerItem(part.extra.second);
  out->NumberItem(part.extra.third);
  out->Raw("\" ");
  out->EndLine();
}

void ReadHeaderLine(std::string_view line, PartsElement* part) {
  Tokens tokens(line);
  tokens.Integer(&part->header_first);
  tokens.Integer(&part->header_second);
  tokens.Text(&part->name);
  Tokens pen = tokens.Group();
  pen.Integer(&part->pen.color);
  pen.Number(&part->pen.width);
  pen.Integer(&part->pen.style);
  pen.Number(&part->pen.unit_width);
  pen.Number(&part->pen.unit_length);
  Tokens brush = tokens.Group();
  brush.Integer(&part->brush.color);
  brush.Integer(&part->brush.style);
  brush.Integer(&part->brush.hatch);
  tokens.Text(&part->second_text);
  Tokens extra = tokens.Group();
  extra.Number(&part->extra.first);
  extra.Integer(&part->extra.second);
  extra.Number(&part->extra.third);
}

void WriteBodyLine(Writer* out, const Parts& part) {
  out->Integer(part.placement.code);
  WritePointGroup(out, part.placement.origin);
  const Extent3 box = part.Extent();
  WritePointGroup(out, box.min);
  WritePointGroup(out, box.max);
  out->List(part.codes);
  out->Integer(part.keeps_order);
  out->Integer(part.trailing);
  out->EndLine();
}

// The box is passed over: it is that of the vertices.
void ReadBodyLine(std::string_view line, Parts* part) {
  Tokens tokens(line);
  tokens.Integer(&part->placement.code);
  Tokens origin = tokens.Group();
  origin.Point(&part->placement.origin);
  tokens.Skip();
  tokens.Skip();
  tokens.List(&part->codes);
  tokens.Integer(&part->keeps_order);
  tokens.Integer(&part->trailing);
}

// Calls `visit` with each of the thirteen arrays in the order of the file.
template <class Part, class Visit>
void ForEachArray(Part& part, const Visit& visit) {
  visit(part.vertices);
  visit(part.texts);
  visit(part.lines);
  visit(part.circles);
  for (auto& faces : part.faces) visit(faces);
  visit(part.edges);
  visit(part.point_sets);
  visit(part.more_texts);
  visit(part.horizontal_texts);
  visit(part.vertical_texts);
  visit(part.more_point_sets);
}

// How many parts a container has, of which as many are stated and so many lines were there.
size_t PartCount(size_t stated, size_t lines) {
  return std::min({stated, lines, (lines + kLinesOfPart - 1) / kLinesOfPart + kMostMissing});
}

// The most parts that a text can hold: each of two lines with something in them and thirteen more.
size_t MostParts(size_t stated, const Lines& lines) {
  constexpr size_t kShortestPart = 13 * 4 + 2 * 4;
  return std::min(stated, lines.unread() / kShortestPart + 1);
}

// Into a part as it was made.
void ReadFresh(Lines* lines, PartsElement* part) {
  ReadHeaderLine(lines->Next(), part);
  ReadBodyLine(lines->Next(), part);
  ForEachArray(*part, [&](auto& array) { Read(lines, &array); });
}

Continue Show(std::u16string_view text, size_t done, size_t total) {
  return CurrentNotices().Progress(text, static_cast<int64_t>(done), static_cast<int64_t>(total));
}

}  // namespace

void Write(Writer* out, const PartsElement& part) {
  WriteHeaderLine(out, part);
  WriteBodyLine(out, part);
  ForEachArray(part, [&](const auto& array) { Write(out, array); });
}

void Read(Lines* lines, PartsElement* part) {
  *part = PartsElement();
  ReadFresh(lines, part);
}

bool Write(Writer* out, const PartsA& container, std::u16string_view program) {
  const size_t count = container.parts.size();
  out->Integer(static_cast<int64_t>(count));
  out->Integer(container.id);
  out->Raw(";\tPartsA\t\t\tExporter  Ver.");
  out->RawPacked(kIpxVersion);
  out->Raw("\t\"");
  // A path may hold a line break; the line may not.
  std::u16string path(program);
  std::replace(path.begin(), path.end(), u'\r', u' ');
  std::replace(path.begin(), path.end(), u'\n', u' ');
  out->RawPacked(path);
  out->Raw("\"");
  out->EndLine();
  for (size_t i = 0; i < count; ++i) {
    if (Show(kWriting, i, count) == Continue::kNo || out->stopped()) return false;
    Write(out, container.parts[i]);
  }
  return Show(kWriting, count, count) != Continue::kNo && out->Finish();
}

bool Read(Lines* lines, PartsA* container) {
  *container = PartsA();
  if (lines->AtEnd()) return true;
  Tokens header(lines->Next());
  std::string_view first;
  header.Next(&first);
  header.Integer(&container->id);
  const auto stated = static_cast<size_t>(std::max<int64_t>(LeadingInteger(first), 0));
  const size_t header_lines = lines->taken();
  const size_t shown = MostParts(stated, *lines);
  std::vector<PartsElement>& parts = container->parts;
  parts.reserve(shown);
  bool stopped = Show(kReading, 0, shown) == Continue::kNo;
  while (!stopped && parts.size() < stated && !lines->AtEnd()) {
    ReadFresh(lines, &parts.emplace_back());
    stopped = Show(kReading, parts.size(), std::max(shown, parts.size())) == Continue::kNo;
  }
  if (!stopped && parts.size() < shown) stopped = Show(kReading, shown, shown) == Continue::kNo;
  if (stopped) {
    *container = PartsA();
    return false;
  }
  // Parts that are stated beyond the end of the text are empty.
  if (parts.size() < stated) parts.resize(PartCount(stated, lines->taken() - header_lines));
  return true;
}

}  // namespace kerno::ipx
