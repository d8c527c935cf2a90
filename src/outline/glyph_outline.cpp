#include "outline/glyph_outline.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kerno {
namespace {

constexpr double kFixedOne = 1.52587890625e-5;  // 1 / 65536
constexpr uint32_t kPolygonType = 24;           // TT_POLYGON_TYPE
constexpr uint16_t kLine = 1;                   // TT_PRIM_LINE
constexpr uint16_t kQSpline = 2;                // TT_PRIM_QSPLINE
constexpr size_t kHeaderSize = 16;
constexpr size_t kRecordSize = 4;
constexpr size_t kPointSize = 8;

P2 ToDouble(PointFx p) {
  return {p.x * kFixedOne, p.y * kFixedOne};
}

template <class T>
T Read(const uint8_t* at) {
  T value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

PointFx ReadPoint(const uint8_t* at) {
  return {Read<int32_t>(at), Read<int32_t>(at + 4)};
}

// The implied point between two control points, each coordinate truncated towards zero.
PointFx FixedMidpoint(PointFx a, PointFx b) {
  const auto half = [](int32_t u, int32_t v) {
    return static_cast<int32_t>((int64_t{u} + int64_t{v}) / 2);
  };
  return {half(a.x, b.x), half(a.y, b.y)};
}

class NativeOutlineParser {
 public:
  explicit NativeOutlineParser(GlyphContours* out) : out_(out) {
    out_->points.clear();
    out_->counts.clear();
  }

  uint32_t Parse(const uint8_t* at, const uint8_t* end) {
    while (static_cast<size_t>(end - at) >= kHeaderSize) {
      const size_t length = Read<uint32_t>(at);
      const uint32_t type = Read<uint32_t>(at + 4);
      if (type != kPolygonType || length < kHeaderSize) break;
      const auto left = static_cast<size_t>(end - at);
      if (!ParsePolygon(at, at + std::min(length, left)) || length > left) break;
      at += length;
    }
    return static_cast<uint32_t>(out_->counts.size());
  }

 private:
  // False when a record cannot be read: the contour then gets no count.
  bool ParsePolygon(const uint8_t* at, const uint8_t* end) {
    const uint16_t first = index_;
    const PointFx start = ReadPoint(at + 8);
    previous_ = start;
    contour_ = 0;
    for (at += kHeaderSize; at < end;) {
      if (static_cast<size_t>(end - at) < kRecordSize) return false;
      const auto type = Read<uint16_t>(at);
      const auto count = Read<uint16_t>(at + 2);
      at += kRecordSize;
      if (type != kLine && type != kQSpline) return false;
      if (static_cast<size_t>(end - at) < count * kPointSize) return false;
      // A spline needs a control and an end point; a lone point can only be an end.
      if (type == kLine || count == 1) {
        AppendLines(at, count);
      } else if (count > 0) {
        AppendSpline(at, count);
      }
      at += count * kPointSize;
    }
    out_->points.push_back(ToDouble(start));
    out_->points.push_back(out_->points[first]);
    Advance(2);
    out_->counts.push_back(contour_);
    return true;
  }

  void AppendLines(const uint8_t* at, uint16_t count) {
    for (uint16_t i = 0; i < count; ++i) {
      previous_ = ReadPoint(at + i * kPointSize);
      out_->points.push_back(ToDouble(previous_));
    }
    Advance(count);
  }

  void AppendSpline(const uint8_t* at, uint16_t count) {
    for (uint32_t i = 0; i < count;) {
      const PointFx control = ReadPoint(at + i * kPointSize);
      ++i;
      const PointFx next = ReadPoint(at + i * kPointSize);
      const bool last = i == count - 1u;
      const PointFx end = last ? next : FixedMidpoint(control, next);
      if (last) ++i;
      Advance(FlattenQSpline(&out_->points, previous_, control, end));
      previous_ = end;
    }
  }

  // Both counters are 16 bits wide and wrap.
  void Advance(uint32_t points) {
    index_ = static_cast<uint16_t>(index_ + points);
    contour_ = static_cast<uint16_t>(contour_ + points);
  }

  GlyphContours* out_;
  PointFx previous_;
  uint16_t index_ = 0;
  uint16_t contour_ = 0;
};

int WholeUnits(double from, double to) {
  return std::abs(static_cast<int>(to - from));
}

}  // namespace

uint32_t FlattenQSpline(std::vector<P2>* points, PointFx a, PointFx b, PointFx c) {
  const P2 p0 = ToDouble(a);
  const P2 p1 = ToDouble(b);
  const P2 p2 = ToDouble(c);
  const int largest =
      std::max({WholeUnits(p0.x, p1.x), WholeUnits(p0.y, p1.y), WholeUnits(p1.x, p2.x),
                WholeUnits(p1.y, p2.y), WholeUnits(p2.x, p0.x), WholeUnits(p2.y, p0.y)});
  int n = largest / 3;
  if (n < 2) {
    n = 2;
  } else if (n > 20) {
    n = 30;  // the jump is meant
  }
  const P2 square = {p0.x - 2 * p1.x + p2.x, p0.y - 2 * p1.y + p2.y};
  const P2 linear = {2 * p1.x - 2 * p0.x, 2 * p1.y - 2 * p0.y};
  for (int j = 1; j <= n; ++j) {
    const double t = static_cast<double>(j) / n;
    points->push_back({(square.x * t + linear.x) * t + p0.x, (square.y * t + linear.y) * t + p0.y});
  }
  return static_cast<uint32_t>(n);
}

uint32_t ParseNativeOutline(const void* buffer, size_t size, GlyphContours* contours) {
  NativeOutlineParser parser(contours);
  if (size == 0) return 0;
  const auto* bytes = static_cast<const uint8_t*>(buffer);
  return parser.Parse(bytes, bytes + size);
}

uint32_t GetGlyphContours(DeviceContext& dc, char32_t ch, GlyphMetrics* metrics,
                          GlyphContours* contours) {
  const Mat2 identity;
  const uint32_t size = dc.GetGlyphOutline(ch, kGgoNative, metrics, 0, nullptr, identity);
  if (size == kGdiError) {
    dc.TextOut(0, 0, u"GDI_ERROR");
    return 0;
  }
  std::vector<uint8_t> buffer(size);
  if (dc.GetGlyphOutline(ch, kGgoNative, metrics, size, buffer.data(), identity) != size) return 0;
  return ParseNativeOutline(buffer.data(), size, contours);
}

}  // namespace kerno
