// From a text to a drawing that a machine cuts as it is: true size, closed and welded paths, curves
// kept, in cutting order. The command line, the window and a row of a series all go this way.
//
// Lengths are in the job's unit, angles in degrees, counter-clockwise, y up.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "drawing/cutting_order.h"
#include "drawing/drawing.h"
#include "outline/text_block.h"
#include "platform/status.h"

namespace kerno {

// How large the text becomes.
struct CutSize {
  enum class By {
    kCapHeight,  // `height` is that of capital letters
    kEm,         // `height` is that of an em
    kFit,        // the ink fills `width` or `height` (0: no limit), whichever is reached first
    kStretch,    // the ink fills both, without its proportions
  };
  By by = By::kCapHeight;
  double width = 0;
  double height = 20;
};

// A point of the ink's box: 0 left or bottom, 1 middle, 2 right or top.
struct Anchor {
  int across = 0, up = 0;
};

enum class CurveForm {
  kArcs,    // lines and circular arcs
  kLines,   // chords
  kCurves,  // the font's own Béziers
};

enum class WeldScope {
  kNone,   // contours as the font has them
  kGlyph,  // within each glyph
  kText,   // between glyphs, too
};

struct CutJob {
  std::u16string text;  // lines by LF, CR LF or CR
  FaceRequest face;
  std::vector<std::u16string> fallbacks;  // families that characters come from which it lacks
  std::string language;                   // a BCP 47 tag; empty: the font's own way
  ParagraphDirection direction = ParagraphDirection::kAuto;  // of each line
  std::u16string stroke_font;  // a font of strokes instead, by its name or file; empty: none
  WritingMode mode = WritingMode::kHorizontal;
  size_t across_digits = 0;  // in columns, numbers of so many digits at most stand across
  Alignment align = Alignment::kLeft;
  double line_spacing = 1;    // of the font's own distance of lines
  double letter_spacing = 0;  // added after each character

  CutSize size;
  double slant = 0;     // leans to the right
  bool mirror = false;  // left and right change places
  double angle = 0;     // turns the whole
  P2 at;                // where the anchor of the ink's box goes
  Anchor anchor;
  LengthUnit unit = LengthUnit::kMillimetre;

  CurveForm curves = CurveForm::kArcs;
  double tolerance = 0.01;  // the farthest that the drawing strays from the true curve
  WeldScope weld = WeldScope::kText;
  double offset = 0;  // outwards
  CutOrder order = CutOrder::kInsideFirst;
};

// One glyph of the text where it stands in the drawing.
struct CutGlyph {
  uint32_t glyph = 0;
  size_t character = 0;  // the UTF-16 unit of the text that it begins at
  P2 at;                 // where its origin is
  size_t face = 0;       // of the drawing's faces
  bool turned = false;   // lies on its right side, in a column
};

// A font that glyphs were taken from.
struct CutFace {
  std::u16string family, style;
  std::filesystem::path file = {};  // empty where the system does not tell
  std::string variations = {};      // places on its axes
  size_t characters = 0;            // that it gave in place of the first one
  bool made_bold = false;           // the family has no such style: made of this one
  bool made_slanted = false;
  std::u16string lacked_style = {};           // wanted of a fallback, which has no such style
  bool no_embedding = false;  // its maker wants to be asked before outlines are taken along
  std::vector<std::string> no_features = {};  // wanted ones that the font has no rule for
};

struct CutDrawing {
  Drawing drawing;
  DrawingFacts facts;
  Box2 ink;
  std::vector<CutFace> faces;     // the font that was taken, and the fallbacks
  std::vector<CutGlyph> glyphs;   // in the text's order
  std::vector<char32_t> missing;  // distinct characters without a glyph in any face
  size_t vanished = 0;            // contours that an inward offset left nothing of
  size_t crossing = 0;            // paths that cross themselves or another one
  size_t touching = 0;            // that touch; counted where letters are not welded
};

// Fails for a font that cannot be found or read, for a text without ink where a size was asked of
// the ink, and for a tolerance that is not above 0. With a font of strokes the paths are its
// strokes, each once, which are neither welded nor moved outwards. *made is set on success only.
[[nodiscard]] Status MakeCut(const CutJob& job, CutDrawing* made);

// Makes drawings one after the other, each as MakeCut makes it, and keeps what they share: open
// fonts, outlines, finished shapes. For one thread at a time; many threads have one each.
class CutWorkshop {
 public:
  CutWorkshop();
  ~CutWorkshop();
  CutWorkshop(const CutWorkshop&) = delete;
  CutWorkshop& operator=(const CutWorkshop&) = delete;

  // Opens the job's fonts, whatever its text; fails as Make does for them.
  [[nodiscard]] Status Open(const CutJob& job);
  [[nodiscard]] Status Make(const CutJob& job, CutDrawing* made);

 private:
  friend Status MakeCut(const CutJob& job, CutDrawing* made);
  [[nodiscard]] Status Make(const CutJob& job, bool later, CutDrawing* made);

  struct Fonts;
  std::vector<std::unique_ptr<Fonts>> fonts_;  // those used last come first
};

}  // namespace kerno
