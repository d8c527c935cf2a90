// The bytes of an enhanced metafile: a header, drawing records, an end. Numbers are little-endian,
// coordinates logical units with y down, texts UTF-16.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/drawing.h"
#include "platform/file_replacement.h"

namespace kerno {

// The picture's measures. A logical unit is a dot of the reference device, which is as fine as a
// printer, so that readers that scale points and pens apart agree; a pixel, of which four make a
// millimetre, is `units_per_pixel` dots.
struct EmfFrame {
  int32_t width = 1;  // pixels
  int32_t height = 1;
  int32_t units_per_pixel = 1;
};

// Record types of the format that this writer uses.
enum class EmfRecord : uint32_t {
  kHeader = 1,
  kPolyBezier = 2,
  kPolygon = 3,
  kPolyline = 4,
  kPolyPolygon = 8,
  kSetWindowExt = 9,
  kSetWindowOrg = 10,
  kSetViewportExt = 11,
  kSetViewportOrg = 12,
  kEof = 14,
  kSetMapMode = 17,
  kSetBkMode = 18,
  kSetPolyFillMode = 19,
  kSetTextAlign = 22,
  kSetTextColor = 24,
  kSelectObject = 37,
  kCreatePen = 38,
  kCreateBrushIndirect = 39,
  kDeleteObject = 40,
  kEllipse = 42,
  kExtCreateFontIndirect = 82,
  kExtTextOut = 84,
  kPolyBezier16 = 85,
  kPolygon16 = 86,
  kPolyline16 = 87,
  kPolyPolygon16 = 91,
  kExtCreatePen = 95,
};

// Stock objects, selected like created ones.
inline constexpr uint32_t kEmfNullBrush = 0x80000005;
inline constexpr uint32_t kEmfNullPen = 0x80000008;

// Writes records into a file: as they come where that can be written over, for the header tells
// their size and number, at the end otherwise. Points go out in 16 bits where all of a record's
// fit, in 32 otherwise.
class EmfEncoder {
 public:
  // `out` outlives the encoder. Writes the header and sets up mapping, transparent background and
  // alternate filling. `description` names the program and the picture.
  EmfEncoder(const EmfFrame& frame, std::u16string_view program, std::u16string_view picture,
             FileReplacement* out);

  // Objects have the handles that the caller chooses, from 1 up and below 65,535; creating one does
  // not select it. Widths and lengths are logical units. Pens are no thinner than a pixel: a
  // hairline of the device would be one of its fine dots. The extended pen has round ends and
  // joins; the plain one is for readers that do not take the extended record without dash lengths.
  void CreatePlainPen(uint32_t handle, const PenData& pen);
  void CreatePen(uint32_t handle, const PenData& pen);
  void CreateBrush(uint32_t handle, const BrushData& brush);
  void CreateFont(uint32_t handle, const LogFont& font);
  void SelectObject(uint32_t handle) { PutWords(EmfRecord::kSelectObject, {handle}); }
  void DeleteObject(uint32_t handle) { PutWords(EmfRecord::kDeleteObject, {handle}); }

  void SetFillMode(FillMode mode) {
    PutWords(EmfRecord::kSetPolyFillMode, {static_cast<uint32_t>(mode)});
  }
  void SetTextColor(uint32_t color) { PutWords(EmfRecord::kSetTextColor, {color}); }

  void Polyline(std::span<const IntPoint> points);
  void Polygon(std::span<const IntPoint> points);
  void PolyPolygon(std::span<const IntPoint> points, std::span<const uint32_t> counts);
  // Cubic curves: a start point, then two controls and an end for each.
  void PolyBezier(std::span<const IntPoint> points);
  void Ellipse(IntPoint low, IntPoint high);
  // A line of text with its upper left corner at `at`; advances[i] belongs to text[i].
  void TextOut(IntPoint at, std::u16string_view text, std::span<const int32_t> advances);

  // Ends the file; the header then holds its size and counts. Nothing can follow. The first failure
  // of any write, if there was one.
  [[nodiscard]] Status Finish();

 private:
  void Begin(EmfRecord type);
  void End();
  void PutWords(EmfRecord type, std::initializer_list<uint32_t> words);
  void Put32(uint32_t value);
  void Put16(uint32_t value);
  void PutPoint(const IntPoint& p);
  void PutBounds(std::span<const IntPoint> points);
  void PutPoints(EmfRecord wide, EmfRecord narrow, std::span<const IntPoint> points);
  void PutFixedText(std::u16string_view text, size_t units);
  void Patch32(size_t at, uint32_t value);
  void Drain();
  uint32_t PenWidth(const PenData& pen) const;
  void Uses(uint32_t handle) { last_handle_ = handle > last_handle_ ? handle : last_handle_; }
  void PutHeader(std::u16string_view program, std::u16string_view picture);
  void PutMapping();

  EmfFrame frame_;
  FileReplacement& out_;
  Status status_;
  uint64_t written_ = 0;
  std::string bytes_;  // those that are not written yet
  size_t record_ = 0;  // where the current record begins
  uint32_t records_ = 0;
  uint32_t last_handle_ = 0;
};

}  // namespace kerno
