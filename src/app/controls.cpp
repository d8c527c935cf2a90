#include "app/controls.h"

#include <algorithm>
#include <iterator>

namespace kerno {
namespace {

constexpr int kButtonWidth = 80;
constexpr int kLabelWidth = 44;
constexpr int kNumberWidth = 90;
constexpr int kColorWidth = 170;

using Id = ControlId;
using Kind = ControlKind;
using Line = WindowLine;

constexpr ControlRow Shown(Id id, Kind kind, Line line, int width, const char16_t* caption,
                           const char16_t* name, const char16_t* hint,
                           const char16_t* shortcut = u"") {
  return {id, kind, line, width, caption, name, hint, shortcut, false, false};
}
constexpr ControlRow Hidden(ControlRow row) {
  row.hidden = true;
  return row;
}
constexpr ControlRow AtEnd(ControlRow row) {
  row.at_end = true;
  return row;
}
constexpr ControlRow Label(Id id, const char16_t* caption) {
  return Shown(id, Kind::kLabel, Line::kFace, kLabelWidth, caption, u"", u"");
}
constexpr ControlRow Output(Id id, const char16_t* caption, const char16_t* name,
                            const char16_t* hint, const char16_t* shortcut = u"") {
  return Shown(id, Kind::kButton, Line::kOutputs, kButtonWidth, caption, name, hint, shortcut);
}
constexpr ControlRow AboutText(Id id, const char16_t* name) {
  return Shown(id, Kind::kLabel, Line::kAboutBox, kRestOfLine, u"", name, u"");
}

constexpr ControlRow kControls[] = {
    Shown(Id::kText, Kind::kTextBox, Line::kText, kRestOfLine, u"", u"Text", u""),
    Shown(Id::kPaste, Kind::kButton, Line::kText, kButtonWidth, u"Paste", u"Paste",
          u"Paste the clipboard into the text"),

    Label(Id::kFaceLabel, u"F&ace"),
    Shown(Id::kFace, Kind::kFaceCombo, Line::kFace, kRestOfLine, u"", u"Face", u""),
    Shown(Id::kVertical, Kind::kCheckBox, Line::kFace, 44, u"@", u"Vertical writing",
          u"Vertical writing"),
    Label(Id::kHeightLabel, u"&Height"),
    Shown(Id::kHeightList, Kind::kTextCombo, Line::kFace, kNumberWidth, u"", u"Height",
          u"Character height in drawing units"),
    Shown(Id::kHeightEdit, Kind::kNumberEdit, Line::kFace, kNumberWidth, u"", u"Height as a number",
          u"Character height in drawing units"),
    Shown(Id::kHeightSpin, Kind::kUpDown, Line::kFace, 18, u"", u"Height, step by step", u""),

    Shown(Id::kPolyPolygon, Kind::kCheckBox, Line::kColors, 102, u"PolyPolygon",
          u"Preview as one filled figure",
          u"Show the outlines as one filled figure; otherwise each contour in its own colour"),
    Shown(Id::kFirstColor, Kind::kColorCombo, Line::kColors, kColorWidth, u"", u"Text colour",
          u"Colour of the text and of the filled figure"),
    Shown(Id::kSecondColor, Kind::kColorCombo, Line::kColors, kColorWidth, u"", u"Outline colour",
          u"Colour of the figure's outline"),

    Shown(Id::kPreview, Kind::kPreview, Line::kPreview, kRestOfLine, u"", u"Preview",
          u"Wheel zooms, dragging moves, a double click shows all"),
    Shown(Id::kStatus, Kind::kStatus, Line::kStatus, kRestOfLine, u"", u"Status", u""),

    Output(Id::kDxf, u"&DXF", u"Write DXF", u"Write a DXF drawing and a metafile", u"Alt+D"),
    Output(Id::kSvg, u"&SVG", u"Write SVG",
           u"Write an SVG drawing, a metafile and the page of the outputs"),
    Output(Id::kIpx, u"&IPX", u"Write IPX", u"Write an IPX parts file and its sizes (IPL)"),
    Output(Id::kDib, u"DI&B", u"Write a bitmap", u"Write a bitmap (Alt+B)", u"Alt+B"),
    Hidden(Output(Id::kUpload, u"&Upload", u"Upload",
                  u"Build the page of the outputs and send the files to the server")),
    Hidden(Output(Id::kEmf, u"EMF", u"Write a metafile", u"Write a metafile")),
    Hidden(Output(Id::kIpl, u"ipl", u"Write IPL", u"Write the sizes of the parts")),
    AtEnd(Output(Id::kQuit, u"Quit", u"Quit", u"Close the window")),
    Hidden(Shown(Id::kOk, Kind::kDefaultButton, Line::kOutputs, kButtonWidth, u"OK", u"OK", u"")),

    AboutText(Id::kAboutVersion, u"Version"),
    AboutText(Id::kAboutCopyright, u"Copyright"),
};

constexpr MenuRow kFileRows[] = {
    {MenuCommand::kOpenFolder, false, false, u"&Open the folder of the outputs", u"Ctrl+O"},
    {MenuCommand::kChooseFolder, false, false, u"&Choose the folder of the outputs...", u""},
    {MenuCommand::kDefaultFolder, false, false, u"Use the &temporary folder", u""},
    {MenuCommand::kSaveCopy, false, true, u"Save a copy &as...", u"Ctrl+Shift+S"},
    {MenuCommand::kQuit, false, true, u"&Quit", u"Ctrl+Q"},
};
constexpr MenuRow kEditRows[] = {
    {MenuCommand::kUndo, false, false, u"&Undo", u"Ctrl+Z"},
    {MenuCommand::kRedo, false, false, u"&Redo", u"Ctrl+Y"},
    {MenuCommand::kCut, false, true, u"Cu&t", u"Ctrl+X"},
    {MenuCommand::kCopy, false, false, u"&Copy", u"Ctrl+C"},
    {MenuCommand::kPaste, false, false, u"&Paste", u"Ctrl+V"},
    {MenuCommand::kSelectAll, false, true, u"Select &all", u"Ctrl+A"},
};
constexpr MenuRow kViewRows[] = {
    {MenuCommand::kFitPreview, false, false, u"Show the &whole drawing", u"Ctrl+0"},
    {MenuCommand::kLanguageSystem, true, true, u"As the s&ystem", u""},
    {MenuCommand::kLanguageJapanese, true, false, u"日本語", u""},
    {MenuCommand::kLanguageEnglish, true, false, u"English", u""},
    {MenuCommand::kLanguageGerman, true, false, u"Deutsch", u""},
};
constexpr MenuRow kOptionRows[] = {
    {MenuCommand::kLines, true, false, u"Contours as &lines", u""},
    {MenuCommand::kFaces, true, false, u"Contours as &faces", u""},
    {MenuCommand::kLinesAndFaces, true, false, u"Contours as lines &and faces", u""},
    {MenuCommand::kPitchClassic, true, true, u"Vertical pitch: by the &ink", u""},
    {MenuCommand::kPitchCell, true, false, u"Vertical pitch: by the &cell", u""},
    {MenuCommand::kAciClassic, true, true, u"Colour index (DXF): classic &rule", u""},
    {MenuCommand::kAciNearest, true, false, u"Colour index (DXF): &nearest colour", u""},
};
constexpr MenuRow kHelpRows[] = {
    {MenuCommand::kAbout, false, false, u"&About Kerno...", u"F1"},
};
constexpr MenuColumn kMenu[] = {
    {u"&File", kFileRows},      {u"&Edit", kEditRows}, {u"&View", kViewRows},
    {u"&Options", kOptionRows}, {u"Hel&p", kHelpRows},
};

constexpr const char16_t* kHeights[] = {
    u"0",   u"1",   u"2",    u"3",    u"5",    u"7",    u"10",   u"15",
    u"20",  u"25",  u"30",   u"50",   u"100",  u"150",  u"200",  u"250",
    u"300", u"500", u"1000", u"1500", u"2000", u"2500", u"3000", u"10000",
};

constexpr double kKeyStep = 40;
constexpr PreviewKeyRow kPreviewKeys[] = {
    {.key = u'+', .zoom_steps = 1},
    {.key = u'-', .zoom_steps = -1},
    {.key = u'0'},
    {.key = u'←', .right = kKeyStep},
    {.key = u'→', .right = -kKeyStep},
    {.key = u'↑', .down = kKeyStep},
    {.key = u'↓', .down = -kKeyStep},
};

}  // namespace

std::span<const ControlRow> Controls() {
  return kControls;
}

const ControlRow* FindControl(ControlId id) {
  const auto* const row =
      std::find_if(std::begin(kControls), std::end(kControls),
                   [id](const ControlRow& control) { return control.id == id; });
  return row == std::end(kControls) ? nullptr : row;
}

const ControlRow& Control(ControlId id) {
  return *FindControl(id);
}

std::u16string MarkedCaption(std::u16string_view caption, std::u16string_view shortcut) {
  std::u16string marked(caption);
  constexpr std::u16string_view kAlt = u"Alt+";
  if (!shortcut.starts_with(kAlt)) return marked;
  std::erase(marked, u'&');
  const size_t letter = marked.find(shortcut.substr(kAlt.size()));
  if (letter != std::u16string::npos) marked.insert(letter, 1, u'&');
  return marked;
}

bool HasDropDown(ControlKind kind) {
  return kind == ControlKind::kFaceCombo || kind == ControlKind::kTextCombo ||
         kind == ControlKind::kColorCombo;
}

std::span<const MenuColumn> Menu() {
  return kMenu;
}

const MenuRow* FindMenuRow(int command) {
  for (const MenuColumn& column : kMenu) {
    for (const MenuRow& row : column.rows) {
      if (static_cast<int>(row.command) == command) return &row;
    }
  }
  return nullptr;
}

bool IsOfClassicAlone(MenuCommand command) {
  switch (command) {
    case MenuCommand::kOpenFolder:
    case MenuCommand::kChooseFolder:
    case MenuCommand::kDefaultFolder:
    case MenuCommand::kSaveCopy:
    case MenuCommand::kLines:
    case MenuCommand::kFaces:
    case MenuCommand::kLinesAndFaces:
    case MenuCommand::kPitchClassic:
    case MenuCommand::kPitchCell:
    case MenuCommand::kAciClassic:
    case MenuCommand::kAciNearest:
      return true;
    default:
      return false;
  }
}

bool IsEditCommand(MenuCommand command) {
  return command >= MenuCommand::kUndo && command <= MenuCommand::kSelectAll;
}

std::span<const char16_t* const> HeightChoices() {
  return kHeights;
}

std::span<const PreviewKeyRow> PreviewKeys() {
  return kPreviewKeys;
}

int DropDownRows(int client_bottom, int combo_top, int item_height) {
  int rows = item_height > 0 ? (client_bottom - combo_top) / item_height : 0;
  if (rows >= 3) rows -= 2;
  return rows > 0 ? rows : 1;
}

}  // namespace kerno
