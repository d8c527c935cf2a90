#include "export/emf_encoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace kerno {
namespace {

constexpr uint32_t kSignature = 0x464D4520;  // " EMF"
constexpr uint32_t kVersion = 0x10000;
constexpr uint32_t kHeaderSize = 108;     // with the sizes in micrometres, without the description
constexpr uint32_t kAnisotropic = 8;      // MM_ANISOTROPIC
constexpr uint32_t kTransparent = 1;      // TRANSPARENT
constexpr uint32_t kCompatible = 1;       // GM_COMPATIBLE
constexpr uint32_t kGeometric = 0x10000;  // PS_GEOMETRIC, with round ends and joins
constexpr uint32_t kUserStyle = 7;        // PS_USERSTYLE

// The reference device: four pixels a millimetre.
constexpr uint32_t kDeviceWidth = 1280;
constexpr uint32_t kDeviceHeight = 1024;
constexpr uint32_t kPixelsPerMillimetre = 4;
constexpr int32_t kHundredthsPerPixel = 25;  // hundredths of a millimetre

// Where the header keeps what is known at the end only.
constexpr size_t kBytesAt = 48;
constexpr size_t kRecordsAt = 52;
constexpr size_t kHandlesAt = 56;

constexpr size_t kMany = size_t{1} << 18;  // bytes, to be written at once

bool FitsIn16(std::span<const IntPoint> points) {
  return std::all_of(points.begin(), points.end(), [](const IntPoint& p) {
    constexpr int32_t kLow = std::numeric_limits<int16_t>::min();
    constexpr int32_t kHigh = std::numeric_limits<int16_t>::max();
    return p.x >= kLow && p.x <= kHigh && p.y >= kLow && p.y <= kHigh;
  });
}

uint32_t Bits(int32_t value) {
  return static_cast<uint32_t>(value);
}

uint32_t WholeLength(double length) {
  return static_cast<uint32_t>(std::clamp(std::round(length), 1.0, 1e9));
}

}  // namespace

EmfEncoder::EmfEncoder(const EmfFrame& frame, std::u16string_view program,
                       std::u16string_view picture, FileReplacement* out)
    : frame_(frame), out_(*out) {
  PutHeader(program, picture);
  PutMapping();
  PutWords(EmfRecord::kSetBkMode, {kTransparent});
  PutWords(EmfRecord::kSetTextAlign, {0});  // upper left corner
  SetFillMode(FillMode::kAlternate);
}

void EmfEncoder::PutHeader(std::u16string_view program, std::u16string_view picture) {
  const int32_t width = frame_.width * frame_.units_per_pixel;
  const int32_t height = frame_.height * frame_.units_per_pixel;
  const uint32_t dots = Bits(frame_.units_per_pixel);
  Begin(EmfRecord::kHeader);
  for (int32_t v : {0, 0, width, height}) Put32(Bits(v));  // bounds, dots
  for (int32_t v :
       {0, 0, frame_.width * kHundredthsPerPixel, frame_.height * kHundredthsPerPixel}) {
    Put32(Bits(v));  // frame, hundredths of a millimetre
  }
  Put32(kSignature);
  Put32(kVersion);
  Put32(0);  // size, records and handles: see Finish
  Put32(0);
  Put16(0);
  Put16(0);
  Put32(static_cast<uint32_t>(program.size() + picture.size() + 3));  // units of the description
  Put32(kHeaderSize);                                                 // where it stands
  Put32(0);                                                           // no palette
  Put32(kDeviceWidth * dots);
  Put32(kDeviceHeight * dots);
  Put32(kDeviceWidth / kPixelsPerMillimetre);
  Put32(kDeviceHeight / kPixelsPerMillimetre);
  for (int i = 0; i < 3; ++i) Put32(0);  // no pixel format, no OpenGL
  Put32(kDeviceWidth / kPixelsPerMillimetre * 1000);
  Put32(kDeviceHeight / kPixelsPerMillimetre * 1000);
  PutFixedText(program, program.size() + 1);
  PutFixedText(picture, picture.size() + 2);
  End();
}

void EmfEncoder::PutMapping() {
  const uint32_t width = Bits(frame_.width * frame_.units_per_pixel);
  const uint32_t height = Bits(frame_.height * frame_.units_per_pixel);
  PutWords(EmfRecord::kSetMapMode, {kAnisotropic});
  PutWords(EmfRecord::kSetWindowOrg, {0, 0});
  PutWords(EmfRecord::kSetWindowExt, {width, height});
  PutWords(EmfRecord::kSetViewportOrg, {0, 0});
  PutWords(EmfRecord::kSetViewportExt, {width, height});
}

uint32_t EmfEncoder::PenWidth(const PenData& pen) const {
  return WholeLength(pen.width > 0 ? pen.width : frame_.units_per_pixel);
}

void EmfEncoder::CreatePlainPen(uint32_t handle, const PenData& pen) {
  Uses(handle);
  PutWords(EmfRecord::kCreatePen,
           {handle, static_cast<uint32_t>(pen.style), PenWidth(pen), 0, pen.color});
}

// Dashed pens have the style's own lengths, which readers know, or lengths of the pen's own.
void EmfEncoder::CreatePen(uint32_t handle, const PenData& pen) {
  Uses(handle);
  const auto style = static_cast<uint32_t>(pen.style);
  std::vector<double> dashes;
  if (pen.pattern_length > 0) dashes = DashLengths(pen);
  Begin(EmfRecord::kExtCreatePen);
  Put32(handle);
  for (int i = 0; i < 4; ++i) Put32(0);  // no bitmap
  Put32(kGeometric | (dashes.empty() ? style : kUserStyle));
  Put32(PenWidth(pen));
  Put32(0);  // solid
  Put32(pen.color);
  Put32(0);
  Put32(static_cast<uint32_t>(dashes.size()));
  for (double length : dashes) Put32(WholeLength(length));
  End();
}

void EmfEncoder::CreateBrush(uint32_t handle, const BrushData& brush) {
  Uses(handle);
  const bool system = brush.hatch >= 0 && brush.hatch <= 5;
  const bool hatched = brush.style == BrushStyle::kHatched && system;
  uint32_t style = static_cast<uint32_t>(brush.style);
  if (brush.style == BrushStyle::kHatched && !hatched) style = 0;
  PutWords(EmfRecord::kCreateBrushIndirect,
           {handle, style, brush.color, hatched ? Bits(brush.hatch) : 0});
}

// EXTLOGFONTW in its fixed size; only the LOGFONTW at its beginning says something.
void EmfEncoder::CreateFont(uint32_t handle, const LogFont& font) {
  Uses(handle);
  constexpr size_t kAfterLogFont = 320 - 92;
  Begin(EmfRecord::kExtCreateFontIndirect);
  Put32(handle);
  for (int32_t v : {font.height, font.width, font.escapement, font.orientation, font.weight}) {
    Put32(Bits(v));
  }
  for (uint8_t v : {font.italic, font.underline, font.strike_out, font.char_set, font.out_precision,
                    font.clip_precision, font.quality, font.pitch_and_family}) {
    bytes_.push_back(static_cast<char>(v));
  }
  PutFixedText(std::u16string_view(font.face_name).substr(0, kMaxFaceName), kMaxFaceName + 1);
  bytes_.append(kAfterLogFont, '\0');
  End();
}

void EmfEncoder::Polyline(std::span<const IntPoint> points) {
  PutPoints(EmfRecord::kPolyline, EmfRecord::kPolyline16, points);
}

void EmfEncoder::Polygon(std::span<const IntPoint> points) {
  PutPoints(EmfRecord::kPolygon, EmfRecord::kPolygon16, points);
}

void EmfEncoder::PolyBezier(std::span<const IntPoint> points) {
  PutPoints(EmfRecord::kPolyBezier, EmfRecord::kPolyBezier16, points);
}

void EmfEncoder::PutPoints(EmfRecord wide, EmfRecord narrow, std::span<const IntPoint> points) {
  const bool in_16 = FitsIn16(points);
  Begin(in_16 ? narrow : wide);
  PutBounds(points);
  Put32(static_cast<uint32_t>(points.size()));
  for (const IntPoint& p : points) {
    if (in_16) {
      Put16(Bits(p.x));
      Put16(Bits(p.y));
    } else {
      PutPoint(p);
    }
  }
  End();
}

void EmfEncoder::PolyPolygon(std::span<const IntPoint> points, std::span<const uint32_t> counts) {
  const bool in_16 = FitsIn16(points);
  Begin(in_16 ? EmfRecord::kPolyPolygon16 : EmfRecord::kPolyPolygon);
  PutBounds(points);
  Put32(static_cast<uint32_t>(counts.size()));
  Put32(static_cast<uint32_t>(points.size()));
  for (uint32_t count : counts) Put32(count);
  for (const IntPoint& p : points) {
    if (in_16) {
      Put16(Bits(p.x));
      Put16(Bits(p.y));
    } else {
      PutPoint(p);
    }
  }
  End();
}

void EmfEncoder::Ellipse(IntPoint low, IntPoint high) {
  PutWords(EmfRecord::kEllipse, {Bits(low.x), Bits(low.y), Bits(high.x), Bits(high.y)});
}

void EmfEncoder::TextOut(IntPoint at, std::u16string_view text, std::span<const int32_t> advances) {
  constexpr uint32_t kTextAt = 76;  // the string follows the fixed part of the record
  const auto units = static_cast<uint32_t>(text.size());
  const float scale =
      static_cast<float>(kHundredthsPerPixel) / static_cast<float>(frame_.units_per_pixel);
  Begin(EmfRecord::kExtTextOut);
  PutBounds({});
  Put32(kCompatible);
  Put32(std::bit_cast<uint32_t>(scale));
  Put32(std::bit_cast<uint32_t>(scale));
  PutPoint(at);
  Put32(units);
  Put32(kTextAt);
  Put32(0);  // no options, no rectangle
  PutBounds({});
  Put32(kTextAt + (units * 2 + 3) / 4 * 4);
  PutFixedText(text, (text.size() + 1) / 2 * 2);
  for (size_t i = 0; i < text.size(); ++i) Put32(i < advances.size() ? Bits(advances[i]) : 0);
  End();
}

Status EmfEncoder::Finish() {
  constexpr uint32_t kEofSize = 20;
  PutWords(EmfRecord::kEof, {0, 16, kEofSize});
  const uint64_t size = written_ + bytes_.size();
  const bool in_file = written_ > 0;  // where the header is
  if (in_file) {
    Drain();
    bytes_.assign(kHandlesAt + 4, '\0');
  }
  Patch32(kBytesAt, static_cast<uint32_t>(size));
  Patch32(kRecordsAt, records_);
  Patch32(kHandlesAt, last_handle_ + 1);  // the reserved half beside it stays 0
  if (!in_file) {
    Drain();
  } else if (status_.ok()) {
    status_ = out_.Rewrite(kBytesAt, std::string_view(bytes_).substr(kBytesAt));
  }
  return status_;
}

void EmfEncoder::Drain() {
  if (status_.ok()) status_ = out_.Write(bytes_);
  written_ += bytes_.size();
  bytes_.clear();
}

void EmfEncoder::Begin(EmfRecord type) {
  record_ = bytes_.size();
  Put32(static_cast<uint32_t>(type));
  Put32(0);
}

// Records are multiples of four bytes.
void EmfEncoder::End() {
  while (bytes_.size() % 4 != 0) bytes_.push_back('\0');
  Patch32(record_ + 4, static_cast<uint32_t>(bytes_.size() - record_));
  ++records_;
  if (bytes_.size() >= kMany && out_.CanRewrite()) Drain();
}

void EmfEncoder::PutWords(EmfRecord type, std::initializer_list<uint32_t> words) {
  Begin(type);
  for (uint32_t word : words) Put32(word);
  End();
}

void EmfEncoder::Put32(uint32_t value) {
  const char raw[] = {static_cast<char>(value & 255), static_cast<char>(value >> 8 & 255),
                      static_cast<char>(value >> 16 & 255), static_cast<char>(value >> 24)};
  bytes_.append(raw, sizeof raw);
}

void EmfEncoder::Put16(uint32_t value) {
  const char raw[] = {static_cast<char>(value & 255), static_cast<char>(value >> 8 & 255)};
  bytes_.append(raw, sizeof raw);
}

void EmfEncoder::PutPoint(const IntPoint& p) {
  Put32(Bits(p.x));
  Put32(Bits(p.y));
}

// The box of the points; empty (the right below the left) for none.
void EmfEncoder::PutBounds(std::span<const IntPoint> points) {
  IntPoint low = {0, 0};
  IntPoint high = {-1, -1};
  for (size_t i = 0; i < points.size(); ++i) {
    const IntPoint& p = points[i];
    low = i == 0 ? p : IntPoint{std::min(low.x, p.x), std::min(low.y, p.y)};
    high = i == 0 ? p : IntPoint{std::max(high.x, p.x), std::max(high.y, p.y)};
  }
  PutPoint(low);
  PutPoint(high);
}

// The text filled up with zeros to a number of units.
void EmfEncoder::PutFixedText(std::u16string_view text, size_t units) {
  for (size_t i = 0; i < units; ++i) Put16(i < text.size() ? text[i] : 0u);
}

void EmfEncoder::Patch32(size_t at, uint32_t value) {
  for (size_t i = 0; i < 4; ++i) bytes_[at + i] = static_cast<char>(value >> 8 * i & 255);
}

}  // namespace kerno
