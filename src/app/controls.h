// The controls of the main window and the commands of its menu, for every view alike.
#pragma once

#include <span>
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
};

// What a control says. Captions mark their mnemonic with "&".
struct ControlRow {
  ControlId id;
  const char16_t* caption;  // empty where the control has none
  const char16_t* name;     // for assistive technology
  const char16_t* hint;     // what it does, shown under the pointer; may be empty
  bool hidden;              // at the start
  // Where two captions share a mnemonic: the key that presses this one for certain; "Alt+B".
  const char16_t* shortcut = u"";
};

std::span<const ControlRow> Controls();
const ControlRow& Control(ControlId id);

// The buttons of the outputs, in the order in which they stand.
std::span<const ControlId> OutputButtons();

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
};

struct MenuRow {
  MenuCommand command;
  const char16_t* caption;
  const char16_t* shortcut;  // in the portable notation "Ctrl+Q"; may be empty
  bool checkable;            // one of the checkable entries between two separators is checked
  bool separator_before;
};

struct MenuColumn {
  const char16_t* caption;
  std::span<const MenuRow> rows;
};

std::span<const MenuColumn> Menu();

// The heights that the drop-down list offers.
std::span<const char16_t* const> HeightChoices();

// The number of rows of a drop-down list, by the room below its combo box: the rows that fit from
// the combo's top to the bottom of the window's client area, 2 fewer where 3 or more fit (keeps the
// list clear of the bottom edge), at least 1.
int DropDownRows(int client_bottom, int combo_top, int item_height);

}  // namespace kerno
