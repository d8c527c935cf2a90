#include "export/drawing_dxf_frame.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "export/dxf_lines.h"
#include "platform/code_page.h"

namespace kerno {
namespace {

// Handles of what every file has, in hexadecimal.
constexpr std::string_view kPaperRecord = "1B", kLayerTable = "2", kLayerZero = "10",
                           kRootDictionary = "C";

// A unit in a code page; empty where that has none.
std::string BytesOf(char16_t unit, DxfCodePage page) {
  if (unit < 0x80) return {static_cast<char>(unit)};
  if (page == DxfCodePage::k932) {
    // Best fits, such as "a" for "ä", do not count.
    const std::string bytes = EncodeCodePage932({&unit, 1}, '?');
    return DecodeCodePage932(bytes) == std::u16string_view(&unit, 1) ? bytes : "";
  }
  if (unit >= 0xA0 && unit <= 0xFF) return {static_cast<char>(unit)};
  // The bytes 0x80 to 0x9F; 0 where there is none.
  constexpr char16_t kRest[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
  const auto* const found = std::ranges::find(kRest, unit);
  return found == std::end(kRest) ? "" : std::string(1, static_cast<char>(0x80 + (found - kRest)));
}

class DxfFrame : public DxfLines {
 public:
  explicit DxfFrame(const DxfFrameFacts& facts) : facts_(facts) {}

  void Header();
  void Tables();
  void Blocks();
  void Objects();

 private:
  void Table(std::string_view name, std::string_view handle, int64_t entries);
  void Record(std::string_view type, std::string_view handle, std::string_view table,
              std::string_view subclass, std::string_view name);
  void ViewportTable();
  void LayerTable();
  void Block(std::string_view name, std::string_view record, std::string_view begin,
             std::string_view end);

  const DxfFrameFacts& facts_;
};

void DxfFrame::Header() {
  const bool empty = !(facts_.box.min.x <= facts_.box.max.x);
  const auto corner = [&](std::string_view name, const P2& p) {
    Pair("  9", name);
    Point(empty ? P2{} : p, facts_.decimals);
    Pair(" 30", "0");
  };
  const auto setting = [&](std::string_view name, std::string_view code, std::string_view value) {
    Pair("  9", name);
    Pair(code, value);
  };
  const bool inches = facts_.unit == LengthUnit::kInch;
  Put("  0\nSECTION\n  2\nHEADER\n");
  setting("$ACADVER", "  1", facts_.modern ? "AC1015" : "AC1009");
  setting("$DWGCODEPAGE", "  3", facts_.page == DxfCodePage::k932 ? "ANSI_932" : "ANSI_1252");
  setting("$INSUNITS", " 70", inches ? "1" : "4");
  setting("$MEASUREMENT", " 70", inches ? "0" : "1");
  corner("$EXTMIN", facts_.box.min);
  corner("$EXTMAX", facts_.box.max);
  if (facts_.modern) {
    // Layers and entities take one handle each.
    const uint64_t end = kFirstDxfHandle + facts_.layers.size() + facts_.entities;
    setting("$HANDSEED", "  5", DxfHex(end));
  }
  Put("  0\nENDSEC\n");
}

void DxfFrame::Table(std::string_view name, std::string_view handle, int64_t entries) {
  Put("  0\nTABLE\n");
  Pair("  2", name);
  if (facts_.modern) {
    Pair("  5", handle);
    Pair("330", "0");
    Pair("100", "AcDbSymbolTable");
  }
  Integer(" 70", entries);
}

void DxfFrame::Record(std::string_view type, std::string_view handle, std::string_view table,
                      std::string_view subclass, std::string_view name) {
  Pair("  0", type);
  if (facts_.modern) {
    Pair(type == "DIMSTYLE" ? "105" : "  5", handle);
    Pair("330", table);
    Pair("100", "AcDbSymbolTableRecord");
    Pair("100", subclass);
  }
  Pair("  2", name);
}

void DxfFrame::ViewportTable() {
  const bool empty = !(facts_.box.min.x <= facts_.box.max.x);
  const double height = empty ? 1 : std::max({facts_.box.Height(), facts_.box.Width() / 2, 1e-6});
  Table("VPORT", "8", 1);
  Record("VPORT", "29", "8", "AcDbViewportTableRecord", "*Active");
  Put(" 70\n0\n 10\n0\n 20\n0\n 11\n1\n 21\n1\n");
  Number(" 12", empty ? 0 : (facts_.box.min.x + facts_.box.max.x) / 2, facts_.decimals);
  Number(" 22", empty ? 0 : (facts_.box.min.y + facts_.box.max.y) / 2, facts_.decimals);
  Put(" 13\n0\n 23\n0\n 14\n1\n 24\n1\n 15\n0\n 25\n0\n 16\n0\n 26\n0\n 36\n1\n 17\n0\n 27\n0\n "
      "37\n0\n");
  Number(" 40", height, facts_.decimals);
  Put(" 41\n2\n 42\n50\n 43\n0\n 44\n0\n 50\n0\n 51\n0\n 71\n0\n 72\n100\n 73\n1\n 74\n3\n 75\n0\n"
      " 76\n0\n 77\n0\n 78\n0\n  0\nENDTAB\n");
}

void DxfFrame::LayerTable() {
  Table("LAYER", kLayerTable, static_cast<int64_t>(facts_.layers.size()) + 1);
  const auto layer = [&](std::string_view handle, std::string_view name, int64_t color) {
    Record("LAYER", handle, kLayerTable, "AcDbLayerTableRecord", name);
    Pair(" 70", "0");
    Integer(" 62", color);
    Pair("  6", "CONTINUOUS");
    if (facts_.modern) Pair("390", "F");
  };
  layer(kLayerZero, "0", 7);
  uint64_t handle = kFirstDxfHandle;
  for (const auto& [name, color] : facts_.layers) layer(DxfHex(handle++), name, color);
  Put("  0\nENDTAB\n");
}

void DxfFrame::Tables() {
  Put("  0\nSECTION\n  2\nTABLES\n");
  if (facts_.modern) ViewportTable();
  Table("LTYPE", "5", facts_.modern ? 3 : 1);
  const auto line_type = [&](std::string_view handle, std::string_view name,
                             std::string_view description) {
    Record("LTYPE", handle, "5", "AcDbLinetypeTableRecord", name);
    Pair(" 70", "0");
    Pair("  3", description);
    Put(" 72\n65\n 73\n0\n 40\n0\n");
  };
  if (facts_.modern) {
    line_type("14", "ByBlock", "");
    line_type("15", "ByLayer", "");
  }
  line_type("16", "CONTINUOUS", "Solid line");
  Put("  0\nENDTAB\n");
  LayerTable();
  Table("STYLE", "3", 1);
  Record("STYLE", "11", "3", "AcDbTextStyleTableRecord", "Standard");
  Put(" 70\n0\n 40\n0\n 41\n1\n 50\n0\n 71\n0\n 42\n2.5\n  3\ntxt\n  4\n\n  0\nENDTAB\n");
  if (facts_.modern) {
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
    for (const auto& [handle, name, layout] : {std::tuple{kDxfModelRecord, "*Model_Space", "22"},
                                               {kPaperRecord, "*Paper_Space", "1E"}}) {
      Record("BLOCK_RECORD", handle, "1", "AcDbBlockTableRecord", name);
      Pair("340", layout);
    }
    Put("  0\nENDTAB\n");
  }
  Put("  0\nENDSEC\n");
}

void DxfFrame::Block(std::string_view name, std::string_view record, std::string_view begin,
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

void DxfFrame::Blocks() {
  Put("  0\nSECTION\n  2\nBLOCKS\n");
  if (facts_.modern) {
    Block("*Model_Space", kDxfModelRecord, "20", "21");
    Block("*Paper_Space", kPaperRecord, "1C", "1D");
  }
  Put("  0\nENDSEC\n");
}

// The root with the dictionaries that programs look for: groups, layouts and plot styles.
void DxfFrame::Objects() {
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
  layout("22", "Model", "0", kDxfModelRecord, "1712");
  layout("1E", "Layout1", "1", kPaperRecord, "688");
  Put("  0\nENDSEC\n");
}

}  // namespace

DxfCodePage CodePageOf(std::span<const std::u16string> names) {
  for (const DxfCodePage page : {DxfCodePage::k1252, DxfCodePage::k932}) {
    const bool all = std::ranges::all_of(names, [&](const std::u16string& name) {
      return std::ranges::all_of(name, [&](char16_t unit) { return !BytesOf(unit, page).empty(); });
    });
    if (all) return page;
  }
  return DxfCodePage::k1252;
}

std::string DxfLayerText(std::u16string_view name, DxfCodePage page) {
  std::string text;
  for (const char16_t unit : name) {
    const std::string bytes = BytesOf(unit, page);
    if (unit < 0x20 || unit == 0x7F || IsKeptByDxf(unit)) {
      text.push_back('_');
    } else if (!bytes.empty()) {
      text += bytes;
    } else {
      std::string digits = DxfHex(unit);
      digits.insert(0, 4 - digits.size(), '0');
      text += "\\U+" + digits;
    }
  }
  return text.empty() ? "_" : text;
}

bool IsKeptByDxf(char16_t unit) {
  constexpr std::u16string_view kKept = u"<>/\\\":;?*|=`,";
  return kKept.find(unit) != kKept.npos;
}

std::string DxfBeforeEntities(const DxfFrameFacts& facts) {
  DxfFrame frame(facts);
  frame.Header();
  if (facts.modern) frame.Put("  0\nSECTION\n  2\nCLASSES\n  0\nENDSEC\n");
  frame.Tables();
  frame.Blocks();
  frame.Put("  0\nSECTION\n  2\nENTITIES\n");
  return std::move(frame.text());
}

std::string DxfAfterEntities(const DxfFrameFacts& facts) {
  DxfFrame frame(facts);
  frame.Put("  0\nENDSEC\n");
  if (facts.modern) frame.Objects();
  frame.Put("  0\nEOF\n");
  return std::move(frame.text());
}

}  // namespace kerno
