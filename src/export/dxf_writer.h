// The drawing file writer: HEADER, TABLES, an empty BLOCKS section and ENTITIES of LINE, CIRCLE,
// ARC, TEXT and 3DFACE, in code page 932 with CR LF.
//
// Coordinates are the model's (y up), angles degrees counter-clockwise. Numbers have six
// significant digits, exponents three digits. An entity with a coordinate, radius or angle that is
// not finite is left out and counted.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/geometry.h"
#include "export/byte_run.h"
#include "platform/file_replacement.h"

namespace kerno {

enum class DxfMode : char {
  kFlat = '2',     // the header's extents carry no Z
  kSpatial = '3',  // they do
};

// What an entity is drawn with: the layer's name and a colour index.
struct DxfStyle {
  std::u16string layer;
  int16_t color = 7;
};

struct DxfLayerEntry {
  std::u16string name;
  int16_t color = 0;
};

struct DxfArc {
  P3 centre;
  double radius = 0;
  double start_angle = 0;  // degrees; runs counter-clockwise to end_angle
  double end_angle = 0;
};

// The numbers are written as they stand, whatever their sign; readers expect a height above 0.
struct DxfText {
  P3 position;
  std::u16string text;
  double height = 0;        // in the drawing's units
  double rotation = 0;      // degrees, counter-clockwise; written unless 0
  double width_factor = 0;  // of the style's letters; written unless 0 or 1
  double oblique = 0;       // degrees; written unless 0
};

// A number as the file takes it, with its line end after it.
struct DxfNumber {
  char text[15];
  uint8_t length;
};

// Collects the entities of one drawing and writes the file at the end, or as they come where it was
// told to stream; not to be used afterwards.
class DxfWriter {
 public:
  static constexpr size_t kMaxLayers = 500;
  static constexpr size_t kMaxTextBytes = 1023;  // of a layer name or text in the file

  explicit DxfWriter(DxfMode mode);

  // The file that Finish writes; "DXF_2d.dxf" or "DXF_3d.dxf" until it is set.
  void SetOutputName(std::filesystem::path name) { output_name_ = std::move(name); }
  const std::filesystem::path& output_name() const { return output_name_; }

  // The layer of the entities to come; it is registered with the current colour. A name loses its
  // blanks, and an empty one becomes "Unknown".
  void SetLayerNumber(int32_t number);
  void SetLayerName(std::u16string_view name);

  // The colour index of the entities to come. A registered layer keeps its own.
  void SetColor(int16_t color);

  // Lists a layer, or gives a listed one (the very same name) another colour. False when the table
  // holds kMaxLayers already and the name is not among them.
  bool RegisterLayer(std::u16string_view name, int16_t color);

  // Entities. Without a style they take the current layer and colour; one with a style registers
  // nothing. The 2D forms write no Z and leave the extents' Z alone.
  // Classic: circles, arcs and texts widen the extents by their centre or position only; all files
  // so far have it so.
  void Line2D(const P3& start, const P3& end, const DxfStyle* style = nullptr);
  void Line3D(const P3& start, const P3& end, const DxfStyle* style = nullptr);
  void Circle2D(const P3& centre, double radius, const DxfStyle* style = nullptr);
  void Circle3D(const P3& centre, double radius, const DxfStyle* style = nullptr);
  void Arc2D(const DxfArc& arc, const DxfStyle* style = nullptr);
  void Arc3D(const DxfArc& arc, const DxfStyle* style = nullptr);
  void Text2D(const DxfText& text, const DxfStyle* style = nullptr);
  void Text3D(const DxfText& text, const DxfStyle* style = nullptr);
  void VerticalText2D(const DxfText& text, const DxfStyle* style = nullptr);
  void Face(const P3& a, const P3& b, const P3& c, const P3& d, const DxfStyle* style = nullptr);
  void Triangle(const P3& a, const P3& b, const P3& c, const DxfStyle* style = nullptr);

  // For drawings that are known beforehand: draw everything once into a writer that only rehearses,
  // then again into one that was told to stream after the rehearsal. The extents and the layers
  // stand first in the file, so only then can the entities follow as they come, without being kept.
  void Rehearse() { rehearses_ = true; }
  void StreamInto(FileReplacement* out, const DxfWriter& rehearsal);

  // A flag other than 0 keeps Finish from writing a file.
  void SetFailure(int32_t flag) { failure_ = flag; }

  // Writes the file under the output name, whole or not at all.
  [[nodiscard]] Status Finish();
  // The same bytes into an open file, which the caller commits.
  [[nodiscard]] Status FinishInto(FileReplacement* out);

  // Eight numbers that every drawing carries and no operation uses.
  const std::array<int32_t, 8>& carried() const { return carried_; }

  // Whether a coordinate of 100,000 or more lost digits or went to exponent form.
  bool lost_precision() const { return lost_precision_; }
  // How many entities were left out for numbers that are not finite.
  size_t left_out() const { return left_out_; }

 private:
  enum class Axes { kXY = 2, kXYZ = 3 };
  struct PointText {
    DxfNumber axis[3];
  };

  void FormatNumber(DxfNumber* number, double value);
  void FormatPoint(PointText* text, const P3& p, Axes axes);
  char* PutPoint(char* to, const PointText& text, char corner, Axes axes) const;
  void PutPoint(const P3& p, char corner, Axes axes);
  void PutNumber(std::string_view code, double value);
  void PutHead(std::string_view entity, const DxfStyle* style);
  bool Accept(std::initializer_list<double> numbers);
  void Widen(const P3& p, Axes axes);
  void Line(const P3& start, const P3& end, Axes axes, const DxfStyle* style);
  void PutLine(const P3& end, Axes axes, const DxfStyle* style);
  void Circle(const P3& centre, double radius, Axes axes, const DxfStyle* style);
  void Arc(const DxfArc& arc, Axes axes, const DxfStyle* style);
  void Text(const DxfText& text, Axes axes, bool vertical, const DxfStyle* style);
  const std::string& CurrentHead();
  std::string Header() const;
  std::string Tables() const;
  Status WriteFront(FileReplacement* out) const;

  int32_t failure_ = 0;
  DxfMode mode_;
  std::filesystem::path output_name_;
  Extent3 extents_;  // Classic: from the origin on, so that they always hold it
  Extent3 limits_;
  std::u16string layer_ = u"0";
  int16_t color_ = 7;
  std::array<int32_t, 8> carried_ = {0, 5, 3, 4, 1, 2, 30, 130};
  int32_t face_flag_ = 0;
  std::vector<DxfLayerEntry> layers_;
  ByteRun entities_;

  std::string head_;       // layer and colour of the current style as lines; empty: to be made
  P3 last_end_;            // of the last line; most lines start there
  PointText last_text_{};  // of that point
  Axes last_axes_ = Axes::kXY;
  bool has_last_ = false;
  bool rehearses_ = false;
  FileReplacement* stream_ = nullptr;
  Status stream_status_;
  bool lost_precision_ = false;
  size_t left_out_ = 0;
};

// The bytes that stand for a layer name or a text in the file: escaped, code page 932, and cut
// before the character that would pass DxfWriter::kMaxTextBytes.
std::string DxfTextBytes(std::u16string_view text);

}  // namespace kerno
