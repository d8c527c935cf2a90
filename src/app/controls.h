// The controls of the main window and the commands of its menu, for every view alike. Captions,
// names and hints are keys of the table of texts: views show Say(caption) (app/captions.h).
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace kerno {

// The number of each control; views name their controls by it.
enum class ControlId : int {
  kOk = 1,
  kQuit = 2,
  kPreview = 1000,
  kIpx = 1001,
  kDxf = 1002,
  kText = 1003,
  kFace = 1006,
  kVertical = 1007,
  kFirstColor = 1008,
  kSecondColor = 1009,
  kHeightList = 1010,
  kFaceLabel = 1011,
  kHeightLabel = 1012,
  kStatus = 1013,
  kHeightEdit = 1014,
  kHeightSpin = 1015,
  kPolyPolygon = 1016,
  kPaste = 1017,
  kAboutVersion = 1018,
  kAboutCopyright = 1019,
  kIpl = 32066,
  kSvg = 32087,
  kDib = 32088,
  kEmf = 32089,
  kUpload = 32201,

  // The switch between the two ways of working.
  kModeClassic = 3000,
  kModeCut = 3001,

  // The Cut page (cut_controls.h).
  kCutText = 3010,
  kRecentTexts,
  kAlign,
  kDirection,
  kCutVertical,
  kLineSpacing,
  kLetterSpacing,
  kFaceSearch = 3020,
  kFaceFilter,
  kFaceList,
  kFavourite,
  kStyle,
  kAxes,
  kOpenFont,
  kSizeBy = 3030,
  kSizeUnit,
  kSizeWidth,
  kSizeHeight,
  kTrueSize,
  kAngle,
  kSlant,
  kMirror,
  kWeld = 3040,
  kOffset,
  kCurves,
  kTolerance,
  kOrder,
  kCutColor,
  kLayerRule,
  kLayerName,
  kSeriesFile = 3050,
  kOpenSeries,
  kCloseSeries,
  kSeriesBack,
  kSeriesRow,
  kSeriesForward,
  kSeriesNames,
  kSheets,
  kSheetSize,
  kSheetGap,
  kSheetMargin,
  kSheetFrame,
  kSheetPack,
  kSheetNumbers,
  kSeriesWrite,
  kCutPreview = 3070,
  kLook,
  kZoomOut,
  kZoomFigure,
  kZoomIn,
  kZoomFit,
  kZoomTrue,
  kGrid,
  kMeasure,
  kPointer,
  kCutStatus = 3080,
  kSave,
  kSaveMenu,
  kCopySvg,
  kPrint,
  kPresets,
};

enum class ControlKind {
  kButton,
  kDefaultButton,  // pressed by Enter; does nothing, so that Enter in a field closes no window
  kCheckBox,
  kLabel,       // of the control after it
  kTextBox,     // of many lines
  kFaceCombo,   // drop-down lists with an edit: of faces, each shown as it looks,
  kTextCombo,   // and of plain texts
  kColorCombo,  // a drop-down list of colours, each with a swatch
  kNumberEdit,
  kUpDown,  // touches the edit before it
  kPreview,
  kStatus,
  // Of the Cut page only:
  kChoice,      // a drop-down list of texts without an edit
  kField,       // an edit of one line, which can be at fault
  kSearch,      // an edit of one line with a mark to empty it
  kFaceList,    // families with samples; the arrow keys select
  kAxes,        // a slider with a figure for each axis of a variable font
  kMenuButton,  // opens a menu whose entries the presenter gives
  kToggle,      // a button that stays down
  kFigure,      // a text that is not edited, of one line
  kLinks,       // a status with words that do something
};

// The lines of the window from top to bottom; text and preview share the height that is free.
enum class WindowLine {
  kText,
  kFace,
  kColors,
  kPreview,
  kStatus,
  kOutputs,
  kAboutBox,  // none: in the About box
};

inline constexpr int kRestOfLine = 0;

// A control of the windows. Their order is that of the Tab key and, within a line, from left to
// right.
struct ControlRow {
  ControlId id;
  ControlKind kind;
  WindowLine line;
  int width;                 // in pixels of a screen of 96 dpi, where the toolkit has no wish
  const char16_t* caption;   // may be empty; mnemonics are marked with "&"
  const char16_t* name;      // for assistive technology
  const char16_t* hint;      // what it does, shown under the pointer; may be empty
  const char16_t* shortcut;  // presses it for certain where captions share a mnemonic
  bool hidden;               // at the start
  bool at_end;               // of the line; what is free there stands before it
};

std::span<const ControlRow> Controls();
const ControlRow* FindControl(ControlId id);  // null where there is none
const ControlRow& Control(ControlId id);      // there is one

// The caption with "&" before the letter that presses the control: that of its own shortcut where
// it has one (captions may share a letter), else the one that the caption marks.
std::u16string MarkedCaption(std::u16string_view caption, std::u16string_view shortcut);

// Whether the control has a list that drops down.
bool HasDropDown(ControlKind kind);

// The commands of the menu. kAbout is the number of the entry in a system menu.
enum class MenuCommand : int {
  kAbout = 16,
  kOpenFolder,
  kChooseFolder,
  kDefaultFolder,
  kQuit,
  kFitPreview,
  kLines,
  kFaces,
  kLinesAndFaces,
  kPitchClassic,
  kPitchCell,
  kAciClassic,
  kAciNearest,
  kSaveCopy,
  kUndo,
  kRedo,
  kCut,
  kCopy,
  kPaste,
  kSelectAll,
  kLanguageSystem,
  kLanguageJapanese,
  kLanguageEnglish,
  kLanguageGerman,
};

// Whether it does something to the text in the text box, which knows the shortcut by itself.
bool IsEditCommand(MenuCommand command);

// Whether it has to do with Classic's outputs: it is disabled in Cut.
bool IsOfClassicAlone(MenuCommand command);

struct MenuRow {
  MenuCommand command;
  bool checkable;  // one of the checkable entries between two separators is checked
  bool separator_before;
  const char16_t* caption;
  const char16_t* shortcut;  // in the portable notation "Ctrl+Q"; may be empty
};

struct MenuColumn {
  const char16_t* caption;
  std::span<const MenuRow> rows;
};

std::span<const MenuColumn> Menu();
const MenuRow* FindMenuRow(int command);  // null where there is none

// The heights that the drop-down list offers.
std::span<const char16_t* const> HeightChoices();

// The number of rows of a drop-down list, by the room below its combo box: the rows that fit from
// the combo's top to the bottom of the window's client area, 2 fewer where 3 or more fit (keeps the
// list clear of the bottom edge), at least 1.
int DropDownRows(int client_bottom, int combo_top, int item_height);

// What a key does in the preview: zooms in its middle, moves what is seen, or (nothing of these)
// shows all.
struct PreviewKeyRow {
  char16_t key;  // the character; an arrow stands for its key
  double zoom_steps = 0;
  double right = 0, down = 0;  // pixels
};
std::span<const PreviewKeyRow> PreviewKeys();

inline constexpr char16_t kWindowTitle[] = u"Kerno";
inline constexpr int kProgressDelay = 500;  // milliseconds until the progress of something is shown

}  // namespace kerno
