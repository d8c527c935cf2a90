#include "cli/cut_report.h"

#include <string_view>

#include "base/number_text.h"
#include "base/text.h"
#include "cli/console.h"
#include "cli/text_source.h"
#include "export/fixed_number.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

std::string Fixed(double value, int decimals) {
  std::string text;
  AppendFixed(&text, value, decimals);
  return text;
}

std::string Counted(size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

const char* UnitName(LengthUnit unit) {
  return unit == LengthUnit::kInch ? "in" : "mm";
}

// "DejaVu Sans Book"
std::string NameOf(const CutFace& face) {
  return Utf16ToUtf8(face.style.empty() ? face.family : face.family + u" " + face.style);
}

// "DejaVu Sans, IPAMincho"
std::string FaceNames(const std::vector<CutFace>& faces) {
  std::string names;
  for (const CutFace& face : faces) {
    names += (names.empty() ? "" : ", ") + Utf16ToUtf8(face.family);
  }
  return names;
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

// Tells of a fallback in another style than asked for; false when that ends the command.
bool ReportLackedStyle(const CutFace& face, bool strict) {
  if (face.lacked_style.empty()) return true;
  const std::string why =
      "\"" + Utf16ToUtf8(face.family) + "\" has no \"" + Utf16ToUtf8(face.lacked_style) + "\"";
  if (strict) {
    ReportError("--fallback", why);
    return false;
  }
  const std::string given = Counted(face.characters, "character is", "characters are");
  ReportWarning("--fallback", why + ": " + given + " of \"" + Utf16ToUtf8(face.style) + "\"");
  return true;
}

// Tells how the faces differ from what was asked for; false when that ends the command.
bool ReportFaces(const CutDrawing& made, bool strict) {
  for (const CutFace& face : made.faces) {
    const bool is_first = &face == made.faces.data();
    // The first face has given a glyph when any is not of another one.
    const bool gives = is_first
                           ? std::ranges::any_of(
                                 made.glyphs, [](const CutGlyph& glyph) { return glyph.face == 0; })
                           : face.characters > 0;
    if (!gives) continue;
    for (const std::string& feature : face.no_features) {
      ReportWarning("--features", NameOf(face) + " has no \"" + feature + "\"");
    }
    if (!ReportLackedStyle(face, strict)) return false;
    if (!face.made_bold && !face.made_slanted) continue;
    const bool both = face.made_bold && face.made_slanted;
    const char* letters = both             ? "bold and slanted letters"
                          : face.made_bold ? "bold letters"
                                           : "slanted letters";
    const char* how = both             ? "moved outwards and leaned"
                      : face.made_bold ? "moved outwards"
                                       : "leaned";
    const std::string why = "\"" + Utf16ToUtf8(face.family) + "\" has no " + letters;
    if (strict) {
      ReportError("--style", why);
      return false;
    }
    ReportWarning("--style", why + ": those of \"" + Utf16ToUtf8(face.style) + "\" are " + how);
  }
  return true;
}

}  // namespace

std::string NameWithPlaces(const CutFace& face) {
  if (face.variations.empty()) return NameOf(face);
  const std::string file = Utf16ToUtf8(PathText(face.file.filename()));
  return NameOf(face) + " (" + file + (file.empty() ? "" : ", ") + face.variations + ")";
}

std::string SummaryOf(const CutDrawing& made) {
  const DrawingFacts& facts = made.facts;
  const std::string unit = UnitName(made.drawing.unit);
  const int decimals = made.drawing.unit == LengthUnit::kInch ? 4 : 3;
  std::string text;
  if (facts.closed > 0 || facts.open == 0) {
    text = Counted(facts.closed, "closed path", "closed paths") + ", ";
  }
  if (facts.open > 0) text += Counted(facts.open, "open path", "open paths") + ", ";
  if (facts.arcs > 0) text += Counted(facts.arcs, "arc", "arcs") + ", ";
  if (facts.curves > 0) text += Counted(facts.curves, "curve", "curves") + ", ";
  text += Counted(facts.lines, "line", "lines");
  text += ", " + Fixed(made.ink.Width(), decimals) + " x " + Fixed(made.ink.Height(), decimals) +
          " " + unit;
  for (const CutFace& face : made.faces) {
    if (face.characters == 0) continue;
    text += ", " + Counted(face.characters, "character", "characters") + " from " +
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

bool ReportOnCut(const CutDrawing& made, bool strict) {
  if (!ReportFaces(made, strict)) return false;
  if (!ReportLost("no glyph in " + FaceNames(made.faces), made.missing, strict)) return false;
  if (made.drawing.placed.empty() && made.vanished == 0) ReportWarning("text", "has no outlines");
  if (made.vanished > 0) {
    ReportWarning("--offset",
                  Counted(made.vanished, "path", "paths") + " vanished: thinner than it");
  }
  if (made.crossing > 0) {
    ReportWarning("drawing", Counted(made.crossing, "path crosses itself or another one",
                                     "paths cross themselves or each other"));
  }
  if (made.touching > 0) {
    ReportWarning("drawing", Counted(made.touching, "path touches itself or another one",
                                     "paths touch or run along themselves or each other"));
  }
  if (made.facts.open > 0 && !made.drawing.strokes) {
    ReportWarning("drawing", Counted(made.facts.open, "path is", "paths are") + " open");
  }
  return true;
}

}  // namespace kerno
