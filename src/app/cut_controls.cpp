#include "app/cut_controls.h"

#include <algorithm>
#include <iterator>

namespace kerno {
namespace {

using Id = ControlId;
using Kind = ControlKind;
using In = CutSection;

constexpr CutControlRow Row(Id id, Kind kind, In section, int width, const char16_t* caption,
                            const char16_t* hint, const char* option = nullptr) {
  return {id, kind, section, false, width, caption, hint, u"", option};
}
constexpr CutControlRow Beside(CutControlRow row) {
  row.same_line = true;
  return row;
}
constexpr CutControlRow WithKey(CutControlRow row, const char16_t* shortcut) {
  row.shortcut = shortcut;
  return row;
}

constexpr int kWord = 120, kShort = 72, kButton = 88;

constexpr CutControlRow kRows[] = {
    Row(Id::kCutText, Kind::kTextBox, In::kText, kRestOfLine, u"", u"Type the text to cut"),
    Row(Id::kAlign, Kind::kChoice, In::kText, kWord, u"Alignment", u"Of several lines", "--align"),
    Beside(Row(Id::kRecentTexts, Kind::kMenuButton, In::kText, kButton, u"Recent texts",
               u"Texts that were written to files")),
    Row(Id::kLineSpacing, Kind::kField, In::kText, kShort, u"Line spacing",
        u"Multiplies the face's own distance of lines", "--line-spacing"),
    Beside(Row(Id::kLetterSpacing, Kind::kField, In::kText, kShort, u"Letter spacing",
               u"A length that is added after each character", "--letter-spacing")),
    Row(Id::kDirection, Kind::kChoice, In::kText, kWord, u"Direction",
        u"Of each line; as the text: that of its first letter with a direction", "--direction"),
    Beside(Row(Id::kCutVertical, Kind::kCheckBox, In::kText, kWord, u"Vertical",
               u"Columns from top to bottom, the first one on the right", "--vertical")),

    Row(Id::kFaceSearch, Kind::kSearch, In::kFace, kRestOfLine, u"", u"Search faces"),
    Beside(Row(Id::kFaceFilter, Kind::kMenuButton, In::kFace, kButton, u"Show",
               u"Which faces the list shows")),
    Row(Id::kFaceList, Kind::kFaceList, In::kFace, kRestOfLine, u"",
        u"Faces with the text in each; F marks a favourite"),
    Row(Id::kStyle, Kind::kChoice, In::kFace, kRestOfLine, u"Style", u"", "--style"),
    Beside(Row(Id::kFavourite, Kind::kToggle, In::kFace, kButton, u"Favourite",
               u"Favourites stand at the top of the list")),
    Row(Id::kAxes, Kind::kAxes, In::kFace, kRestOfLine, u"", u"", "--variation"),
    Row(Id::kOpenFont, Kind::kButton, In::kFace, kWord, u"Open a font file...",
        u"A font that is not installed, or a font of strokes"),

    Row(Id::kSizeBy, Kind::kChoice, In::kSize, kWord, u"Size by", u"What the size is measured on"),
    Beside(Row(Id::kSizeUnit, Kind::kChoice, In::kSize, kShort, u"", u"Unit of the lengths here")),
    Row(Id::kSizeWidth, Kind::kField, In::kSize, kShort, u"Width",
        u"A length or a sum: 120, 4*30, 12cm, 5in"),
    Beside(Row(Id::kSizeHeight, Kind::kField, In::kSize, kShort, u"Height",
               u"A length or a sum: 20, 20*2, 2cm, 0.8in")),
    Row(Id::kTrueSize, Kind::kFigure, In::kSize, kRestOfLine, u"Size of the drawing", u""),
    Row(Id::kAngle, Kind::kField, In::kSize, kShort, u"Turn", u"Degrees, counter-clockwise",
        "--angle"),
    Beside(Row(Id::kSlant, Kind::kField, In::kSize, kShort, u"Slant", u"Degrees to the right",
               "--slant")),
    Beside(Row(Id::kMirror, Kind::kCheckBox, In::kSize, kShort, u"Mirror",
               u"Left and right change places", "--mirror")),

    Row(Id::kWeld, Kind::kChoice, In::kPaths, kWord, u"Weld", u"Joins what overlaps", "--weld"),
    Row(Id::kOffset, Kind::kField, In::kPaths, kShort, u"Offset",
        u"Moves outlines outwards, below 0 inwards, for the width of the beam", "--offset"),
    Row(Id::kCurves, Kind::kChoice, In::kPaths, kWord, u"Curves as", u"What curves become",
        "--curves"),
    Beside(Row(Id::kTolerance, Kind::kField, In::kPaths, kShort, u"Tolerance",
               u"The farthest that a path strays from the true curve", "--tolerance")),
    Row(Id::kOrder, Kind::kChoice, In::kPaths, kWord, u"Order", u"In which paths are cut",
        "--order"),
    Row(Id::kCutColor, Kind::kColorCombo, In::kPaths, kWord, u"Colour", u"Of what is cut",
        "--colour"),
    Row(Id::kLayerRule, Kind::kChoice, In::kPaths, kWord, u"Layers", u"What has a layer of its own",
        "--layers"),
    Beside(Row(Id::kLayerName, Kind::kField, In::kPaths, kShort, u"Name",
               u"Of the layer, or the first word of the layers' names", "--layer")),

    Row(Id::kSeriesFile, Kind::kFigure, In::kSeries, kRestOfLine, u"",
        u"Drop a list here: one sign for each of its rows"),
    Row(Id::kOpenSeries, Kind::kButton, In::kSeries, kButton, u"Open a list...",
        u"A table with commas (CSV); its columns are fields of the text: {name}"),
    Beside(Row(Id::kCloseSeries, Kind::kButton, In::kSeries, kButton, u"Close the list", u"")),
    Row(Id::kSeriesBack, Kind::kButton, In::kSeries, 32, u"◀", u"The row before"),
    Beside(Row(Id::kSeriesRow, Kind::kField, In::kSeries, kShort, u"",
               u"Number of the row in the preview")),
    Beside(Row(Id::kSeriesForward, Kind::kButton, In::kSeries, 32, u"▶", u"The next row")),
    Row(Id::kSeriesNames, Kind::kField, In::kSeries, kRestOfLine, u"Names",
        u"Of the files: {row:03}-{name}.dxf"),
    Row(Id::kSheets, Kind::kCheckBox, In::kSeries, kWord, u"On sheets",
        u"Puts the signs side by side on sheets of material"),
    Beside(Row(Id::kSheetPack, Kind::kCheckBox, In::kSeries, kWord, u"Packed",
               u"Each sign takes its own size, not that of the largest")),
    Row(Id::kSheetSize, Kind::kField, In::kSeries, kWord, u"Sheet", u"Width and height: 600x400"),
    Row(Id::kSheetGap, Kind::kField, In::kSeries, kShort, u"Gap", u"Between two signs"),
    Beside(Row(Id::kSheetMargin, Kind::kField, In::kSeries, kShort, u"Margin",
               u"Free along the edges of the sheet")),
    Row(Id::kSheetFrame, Kind::kField, In::kSeries, kWord, u"Frame",
        u"Cut around each sign: 40x15; empty: none"),
    Beside(Row(Id::kSheetNumbers, Kind::kCheckBox, In::kSeries, kWord, u"Row numbers",
               u"On a layer of their own, to be engraved")),
    Row(Id::kSeriesWrite, Kind::kButton, In::kSeries, kWord, u"Write all...",
        u"Writes the files of all rows into a folder"),

    Row(Id::kCutPreview, Kind::kPreview, In::kPreview, kRestOfLine, u"",
        u"Wheel zooms, dragging moves, with Ctrl it takes the drawing out as a file; a double "
        u"click "
        u"shows all"),
    Row(Id::kLook, Kind::kChoice, In::kZoomBar, kWord, u"", u"What the preview shows"),
    WithKey(Beside(Row(Id::kZoomOut, Kind::kButton, In::kZoomBar, 28, u"−", u"Smaller")),
            u"Ctrl+-"),
    Beside(Row(Id::kZoomFigure, Kind::kFigure, In::kZoomBar, 56, u"", u"Of the true size")),
    WithKey(Beside(Row(Id::kZoomIn, Kind::kButton, In::kZoomBar, 28, u"+", u"Larger")), u"Ctrl++"),
    WithKey(Beside(Row(Id::kZoomFit, Kind::kButton, In::kZoomBar, 48, u"Fit",
                       u"Shows the whole drawing")),
            u"Ctrl+0"),
    WithKey(Beside(Row(Id::kZoomTrue, Kind::kButton, In::kZoomBar, 40, u"1:1", u"The true size")),
            u"Ctrl+1"),
    Beside(Row(Id::kGrid, Kind::kToggle, In::kZoomBar, 48, u"Grid", u"Lines at even distances")),
    Beside(Row(Id::kMeasure, Kind::kToggle, In::kZoomBar, 64, u"Measure",
               u"The distance between two clicks")),
    Beside(Row(Id::kPointer, Kind::kFigure, In::kZoomBar, kRestOfLine, u"", u"")),

    Row(Id::kCutStatus, Kind::kLinks, In::kOutput, kRestOfLine, u"", u""),
    Beside(Row(Id::kPresets, Kind::kMenuButton, In::kOutput, kButton, u"Presets",
               u"Settings by a name")),
    WithKey(Beside(Row(Id::kCopySvg, Kind::kButton, In::kOutput, kButton, u"Copy as SVG",
                       u"Puts the drawing on the clipboard")),
            u"Ctrl+Shift+C"),
    WithKey(Beside(Row(Id::kPrint, Kind::kButton, In::kOutput, kButton, u"Print...",
                       u"On paper, in true size")),
            u"Ctrl+P"),
    WithKey(Beside(Row(Id::kSave, Kind::kDefaultButton, In::kOutput, 110, u"Save DXF...",
                       u"Writes the drawing to a file")),
            u"Ctrl+S"),
    WithKey(Beside(Row(Id::kSaveMenu, Kind::kMenuButton, In::kOutput, 24, u"▾", u"Other formats")),
            u"Ctrl+Shift+S"),
};

}  // namespace

const char16_t* TitleOf(CutSection section) {
  switch (section) {
    case CutSection::kText:
      return u"Text";
    case CutSection::kFace:
      return u"Face";
    case CutSection::kSize:
      return u"Size";
    case CutSection::kPaths:
      return u"Cut";
    case CutSection::kSeries:
      return u"Series";
    default:
      return u"";
  }
}

std::span<const CutControlRow> CutControls() {
  return kRows;
}

const char16_t* NameOf(const CutControlRow& row) {
  switch (row.kind) {
    case ControlKind::kTextBox:
      return u"Text";
    case ControlKind::kPreview:
      return u"Preview";
    case ControlKind::kFaceList:
      return u"Faces";
    default:
      return row.caption;
  }
}

const CutControlRow* FindCutControl(ControlId id) {
  const auto* const row = std::ranges::find(kRows, id, &CutControlRow::id);
  return row == std::end(kRows) ? nullptr : row;
}

}  // namespace kerno
