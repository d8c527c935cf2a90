#include "app/cut_warnings.h"

#include <algorithm>

#include "app/reports.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr size_t kMostListed = 40;  // characters in one message

std::string CharacterName(char32_t ch) {
  if (IsUnseen(ch)) return CodeOf(ch);
  std::u16string text;
  AppendCharacter(&text, ch);
  return Utf16ToUtf8(text) + " (" + CodeOf(ch) + ")";
}

std::string CharacterNames(const std::vector<char32_t>& characters) {
  std::string names;
  for (size_t i = 0; i < characters.size() && i < kMostListed; ++i) {
    if (i > 0) names += ", ";
    names += CharacterName(characters[i]);
  }
  if (characters.size() > kMostListed) {
    names += " and " + std::to_string(characters.size() - kMostListed) + " more";
  }
  return names;
}

// "DejaVu Sans, IPAMincho"
std::string FaceNames(const std::vector<CutFace>& faces) {
  std::string names;
  for (const CutFace& face : faces) {
    names += (names.empty() ? "" : ", ") + Utf16ToUtf8(face.family);
  }
  return names;
}

// Tells of a fallback in another style than asked for; false when that ends it.
bool ReportLackedStyle(const CutFace& face, bool strict) {
  if (face.lacked_style.empty()) return true;
  const std::string why =
      "\"" + Utf16ToUtf8(face.family) + "\" has no \"" + Utf16ToUtf8(face.lacked_style) + "\"";
  if (strict) {
    ReportError("--fallback", why);
    return false;
  }
  const std::string given = CountedText(face.characters, "character is", "characters are");
  ReportWarning("--fallback", why + ": " + given + " of \"" + Utf16ToUtf8(face.style) + "\"");
  return true;
}

// Tells how the faces differ from what was asked for; false when that ends it.
bool ReportFaces(const CutDrawing& made, bool strict) {
  for (const CutFace& face : made.faces) {
    const bool is_first = &face == made.faces.data();
    // The first face has given a glyph when any is not of another one.
    const bool gives = is_first
                           ? std::ranges::any_of(
                                 made.glyphs, [](const CutGlyph& glyph) { return glyph.face == 0; })
                           : face.characters > 0;
    if (!gives) continue;
    if (face.no_embedding) WarnOfLicence(FaceName(face));
    for (const std::string& feature : face.no_features) {
      ReportWarning("--features", FaceName(face) + " has no \"" + feature + "\"");
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

std::string CountedText(size_t count, const char* one, const char* many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

// "DejaVu Sans Book"
void WarnOfLicence(const std::string& face) {
  ReportWarning("licence", face +
                               " does not permit embedding; its outlines were taken: check what "
                               "its licence permits");
}

std::string FaceName(const CutFace& face) {
  return Utf16ToUtf8(face.style.empty() ? face.family : face.family + u" " + face.style);
}

bool ReportLost(std::string_view what, const std::vector<char32_t>& characters, bool strict) {
  if (characters.empty()) return true;
  if (strict) {
    ReportError(what, CharacterNames(characters));
    return false;
  }
  ReportWarning(what, CharacterNames(characters));
  return true;
}

bool ReportOnCut(const CutDrawing& made, bool strict) {
  if (!ReportFaces(made, strict)) return false;
  if (!ReportLost("no glyph in " + FaceNames(made.faces), made.missing, strict)) return false;
  if (made.drawing.placed.empty() && made.vanished == 0) ReportWarning("text", "has no outlines");
  if (made.vanished > 0) {
    ReportWarning("--offset",
                  CountedText(made.vanished, "path", "paths") + " vanished: thinner than it");
  }
  if (made.crossing > 0) {
    ReportWarning("drawing", CountedText(made.crossing, "path crosses itself or another one",
                                         "paths cross themselves or each other"));
  }
  if (made.touching > 0) {
    ReportWarning("drawing", CountedText(made.touching, "path touches itself or another one",
                                         "paths touch or run along themselves or each other"));
  }
  if (made.facts.open > 0 && !made.drawing.strokes) {
    ReportWarning("drawing", CountedText(made.facts.open, "path is", "paths are") + " open");
  }
  return true;
}

}  // namespace kerno
