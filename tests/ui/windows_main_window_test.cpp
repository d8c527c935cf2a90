// The window of the Windows program: its controls, layout, colours and messages. Needs a display.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>

#include "app/system_services.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/resource.h"
#include "windows_main_window_fixture.h"

namespace kerno {
namespace {

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = {};
  GetClassNameW(window, name, 64);
  return name;
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

TEST_F(WindowsMainWindowTest, EveryControlHasItsNumberKindAndCaption) {
  constexpr DWORD kNone = 0;
  const struct {
    int id;
    DWORD style;  // bits that tell the kind
    const wchar_t* kind;
    const wchar_t* caption;
    bool hidden;
  } rows[] = {
      {1, BS_DEFPUSHBUTTON, L"Button", L"OK", true},
      {2, BS_PUSHBUTTON, L"Button", L"終了", false},
      {1002, BS_PUSHBUTTON, L"Button", L"&DXF", false},
      {32087, BS_PUSHBUTTON, L"Button", L"&SVG", false},
      {1001, BS_PUSHBUTTON, L"Button", L"&IPX", false},
      {32088, BS_PUSHBUTTON, L"Button", L"&DIB", false},
      {32089, BS_PUSHBUTTON, L"Button", L"EMF", true},
      {32066, BS_PUSHBUTTON, L"Button", L"ipl", true},
      {32201, BS_PUSHBUTTON, L"Button", L"&Upload", true},
      {1003, ES_MULTILINE | ES_WANTRETURN, L"RICHEDIT50W", L"", false},
      {1017, BS_PUSHBUTTON, L"Button", L"貼り付け", false},
      {1006, CBS_DROPDOWN | CBS_OWNERDRAWFIXED, L"ComboBox", L"Plain", false},
      {1007, BS_AUTOCHECKBOX, L"Button", L"@", false},
      {1010, CBS_DROPDOWN, L"ComboBox", L"100", false},
      {1014, kNone, L"Edit", L"100", false},
      {1015, UDS_ARROWKEYS, L"msctls_updown32", L"", false},
      {1016, BS_AUTOCHECKBOX, L"Button", L"PolyPolygon", false},
      {1008, CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, L"ComboBox", L"Black", false},
      {1009, CBS_DROPDOWNLIST | CBS_OWNERDRAWFIXED, L"ComboBox", L"Black", false},
      {1011, SS_LEFT, L"Static", L"F&ace", false},
      {1012, SS_LEFT, L"Static", L"&Height", false},
      {1000, SS_NOTIFY, L"Static", L"", false},
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

TEST_F(WindowsMainWindowTest, NoControlIsPaintedOverWhenTheSizeChanges) {
  Show(services);
  SetFocus(Item(ControlId::kText));
  Pump();
  constexpr ControlId kMoving[] = {ControlId::kPaste, ControlId::kVertical, ControlId::kHeightLabel,
                                   ControlId::kHeightEdit, ControlId::kQuit};
  std::vector<std::vector<uint32_t>> before;
  for (const ControlId id : kMoving) before.push_back(PixelsOf(id));
  EXPECT_GT(std::set<uint32_t>(before[0].begin(), before[0].end()).size(), 1u) << "a caption";
  for (const SIZE size : {SIZE{1200, 900}, {600, 900}, {700, 600}, {1200, 600}}) {
    SetWindowPos(window, nullptr, 0, 0, size.cx, size.cy, SWP_NOZORDER);
    Pump();
    for (size_t i = 0; i < std::size(kMoving); ++i) {
      EXPECT_TRUE(before[i] == PixelsOf(kMoving[i]))
          << static_cast<int>(kMoving[i]) << " at " << size.cx << " by " << size.cy;
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
  EXPECT_EQ(3u, main->presenter().item_count());
  SendMessageW(Item(ControlId::kText), EM_UNDO, 0, 0);
  EXPECT_EQ(0u, main->presenter().item_count());
  std::filesystem::remove(file);
}

TEST_F(WindowsMainWindowTest, FailuresAreShown) {
  services.failing = "export";
  Show(services);
  std::wstring said;
  WithPopup([&] { Click(ControlId::kSvg); }, [&](HWND box) { said = TextsIn(box); });
  EXPECT_NE(std::wstring::npos, said.find(L"the disk is full")) << ToUtf8(said);
  EXPECT_NE(std::wstring::npos, TextOf(ControlId::kStatus).find(L"the disk is full"));
}

TEST_F(WindowsMainWindowTest, WhatCannotBeKeptHoldsTheWindowOnce) {
  for (const UINT end : {WM_CLOSE, WM_QUERYENDSESSION}) {
    services.failing = "settings";
    Show(services);
    std::wstring said;
    WithPopup([&] { EXPECT_FALSE(SendMessageW(window, end, 0, 0)); },
              [&](HWND box) { said = TextsIn(box); });
    EXPECT_NE(std::wstring::npos, said.find(L"the disk is full")) << ToUtf8(said);
    EXPECT_EQ(0u, TextOf(ControlId::kStatus).find(L"Not saved."));
    MSG quit{};
    EXPECT_FALSE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    const bool agreed = SendMessageW(window, end, 0, 0) != FALSE;
    EXPECT_EQ(end == WM_QUERYENDSESSION, agreed) << "the system asks, a user does not";
    if (agreed) SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
  }
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
  main->presenter().FaceChanged(u"DejaVu Sans");
  main->presenter().PolyPolygonClicked(true);
  main->presenter().TextChanged(u"O");
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
  SetWindowPos(window, nullptr, 40, 50, 750, 650, SWP_NOZORDER);
  ShowWindow(window, SW_MINIMIZE);
  Pump();
  ASSERT_TRUE(IsIconic(window));
  EXPECT_TRUE(main->presenter().Close());
  EXPECT_EQ((WindowRect{40, 50, 790, 700}), services.saved.window) << "where it comes back";
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
