#include "export/drawing_dxf.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string>
#include <string_view>

#include "base/file_wait.h"
#include "base/number_text.h"
#include "base/text.h"
#include "drawing/measures.h"
#include "export/fixed_number.h"

namespace kerno {
namespace {

constexpr int kBulgeDecimals = 8;
constexpr size_t kBlock = 1 << 16;

// Handles of what every file has, in hexadecimal; layers and entities come after.
constexpr uint64_t kFirstFreeHandle = 0x100;
constexpr std::string_view kModelRecord = "1F", kPaperRecord = "1B", kLayerTable = "2",
                           kLayerZero = "10", kRootDictionary = "C";

std::string Hex(uint64_t value) {
  std::string text;
  do {
    text.insert(text.begin(), "0123456789ABCDEF"[value % 16]);
    value /= 16;
  } while (value > 0);
  return text;
}

// Layer names may not hold the characters that the format keeps for itself; what is not ASCII is
// escaped, so that every program reads it whatever its code page.
std::string LayerText(std::u16string_view name) {
  constexpr std::u16string_view kKept = u"<>/\\\":;?*|=`,";
  std::string text;
  for (const char16_t unit : name) {
    if (unit < 0x20 || kKept.find(unit) != kKept.npos) {
      text.push_back('_');
    } else if (unit < 0x7F) {
      text.push_back(static_cast<char>(unit));
    } else {
      std::string digits = Hex(unit);
      digits.insert(0, 4 - digits.size(), '0');
      text += "\\U+" + digits;
    }
  }
  return text.empty() ? "_" : text;
}

P2 Moved(const P2& p, const P2& by) {
  return {p.x + by.x, p.y + by.y};
}

bool HasCurves(const Path& path) {
  for (const Segment& segment : path.segments) {
    if (segment.kind == SegmentKind::kQuadratic || segment.kind == SegmentKind::kCubic) return true;
  }
  return false;
}

// A vertex of a polyline, wherever that stands: its point in units of the last decimal, and the
// lines that tell of the bulge after it.
struct Vertex {
  int64_t x = 0, y = 0;
  size_t bulge_length = 0;
  std::array<char, 4 + kLongestFixed + 1> bulge;
};
using Vertices = std::vector<Vertex>;

class DrawingDxf {
 public:
  DrawingDxf(const Drawing& drawing, const DrawingStyle& style, FileReplacement* out)
      : drawing_(drawing),
        style_(style),
        layers_(drawing, style),
        box_(InkOf(drawing)),
        out_(*out),
        vertices_(drawing.shapes.size()),
        decimals_(drawing.unit == LengthUnit::kInch ? 8 : 6),
        modern_(style.dxf == DxfVersion::kR2000) {
    for (const std::u16string& name : layers_.names()) layer_texts_.push_back(LayerText(name));
  }

  Status Write() {
    Header();
    if (modern_) Put("  0\nSECTION\n  2\nCLASSES\n  0\nENDSEC\n");
    Tables();
    Blocks();
    Put("  0\nSECTION\n  2\nENTITIES\n");
    for (size_t n = 0; n < drawing_.placed.size() && status_.ok(); ++n) {
      const PlacedShape& placed = drawing_.placed[n];
      const Shape& shape = drawing_.shapes[placed.shape];
      vertices_[placed.shape].resize(shape.size());
      for (size_t i = 0; i < shape.size(); ++i) {
        const std::string& layer = layer_texts_[layers_.Of(placed, n, shape[i])];
        Entity(shape[i].path, placed.at, layer, &vertices_[placed.shape][i]);
        if (buffer_.size() >= kBlock) Flush();
      }
    }
    Put("  0\nENDSEC\n");
    if (modern_) Objects();
    Put("  0\nEOF\n");
    Flush();
    return status_;
  }

 private:
  void Put(std::string_view text) { buffer_ += text; }
  void Flush() {
    if (status_.ok()) status_ = out_.Write(buffer_);
    buffer_.clear();
  }
  void Pair(std::string_view code, std::string_view value) {
    buffer_.append(code).append("\n").append(value).append("\n");
  }
  void Integer(std::string_view code, int64_t value) {
    buffer_.append(code).append("\n");
    AppendInteger(&buffer_, value);
    buffer_.push_back('\n');
  }
  void Number(std::string_view code, double value, int decimals) {
    buffer_.append(code).append("\n");
    AppendFixed(&buffer_, value, decimals);
    buffer_.push_back('\n');
  }
  void Point(const P2& p) {
    Number(" 10", p.x, decimals_);
    Number(" 20", p.y, decimals_);
  }
  std::string NextHandle() { return Hex(handle_++); }

  void Header();
  void Tables();
  void Table(std::string_view name, std::string_view handle, int64_t entries);
  void Record(std::string_view type, std::string_view handle, std::string_view table,
              std::string_view subclass, std::string_view name);
  void ViewportTable();
  void LayerTable();
  void Blocks();
  void Block(std::string_view name, std::string_view record, std::string_view begin,
             std::string_view end);
  void Objects();
  void Entity(const Path& path, const P2& at, const std::string& layer, Vertices* vertices);
  void Head(std::string_view type, const std::string& layer);
  void Polyline(const Path& path, const P2& at, const std::string& layer, Vertices* vertices);
  Vertices VerticesOf(const Path& path) const;
  void OldPolyline(const Path& path, const P2& at, const std::string& layer);
  void Spline(const Path& path, const P2& at, const std::string& layer);

  const Drawing& drawing_;
  const DrawingStyle& style_;
  DrawingLayers layers_;
  Box2 box_;
  std::vector<std::string> layer_texts_;
  FileReplacement& out_;
  std::vector<std::vector<Vertices>> vertices_;  // of the paths of each shape, as they are needed
  int decimals_;
  bool modern_;
  std::string buffer_;
  Status status_;
  uint64_t handle_ = kFirstFreeHandle;
};

void DrawingDxf::Header() {
  size_t entities = 0;
  for (const PlacedShape& placed : drawing_.placed)
    entities += drawing_.shapes[placed.shape].size();
  const bool empty = !(box_.min.x <= box_.max.x);
  const auto corner = [&](std::string_view name, const P2& p) {
    Pair("  9", name);
    Point(empty ? P2{} : p);
    Pair(" 30", "0");
  };
  const auto setting = [&](std::string_view name, std::string_view code, std::string_view value) {
    Pair("  9", name);
    Pair(code, value);
  };
  const bool inches = drawing_.unit == LengthUnit::kInch;
  Put("  0\nSECTION\n  2\nHEADER\n");
  setting("$ACADVER", "  1", modern_ ? "AC1015" : "AC1009");
  setting("$DWGCODEPAGE", "  3", "ANSI_1252");
  setting("$INSUNITS", " 70", inches ? "1" : "4");
  setting("$MEASUREMENT", " 70", inches ? "0" : "1");
  corner("$EXTMIN", box_.min);
  corner("$EXTMAX", box_.max);
  if (modern_) {
    // Layers and entities take one handle each.
    const uint64_t end = kFirstFreeHandle + layer_texts_.size() + entities;
    setting("$HANDSEED", "  5", Hex(end));
  }
  Put("  0\nENDSEC\n");
}

void DrawingDxf::Table(std::string_view name, std::string_view handle, int64_t entries) {
  Put("  0\nTABLE\n");
  Pair("  2", name);
  if (modern_) {
    Pair("  5", handle);
    Pair("330", "0");
    Pair("100", "AcDbSymbolTable");
  }
  Integer(" 70", entries);
}

void DrawingDxf::Record(std::string_view type, std::string_view handle, std::string_view table,
                        std::string_view subclass, std::string_view name) {
  Pair("  0", type);
  if (modern_) {
    Pair(type == "DIMSTYLE" ? "105" : "  5", handle);
    Pair("330", table);
    Pair("100", "AcDbSymbolTableRecord");
    Pair("100", subclass);
  }
  Pair("  2", name);
}

void DrawingDxf::ViewportTable() {
  const bool empty = !(box_.min.x <= box_.max.x);
  const double height = empty ? 1 : std::max({box_.Height(), box_.Width() / 2, 1e-6});
  Table("VPORT", "8", 1);
  Record("VPORT", "29", "8", "AcDbViewportTableRecord", "*Active");
  Put(" 70\n0\n 10\n0\n 20\n0\n 11\n1\n 21\n1\n");
  Number(" 12", empty ? 0 : (box_.min.x + box_.max.x) / 2, decimals_);
  Number(" 22", empty ? 0 : (box_.min.y + box_.max.y) / 2, decimals_);
  Put(" 13\n0\n 23\n0\n 14\n1\n 24\n1\n 15\n0\n 25\n0\n 16\n0\n 26\n0\n 36\n1\n 17\n0\n 27\n0\n "
      "37\n0\n");
  Number(" 40", height, decimals_);
  Put(" 41\n2\n 42\n50\n 43\n0\n 44\n0\n 50\n0\n 51\n0\n 71\n0\n 72\n100\n 73\n1\n 74\n3\n 75\n0\n"
      " 76\n0\n 77\n0\n 78\n0\n  0\nENDTAB\n");
}

void DrawingDxf::LayerTable() {
  Table("LAYER", kLayerTable, static_cast<int64_t>(layer_texts_.size()) + 1);
  const auto layer = [&](std::string_view handle, std::string_view name, int64_t color) {
    Record("LAYER", handle, kLayerTable, "AcDbLayerTableRecord", name);
    Pair(" 70", "0");
    Integer(" 62", color);
    Pair("  6", "CONTINUOUS");
    if (modern_) Pair("390", "F");
  };
  layer(kLayerZero, "0", 7);
  for (const std::string& name : layer_texts_) layer(NextHandle(), name, style_.color);
  Put("  0\nENDTAB\n");
}

void DrawingDxf::Tables() {
  Put("  0\nSECTION\n  2\nTABLES\n");
  if (modern_) ViewportTable();
  Table("LTYPE", "5", modern_ ? 3 : 1);
  const auto line_type = [&](std::string_view handle, std::string_view name,
                             std::string_view description) {
    Record("LTYPE", handle, "5", "AcDbLinetypeTableRecord", name);
    Pair(" 70", "0");
    Pair("  3", description);
    Put(" 72\n65\n 73\n0\n 40\n0\n");
  };
  if (modern_) {
    line_type("14", "ByBlock", "");
    line_type("15", "ByLayer", "");
  }
  line_type("16", "CONTINUOUS", "Solid line");
  Put("  0\nENDTAB\n");
  LayerTable();
  Table("STYLE", "3", 1);
  Record("STYLE", "11", "3", "AcDbTextStyleTableRecord", "Standard");
  Put(" 70\n0\n 40\n0\n 41\n1\n 50\n0\n 71\n0\n 42\n2.5\n  3\ntxt\n  4\n\n  0\nENDTAB\n");
  if (modern_) {
    Table("VIEW", "6", 0);
    Put("  0\nENDTAB\n");
    Table("UCS", "7", 0);
    Put("  0\nENDTAB\n");
    Table("APPID", "9", 1);
    Record("APPID", "12", "9", "AcDbRegAppTableRecord", "ACAD");
    Put(" 70\n0\n  0\nENDTAB\n");
    Table("DIMSTYLE", "A", 1);
    Put("100\nAcDbDimStyleTable\n");
    Record("DIMSTYLE", "27", "A", "AcDbDimStyleTableRecord", "Standard");
    Put(" 70\n0\n  0\nENDTAB\n");
    Table("BLOCK_RECORD", "1", 2);
    for (const auto& [handle, name, layout] :
         {std::tuple{kModelRecord, "*Model_Space", "22"}, {kPaperRecord, "*Paper_Space", "1E"}}) {
      Record("BLOCK_RECORD", handle, "1", "AcDbBlockTableRecord", name);
      Pair("340", layout);
    }
    Put("  0\nENDTAB\n");
  }
  Put("  0\nENDSEC\n");
}

void DrawingDxf::Block(std::string_view name, std::string_view record, std::string_view begin,
                       std::string_view end) {
  const bool paper = record == kPaperRecord;
  const auto head = [&](std::string_view type, std::string_view handle, std::string_view subclass) {
    Pair("  0", type);
    Pair("  5", handle);
    Pair("330", record);
    Pair("100", "AcDbEntity");
    if (paper) Pair(" 67", "1");
    Pair("  8", "0");
    Pair("100", subclass);
  };
  head("BLOCK", begin, "AcDbBlockBegin");
  Pair("  2", name);
  Put(" 70\n0\n 10\n0\n 20\n0\n 30\n0\n");
  Pair("  3", name);
  Pair("  1", "");
  head("ENDBLK", end, "AcDbBlockEnd");
}

void DrawingDxf::Blocks() {
  Put("  0\nSECTION\n  2\nBLOCKS\n");
  if (modern_) {
    Block("*Model_Space", kModelRecord, "20", "21");
    Block("*Paper_Space", kPaperRecord, "1C", "1D");
  }
  Put("  0\nENDSEC\n");
}

// The root with the dictionaries that programs look for: groups, layouts and plot styles.
void DrawingDxf::Objects() {
  Put("  0\nSECTION\n  2\nOBJECTS\n");
  const auto dictionary = [&](std::string_view handle, std::string_view owner) {
    Pair("  0", "DICTIONARY");
    Pair("  5", handle);
    Pair("330", owner);
    Pair("100", "AcDbDictionary");
    Pair("281", "1");
  };
  dictionary(kRootDictionary, "0");
  Put("  3\nACAD_GROUP\n350\nD\n  3\nACAD_LAYOUT\n350\n1A\n  3\nACAD_PLOTSTYLENAME\n350\nE\n");
  dictionary("D", kRootDictionary);
  dictionary("1A", kRootDictionary);
  Put("  3\nModel\n350\n22\n  3\nLayout1\n350\n1E\n");
  Put("  0\nACDBDICTIONARYWDFLT\n  5\nE\n330\nC\n100\nAcDbDictionary\n281\n1\n  3\nNormal\n350\nF\n"
      "100\nAcDbDictionaryWithDefault\n340\nF\n");
  Put("  0\nACDBPLACEHOLDER\n  5\nF\n330\nE\n");
  const auto layout = [&](std::string_view handle, std::string_view name, std::string_view order,
                          std::string_view record, std::string_view flags) {
    Pair("  0", "LAYOUT");
    Pair("  5", handle);
    Pair("330", "1A");
    Put("100\nAcDbPlotSettings\n  1\n\n  2\nnone_device\n  4\n\n  6\n\n 40\n0\n 41\n0\n 42\n0\n "
        "43\n0\n"
        " 44\n0\n 45\n0\n 46\n0\n 47\n0\n 48\n0\n 49\n0\n140\n0\n141\n0\n142\n1\n143\n1\n");
    Pair(" 70", flags);
    Put(" 72\n1\n 73\n0\n 74\n5\n  7\n\n 75\n16\n147\n1\n148\n0\n149\n0\n100\nAcDbLayout\n");
    Pair("  1", name);
    Pair(" 70", "1");
    Pair(" 71", order);
    Put(" 10\n0\n 20\n0\n 11\n420\n 21\n297\n 12\n0\n 22\n0\n 32\n0\n 14\n0\n 24\n0\n 34\n0\n "
        "15\n0\n"
        " 25\n0\n 35\n0\n146\n0\n 13\n0\n 23\n0\n 33\n0\n 16\n1\n 26\n0\n 36\n0\n 17\n0\n 27\n1\n "
        "37\n0\n"
        " 76\n0\n");
    Pair("330", record);
  };
  layout("22", "Model", "0", kModelRecord, "1712");
  layout("1E", "Layout1", "1", kPaperRecord, "688");
  Put("  0\nENDSEC\n");
}

void DrawingDxf::Head(std::string_view type, const std::string& layer) {
  Pair("  0", type);
  if (modern_) {
    Pair("  5", NextHandle());
    Pair("330", kModelRecord);
    Pair("100", "AcDbEntity");
  }
  Pair("  8", layer);
}

void DrawingDxf::Entity(const Path& path, const P2& at, const std::string& layer,
                        Vertices* vertices) {
  if (path.segments.empty()) return;
  if (HasCurves(path)) {
    Spline(path, at, layer);
  } else if (modern_) {
    Polyline(path, at, layer, vertices);
  } else {
    OldPolyline(path, at, layer);
  }
}

Vertices DrawingDxf::VerticesOf(const Path& path) const {
  Vertices vertices;
  const auto add = [&](const P2& p, double bulge) {
    Vertex& vertex = vertices.emplace_back();
    vertex.x = FixedUnits(p.x, decimals_);
    vertex.y = FixedUnits(p.y, decimals_);
    if (bulge == 0) return;
    std::string text = " 42\n";
    AppendFixed(&text, bulge, kBulgeDecimals);
    text.push_back('\n');
    vertex.bulge_length = text.copy(vertex.bulge.data(), vertex.bulge.size());
  };
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    add(from, segment.kind == SegmentKind::kArc ? segment.bulge : 0);
    from = segment.end;
  }
  if (!path.closed) add(from, 0);
  return vertices;
}

void DrawingDxf::Polyline(const Path& path, const P2& at, const std::string& layer,
                          Vertices* vertices) {
  if (vertices->empty()) *vertices = VerticesOf(path);
  Head("LWPOLYLINE", layer);
  Pair("100", "AcDbPolyline");
  Integer(" 90", static_cast<int64_t>(vertices->size()));
  Pair(" 70", path.closed ? "1" : "0");
  const int64_t x = FixedUnits(at.x, decimals_), y = FixedUnits(at.y, decimals_);
  for (const Vertex& vertex : *vertices) {
    std::array<char, 10 + 2 * kLongestFixed + sizeof vertex.bulge> text;
    char* end = std::copy_n(" 10\n", 4, text.data());
    end = PutFixedUnits(end, x + vertex.x, decimals_);
    end = PutFixedUnits(std::copy_n("\n 20\n", 5, end), y + vertex.y, decimals_);
    *end++ = '\n';
    end = std::copy_n(vertex.bulge.data(), vertex.bulge_length, end);
    buffer_.append(text.data(), end);
  }
}

void DrawingDxf::OldPolyline(const Path& path, const P2& at, const std::string& layer) {
  Head("POLYLINE", layer);
  Put(" 66\n1\n 10\n0\n 20\n0\n 30\n0\n");
  Pair(" 70", path.closed ? "1" : "0");
  const auto vertex = [&](const P2& p, double bulge) {
    Head("VERTEX", layer);
    Point(Moved(p, at));
    Pair(" 30", "0");
    if (bulge != 0) Number(" 42", bulge, kBulgeDecimals);
  };
  P2 from = path.start;
  for (const Segment& segment : path.segments) {
    vertex(from, segment.kind == SegmentKind::kArc ? segment.bulge : 0);
    from = segment.end;
  }
  if (!path.closed) vertex(from, 0);
  Head("SEQEND", layer);
}

// One spline of third degree in Bézier pieces: each knot stands three times, the ends four times.
void DrawingDxf::Spline(const Path& path, const P2& at, const std::string& layer) {
  const auto pieces = static_cast<int64_t>(path.segments.size());
  Head("SPLINE", layer);
  Pair("100", "AcDbSpline");
  Put("210\n0\n220\n0\n230\n1\n");
  Pair(" 70", path.closed ? "9" : "8");  // planar, closed
  Put(" 71\n3\n");
  Integer(" 72", 3 * pieces + 5);
  Integer(" 73", 3 * pieces + 1);
  Pair(" 74", "0");
  const auto knots = [&](int64_t value, int times) {
    for (int i = 0; i < times; ++i) Integer(" 40", value);
  };
  knots(0, 4);
  for (int64_t i = 1; i < pieces; ++i) knots(i, 3);
  knots(pieces, 4);
  const auto control = [&](const P2& p) {
    Point(Moved(p, at));
    Pair(" 30", "0");
  };
  const auto toward = [](const P2& from, const P2& to, double part) {
    return P2{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part};
  };
  P2 from = path.start;
  control(from);
  for (const Segment& segment : path.segments) {
    P2 first = segment.first, second = segment.second;
    if (segment.kind == SegmentKind::kLine) {
      first = toward(from, segment.end, 1.0 / 3);
      second = toward(from, segment.end, 2.0 / 3);
    } else if (segment.kind == SegmentKind::kQuadratic) {
      second = toward(segment.end, segment.first, 2.0 / 3);
      first = toward(from, segment.first, 2.0 / 3);
    }
    control(first);
    control(second);
    control(segment.end);
    from = segment.end;
  }
}

}  // namespace

Status WriteDrawingDxf(const Drawing& drawing, const DrawingStyle& style,
                       const std::filesystem::path& file) {
  if (style.dxf == DxfVersion::kR12) {
    for (const Shape& shape : drawing.shapes) {
      for (const ShapePath& path : shape) {
        if (!HasCurves(path.path)) continue;
        return Status::Error(Failure::kOther, PathText(file),
                             u"DXF R12 has no curves; arcs or lines can be written");
      }
    }
  }
  return ReplaceWhenFree(
      file, [&](FileReplacement* out) { return DrawingDxf(drawing, style, out).Write(); });
}

}  // namespace kerno
