#include "export/drawing_pdf.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "base/file_wait.h"
#include "base/number_text.h"
#include "drawing/segment.h"
#include "export/fixed_number.h"

namespace kerno {
namespace {

constexpr double kPointsPerInch = 72;
constexpr double kRounding = 1e-6;      // of lengths in points
constexpr double kLargestSide = 14400;  // of a page, in its units
constexpr size_t kBlock = 1 << 16;

// The numbers of the objects; those of layers follow.
enum PdfObject : size_t { kCatalog = 1, kPages, kPage, kContent, kContentLength, kFirstLayer };

std::string Fixed(double value, int decimals) {
  std::string text;
  AppendFixed(&text, value, decimals);
  return text;
}

std::string Integer(size_t value) {
  std::string text;
  AppendInteger(&text, static_cast<int64_t>(value));
  return text;
}

std::string Reference(size_t object) {
  return Integer(object) + " 0 R";
}

// A text string: UTF-16 with the byte order mark, in hexadecimal digits.
std::string TextString(std::u16string_view text) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string out = "<FEFF";
  for (const char16_t unit : text) {
    for (const int shift : {12, 8, 4, 0}) {
      out.push_back(kDigits[static_cast<size_t>(unit >> shift) % 16]);
    }
  }
  return out + ">";
}

class DrawingPdf {
 public:
  DrawingPdf(const LayerPaths& paths, double tolerance, FileReplacement* out)
      : paths_(paths),
        tolerance_(tolerance),
        decimals_(paths.unit == LengthUnit::kInch ? 8 : 6),
        box_(paths.picture),
        offsets_(kFirstLayer + paths.layers.size()),
        out_(*out) {
    if (!(box_.min.x <= box_.max.x)) box_ = {{0, 0}, {0, 0}};
  }

  Status Write() {
    Put("%PDF-1.6\n%\xE2\xE3\xCF\xD3\n");
    Catalog();
    Begin(kPages);
    Put("<< /Type /Pages /Count 1 /Kids [" + Reference(kPage) + "] >>");
    End();
    for (size_t i = 0; i < paths_.layers.size(); ++i) {
      Begin(kFirstLayer + i);
      Put("<< /Type /OCG /Name " + TextString(paths_.layers[i].name) + " >>");
      End();
    }
    Page();
    Content();
    Trailer();
    Flush();
    return status_;
  }

 private:
  void Put(std::string_view text) {
    text_ += text;
    if (text_.size() >= kBlock) Flush();
  }
  void Flush() {
    written_ += text_.size();
    if (status_.ok()) status_ = out_.Write(text_);
    text_.clear();
  }
  size_t Here() const { return written_ + text_.size(); }
  void Begin(size_t object) {
    offsets_[object] = Here();
    Put(Integer(object) + " 0 obj\n");
  }
  void End() { Put("\nendobj\n"); }

  void Catalog();
  void Page();
  void Content();
  void Trailer();
  std::string LayerReferences() const;

  void Point(const P2& p, const P2& at) {
    std::array<char, 2 * (kLongestFixed + 1)> text;
    char* end = PutFixed(text.data(), at.x + p.x - box_.min.x, decimals_);
    *end++ = ' ';
    end = PutFixed(end, at.y + p.y - box_.min.y, decimals_);
    *end++ = ' ';
    text_.append(text.data(), end);
  }
  void Draw(const Path& path, const P2& at);
  // The path with lines and cubics alone.
  const std::vector<Segment>& Cubics(const Path& path);

  const LayerPaths& paths_;
  double tolerance_;
  int decimals_;
  Box2 box_;
  std::vector<size_t> offsets_;  // of the objects
  std::map<const Path*, std::vector<Segment>>
      cubics_;                       // of paths that are kept, as they are needed
  std::vector<Segment> cubics_now_;  // of others
  FileReplacement& out_;
  std::string text_;
  size_t written_ = 0;
  double scale_ = 1;  // of the drawing's unit to those of the page
  Status status_;
};

std::string DrawingPdf::LayerReferences() const {
  std::string references = "[";
  for (size_t i = 0; i < paths_.layers.size(); ++i) {
    references += (i > 0 ? " " : "") + Reference(kFirstLayer + i);
  }
  return references + "]";
}

void DrawingPdf::Catalog() {
  const std::string layers = LayerReferences();
  Begin(kCatalog);
  Put("<< /Type /Catalog /Pages " + Reference(kPages) + "\n   /OCProperties << /OCGs " + layers +
      " /D << /Order " + layers + " >> >> >>");
  End();
}

void DrawingPdf::Page() {
  const bool inches = paths_.unit == LengthUnit::kInch;
  const double points = kPointsPerInch / (inches ? 1 : kMillimetresPerInch);
  // Readers refuse a page of no size.
  const double least = HairlineOf(paths_.unit);
  const double width = std::max(box_.Width(), least) * points;
  const double height = std::max(box_.Height(), least) * points;
  // A page that is too large for its units has larger ones.
  const double unit = std::max(1.0, std::ceil(std::max(width, height) / kLargestSide));
  Begin(kPage);
  // Whole units: readers that know sheets by whole points shrink others.
  Put("<< /Type /Page /Parent " + Reference(kPages) + " /MediaBox [0 0 " +
      Fixed(std::ceil(width / unit - kRounding), 0) + " " +
      Fixed(std::ceil(height / unit - kRounding), 0) + "]");
  if (unit > 1) Put(" /UserUnit " + Fixed(unit, 0));
  Put("\n   /Contents " + Reference(kContent) + " /Resources << /Properties <<");
  for (size_t i = 0; i < paths_.layers.size(); ++i) {
    Put(" /L" + Integer(i) + " " + Reference(kFirstLayer + i));
  }
  Put(" >> >> >>");
  End();
  scale_ = points / unit;
}

void DrawingPdf::Content() {
  Begin(kContent);
  Put("<< /Length " + Reference(kContentLength) + " >>\nstream\n");
  const size_t first = Here();
  const std::string scale = Fixed(scale_, 8);
  Put(scale + " 0 0 " + scale + " 0 0 cm\n" + Fixed(HairlineOf(paths_.unit), 6) + " w 1 J 1 j\n");
  for (size_t layer = 0; layer < paths_.layers.size(); ++layer) {
    Put("/OC /L" + Integer(layer) + " BDC\n");
    const Color color = ColorOnPaper(paths_.layers[layer].color);
    for (const int channel : {Red(color), Green(color), Blue(color)}) {
      Put(Fixed(channel / 255.0, 6) + " ");
    }
    Put("RG\n");
    paths_.walk(layer, [&](const Path& path, const P2& at) { Draw(path, at); });
    Put("EMC\n");
  }
  const size_t length = Here() - first;
  Put("endstream");
  End();
  Begin(kContentLength);
  Put(Integer(length));
  End();
}

const std::vector<Segment>& DrawingPdf::Cubics(const Path& path) {
  std::vector<Segment>& cubics = paths_.are_kept ? cubics_[&path] : cubics_now_;
  if (!paths_.are_kept) cubics.clear();
  if (!cubics.empty()) return cubics;
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    if (segment.kind == SegmentKind::kArc) {
      AppendCubics({from, segment}, tolerance_, &cubics);
    } else {
      cubics.push_back(segment.kind == SegmentKind::kLine ? segment : AsCubic({from, segment}));
    }
    from = segment.end;
  }
  return cubics;
}

void DrawingPdf::Draw(const Path& path, const P2& at) {
  const std::vector<Segment>& segments = Cubics(path);
  Point(path.start, at);
  text_ += "m\n";
  for (size_t i = 0; i < segments.size(); ++i) {
    const Segment& segment = segments[i];
    const bool curve = segment.kind == SegmentKind::kCubic;
    // The line that closes a path is drawn by closing it.
    if (!curve && path.closed && i + 1 == segments.size()) break;
    if (curve) {
      Point(segment.first, at);
      Point(segment.second, at);
    }
    Point(segment.end, at);
    text_ += curve ? "c\n" : "l\n";
  }
  Put(path.closed ? "s\n" : "S\n");
}

void DrawingPdf::Trailer() {
  const size_t table = Here();
  Put("xref\n0 " + Integer(offsets_.size()) + "\n0000000000 65535 f \n");
  for (size_t i = 1; i < offsets_.size(); ++i) {
    const std::string digits = Integer(offsets_[i]);
    Put(std::string(10 - std::min<size_t>(10, digits.size()), '0') + digits + " 00000 n \n");
  }
  Put("trailer\n<< /Size " + Integer(offsets_.size()) + " /Root " + Reference(kCatalog) +
      " >>\nstartxref\n" + Integer(table) + "\n%%EOF\n");
}

}  // namespace

Status WritePdf(const LayerPaths& paths, double tolerance, const std::filesystem::path& file) {
  return ReplaceWhenFree(
      file, [&](FileReplacement* out) { return DrawingPdf(paths, tolerance, out).Write(); });
}

Status WriteDrawingPdf(const Drawing& drawing, const DrawingStyle& style, double tolerance,
                       const std::filesystem::path& file) {
  return WritePdf(PathsOf(drawing, style), tolerance, file);
}

}  // namespace kerno
