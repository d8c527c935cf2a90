#include "parts/ipx_parts.h"

#include <algorithm>
#include <string>

#include "base/throttle.h"
#include "parts/ipx_fields.h"

namespace kerno::ipx {
namespace {

constexpr size_t kLinesOfPart = 15;  // of one whose arrays are empty
// Parts that a container has beyond those that there are lines for: a file may be cut short, but a
// wild count is no reason to fill the memory.
constexpr size_t kMostMissing = 1000;

// The fields of a part's two header lines, written or read.
template <class Line>
void HeaderFields(Line* line, Of<PartsElement> auto& part) {
  line->Integer(part.header_first);
  line->Integer(part.header_second);
  line->Text(part.name);
  line->Group([&](auto& group) {
    group.IntegerItem(part.pen.color);
    group.NumberItem(part.pen.width);
    group.IntegerItem(part.pen.style);
    group.NumberItem(part.pen.unit_width);
    group.NumberItem(part.pen.unit_length);
  });
  line->Group([&](auto& group) {
    group.IntegerItem(part.brush.color);
    group.IntegerItem(part.brush.style);
    group.IntegerItem(part.brush.hatch);
  });
  line->Text(part.second_text);
  line->Group([&](auto& group) {
    group.NumberItem(part.extra.first);
    group.IntegerItem(part.extra.second);
    group.NumberItem(part.extra.third);
  });
}

template <class Line>
void BodyFields(Line* line, Of<PartsElement> auto& part) {
  Extent3 box = part.Extent();  // what is read of it is dropped: it is that of the vertices
  line->Integer(part.placement.code);
  line->Group([&](auto& group) { Fields(&group, part.placement.origin); });
  line->Group([&](auto& group) { Fields(&group, box.min); });
  line->Group([&](auto& group) { Fields(&group, box.max); });
  line->List(part.codes);
  line->Integer(part.keeps_order);
  line->Integer(part.trailing);
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
  Tokens header(lines->Next());
  HeaderFields(&header, *part);
  Tokens body(lines->Next());
  BodyFields(&body, *part);
  ForEachArray(*part, [&](auto& array) { Read(lines, &array); });
}

// Progress, part by part.
class PartsProgress {
 public:
  explicit PartsProgress(std::u16string_view text) : text_(text) {}
  bool IsStopped(size_t done, size_t total) {
    return paced_.Step(text_, static_cast<int64_t>(done), static_cast<int64_t>(total)) ==
           Continue::kNo;
  }

 private:
  std::u16string_view text_;
  PacedProgress paced_;
};

}  // namespace

size_t ReadBlockHeader(Lines* lines, int32_t* id) {
  const std::string_view line = lines->Next();
  const char* stop = nullptr;
  const int64_t count = LeadingInteger(line, &stop);
  const std::string_view rest = line.substr(static_cast<size_t>(stop - line.data()));
  Tokens tokens(rest);
  if (!rest.empty() && !IsSeparator(rest.front())) tokens.Skip();
  *id = 0;
  tokens.Integer(*id);
  return static_cast<size_t>(std::max<int64_t>(count, 0));
}

void Write(Writer* out, const PartsElement& part) {
  HeaderFields(out, part);
  out->EndLine();
  BodyFields(out, part);
  out->EndLine();
  ForEachArray(part, [&](const auto& array) { Write(out, array); });
}

void Read(Lines* lines, PartsElement* part) {
  *part = PartsElement();
  ReadFresh(lines, part);
}

bool Write(Writer* out, const PartsA& container, std::u16string_view program) {
  const PartsView parts(container);
  const size_t count = parts.size();
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
  PartsProgress progress(u"書き込み中．．．");
  for (size_t i = 0; i < count; ++i) {
    if (progress.IsStopped(i, count) || out->stopped()) return false;
    Write(out, parts[i]);
  }
  return !progress.IsStopped(count, count) && out->Finish();
}

bool Read(Lines* lines, PartsA* container) {
  *container = PartsA();
  if (lines->AtEnd()) return true;
  Tokens header(lines->Next());
  std::string_view first;
  header.Next(&first);
  header.Integer(container->id);
  const auto stated = static_cast<size_t>(std::max<int64_t>(LeadingInteger(first), 0));
  const size_t header_lines = lines->taken();
  const size_t shown = MostParts(stated, *lines);
  std::vector<PartsElement>& parts = container->parts;
  parts.reserve(shown);
  PartsProgress progress(u"読み込み中．．．");
  bool stopped = progress.IsStopped(0, shown);
  while (!stopped && parts.size() < stated && !lines->AtEnd()) {
    ReadFresh(lines, &parts.emplace_back());
    stopped = progress.IsStopped(parts.size(), std::max(shown, parts.size()));
  }
  if (stopped) {
    *container = PartsA();
    return false;
  }
  // Parts that are stated beyond the end of the text are empty.
  if (parts.size() < stated) parts.resize(PartCount(stated, lines->taken() - header_lines));
  return true;
}

}  // namespace kerno::ipx
