#include "cli/cut_report.h"

#include <string_view>

#include "app/cut_warnings.h"
#include "base/number_text.h"
#include "base/text.h"
#include "cli/console.h"
#include "export/fixed_number.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

std::string Fixed(double value, int decimals) {
  std::string text;
  AppendFixed(&text, value, decimals);
  return text;
}

const char* UnitName(LengthUnit unit) {
  return unit == LengthUnit::kInch ? "in" : "mm";
}

void AppendField(std::string* out, std::string_view name, double value) {
  out->append(", \"").append(name).append("\": ");
  AppendShortest(out, value);
}

void AppendFace(std::string* out, const CutFace& face) {
  *out += "\"face\": ";
  AppendJsonString(out, face.family);
  *out += ", \"style\": ";
  AppendJsonString(out, face.style);
  if (!face.file.empty()) {
    *out += ", \"file\": ";
    AppendJsonString(out, PathText(face.file));
  }
  if (!face.variations.empty()) {
    *out += ", \"variations\": ";
    AppendJsonString(out, Utf8ToUtf16Lossy(face.variations));
  }
}

void AppendFallbacks(std::string* out, const std::vector<CutFace>& faces) {
  *out += ", \"fallbacks\": [";
  for (size_t i = 1; i < faces.size(); ++i) {
    *out += i == 1 ? "{" : ", {";
    AppendFace(out, faces[i]);
    AppendField(out, "characters", static_cast<double>(faces[i].characters));
    *out += "}";
  }
  *out += "]";
}

}  // namespace

std::string NameWithPlaces(const CutFace& face) {
  if (face.variations.empty()) return FaceName(face);
  const std::string file = Utf16ToUtf8(PathText(face.file.filename()));
  return FaceName(face) + " (" + file + (file.empty() ? "" : ", ") + face.variations + ")";
}

std::string SummaryOf(const CutDrawing& made) {
  const DrawingFacts& facts = made.facts;
  const std::string unit = UnitName(made.drawing.unit);
  const int decimals = made.drawing.unit == LengthUnit::kInch ? 4 : 3;
  std::string text;
  if (facts.closed > 0 || facts.open == 0) {
    text = CountedText(facts.closed, "closed path", "closed paths") + ", ";
  }
  if (facts.open > 0) text += CountedText(facts.open, "open path", "open paths") + ", ";
  if (facts.arcs > 0) text += CountedText(facts.arcs, "arc", "arcs") + ", ";
  if (facts.curves > 0) text += CountedText(facts.curves, "curve", "curves") + ", ";
  text += CountedText(facts.lines, "line", "lines");
  text += ", " + Fixed(made.ink.Width(), decimals) + " x " + Fixed(made.ink.Height(), decimals) +
          " " + unit;
  for (const CutFace& face : made.faces) {
    if (face.characters == 0) continue;
    text += ", " + CountedText(face.characters, "character", "characters") + " from " +
            Utf16ToUtf8(face.family);
  }
  return text + ", " + Fixed(facts.length, 1) + " " + unit + " to cut";
}

std::string JsonOf(const CutDrawing& made, const std::vector<WrittenFile>& files) {
  std::string out = "{";
  AppendFace(&out, made.faces[0]);
  out += std::string(", \"madeBold\": ") + (made.faces[0].made_bold ? "true" : "false");
  out += std::string(", \"madeSlanted\": ") + (made.faces[0].made_slanted ? "true" : "false");
  const bool has_fallbacks = made.faces.size() > 1;
  if (has_fallbacks) AppendFallbacks(&out, made.faces);
  out += std::string(", \"unit\": \"") + UnitName(made.drawing.unit) + "\"";
  AppendField(&out, "closedPaths", static_cast<double>(made.facts.closed));
  AppendField(&out, "openPaths", static_cast<double>(made.facts.open));
  AppendField(&out, "arcs", static_cast<double>(made.facts.arcs));
  AppendField(&out, "lines", static_cast<double>(made.facts.lines));
  AppendField(&out, "curves", static_cast<double>(made.facts.curves));
  AppendField(&out, "width", made.ink.Width());
  AppendField(&out, "height", made.ink.Height());
  AppendField(&out, "left", made.ink.min.x);
  AppendField(&out, "bottom", made.ink.min.y);
  AppendField(&out, "length", made.facts.length);
  AppendField(&out, "crossingPaths", static_cast<double>(made.crossing));
  AppendField(&out, "touchingPaths", static_cast<double>(made.touching));
  AppendField(&out, "vanishedPaths", static_cast<double>(made.vanished));
  std::u16string missing;
  for (const char32_t ch : made.missing) AppendCharacter(&missing, ch);
  out += ", \"missing\": ";
  AppendJsonString(&out, missing);
  out += ", \"files\": [";
  for (const WrittenFile& file : files) {
    out += &file == files.data() ? "{\"name\": " : ", {\"name\": ";
    AppendJsonString(&out, Utf8ToUtf16Lossy(file.name));
    AppendField(&out, "bytes", static_cast<double>(file.bytes));
    AppendField(&out, "milliseconds", static_cast<double>(file.milliseconds));
    out += "}";
  }
  out += "]";
  out += ", \"glyphs\": [";
  for (const CutGlyph& glyph : made.glyphs) {
    out += &glyph == made.glyphs.data() ? "{\"glyph\": " : ", {\"glyph\": ";
    AppendInteger(&out, glyph.glyph);
    AppendField(&out, "character", static_cast<double>(glyph.character));
    AppendField(&out, "x", glyph.at.x);
    AppendField(&out, "y", glyph.at.y);
    if (glyph.turned) out += ", \"turned\": true";
    if (has_fallbacks) {
      out += ", \"face\": ";
      AppendJsonString(&out, made.faces[glyph.face].family);
    }
    out += "}";
  }
  return out + "]}\n";
}

}  // namespace kerno
