// What the Windows window alone does.
#include <gmock/gmock.h>

#include <functional>

#include "base/text.h"
#include "export/formats.h"
#include "support/recording_cut_view.h"
#include "support/recording_view.h"
#include "support/temporary_folder.h"
#include "ui/win32/progress_window.h"
#include "view_driver.h"

namespace kerno::test {
namespace {

constexpr int kMostWaits = 6000;  // a minute; only a failure takes as long

class WindowsViewTest : public testing::Test {
 protected:
  WindowsViewTest() { open_folder_on_first_save = false; }
  void Show() { view = std::make_unique<ViewDriver>(services, cut_services); }

  // Copies the drawing of the Cut page, once it is made, and waits until it can be pasted.
  [[nodiscard]] bool CopySvg() const {
    CutPage& page = view->main.cut_page();
    for (int i = 0; i < kMostWaits && page.presenter().drawing() == nullptr; ++i) view->Wait();
    if (OpenClipboard(view->window)) {
      EmptyClipboard();
      CloseClipboard();
    }
    page.Command(static_cast<int>(ControlId::kCopySvg), BN_CLICKED);
    const UINT kind = RegisterClipboardFormatW(L"image/svg+xml");
    for (int i = 0; i < kMostWaits && !IsClipboardFormatAvailable(kind); ++i) view->Wait();
    return IsClipboardFormatAvailable(kind);
  }

  // Every shown control stands whole in the window, clear of the others, and its caption fits.
  void ExpectTidyLayout(const std::string& when) const {
    RECT client{};
    GetClientRect(view->window, &client);
    std::vector<std::pair<int, RECT>> places;
    for (const ControlRow& row : Controls()) {
      const HWND control = view->Item(row.id);
      if (control == nullptr || !IsWindowVisible(control)) continue;
      const RECT place = view->PlaceOf(control);
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
      const HDC dc = GetDC(control);
      SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
      RECT caption{};
      DrawTextW(dc, ToWide(row.caption).c_str(), -1, &caption, DT_CALCRECT | DT_SINGLELINE);
      ReleaseDC(control, dc);
      EXPECT_GE(place.right - place.left, caption.right) << when << ": control " << id;
    }
  }

  FakeDialogServices services;
  FakeCutServices cut_services;
  std::unique_ptr<ViewDriver> view;
};

TEST_F(WindowsViewTest, TheSystemMenuTellsTheVersion) {
  services.locale = u"ja-JP";
  Show();
  wchar_t entry[64] = {};
  GetMenuStringW(GetSystemMenu(view->window, FALSE), 16, entry, 64, MF_BYCOMMAND);
  EXPECT_STREQ(L"ﾊﾞｰｼﾞｮﾝ情報(&A)...", entry);
  SendMessageW(view->window, WM_SYSCOMMAND, 16, 0);
  EXPECT_NE(u"", view->TakeMessage());
  EXPECT_NE(0, SendMessageW(view->window, WM_QUERYDRAGICON, 0, 0));
}

TEST_F(WindowsViewTest, ControlsKeepClearOfEachOtherAtEverySize) {
  services.uploads = true;
  Show();
  ExpectTidyLayout("as opened");
  const auto label = [&] {
    LOGFONTW font{};
    GetObjectW(reinterpret_cast<HFONT>(view->Send(ControlId::kFaceLabel, WM_GETFONT)), sizeof font,
               &font);
    return font.lfHeight;
  };
  const LONG height = label();
  for (const int dpi : {96, 144, 192}) {
    for (const int size : {1, 1200}) {  // the window keeps its least size
      RECT place = {10, 20, 10 + size, 20 + size};
      SendMessageW(view->window, WM_DPICHANGED, static_cast<WPARAM>(MAKELONG(dpi, dpi)),
                   reinterpret_cast<LPARAM>(&place));
      ExpectTidyLayout(std::to_string(dpi) + " dpi, " + std::to_string(size));
      EXPECT_EQ(MulDiv(height, dpi, 96), label());
    }
  }
  view->Minimise();
  SendMessageW(view->window, WM_PAINT, 0, 0);  // its icon
  EXPECT_FALSE(GetUpdateRect(view->window, nullptr, FALSE));
  view->ShowAs(SW_RESTORE);
  ExpectTidyLayout("restored");
}

TEST_F(WindowsViewTest, TheCutPageKeepsItsControlsApartInEveryLanguage) {
  Show();
  view->Click(ControlId::kModeCut);
  EXPECT_FALSE(view->IsShown(ControlId::kDxf));
  const struct {
    MenuCommand language;
    int dpi, width, height;
  } cases[] = {{MenuCommand::kLanguageEnglish, 96, 640, 480},
               {MenuCommand::kLanguageGerman, 96, 800, 480},
               {MenuCommand::kLanguageGerman, 168, 1240, 860},
               {MenuCommand::kLanguageJapanese, 168, 1240, 860},
               {MenuCommand::kLanguageJapanese, 96, 1280, 900}};
  CutPage& page = view->main.cut_page();
  for (const auto& c : cases) {
    const std::string when = std::to_string(static_cast<int>(c.language)) + " at " +
                             std::to_string(c.dpi) + ", " + std::to_string(c.width);
    view->presenter().Chosen(c.language);
    RECT place = {0, 0, c.width, c.height};
    SendMessageW(view->window, WM_DPICHANGED, static_cast<WPARAM>(MAKELONG(c.dpi, c.dpi)),
                 reinterpret_cast<LPARAM>(&place));
    view->Pump();
    std::vector<std::pair<int, RECT>> places;
    for (const CutControlRow& row : CutControls()) {
      const HWND control = page.control(row.id);
      if (!IsWindowVisible(control)) continue;
      RECT room{};
      GetClientRect(GetParent(control), &room);
      RECT own{};
      GetWindowRect(control, &own);
      MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&own), 2);
      const int id = static_cast<int>(row.id);
      if (row.kind == ControlKind::kAxes) continue;  // none for this face
      EXPECT_TRUE(own.left >= 0 && own.right <= room.right && own.left < own.right &&
                  own.top >= 0 && own.bottom <= room.bottom)
          << when << ": control " << id << " stands in its room";
      GetWindowRect(control, &own);
      for (const auto& [other, taken] : places) {
        RECT common{};
        const bool same_room =
            GetParent(page.control(static_cast<ControlId>(other))) == GetParent(control);
        EXPECT_FALSE(same_room && IntersectRect(&common, &own, &taken))
            << when << ": controls " << other << " and " << id << " overlap";
      }
      places.emplace_back(id, own);
    }
  }
}

TEST_F(WindowsViewTest, TheCutPageMarksAFieldAndFollowsItsKeys) {
  Show();
  view->cut_presenter().patience = 60000;
  view->Click(ControlId::kModeCut);
  CutPage& page = view->main.cut_page();
  const auto type = [&](ControlId id, const wchar_t* text) {
    SetWindowTextW(page.control(id), text);
    view->Pump();
  };
  type(ControlId::kCutText, L"Plate");
  ASSERT_NE(nullptr, page.presenter().drawing());
  for (const auto& [text, at_fault] : {std::pair(L"a bit", true), {L"0.1", false}}) {
    type(ControlId::kOffset, text);
    EXPECT_EQ(at_fault, !view->FaultOf(ControlId::kOffset).empty()) << at_fault;
  }
  const std::u16string before = TextOfWindow(page.control(ControlId::kZoomFigure));
  page.Command(static_cast<int>(ControlId::kZoomIn), BN_CLICKED);  // as its key does
  EXPECT_NE(before, TextOfWindow(page.control(ControlId::kZoomFigure)));
  const TemporaryFolder folder;
  cut_services.folder = folder.path();
  EXPECT_TRUE(CopySvg());
  view->Click(ControlId::kModeClassic);
  EXPECT_EQ(u"Plate", view->TextOf(ControlId::kText)) << "the text goes along";
  EXPECT_EQ(ControlId::kText, view->Focused());
}

TEST_F(WindowsViewTest, OnTheCutPageTheMenuGreysWhatIsClassicsAlone) {
  Show();
  const auto is_grey = [&](MenuCommand command) {
    return (GetMenuState(GetMenu(view->window), static_cast<UINT>(command), MF_BYCOMMAND) &
            MF_GRAYED) != 0;
  };
  for (const auto& [mode, grey] :
       {std::pair(ControlId::kModeCut, true), {ControlId::kModeClassic, false}}) {
    view->Click(mode);
    EXPECT_EQ(grey, is_grey(MenuCommand::kSaveCopy));
    EXPECT_FALSE(is_grey(MenuCommand::kAbout));
  }
}

TEST_F(WindowsViewTest, TheKeyboardComesToTheEndOfTheTextAndSelectsNothing) {
  services.saved_text = u"A\nB";
  Show();
  for (const ControlId id : {ControlId::kPaste, ControlId::kText}) {
    SendMessageW(view->window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(view->Item(id)), TRUE);
  }
  EXPECT_EQ(ControlId::kText, view->Focused());
  EXPECT_EQ(std::pair(3, 3), view->SelectionInText());
}

TEST_F(WindowsViewTest, PartsOfANameOfferTheFacesThatHoldThem) {
  using testing::ElementsAre;
  services.faces = {u"ＭＳ Mincho", u"Plain", u"Plain Gothic", u"Gothic"};  // without order
  Show();
  EXPECT_THAT(ViewDriver::Rows(view->Item(ControlId::kFace), ListKind::kComboBox),
              ElementsAre(u"Gothic", u"ＭＳ Mincho", u"Plain", u"Plain Gothic"));
  const auto offered = [&] {
    const HWND list = FindWindowExW(nullptr, nullptr, L"ListBox", L"");
    return IsWindowVisible(list) ? ViewDriver::Rows(list, ListKind::kListBox)
                                 : std::vector<std::u16string>{};
  };
  view->TypeOver(ControlId::kFace, u"m");
  EXPECT_THAT(offered(), ElementsAre(u"ＭＳ Mincho"));
  view->TypeOver(ControlId::kFace, u"goth");
  EXPECT_THAT(offered(), ElementsAre(u"Gothic", u"Plain Gothic"));
  for (const UserKey key : {UserKey::kDown, UserKey::kDown, UserKey::kEnter}) {
    view->Press(ControlId::kFace, key);
  }
  EXPECT_THAT(offered(), ElementsAre());
  EXPECT_EQ(u"Plain Gothic", view->TextOf(ControlId::kFace));
  EXPECT_EQ(u"Plain Gothic", view->LooksOf(ControlId::kText).face);
  const struct {
    const char* what;
    std::function<void()> act;
  } ends[] = {{"Escape", [&] { view->Press(ControlId::kFace, UserKey::kEscape); }},
              {"Enter", [&] { view->Press(ControlId::kFace, UserKey::kEnter); }},
              {"a menu", [&] { SendMessageW(view->window, WM_ENTERMENULOOP, FALSE, 0); }},
              {"another size", [&] {
                 view->Place({0, 0, 900, 700});
               }}};
  for (const auto& end : ends) {
    view->TypeOver(ControlId::kFace, u"goth");
    EXPECT_FALSE(offered().empty());
    end.act();
    EXPECT_TRUE(offered().empty()) << end.what;
    EXPECT_EQ(u"goth", view->TextOf(ControlId::kFace)) << end.what << ": what was typed stays";
  }
  view->TypeOver(ControlId::kFace, u"Plain G");
  for (const WPARAM opens : {TRUE, FALSE}) {  // the list completes without telling
    view->Send(ControlId::kFace, CB_SHOWDROPDOWN, opens);
    view->Pump();
    EXPECT_EQ(view->TextOf(ControlId::kFace), view->LooksOf(ControlId::kText).face);
  }
}

// Windows that stand already; nothing of an earlier run is kept.
class LaterServices final : public FakeDialogServices {
 public:
  int before = 0;
  int WindowsBefore() override { return before; }
};

TEST_F(WindowsViewTest, ASecondWindowIsAsLargeAsTheFirstAndStandsBesideIt) {
  RECT first{};
  for (const int before : {0, 1}) {
    LaterServices later;
    later.before = before;
    const ViewDriver driver(later, cut_services);
    RECT place{};
    GetWindowRect(driver.window, &place);
    if (before == 0) {
      first = place;
      continue;
    }
    EXPECT_EQ(first.right - first.left, place.right - place.left);
    EXPECT_EQ(first.bottom - first.top, place.bottom - place.top);
    EXPECT_GE(place.top - first.top, GetSystemMetrics(SM_CYCAPTION));
    EXPECT_GE(place.left - first.left, GetSystemMetrics(SM_CYCAPTION));
  }
}

// What the user chose, as the system's settings keep it; no choice is left over.
struct ThemeChoice {
  static constexpr wchar_t kKey[] =
      L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize";
  static constexpr wchar_t kValue[] = L"AppsUseLightTheme";

  ThemeChoice() = default;
  ~ThemeChoice() { RegDeleteKeyValueW(HKEY_CURRENT_USER, kKey, kValue); }
  ThemeChoice(const ThemeChoice&) = delete;
  ThemeChoice& operator=(const ThemeChoice&) = delete;

  static void Choose(HWND window, DWORD light) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kKey, kValue, REG_DWORD, &light, sizeof light);
    SendMessageW(window, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(L"ImmersiveColorSet"));
  }
};

TEST_F(WindowsViewTest, AnotherThemeColorsTheWindowItsHintsAndItsDialogsAtOnce) {
  Show();
  const auto grounds = [&] {
    std::vector<COLORREF> found;
    const HDC dc = GetDC(view->window);
    SendMessageW(view->window, WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(dc),
                 reinterpret_cast<LPARAM>(view->window));
    found.push_back(GetBkColor(dc));
    ReleaseDC(view->window, dc);
    for (HWND hints = nullptr;
         (hints = FindWindowExW(nullptr, hints, TOOLTIPS_CLASSW, nullptr)) != nullptr;) {
      if (GetWindowThreadProcessId(hints, nullptr) != GetCurrentThreadId()) continue;
      found.push_back(static_cast<COLORREF>(SendMessageW(hints, TTM_GETTIPBKCOLOR, 0, 0)));
    }
    ProgressWindow progress(GetModuleHandleW(nullptr), view->window, ProgressWindow::Owner::kFree);
    (void)progress.Show(u"A", 0.5);
    const HWND dialog = GetLastActivePopup(view->window);
    const HDC of_dialog = GetDC(dialog);
    SendMessageW(dialog, WM_CTLCOLORDLG, reinterpret_cast<WPARAM>(of_dialog),
                 reinterpret_cast<LPARAM>(dialog));
    found.push_back(GetBkColor(of_dialog));
    ReleaseDC(dialog, of_dialog);
    return found;
  };
  const auto is_dark = [](COLORREF color) { return GetGValue(color) < 100; };
  const ThemeChoice choice;
  for (const bool dark : {false, true, false}) {
    choice.Choose(view->window, dark ? 0 : 1);
    const std::vector<COLORREF> found = grounds();
    EXPECT_EQ(4u, found.size()) << "of the window, the hints of both pages, a dialog";
    for (const COLORREF color : found) EXPECT_EQ(dark, is_dark(color)) << std::hex << color;
  }
}

TEST_F(WindowsViewTest, AFieldOfClassicThatIsNoNumberHasARedFrame) {
  Show();
  const auto has_red_frame = [&](ControlId id) {
    UpdateWindow(view->Item(id));
    const HDC dc = GetWindowDC(view->Item(id));
    const COLORREF edge = GetPixel(dc, 0, 0);
    ReleaseDC(view->Item(id), dc);
    return GetRValue(edge) > 2 * GetGValue(edge) && GetRValue(edge) > 2 * GetBValue(edge);
  };
  for (const auto& [text, at_fault] : {std::pair(u"12x", true), {u"120", false}}) {
    view->TypeOver(ControlId::kHeightEdit, text);
    view->Pump();
    EXPECT_EQ(at_fault, has_red_frame(ControlId::kHeightEdit)) << at_fault;
    EXPECT_EQ(at_fault, has_red_frame(ControlId::kHeightList)) << at_fault;
    EXPECT_FALSE(has_red_frame(ControlId::kText));
  }
}

TEST_F(WindowsViewTest, SignsOfButtonsAreThereInTheFontOfEachLanguage) {
  Show();
  CutPage& page = view->main.cut_page();
  for (const MenuCommand language : {MenuCommand::kLanguageEnglish, MenuCommand::kLanguageGerman,
                                     MenuCommand::kLanguageJapanese}) {
    view->presenter().Chosen(language);
    for (const CutControlRow& row : CutControls()) {
      const HWND button = page.control(row.id);
      const std::wstring sign = ToWide(TextOfWindow(button));
      if (std::u16string_view(row.caption).size() != 1) continue;
      const HDC dc = GetDC(button);
      SelectObject(dc, reinterpret_cast<HFONT>(SendMessageW(button, WM_GETFONT, 0, 0)));
      WORD glyph = 0;
      GetGlyphIndicesW(dc, sign.c_str(), 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
      ReleaseDC(button, dc);
      EXPECT_NE(0xFFFF, glyph) << static_cast<int>(row.id) << " in " << static_cast<int>(language);
    }
  }
}

TEST_F(WindowsViewTest, AListAndAFontAreDroppedOnTheCutPageAndItsSlidersChangeTheDrawing) {
  const TemporaryFolder folder;
  cut_services.folder = folder.path();
  Show();
  view->cut_presenter().patience = 60000;  // each drawing is there before the call ends
  view->Click(ControlId::kModeCut);
  CutPage& page = view->main.cut_page();
  const auto width = [&] {
    for (int i = 0; i < kMostWaits && page.presenter().drawing() == nullptr; ++i) view->Wait();
    return page.presenter().drawing()->ink.max.x - page.presenter().drawing()->ink.min.x;
  };
  view->DropOnText(std::filesystem::path(KERNO_FONTS "/inter-vf/Inter.var.ttf"));
  SetWindowTextW(page.control(ControlId::kCutText), L"Weight");
  view->Pump();
  const HWND host = page.control(ControlId::kAxes);
  const HWND slider = FindWindowExW(host, nullptr, TRACKBAR_CLASSW, nullptr);
  ASSERT_NE(nullptr, slider) << "the font has axes";
  const double light = width();
  SendMessageW(slider, TBM_SETPOS, TRUE, SendMessageW(slider, TBM_GETRANGEMAX, 0, 0));
  SendMessageW(host, WM_HSCROLL, TB_ENDTRACK, reinterpret_cast<LPARAM>(slider));
  for (int i = 0; i < kMostWaits && width() < light * 1.05; ++i) view->Wait();
  EXPECT_GT(width(), light * 1.05);

  WriteBytes(folder / "list.csv", "name,number\r\nAnn,1\r\nBob,2\r\n");
  view->DropOnText(folder / "list.csv");
  EXPECT_EQ(u"{name}\r\n{number}", TextOfWindow(page.control(ControlId::kCutText)));
  EXPECT_TRUE(IsWindowVisible(page.control(ControlId::kSeriesWrite)));
}

TEST_F(WindowsViewTest, WhatIsCopiedAsSvgIsTheFile) {
  const TemporaryFolder folder;
  cut_services.folder = folder.path();
  Show();
  view->cut_presenter().patience = 60000;
  view->Click(ControlId::kModeCut);
  CutPage& page = view->main.cut_page();
  SetWindowTextW(page.control(ControlId::kCutText), L"Plate");
  view->Pump();
  ASSERT_TRUE(CopySvg());
  bool is_open = false;  // others look at each change of the clipboard, too
  for (int i = 0; i < kMostWaits && !is_open; ++i) {
    is_open = OpenClipboard(view->window);
    if (!is_open) view->Wait();
  }
  ASSERT_TRUE(is_open);
  const HANDLE picture = GetClipboardData(RegisterClipboardFormatW(L"image/svg+xml"));
  ASSERT_NE(nullptr, picture);
  const std::string svg(static_cast<const char*>(GlobalLock(picture)), GlobalSize(picture));
  const HANDLE text = GetClipboardData(CF_UNICODETEXT);
  ASSERT_NE(nullptr, text);
  const std::u16string words = FromWide(static_cast<const wchar_t*>(GlobalLock(text)));
  CloseClipboard();
  EXPECT_EQ(svg, Utf16ToUtf8(words));
  view->AnswerSave(folder / "plate.svg");
  const auto svg_row = std::ranges::find(Formats(), "svg", &Format::extension) - Formats().begin();
  page.presenter().Picked(ControlId::kSaveMenu, static_cast<size_t>(svg_row));
  for (int i = 0; i < kMostWaits && !exists(folder / "plate.svg"); ++i) view->Wait();
  EXPECT_EQ(ReadBytes(folder / "plate.svg"), svg);
}

TEST_F(WindowsViewTest, AnEndOfTheSessionKeepsWhatWasTypedUpToIt) {
  Show();
  view->Type(ControlId::kText, u"AB");
  EXPECT_TRUE(SendMessageW(view->window, WM_QUERYENDSESSION, 0, 0));
  EXPECT_EQ(u"AB", services.saved_text);
  view->Type(ControlId::kText, u"C");
  SendMessageW(view->window, WM_ENDSESSION, FALSE, 0);
  EXPECT_EQ(u"AB", services.saved_text) << "it goes on";
  SendMessageW(view->window, WM_ENDSESSION, TRUE, 0);
  EXPECT_EQ(u"ABC", services.saved_text);
  MSG quit{};
  EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

TEST_F(WindowsViewTest, TheSystemAsksBeforeItEnds) {
  services.failing = "text";
  Show();
  EXPECT_FALSE(SendMessageW(view->window, WM_QUERYENDSESSION, 0, 0));
  EXPECT_NE(u"", view->TakeMessage());
  EXPECT_TRUE(SendMessageW(view->window, WM_QUERYENDSESSION, 0, 0));
  SendMessageW(view->window, WM_ENDSESSION, TRUE, 0);
  MSG quit{};
  EXPECT_TRUE(PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
}

}  // namespace
}  // namespace kerno::test

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  // Without a window manager Wine waits two seconds for one at each window's end; from the next run
  // on it does not.
  RegSetKeyValueW(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\ui_tests.exe\\X11 Driver",
                  L"Managed", REG_SZ, L"N", 2 * sizeof(wchar_t));
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS |
                                                        ICC_PROGRESS_CLASS | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  LoadLibraryW(L"Msftedit.dll");
  OleInitialize(nullptr);
  return RUN_ALL_TESTS();
}
