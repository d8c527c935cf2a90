#include "export/dxf_writer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <initializer_list>
#include <utility>

#include "base/file_wait.h"
#include "base/number_text.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr int kDigits = 6;
constexpr double kSixDigits = 100000;  // from here on all six digits stand before the point
constexpr double kA3Width = 420;       // millimetres

// Bitwise: -0 and 0 are the same point and different text.
bool SameText(const P3& a, const P3& b) {
  using Bits = std::array<uint64_t, 3>;
  return std::bit_cast<Bits>(a) == std::bit_cast<Bits>(b);
}

char* Copy(char* to, std::string_view bytes) {
  std::memcpy(to, bytes.data(), bytes.size());
  return to + bytes.size();
}

// Copies the whole array: a fixed size is quicker than the exact one.
char* Copy(char* to, const DxfNumber& number) {
  std::memcpy(to, number.text, sizeof number.text);
  return to + number.length;
}

// Each line with its line end.
std::string Lines(std::initializer_list<std::string_view> lines) {
  std::string text;
  for (const std::string_view line : lines) text.append(line).append("\r\n");
  return text;
}

std::string General(double value) {
  std::string text;
  AppendGeneral(&text, value, kDigits);
  return text;
}

std::string Integer(int64_t value) {
  std::string text;
  AppendInteger(&text, value);
  return text;
}

// A control character that the writing of texts does not escape.
bool IsBareControl(char16_t unit) {
  const bool control = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
  return control && unit != u'\t' && unit != u'\n' && unit != u'\r';
}

std::string StyleLines(std::u16string_view layer, int16_t color) {
  return "\r\n  8\r\n" + DxfTextBytes(layer) + "\r\n 62\r\n" + Integer(color) + "\r\n";
}

std::string TextStyle(std::string_view name, std::string_view flags, std::string_view big_font) {
  return Lines({"  0", "STYLE", "  2", name, " 70", flags, " 40", "0.0", " 41", "1.0",
                " 50", "0.0",   " 71", "0",  " 42", "3.5", "  3", "txt", "  4", big_font});
}

// Control characters beside those that are escaped: they end lines for some readers, and reach the
// terminals of others.
bool IsUnwritable(char16_t unit) {
  const bool is_escaped = unit == u'\t' || unit == u'\n' || unit == u'\r';
  return (unit < u' ' && !is_escaped) || unit == 0x7F;
}

}  // namespace

std::string DxfTextBytes(std::u16string_view text) {
  if (std::ranges::any_of(text, IsUnwritable)) {
    std::u16string clean(text);
    std::ranges::replace_if(clean, IsUnwritable, u'_');
    return DxfTextBytes(clean);
  }
  std::string bytes = ToShiftJis(EscapeText(text));
  if (bytes.size() <= DxfWriter::kMaxTextBytes) return bytes;
  bytes.clear();
  for (size_t i = 0; i < text.size(); ++i) {
    const std::string character = ToShiftJis(EscapeText(text.substr(i, 1)));
    if (bytes.size() + character.size() > DxfWriter::kMaxTextBytes) break;
    bytes += character;
  }
  return bytes;
}

DxfWriter::DxfWriter(DxfMode mode)
    : mode_(mode), output_name_(mode == DxfMode::kFlat ? "DXF_2d.dxf" : "DXF_3d.dxf") {
  limits_.max = {kA3Width, kA3Width / std::sqrt(2.0), 0};
  entities_.Append(Lines({"  0", "SECTION", "  2", "ENTITIES"}));
}

void DxfWriter::SetLayerNumber(int32_t number) {
  const std::string digits = Integer(number);
  layer_.assign(digits.begin(), digits.end());
  head_.clear();
  // Classic: a name beyond the table's end is not listed; readers make such a layer themselves.
  (void)RegisterLayer(layer_, color_);
}

void DxfWriter::SetLayerName(std::u16string_view name) {
  std::u16string stripped = StripSpaces(name);
  if (stripped.empty()) stripped = u"Unknown";
  for (char16_t& unit : stripped) {
    if (IsBareControl(unit)) unit = u'_';
  }
  if (stripped != layer_) {
    layer_ = std::move(stripped);
    head_.clear();
  }
  (void)RegisterLayer(layer_, color_);
}

void DxfWriter::SetColor(int16_t color) {
  if (color != color_) head_.clear();
  color_ = color;
}

bool DxfWriter::RegisterLayer(std::u16string_view name, int16_t color) {
  for (DxfLayerEntry& layer : layers_) {
    if (layer.name == name) {
      layer.color = color;
      return true;
    }
  }
  if (layers_.size() >= kMaxLayers) return false;
  layers_.push_back({std::u16string(name), color});
  return true;
}

void DxfWriter::FormatNumber(DxfNumber* number, double value) {
  char* end = WriteGeneral(number->text, value, kDigits);
  *end++ = '\r';
  *end++ = '\n';
  number->length = static_cast<uint8_t>(end - number->text);
}

void DxfWriter::FormatPoint(PointText* text, const P3& p, Axes axes) {
  const double values[] = {p.x, p.y, p.z};
  for (int i = 0; i < static_cast<int>(axes); ++i) {
    FormatNumber(&text->axis[i], values[i]);
    if (std::fabs(values[i]) >= kSixDigits && !lost_precision_) {
      const double nearest = std::nearbyint(values[i]);
      lost_precision_ = nearest != values[i] || std::fabs(values[i]) >= 10 * kSixDigits;
    }
  }
}

char* DxfWriter::PutPoint(char* to, const PointText& text, char corner, Axes axes) const {
  for (int i = 0; i < static_cast<int>(axes); ++i) {
    const char code[] = {' ', static_cast<char>('1' + i), corner, '\r', '\n'};
    to = Copy(to, {code, sizeof code});
    to = Copy(to, text.axis[i]);
  }
  return to;
}

void DxfWriter::PutPoint(const P3& p, char corner, Axes axes) {
  PointText text;
  FormatPoint(&text, p, axes);
  char* const room = entities_.Room(3 * (5 + sizeof(DxfNumber)));
  entities_.Advance(static_cast<size_t>(PutPoint(room, text, corner, axes) - room));
}

void DxfWriter::PutNumber(std::string_view code, double value) {
  entities_.Append(code);
  DxfNumber number;
  FormatNumber(&number, value);
  entities_.Append({number.text, number.length});
}

const std::string& DxfWriter::CurrentHead() {
  if (head_.empty()) head_ = StyleLines(layer_, color_);
  return head_;
}

void DxfWriter::PutHead(std::string_view entity, const DxfStyle* style) {
  entities_.Append("  0\r\n");
  entities_.Append(entity);
  entities_.Append(style ? StyleLines(style->layer, style->color) : CurrentHead());
}

bool DxfWriter::Accept(std::initializer_list<double> numbers) {
  for (const double number : numbers) {
    if (std::isfinite(number)) continue;
    ++left_out_;
    return false;
  }
  return true;
}

// The extents of a drawing that streams are in the file already.
void DxfWriter::Widen(const P3& p, Axes axes) {
  if (stream_) return;
  Include(&extents_, {p.x, p.y, axes == Axes::kXYZ ? p.z : 0});
}

void DxfWriter::Line(const P3& start, const P3& end, Axes axes, const DxfStyle* style) {
  const bool spatial = axes == Axes::kXYZ;
  if (!Accept({start.x, start.y, end.x, end.y, spatial ? start.z : 0, spatial ? end.z : 0})) return;
  const bool goes_on = has_last_ && last_axes_ == axes && SameText(start, last_end_);
  if (!goes_on) Widen(start, axes);
  Widen(end, axes);
  if (!rehearses_) {
    if (!goes_on) FormatPoint(&last_text_, start, axes);
    PutLine(end, axes, style);
  }
  last_end_ = end;
  last_axes_ = axes;
  has_last_ = true;
}

// From the point of last_text_, which becomes the end's.
void DxfWriter::PutLine(const P3& end, Axes axes, const DxfStyle* style) {
  std::string explicit_head;
  if (style) explicit_head = StyleLines(style->layer, style->color);
  const std::string& head = style ? explicit_head : CurrentHead();
  constexpr std::string_view kLine = "  0\r\nLINE";
  char* const room = entities_.Room(kLine.size() + head.size() + 6 * (5 + sizeof(DxfNumber)));
  char* to = Copy(room, kLine);
  to = Copy(to, head);
  to = PutPoint(to, last_text_, '0', axes);
  FormatPoint(&last_text_, end, axes);
  to = PutPoint(to, last_text_, '1', axes);
  entities_.Advance(static_cast<size_t>(to - room));
}

void DxfWriter::Line2D(const P3& start, const P3& end, const DxfStyle* style) {
  Line(start, end, Axes::kXY, style);
}

void DxfWriter::Line3D(const P3& start, const P3& end, const DxfStyle* style) {
  Line(start, end, Axes::kXYZ, style);
}

void DxfWriter::Circle(const P3& centre, double radius, Axes axes, const DxfStyle* style) {
  if (!Accept({centre.x, centre.y, axes == Axes::kXYZ ? centre.z : 0, radius})) return;
  Widen(centre, axes);
  if (rehearses_) return;
  PutHead("CIRCLE", style);
  PutPoint(centre, '0', axes);
  PutNumber(" 40\r\n", radius);
}

void DxfWriter::Circle2D(const P3& centre, double radius, const DxfStyle* style) {
  Circle(centre, radius, Axes::kXY, style);
}

void DxfWriter::Circle3D(const P3& centre, double radius, const DxfStyle* style) {
  Circle(centre, radius, Axes::kXYZ, style);
}

void DxfWriter::Arc(const DxfArc& arc, Axes axes, const DxfStyle* style) {
  const P3& c = arc.centre;
  if (!Accept(
          {c.x, c.y, axes == Axes::kXYZ ? c.z : 0, arc.radius, arc.start_angle, arc.end_angle})) {
    return;
  }
  Widen(c, axes);
  if (rehearses_) return;
  PutHead("ARC", style);
  PutPoint(c, '0', axes);
  PutNumber(" 40\r\n", arc.radius);
  PutNumber(" 50\r\n", arc.start_angle);
  PutNumber(" 51\r\n", arc.end_angle);
}

void DxfWriter::Arc2D(const DxfArc& arc, const DxfStyle* style) {
  Arc(arc, Axes::kXY, style);
}

void DxfWriter::Arc3D(const DxfArc& arc, const DxfStyle* style) {
  Arc(arc, Axes::kXYZ, style);
}

void DxfWriter::Text(const DxfText& text, Axes axes, bool vertical, const DxfStyle* style) {
  const P3& p = text.position;
  if (!Accept({p.x, p.y, axes == Axes::kXYZ ? p.z : 0, text.height, text.rotation,
               text.width_factor, text.oblique})) {
    return;
  }
  Widen(p, axes);
  if (rehearses_) return;
  PutHead("TEXT", style);
  PutNumber(" 40\r\n", text.height);
  entities_.Append("  1\r\n");
  entities_.Append(DxfTextBytes(text.text));
  entities_.Append("\r\n");
  if (vertical) entities_.Append("  7\r\nVTEXT\r\n");
  if (text.rotation != 0) PutNumber(" 50\r\n", text.rotation);
  if (text.width_factor != 0 && text.width_factor != 1) PutNumber(" 41\r\n", text.width_factor);
  if (text.oblique != 0) PutNumber(" 51\r\n", text.oblique);
  PutPoint(p, '0', axes);  // Classic: after the text, all files so far have it so
}

void DxfWriter::Text2D(const DxfText& text, const DxfStyle* style) {
  Text(text, Axes::kXY, false, style);
}

void DxfWriter::Text3D(const DxfText& text, const DxfStyle* style) {
  Text(text, Axes::kXYZ, false, style);
}

void DxfWriter::VerticalText2D(const DxfText& text, const DxfStyle* style) {
  Text(text, Axes::kXY, true, style);
}

void DxfWriter::Face(const P3& a, const P3& b, const P3& c, const P3& d, const DxfStyle* style) {
  if (!Accept({a.x, a.y, a.z, b.x, b.y, b.z, c.x, c.y, c.z, d.x, d.y, d.z})) return;
  for (const P3* p : {&a, &b, &c, &d}) Widen(*p, Axes::kXYZ);
  if (rehearses_) return;
  PutHead("3DFACE", style);
  char corner = '0';
  for (const P3* p : {&a, &b, &c, &d}) PutPoint(*p, corner++, Axes::kXYZ);
  entities_.Append(Lines({" 70", Integer(face_flag_)}));
}

void DxfWriter::Triangle(const P3& a, const P3& b, const P3& c, const DxfStyle* style) {
  Face(a, b, c, c, style);
}

std::string DxfWriter::Header() const {
  std::string text = Lines({"  0", "SECTION", "  2", "HEADER"});
  const auto put = [&](std::string_view name, const P3& p, bool with_z) {
    text += Lines({"  9", name, " 10", General(p.x), " 20", General(p.y)});
    if (with_z) text += Lines({" 30", General(p.z)});
  };
  const bool spatial = mode_ == DxfMode::kSpatial;
  put("$LIMMIN", limits_.min, false);
  put("$LIMMAX", limits_.max, false);
  put("$EXTMIN", extents_.min, spatial);
  put("$EXTMAX", extents_.max, spatial);
  return text + Lines({"  0", "ENDSEC"});
}

std::string DxfWriter::Tables() const {
  std::string text = Lines({"  0", "SECTION", "  2", "TABLES"});
  text += Lines({"  0", "TABLE", "  2", "LTYPE", " 70", "1"});
  text += Lines({"  0", "LTYPE", "  2", "CONTINUOUS", " 70", "64", "  3", "Solid line", " 72", "65",
                 " 73", "0", " 40", "0.0"});
  text += Lines({"  0", "ENDTAB", "  0", "TABLE", "  2", "LAYER", " 70",
                 Integer(static_cast<int64_t>(layers_.size()))});
  for (const DxfLayerEntry& layer : layers_) {
    text += Lines({"  0", "LAYER", "  2", DxfTextBytes(layer.name), " 70", "64", " 62",
                   Integer(layer.color), "  6", "CONTINUOUS"});
  }
  text += Lines({"  0", "ENDTAB", "  0", "TABLE", "  2", "STYLE", " 70", "3"});
  text += TextStyle("STANDARD", "64", "");
  text += TextStyle("BIGFONT", "64", "bigfont");
  text += TextStyle("VTEXT", "68", "bigfont");
  return text + Lines({"  0", "ENDTAB", "  0", "ENDSEC"});
}

// Everything before the entities.
Status DxfWriter::WriteFront(FileReplacement* out) const {
  return out->Write(Header() + Tables() +
                    Lines({"  0", "SECTION", "  2", "BLOCKS", "  0", "ENDSEC"}));
}

void DxfWriter::StreamInto(FileReplacement* out, const DxfWriter& rehearsal) {
  stream_ = out;
  extents_ = rehearsal.extents_;
  layers_ = rehearsal.layers_;
  stream_status_ = WriteFront(out);
  entities_.StreamInto(out);
}

Status DxfWriter::FinishInto(FileReplacement* out) {
  entities_.Append(Lines({"  0", "ENDSEC", "  0", "EOF"}));
  if (failure_ != 0) {
    return Status::Error(Failure::kOther, PathText(output_name_), u"the drawing is not complete");
  }
  const Status status = stream_ ? stream_status_ : WriteFront(out);
  return status.ok() ? entities_.WriteTo(out) : status;
}

Status DxfWriter::Finish() {
  return ReplaceWhenFree(output_name_, [&](FileReplacement* file) { return FinishInto(file); });
}

}  // namespace kerno
