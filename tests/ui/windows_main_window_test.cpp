// The window of the Windows program as a user handles it. Needs a display.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>

#include "app/font_face_list.h"
#include "app/system_services.h"
#include "platform/win32/wide_text.h"
#include "support/recording_view.h"
#include "ui/win32/main_window.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

std::wstring WindowText(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(
      static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  return name;
}

RECT PlaceIn(HWND parent, HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

// What a service does that takes long: it goes on until it is cancelled.
class SlowServices final : public test::FakeDialogServices {
 public:
  int steps = 0;
  std::function<void()> at_each_step;

  Status Export(const PartsA&, AciRule, const std::filesystem::path& file) override {
    for (; steps < 400; ++steps) {
      at_each_step();
      if (CurrentNotices().Progress(u"Writing", steps, 400) == Continue::kNo) {
        return Status::Error(Failure::kOther, PathText(file), u"cancelled");
      }
      Sleep(10);
    }
    return Status::Ok();
  }
};

class WindowsMainWindowTest : public testing::Test {
 protected:
  WindowsMainWindowTest() {
    services.folder = std::filesystem::temp_directory_path();
    services.memory.face = u"Plain";
    open_folder_on_first_save = false;
  }
  void Show(DialogServices& used) {
    main.emplace(GetModuleHandleW(nullptr), used);
    window = main->window();
    ASSERT_NE(nullptr, window);
    ShowWindow(window, SW_SHOWNORMAL);
    main->dialog().FillFaces();
    Pump();
  }
  HWND Item(ControlId id) const { return GetDlgItem(window, static_cast<int>(id)); }
  LRESULT Send(ControlId id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(Item(id), message, wparam, lparam);
  }
  std::wstring TextOf(ControlId id) const { return WindowText(Item(id)); }
  HWND EditOf(ControlId combo) const {
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    EXPECT_TRUE(GetComboBoxInfo(Item(combo), &parts));
    return parts.hwndItem;
  }
  void Pump() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) main->Dispatch(message);
  }
  void Key(HWND control, WPARAM key) {
    MSG message{};
    message.hwnd = control;
    message.message = WM_KEYDOWN;
    message.wParam = key;
    main->Dispatch(message);
    Pump();
  }
  void Type(HWND control, std::wstring_view text) {
    for (const wchar_t unit : text) SendMessageW(control, WM_CHAR, unit, 0);
  }
  void Click(ControlId id) {
    Send(id, BM_CLICK);
    Pump();
  }
  CHARFORMAT2W Format() const {
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    Send(ControlId::kText, EM_GETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&format));
    return format;
  }

  // Does what opens a modal window, looks at that window, and closes it by its button `answer`.
  void WithPopup(const std::function<void()>& open, const std::function<void(HWND)>& look,
                 WPARAM answer = IDOK) {
    popup_owner = window;
    look_at_popup = look;
    popup_answer = answer;
    const UINT_PTR timer = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) {
      const HWND popup = GetLastActivePopup(popup_owner);
      if (popup == popup_owner || !IsWindowVisible(popup) || !look_at_popup) return;
      look_at_popup(popup);
      look_at_popup = nullptr;
      PostMessageW(popup, WM_COMMAND, popup_answer, 0);
    });
    open();
    Pump();
    KillTimer(nullptr, timer);
    EXPECT_FALSE(look_at_popup) << "nothing was shown";
  }

  // Every shown control stands whole in the window, clear of the others, and its caption fits.
  void ExpectTidyLayout(const char* when) {
    RECT client{};
    GetClientRect(window, &client);
    std::vector<std::pair<int, RECT>> places;
    for (const ControlRow& row : Controls()) {
      const HWND control = Item(row.id);
      if (control == nullptr || !IsWindowVisible(control)) continue;
      const RECT place = PlaceIn(window, control);
      const int id = static_cast<int>(row.id);
      EXPECT_TRUE(place.left >= 0 && place.top >= 0 && place.right <= client.right &&
                  place.bottom <= client.bottom && place.left < place.right)
          << when << ": control " << id << " stands in the window";
      for (const auto& [other, taken] : places) {
        RECT common{};
        EXPECT_FALSE(IntersectRect(&common, &place, &taken))
            << when << ": controls " << other << " and " << id << " overlap";
      }
      places.emplace_back(id, place);
      if (*row.caption != u'\0') {
        EXPECT_GE(place.right - place.left, CaptionWidth(control)) << when << ": control " << id;
      }
    }
  }
  static int CaptionWidth(HWND control) {
    const HDC dc = GetDC(control);
    const HGDIOBJ before =
        SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    RECT area{};
    DrawTextW(dc, WindowText(control).c_str(), -1, &area, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(dc, before);
    ReleaseDC(control, dc);
    return area.right;
  }

  static inline HWND popup_owner;
  static inline std::function<void(HWND)> look_at_popup;
  static inline WPARAM popup_answer;

  test::FakeDialogServices services;
  std::optional<MainWindow> main;
  HWND window = nullptr;
};

TEST_F(WindowsMainWindowTest, EveryControlHasItsNumberKindAndCaption) {
  constexpr DWORD kNone = 0;
  const struct {
    int id;
    const wchar_t* kind;
    DWORD style;  // bits that tell the kind
    const wchar_t* caption;
    bool hidden;
  } rows[] = {
      {1, L"Button", BS_DEFPUSHBUTTON, L"OK", true},
      {2, L"Button", BS_PUSHBUTTON, L"終了", false},
      {1002, L"Button", BS_PUSHBUTTON, L"&DXF", false},
      {32087, L"Button", BS_PUSHBUTTON, L"&SVG", false},
      {1001, L"Button", BS_PUSHBUTTON, L"&IPX", false},
      {32088, L"Button", BS_PUSHBUTTON, L"&DIB", false},
      {32089, L"Button", BS_PUSHBUTTON, L"EMF", true},
      {32066, L"Button", BS_PUSHBUTTON, L"ipl", true},
      {32201, L"Button", BS_PUSHBUTTON, L"&Upload", true},
      {1003, L"RICHEDIT50W", ES_MULTILINE | ES_WANTRETURN, L"", false},
      {1017, L"Button", BS_PUSHBUTTON, L"貼り付け", false},
      {1006, L"ComboBox", CBS_DROPDOWN | CBS_OWNERDRAWFIXED, L"Plain", false},
      {1007, L"Button", BS_AUTOCHECKBOX, L"@", false},
      {1010, L"ComboBox", CBS_DROPDOWN, L"100", false},
      {1014, L"Edit", kNone, L"100", false},
      {1015, L"msctls_updown32", UDS_ARROWKEYS, L"", false},
      {1016, L"Button", BS_AUTOCHECKBOX, L"PolyPolygon", false},
      {1008, L"ComboBox", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, L"Black", false},
      {1009, L"ComboBox", CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, L"Black", false},
      {1011, L"Static", SS_LEFT, L"F&ace", false},
      {1012, L"Static", SS_LEFT, L"&Height", false},
      {1000, L"Static", SS_NOTIFY, L"", false},
  };
  services.memory.height = u"100";
  Show(services);
  EXPECT_EQ(L"Kerno", WindowText(window));
  for (const auto& row : rows) {
    const HWND control = GetDlgItem(window, row.id);
    ASSERT_NE(nullptr, control) << row.id;
    EXPECT_EQ(0, _wcsicmp(row.kind, ClassOf(control).c_str())) << row.id;
    EXPECT_EQ(row.caption, WindowText(control)) << row.id;
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(control, GWL_STYLE));
    EXPECT_EQ(row.style, style & row.style) << row.id;
    EXPECT_EQ(row.hidden, (style & WS_VISIBLE) == 0) << row.id;
  }
  EXPECT_EQ(24, Send(ControlId::kHeightList, CB_GETCOUNT));
  EXPECT_EQ(0xFC182710, static_cast<DWORD>(Send(ControlId::kHeightSpin, UDM_GETRANGE)));
  const LRESULT mask = Send(ControlId::kText, EM_GETEVENTMASK);
  EXPECT_EQ(0xA0001, mask & 0xA0001);
  const HMENU system = GetSystemMenu(window, FALSE);
  wchar_t entry[64] = {};
  GetMenuStringW(system, 16, entry, 64, MF_BYCOMMAND);
  EXPECT_STREQ(L"ﾊﾞｰｼﾞｮﾝ情報(&A)...", entry);
  ICONINFO icon{};
  EXPECT_TRUE(
      GetIconInfo(reinterpret_cast<HICON>(SendMessageW(window, WM_QUERYDRAGICON, 0, 0)), &icon));
  DeleteObject(icon.hbmColor);
  DeleteObject(icon.hbmMask);
}

TEST_F(WindowsMainWindowTest, TheSystemMenuShowsTheAboutBox) {
  Show(services);
  std::wstring version;
  WithPopup([&] { SendMessageW(window, WM_SYSCOMMAND, 16, 0); },
            [&](HWND about) {
              version = WindowText(GetDlgItem(about, 1018));
              EXPECT_NE(nullptr, GetDlgItem(about, 1019));
            });
  EXPECT_EQ(L"Kerno   Version 1", version);
}

TEST_F(WindowsMainWindowTest, TheColoursAreThereForTheFigureAlone) {
  services.memory.use_poly_polygon = false;
  Show(services);
  for (const bool on : {false, true, false}) {
    EXPECT_EQ(on, IsWindowEnabled(Item(ControlId::kFirstColor)) != FALSE);
    EXPECT_EQ(on, IsWindowEnabled(Item(ControlId::kSecondColor)) != FALSE);
    Click(ControlId::kPolyPolygon);
  }
  EXPECT_EQ(20, Send(ControlId::kFirstColor, CB_GETCOUNT));
  Send(ControlId::kFirstColor, CB_SETCURSEL, 6);
  SendMessageW(window, WM_COMMAND, MAKEWPARAM(1008, CBN_SELCHANGE), 0);
  EXPECT_EQ(L"Red", TextOf(ControlId::kSecondColor)) << "the second list follows";
  EXPECT_EQ(RGB(255, 0, 0), Format().crTextColor);
}

TEST_F(WindowsMainWindowTest, OtherColoursOfTheSystemKeepEverythingLegible) {
  services.memory.first_color = RgbColor(255, 255, 255);
  Show(services);
  const COLORREF black[] = {0, 0},
                 before[] = {GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_BTNFACE)};
  const int parts[] = {COLOR_WINDOW, COLOR_BTNFACE};
  services.failing = "export";
  WithPopup([&] { Click(ControlId::kDxf); }, [](HWND) {});
  SetSysColors(2, parts, black);
  SendMessageW(window, WM_SYSCOLORCHANGE, 0, 0);
  const HDC dc = GetDC(window);
  const HWND status = Item(ControlId::kStatus);
  SendMessageW(window, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
               reinterpret_cast<LPARAM>(status));
  EXPECT_TRUE(Contrasts(GetTextColor(dc), black[0]));
  ReleaseDC(window, dc);
  const auto paper = static_cast<COLORREF>(Send(ControlId::kText, EM_SETBKGNDCOLOR, 0, 0));
  EXPECT_EQ(PaperFor(Format().crTextColor, black[0]), paper);
  SetSysColors(2, parts, before);
}

TEST_F(WindowsMainWindowTest, LooksAreNothingToUndoAndLeaveTheSelection) {
  Show(services);
  const HWND text = Item(ControlId::kText);
  Type(text, L"AB");
  EXPECT_EQ(2u, main->dialog().item_count());
  SendMessageW(text, EM_SETSEL, 1, 2);
  Type(EditOf(ControlId::kFace), L"x");
  Click(ControlId::kVertical);
  EXPECT_EQ(u"@" + FromWide(TextOf(ControlId::kFace)), FromWide(Format().szFaceName));
  CHARRANGE selected{};
  SendMessageW(text, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selected));
  EXPECT_EQ(1, selected.cpMin);
  EXPECT_EQ(2, selected.cpMax);
  SendMessageW(text, EM_UNDO, 0, 0);
  EXPECT_EQ(L"", WindowText(text));
  EXPECT_EQ(0u, main->dialog().item_count());
}

TEST_F(WindowsMainWindowTest, TheKeyboardComesToTheEndOfTheTextAndSelectsNothing) {
  services.saved_text = u"A\nB";
  Show(services);
  const HWND text = Item(ControlId::kText);
  for (const ControlId id : {ControlId::kPaste, ControlId::kText}) {
    SendMessageW(window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(id)), TRUE);
  }
  EXPECT_EQ(text, GetFocus());
  Type(text, L"C");
  EXPECT_EQ(L"A\r\nBC", WindowText(text));
  EXPECT_EQ(3u, main->dialog().item_count());
}

TEST_F(WindowsMainWindowTest, PastedLinesArriveAsLines) {
  Show(services);
  ASSERT_TRUE(OpenClipboard(window));
  EmptyClipboard();
  const std::wstring copied = L"A\r\nB\rC";
  const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, (copied.size() + 1) * sizeof(wchar_t));
  std::copy_n(copied.c_str(), copied.size() + 1, static_cast<wchar_t*>(GlobalLock(memory)));
  GlobalUnlock(memory);
  SetClipboardData(CF_UNICODETEXT, memory);
  CloseClipboard();
  Click(ControlId::kPaste);
  EXPECT_EQ(3u, main->dialog().item_count());
  Click(ControlId::kDxf);
  EXPECT_THAT(services.rtf, testing::HasSubstr("A\\par\r\nB\\par\r\nC"));
}

TEST_F(WindowsMainWindowTest, HeightsStayInStepWhicheverIsTouched) {
  Show(services);
  const HWND edit = Item(ControlId::kHeightEdit);
  SendMessageW(edit, EM_SETSEL, 0, -1);
  Type(edit, L"-12");
  EXPECT_EQ(L"-12", TextOf(ControlId::kHeightList));
  SendMessageW(edit, WM_KEYDOWN, VK_UP, 0);  // the up-down control takes it
  EXPECT_EQ(L"-11", TextOf(ControlId::kHeightList));
  EXPECT_EQ(L"-11", TextOf(ControlId::kHeightEdit));
  Send(ControlId::kHeightList, CB_SETCURSEL, 12);
  SendMessageW(window, WM_COMMAND, MAKEWPARAM(1010, CBN_SELCHANGE), 0);
  EXPECT_EQ(L"100", TextOf(ControlId::kHeightEdit));
  const HWND typed = EditOf(ControlId::kHeightList);
  SendMessageW(typed, EM_SETSEL, 0, -1);
  Type(typed, L"77");
  EXPECT_EQ(L"77", TextOf(ControlId::kHeightEdit));
  SetFocus(edit);
  Key(edit, VK_RETURN);
  Key(edit, VK_ESCAPE);
  EXPECT_TRUE(services.log.empty()) << "Enter presses nothing";
  EXPECT_TRUE(IsWindowVisible(window));
}

TEST_F(WindowsMainWindowTest, TheFacesStandInOrder) {
  class NoFaces final : public FontFaceList {
   public:
    NoFaces() : FontFaceList(nullptr) {}
  };
  const auto listed = [this] {
    std::vector<std::u16string> names;
    for (LRESULT i = 0; i < Send(ControlId::kFace, CB_GETCOUNT); ++i) {
      wchar_t name[64] = {};
      Send(ControlId::kFace, CB_GETLBTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(name));
      names.push_back(FromWide(name));
    }
    return names;
  };
  services.faces = {u"Plain", u"Gothic", u"arial"};  // the system has no order
  Show(services);
  EXPECT_THAT(listed(), testing::ElementsAre(u"arial", u"Gothic", u"Plain"));
  services.faces = NoFaces().Entries();
  main->dialog().FillFaces();
  EXPECT_EQ(services.faces, listed()) << "the lines that tell why there is none";
}

TEST_F(WindowsMainWindowTest, PartsOfANameOfferTheFacesThatHoldThem) {
  services.faces = {u"ＭＳ Mincho", u"Plain", u"Plain Gothic", u"Gothic"};
  Show(services);
  const HWND edit = EditOf(ControlId::kFace);
  const auto list = [] { return FindWindowExW(nullptr, nullptr, L"ListBox", L""); };
  const auto offered = [&] {
    std::wstring all;
    for (LRESULT i = 0; i < SendMessageW(list(), LB_GETCOUNT, 0, 0); ++i) {
      wchar_t name[64] = {};
      SendMessageW(list(), LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(name));
      all += std::wstring(name) + L";";
    }
    return IsWindowVisible(list()) ? all : L"";
  };
  SetFocus(edit);
  SendMessageW(edit, EM_SETSEL, 0, -1);
  Type(edit, L"m");
  EXPECT_EQ(L"ＭＳ Mincho;", offered());
  SendMessageW(edit, EM_SETSEL, 0, -1);
  Type(edit, L"goth");
  EXPECT_EQ(L"Gothic;Plain Gothic;", offered());
  Key(edit, VK_DOWN);
  Key(edit, VK_DOWN);
  Key(edit, VK_RETURN);
  EXPECT_EQ(L"", offered());
  EXPECT_EQ(L"Plain Gothic", TextOf(ControlId::kFace));
  EXPECT_EQ(u"Plain Gothic", FromWide(Format().szFaceName));
  SendMessageW(edit, EM_SETSEL, 0, -1);
  Type(edit, L"goth");
  Key(edit, VK_ESCAPE);
  EXPECT_EQ(L"", offered());
  EXPECT_EQ(L"goth", TextOf(ControlId::kFace)) << "what was typed stays";
}

TEST_F(WindowsMainWindowTest, WhatTheListCompletesIsTheFace) {
  services.faces = {u"Plain", u"Plain Gothic"};
  Show(services);
  SendMessageW(EditOf(ControlId::kFace), EM_SETSEL, 0, -1);
  Type(EditOf(ControlId::kFace), L"Plain G");
  for (const WPARAM opens : {TRUE, FALSE}) {
    Send(ControlId::kFace, CB_SHOWDROPDOWN, opens);
    Pump();
    EXPECT_EQ(TextOf(ControlId::kFace), Format().szFaceName);
  }
}

TEST_F(WindowsMainWindowTest, ControlsKeepClearOfEachOtherAtEverySize) {
  services.uploads = true;
  Show(services);
  const auto height_of_label = [&] {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(Send(ControlId::kFaceLabel, WM_GETFONT)), sizeof font,
               &font);
    return font.lfHeight;
  };
  const LONG height = height_of_label();
  const LRESULT item = Send(ControlId::kFace, CB_GETITEMHEIGHT);
  ExpectTidyLayout("as opened");
  for (const int dpi : {96, 144, 192}) {
    for (const int size : {1, 1200}) {  // the window keeps its least size
      RECT place = {10, 20, 10 + size, 20 + size};
      SendMessageW(window, WM_DPICHANGED, static_cast<WPARAM>(MAKELONG(dpi, dpi)),
                   reinterpret_cast<LPARAM>(&place));
      ExpectTidyLayout((std::to_string(dpi) + " dpi, " + std::to_string(size)).c_str());
      EXPECT_EQ(MulDiv(height, dpi, 96), height_of_label());
      EXPECT_EQ(item * dpi / 96, Send(ControlId::kFace, CB_GETITEMHEIGHT));
      RECT client{};
      GetClientRect(window, &client);
      for (const ControlId id : {ControlId::kHeightList, ControlId::kFace, ControlId::kFirstColor,
                                 ControlId::kSecondColor}) {
        const LONG top = PlaceIn(window, Item(id)).top;
        EXPECT_EQ(DropDownRows(client.bottom, top, static_cast<int>(Send(id, CB_GETITEMHEIGHT))),
                  Send(id, CB_GETMINVISIBLE));
      }
    }
  }
}

TEST_F(WindowsMainWindowTest, DroppedFilesReachTheDialog) {
  Show(services);
  const std::filesystem::path file = std::filesystem::temp_directory_path() / L"kerno-落とす.txt";
  std::ofstream(file, std::ios::binary) << "AB\nC";
  const std::wstring name = file.wstring();
  const size_t size = sizeof(DROPFILES) + (name.size() + 2) * sizeof(wchar_t);
  const HGLOBAL memory = GlobalAlloc(GHND, size);
  auto* head = static_cast<DROPFILES*>(GlobalLock(memory));
  head->pFiles = sizeof(DROPFILES);
  head->fWide = TRUE;
  std::copy(name.begin(), name.end(), reinterpret_cast<wchar_t*>(head + 1));
  GlobalUnlock(memory);
  SendMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
  Pump();
  EXPECT_EQ(3u, main->dialog().item_count());
  SendMessageW(Item(ControlId::kText), EM_UNDO, 0, 0);
  EXPECT_EQ(0u, main->dialog().item_count());
  std::filesystem::remove(file);
}

TEST_F(WindowsMainWindowTest, FailuresAreShown) {
  services.failing = "export";
  Show(services);
  std::wstring said;
  WithPopup([&] { Click(ControlId::kSvg); },
            [&](HWND box) {
              for (HWND part = GetWindow(box, GW_CHILD); part;
                   part = GetWindow(part, GW_HWNDNEXT)) {
                said += WindowText(part);
              }
            });
  EXPECT_NE(std::wstring::npos, said.find(L"the disk is full")) << ToUtf8(said);
  EXPECT_NE(std::wstring::npos, TextOf(ControlId::kStatus).find(L"the disk is full"));
}

TEST_F(WindowsMainWindowTest, LongOutputsAreCancelledInTheirOwnWindow) {
  SlowServices slow;
  slow.folder = services.folder;
  bool was_shown = false;
  slow.at_each_step = [&] {
    const HWND popup = GetLastActivePopup(window);
    if (popup == window || was_shown) return;
    was_shown = true;
    EXPECT_FALSE(IsWindowEnabled(window));
    EXPECT_EQ(L"Writing", WindowText(GetDlgItem(popup, KERNO_PROGRESS_TEXT)));
    PostMessageW(GetDlgItem(popup, IDCANCEL), BM_CLICK, 0, 0);
  };
  Show(slow);
  WithPopup([&] { Click(ControlId::kDxf); }, [](HWND) {});
  EXPECT_TRUE(was_shown);
  EXPECT_LT(slow.steps, 300);
  EXPECT_TRUE(IsWindowEnabled(window));
}

// By the real rasteriser, on the real screen.
TEST_F(WindowsMainWindowTest, TheHoleOfAnOIsOpenInTheFigure) {
  SystemServices real;
  Show(real);
  main->dialog().FaceChanged(u"DejaVu Sans");
  main->dialog().PolyPolygonClicked(true);
  main->dialog().TextChanged(u"O");
  const HWND preview = Item(ControlId::kPreview);
  RedrawWindow(preview, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
  RECT area{};
  GetClientRect(preview, &area);
  const HDC dc = GetDC(preview);
  int dark = 0;
  for (int x = 0; x < area.right; ++x) {
    dark += (GetPixel(dc, x, area.bottom / 2) & 0xFF) < 64 ? 1 : 0;
  }
  EXPECT_EQ(RGB(255, 255, 255), GetPixel(dc, area.right / 2, area.bottom / 2));
  EXPECT_GT(dark, 20) << "the two stems";
  ReleaseDC(preview, dc);
}

TEST_F(WindowsMainWindowTest, AMinimisedWindowShowsItsIcon) {
  Show(services);
  ShowWindow(window, SW_MINIMIZE);
  Pump();
  ASSERT_TRUE(IsIconic(window));
  SendMessageW(window, WM_PAINT, 0, 0);
  EXPECT_FALSE(GetUpdateRect(window, nullptr, FALSE));
  ShowWindow(window, SW_RESTORE);
  ExpectTidyLayout("restored");
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Without a window manager Wine waits two seconds for one at each window's end; from the next run
  // on it does not.
  RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\ui_tests.exe\\X11 Driver",
                  L"Managed", REG_SZ, L"N", 2 * sizeof(wchar_t));
  const HWND probe =
      CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
  if (probe == nullptr) {
    std::puts("There is no display to show windows on.");
    return 1;
  }
  DestroyWindow(probe);
  INITCOMMONCONTROLSEX controls = {sizeof controls,
                                   ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS | ICC_PROGRESS_CLASS};
  InitCommonControlsEx(&controls);
  LoadLibraryW(L"Msftedit.dll");
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  return RUN_ALL_TESTS();
}
