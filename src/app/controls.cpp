#include "app/controls.h"

#include <array>

namespace kerno {
namespace {

constexpr ControlRow kControls[] = {
    {ControlId::kOk, u"OK", u"OK", u"", true},
    {ControlId::kQuit, u"終了", u"Quit", u"Close the window", false},
    {ControlId::kDxf, u"&DXF", u"Write DXF", u"Write a DXF drawing and a metafile", false,
     u"Alt+D"},
    {ControlId::kSvg, u"&SVG", u"Write SVG",
     u"Write an SVG drawing, a metafile and the page of the outputs", false},
    {ControlId::kIpx, u"&IPX", u"Write IPX", u"Write an IPX parts file and its sizes (IPL)", false},
    {ControlId::kDib, u"&DIB", u"Write a bitmap", u"Write a bitmap (Alt+B)", false, u"Alt+B"},
    {ControlId::kEmf, u"EMF", u"Write a metafile", u"Write a metafile", true},
    {ControlId::kIpl, u"ipl", u"Write IPL", u"Write the sizes of the parts", true},
    {ControlId::kUpload, u"&Upload", u"Upload",
     u"Build the page of the outputs and send the files to the server", true},
    {ControlId::kText, u"", u"Text", u"", false},
    {ControlId::kPaste, u"貼り付け", u"Paste", u"Paste the clipboard into the text", false},
    {ControlId::kFace, u"", u"Face", u"", false},
    {ControlId::kVertical, u"@", u"Vertical writing", u"Vertical writing", false},
    {ControlId::kHeightList, u"", u"Height", u"Character height in drawing units", false},
    {ControlId::kHeightEdit, u"", u"Height as a number", u"Character height in drawing units",
     false},
    {ControlId::kHeightSpin, u"", u"Height, step by step", u"", false},
    {ControlId::kPolyPolygon, u"PolyPolygon", u"Preview as one filled figure",
     u"Show the outlines as one filled figure; otherwise each contour in its own colour", false},
    {ControlId::kFirstColor, u"", u"Text colour", u"Colour of the text and of the filled figure",
     false},
    {ControlId::kSecondColor, u"", u"Outline colour", u"Colour of the figure's outline", false},
    {ControlId::kFaceLabel, u"F&ace", u"", u"", false},
    {ControlId::kHeightLabel, u"&Height", u"", u"", false},
    {ControlId::kStatus, u"", u"Status", u"", false},
    {ControlId::kPreview, u"", u"Preview", u"Wheel zooms, dragging moves, a double click shows all",
     false},
    {ControlId::kAboutVersion, u"", u"Version", u"", false},
    {ControlId::kAboutCopyright, u"", u"Copyright", u"", false},
};

constexpr MenuRow kFileRows[] = {
    {MenuCommand::kOpenFolder, u"&Open the folder of the outputs", u"Ctrl+O", false, false},
    {MenuCommand::kChooseFolder, u"&Choose the folder of the outputs...", u"", false, false},
    {MenuCommand::kDefaultFolder, u"Use the &temporary folder", u"", false, false},
    {MenuCommand::kQuit, u"&Quit", u"Ctrl+Q", false, true},
};
constexpr MenuRow kViewRows[] = {
    {MenuCommand::kFitPreview, u"Show the &whole drawing", u"Ctrl+0", false, false},
};
constexpr MenuRow kOptionRows[] = {
    {MenuCommand::kLines, u"Contours as &lines", u"", true, false},
    {MenuCommand::kFaces, u"Contours as &faces", u"", true, false},
    {MenuCommand::kLinesAndFaces, u"Contours as lines &and faces", u"", true, false},
    {MenuCommand::kPitchClassic, u"Vertical pitch: by the &ink", u"", true, true},
    {MenuCommand::kPitchCell, u"Vertical pitch: by the &cell", u"", true, false},
    {MenuCommand::kAciClassic, u"Colour index (DXF): c&lassic rule", u"", true, true},
    {MenuCommand::kAciNearest, u"Colour index (DXF): &nearest colour", u"", true, false},
};
constexpr MenuRow kHelpRows[] = {
    {MenuCommand::kAbout, u"ﾊﾞｰｼﾞｮﾝ情報(&A)...", u"F1", false, false},
};
constexpr MenuColumn kMenu[] = {
    {u"&File", kFileRows},
    {u"&View", kViewRows},
    {u"&Options", kOptionRows},
    {u"Hel&p", kHelpRows},
};

constexpr const char16_t* kHeights[] = {
    u"0",   u"1",   u"2",    u"3",    u"5",    u"7",    u"10",   u"15",
    u"20",  u"25",  u"30",   u"50",   u"100",  u"150",  u"200",  u"250",
    u"300", u"500", u"1000", u"1500", u"2000", u"2500", u"3000", u"10000",
};

}  // namespace

std::span<const ControlRow> Controls() {
  return kControls;
}

const ControlRow& Control(ControlId id) {
  for (const ControlRow& row : kControls) {
    if (row.id == id) return row;
  }
  return kControls[0];
}

std::span<const ControlId> OutputButtons() {
  static constexpr ControlId kButtons[] = {ControlId::kDxf, ControlId::kSvg,    ControlId::kIpx,
                                           ControlId::kDib, ControlId::kUpload, ControlId::kEmf,
                                           ControlId::kIpl};
  return kButtons;
}

std::span<const MenuColumn> Menu() {
  return kMenu;
}

std::span<const char16_t* const> HeightChoices() {
  return kHeights;
}

int DropDownRows(int client_bottom, int combo_top, int item_height) {
  int rows = item_height > 0 ? (client_bottom - combo_top) / item_height : 0;
  if (rows >= 3) rows -= 2;
  return rows > 0 ? rows : 1;
}

}  // namespace kerno
