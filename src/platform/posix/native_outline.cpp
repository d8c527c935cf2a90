#include "platform/posix/native_outline.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>

namespace kerno {
namespace {

constexpr uint32_t kPolygonType = 24;     // TT_POLYGON_TYPE
constexpr uint16_t kLine = 1;             // TT_PRIM_LINE
constexpr uint16_t kQuadraticSpline = 2;  // TT_PRIM_QSPLINE

// How far, in 1/64 unit, a quadratic piece may leave its cubic before its control point is rounded.
// Rounding moves the curve by at most sqrt(2) / 2 of 1/64 unit more; together they stay below 4.
constexpr double kCubicTolerance = 3.0;
constexpr int64_t kMaxPiecesOfCubic = 4096;

struct Vector {
  double x = 0;
  double y = 0;
};

Vector operator+(Vector a, Vector b) {
  return {a.x + b.x, a.y + b.y};
}
Vector operator*(double factor, Vector a) {
  return {factor * a.x, factor * a.y};
}

Vector ToVector(const OutlinePoint& point) {
  return {static_cast<double>(point.x), static_cast<double>(point.y)};
}

OutlinePoint Rounded(Vector v, PointKind kind) {
  return {std::llround(v.x), std::llround(v.y), kind};
}

// Appends the control points and the end of n quadratic pieces for the cubic a, b, c, d.
//
// Over equal steps h = 1/n of the parameter, the piece around t has the control point
//   f(t) + f'(t) h/2 - f''' h^3 / 24,
// and the midpoint of two neighbouring control points is the cubic's own point between them, so the
// joints need not be stored. The largest distance of a piece from its cubic is
// sqrt(3)/36 |d - 3c + 3b - a| / n^3.
void AppendCubic(const OutlinePoint& a, const OutlinePoint& b, const OutlinePoint& c,
                 const OutlinePoint& d, std::vector<OutlinePoint>* points) {
  const Vector p0 = ToVector(a);
  const Vector p1 = ToVector(b);
  const Vector p2 = ToVector(c);
  const Vector p3 = ToVector(d);
  const Vector third = p3 + -3.0 * p2 + 3.0 * p1 + -1.0 * p0;
  const double bend = std::sqrt(3.0) / 36 * std::hypot(third.x, third.y);
  const auto wanted = static_cast<int64_t>(std::ceil(std::cbrt(bend / kCubicTolerance)));
  const int64_t n = std::clamp<int64_t>(wanted, 1, kMaxPiecesOfCubic);
  const double h = 1.0 / static_cast<double>(n);
  for (int64_t i = 0; i < n; ++i) {
    const double t = static_cast<double>(i) * h;
    const double u = 1 - t;
    const Vector at =
        (u * u * u) * p0 + (3 * u * u * t) * p1 + (3 * u * t * t) * p2 + (t * t * t) * p3;
    const Vector slope = (3 * u * u) * (p1 + -1.0 * p0) + (6 * u * t) * (p2 + -1.0 * p1) +
                         (3 * t * t) * (p3 + -1.0 * p2);
    const Vector control = at + (h / 2) * slope + (-6 * h * h * h / 24) * third;
    points->push_back(Rounded(control, PointKind::kQuadratic));
  }
  points->push_back({d.x, d.y, PointKind::kOn});
}

void AppendContourWithoutCubics(std::span<const OutlinePoint> contour,
                                std::vector<OutlinePoint>* points) {
  for (size_t i = 0; i < contour.size(); ++i) {
    const bool cubic = contour[i].kind == PointKind::kCubic && i > 0 && i + 1 < contour.size();
    if (!cubic) {
      points->push_back(contour[i]);
      continue;
    }
    // A contour that ends on its control points closes at its first point.
    const bool wraps = i + 2 >= contour.size();
    AppendCubic(contour[i - 1], contour[i], contour[i + 1], wraps ? contour[0] : contour[i + 2],
                points);
    i += 2;
  }
}

class NativeWriter {
 public:
  explicit NativeWriter(std::vector<std::byte>* buffer) : buffer_(buffer) {}

  bool fits() const { return fits_; }

  void Contour(std::span<const OutlinePoint> contour) {
    const size_t header = buffer_->size();
    const OutlinePoint start = StartOf(contour);
    Put<uint32_t>(0);
    Put<uint32_t>(kPolygonType);
    Point(start);
    const bool starts_on = contour.front().kind == PointKind::kOn;
    Records(contour.subspan(starts_on ? 1 : 0), start);
    const auto size = static_cast<uint32_t>(buffer_->size() - header);
    std::memcpy(buffer_->data() + header, &size, sizeof size);
  }

 private:
  static OutlinePoint StartOf(std::span<const OutlinePoint> contour) {
    const OutlinePoint& first = contour.front();
    const OutlinePoint& last = contour.back();
    if (first.kind == PointKind::kOn) {
      return first;
    }
    if (last.kind == PointKind::kOn) {
      return last;
    }
    return {(first.x + last.x) / 2, (first.y + last.y) / 2, PointKind::kOn};
  }

  void Records(std::span<const OutlinePoint> points, const OutlinePoint& start) {
    const auto on_curve = [](const OutlinePoint& p) { return p.kind == PointKind::kOn; };
    for (auto at = points.begin(); at != points.end();) {
      if (on_curve(*at)) {
        const auto end = std::find_if_not(at, points.end(), on_curve);
        Record(kLine, {at, end}, nullptr);
        at = end;
      } else {
        const auto on = std::find_if(at, points.end(), on_curve);
        const bool closes = on == points.end();
        const auto end = closes ? on : on + 1;
        Record(kQuadraticSpline, {at, end}, closes ? &start : nullptr);
        at = end;
      }
    }
  }

  void Record(uint16_t type, std::span<const OutlinePoint> points, const OutlinePoint* extra) {
    const size_t count = points.size() + (extra != nullptr ? 1 : 0);
    fits_ = fits_ && count <= std::numeric_limits<uint16_t>::max();
    Put(type);
    Put(static_cast<uint16_t>(count));
    for (const OutlinePoint& point : points) {
      Point(point);
    }
    if (extra != nullptr) {
      Point(*extra);
    }
  }

  void Point(const OutlinePoint& point) {
    Put(Fixed(point.x));
    Put(Fixed(point.y));
  }

  int32_t Fixed(int64_t value) {
    constexpr int64_t kLimit = int64_t{1} << 21;  // 32768 units in 26.6
    if (value < -kLimit || value >= kLimit) {
      fits_ = false;
      return 0;
    }
    return static_cast<int32_t>(value * 1024);
  }

  template <typename T>
  void Put(T value) {
    const size_t at = buffer_->size();
    buffer_->resize(at + sizeof value);
    std::memcpy(buffer_->data() + at, &value, sizeof value);
  }

  std::vector<std::byte>* buffer_;
  bool fits_ = true;
};

}  // namespace

Outline CubicsToQuadratics(Outline outline) {
  if (std::none_of(outline.points.begin(), outline.points.end(),
                   [](const OutlinePoint& p) { return p.kind == PointKind::kCubic; })) {
    return outline;
  }
  Outline result;
  size_t begin = 0;
  for (const size_t end : outline.ends) {
    AppendContourWithoutCubics(std::span(outline.points).subspan(begin, end - begin),
                               &result.points);
    result.ends.push_back(result.points.size());
    begin = end;
  }
  return result;
}

bool WriteNativeOutline(const Outline& outline, std::vector<std::byte>* buffer) {
  buffer->clear();
  NativeWriter writer(buffer);
  size_t begin = 0;
  for (const size_t end : outline.ends) {
    // A contour of one point is a mark for composing glyphs; the system leaves it out.
    if (end > begin + 1) {
      writer.Contour(std::span(outline.points).subspan(begin, end - begin));
    }
    begin = end;
  }
  if (!writer.fits()) {
    buffer->clear();
  }
  return writer.fits();
}

}  // namespace kerno
