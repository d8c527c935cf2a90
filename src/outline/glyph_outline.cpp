#include "outline/glyph_outline.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

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

void AppendLines(const uint8_t* at, uint16_t count, std::vector<Segment>* segments) {
  for (uint16_t i = 0; i < count; ++i) {
    segments->push_back({.end = ToDouble(ReadPoint(at + i * kPointSize))});
  }
}

// Two control points in a row have an implied point of the curve between them.
void AppendSpline(const uint8_t* at, uint16_t count, std::vector<Segment>* segments) {
  for (uint32_t i = 0; i + 1 < count; ++i) {
    const PointFx control = ReadPoint(at + i * kPointSize);
    const PointFx next = ReadPoint(at + (i + 1) * kPointSize);
    const PointFx end = i + 2 == count ? next : FixedMidpoint(control, next);
    segments->push_back({SegmentKind::kQuadratic, ToDouble(end), ToDouble(control)});
  }
}

// Reads one polygon, header and records. False when a record cannot be read.
bool ReadPolygon(const uint8_t* at, const uint8_t* end, Path* path) {
  path->start = ToDouble(ReadPoint(at + 8));
  for (at += kHeaderSize; at < end;) {
    if (static_cast<size_t>(end - at) < kRecordSize) return false;
    const auto type = Read<uint16_t>(at);
    const auto count = Read<uint16_t>(at + 2);
    at += kRecordSize;
    if (type != kLine && type != kQSpline) return false;
    if (static_cast<size_t>(end - at) < count * kPointSize) return false;
    // A spline needs a control and an end point; a lone point can only be an end.
    if (type == kLine || count == 1) {
      AppendLines(at, count, &path->segments);
    } else {
      AppendSpline(at, count, &path->segments);
    }
    at += count * kPointSize;
  }
  return true;
}

int WholeUnits(double from, double to) {
  return std::abs(static_cast<int>(to - from));
}

uint32_t FlattenQuadratic(std::vector<P2>* points, const P2& p0, const P2& p1, const P2& p2) {
  const int largest =
      std::max({WholeUnits(p0.x, p1.x), WholeUnits(p0.y, p1.y), WholeUnits(p1.x, p2.x),
                WholeUnits(p1.y, p2.y), WholeUnits(p2.x, p0.x), WholeUnits(p2.y, p0.y)});
  int n = largest / 3;
  if (n < 2) {
    n = 2;
  } else if (n > 20) {
    n = 30;
  }
  const P2 square = {p0.x - 2 * p1.x + p2.x, p0.y - 2 * p1.y + p2.y};
  const P2 linear = {2 * p1.x - 2 * p0.x, 2 * p1.y - 2 * p0.y};
  for (int j = 1; j <= n; ++j) {
    const double t = static_cast<double>(j) / n;
    points->push_back({(square.x * t + linear.x) * t + p0.x, (square.y * t + linear.y) * t + p0.y});
  }
  return static_cast<uint32_t>(n);
}

// The rasteriser's records; nothing on failure.
std::optional<std::vector<uint8_t>> NativeOutlineOf(DeviceContext& dc, char32_t ch,
                                                    GlyphMetrics* metrics) {
  const Mat2 identity;
  const uint32_t size = dc.GetGlyphOutline(ch, kGgoNative, metrics, 0, nullptr, identity);
  if (size == kGdiError) {
    dc.TextOut(0, 0, u"GDI_ERROR");
    return std::nullopt;
  }
  std::vector<uint8_t> buffer(size);
  const bool whole =
      dc.GetGlyphOutline(ch, kGgoNative, metrics, size, buffer.data(), identity) == size;
  return whole ? std::optional(std::move(buffer)) : std::nullopt;
}

}  // namespace

std::vector<Path> ReadNativeOutline(const void* buffer, size_t size) {
  std::vector<Path> paths;
  if (size == 0) return paths;
  const auto* at = static_cast<const uint8_t*>(buffer);
  const uint8_t* const end = at + size;
  while (static_cast<size_t>(end - at) >= kHeaderSize) {
    const size_t length = Read<uint32_t>(at);
    const uint32_t type = Read<uint32_t>(at + 4);
    if (type != kPolygonType || length < kHeaderSize) break;
    const auto left = static_cast<size_t>(end - at);
    Path path;
    if (!ReadPolygon(at, at + std::min(length, left), &path)) break;
    paths.push_back(std::move(path));
    if (length > left) break;
    at += length;
  }
  return paths;
}

void FlattenClassic(const Path& path, GlyphContours* contours) {
  std::vector<P2>& points = contours->points;
  const size_t before = points.size();
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    if (segment.kind == SegmentKind::kQuadratic) {
      FlattenQuadratic(&points, from, segment.first, segment.end);
    } else {
      points.push_back(segment.end);
    }
    from = segment.end;
  }
  points.push_back(path.start);
  points.push_back(points[static_cast<uint16_t>(before)]);
  contours->counts.push_back(static_cast<uint16_t>(points.size() - before));
}

uint32_t ParseNativeOutline(const void* buffer, size_t size, GlyphContours* contours) {
  contours->points.clear();
  contours->counts.clear();
  for (const Path& path : ReadNativeOutline(buffer, size)) FlattenClassic(path, contours);
  return static_cast<uint32_t>(contours->counts.size());
}

uint32_t FlattenQSpline(std::vector<P2>* points, PointFx a, PointFx b, PointFx c) {
  return FlattenQuadratic(points, ToDouble(a), ToDouble(b), ToDouble(c));
}

std::vector<Path> GetGlyphPaths(DeviceContext& dc, char32_t ch, GlyphMetrics* metrics) {
  const auto buffer = NativeOutlineOf(dc, ch, metrics);
  return buffer ? ReadNativeOutline(buffer->data(), buffer->size()) : std::vector<Path>();
}

uint32_t GetGlyphContours(DeviceContext& dc, char32_t ch, GlyphMetrics* metrics,
                          GlyphContours* contours) {
  const auto buffer = NativeOutlineOf(dc, ch, metrics);
  return buffer ? ParseNativeOutline(buffer->data(), buffer->size(), contours) : 0;
}

}  // namespace kerno
