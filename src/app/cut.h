// From a text to a drawing that a machine cuts as it is: true size, closed and welded paths, curves
// kept, in cutting order. The command line, the window and a row of a series all go this way.
//
// Lengths are in the job's unit, angles in degrees, counter-clockwise, y up.
#pragma once

#include <cstdint>
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
  WritingMode mode = WritingMode::kHorizontal;
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
};

struct CutDrawing {
  Drawing drawing;
  DrawingFacts facts;
  Box2 ink;
  std::u16string family, style;  // the font that was taken
  bool made_bold = false;        // the family has no such style: made of this one
  bool made_slanted = false;
  std::vector<std::string> no_features;  // wanted ones that the font has no rule for
  std::vector<CutGlyph> glyphs;          // in the text's order
  std::vector<char32_t> missing;         // distinct characters without a glyph
  size_t vanished = 0;                   // contours that an inward offset left nothing of
  size_t crossing = 0;                   // paths that cross themselves or another one
};

// Fails for a font that cannot be found or read, for a text without ink where a size was asked of
// the ink, and for a tolerance that is not above 0. *made is set on success only.
[[nodiscard]] Status MakeCut(const CutJob& job, CutDrawing* made);

}  // namespace kerno
