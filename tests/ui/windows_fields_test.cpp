// The window of the Windows program: what is typed, pasted and taken from its lists. Needs a
// display.
#include <gmock/gmock.h>

#include <algorithm>
#include <functional>

#include "app/font_face_list.h"
#include "platform/win32/wide_text.h"
#include "windows_main_window_fixture.h"

namespace kerno {
namespace {

TEST_F(WindowsMainWindowTest, LooksAreNothingToUndoAndLeaveTheSelection) {
  Show(services);
  const HWND text = Item(ControlId::kText);
  Type(text, L"AB");
  EXPECT_EQ(2u, main->presenter().item_count());
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
  EXPECT_EQ(0u, main->presenter().item_count());
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
  EXPECT_EQ(3u, main->presenter().item_count());
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
  EXPECT_EQ(3u, main->presenter().item_count());
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
  main->presenter().FillFaces();
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
  const struct {
    const char* what;
    std::function<void()> act;
  } ends[] = {{"Enter", [&] { Key(edit, VK_RETURN); }},
              {"a menu", [&] { SendMessageW(window, WM_ENTERMENULOOP, FALSE, 0); }},
              {"another size",
               [&] { SetWindowPos(window, nullptr, 0, 0, 900, 700, SWP_NOMOVE | SWP_NOZORDER); }}};
  for (const auto& end : ends) {
    SendMessageW(edit, EM_SETSEL, 0, -1);
    Type(edit, L"goth");
    EXPECT_NE(L"", offered());
    end.act();
    EXPECT_EQ(L"", offered()) << end.what;
    EXPECT_EQ(L"goth", TextOf(ControlId::kFace)) << end.what;
  }
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

}  // namespace
}  // namespace kerno
