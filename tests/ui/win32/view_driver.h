// The Windows window as a user handles and sees it. Needs a display.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "platform/win32/wide_text.h"
#include "shown.h"
#include "ui/win32/main_window.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_controls.h"

namespace kerno::test {

enum class UserKey {
  kEnter = VK_RETURN,
  kEscape = VK_ESCAPE,
  kUp = VK_UP,
  kDown = VK_DOWN,
  kPlus = VK_ADD,
  kMinus = VK_SUBTRACT,
  kZero = '0',
};

// Shows the window as the program does.
class ViewDriver {
 public:
  ViewDriver(DialogServices& services, CutServices& cut_services)
      : main(GetModuleHandleW(nullptr), services, cut_services) {
    window = main.window();
    EXPECT_NE(nullptr, window);
    shown = this;
    timer_ = SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) { shown->ReadMessage(); });
    main.Show(SW_SHOWNORMAL);
    SetFocus(Item(ControlId::kText));
    main.presenter().FillFaces();
    Pump();
  }
  ~ViewDriver() {
    KillTimer(nullptr, timer_);
    SetDarkColors(false);
  }

  DialogPresenter& presenter() { return main.presenter(); }
  CutPresenter& cut_presenter() { return main.cut_page().presenter(); }
  bool IsShown(ControlId id) const { return IsWindowVisible(Item(id)); }
  bool IsEnabled(ControlId id) const { return IsWindowEnabled(Item(id)); }
  ControlId Focused() const { return static_cast<ControlId>(GetDlgCtrlID(GetFocus())); }
  std::u16string TextOf(ControlId id) const { return TextOfWindow(Item(id)); }
  ShownText LooksOf(ControlId id) const {
    if (id == ControlId::kStatus) {
      const HDC dc = GetDC(window);
      SendMessageW(window, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(dc),
                   reinterpret_cast<LPARAM>(Item(id)));
      const ShownText looks{{}, GetTextColor(dc), GetSysColor(COLOR_BTNFACE)};
      ReleaseDC(window, dc);
      return looks;
    }
    CHARFORMAT2W format{};
    format.cbSize = sizeof format;
    Send(id, EM_GETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&format));
    const auto paper = static_cast<Color>(Send(id, EM_SETBKGNDCOLOR, TRUE));
    Send(id, EM_SETBKGNDCOLOR, FALSE, static_cast<LPARAM>(paper));
    return {FromWide(format.szFaceName), format.crTextColor, paper};
  }
  // Why a field is marked; empty where it is not.
  std::u16string FaultOf(ControlId id) const {
    return const_cast<MainWindow&>(main).cut_page().ReasonOf(id);
  }
  // The answer to the next question for a file to write.
  void AnswerSave(const std::filesystem::path& file) { save_answer_ = file; }
  void Type(ControlId id, std::u16string_view text) {
    SendMessageW(Edit(id), EM_SETSEL, 0x7FFFFFF, 0x7FFFFFF);
    TypeHere(id, text);
  }
  void TypeOver(ControlId id, std::u16string_view text) {
    SendMessageW(Edit(id), EM_SETSEL, 0, -1);
    if (text.empty()) SendMessageW(Edit(id), WM_CLEAR, 0, 0);
    TypeHere(id, text);
  }
  void Press(ControlId id, UserKey key) {
    SetFocus(Edit(id));
    MSG message{};
    message.hwnd = Edit(id);
    message.message = WM_KEYDOWN;
    message.wParam = static_cast<WPARAM>(key);
    main.Dispatch(message);
    Pump();
  }
  void Click(ControlId id) {
    Send(id, BM_CLICK);
    Pump();
  }
  void Select(ControlId id, int row) {
    Send(id, CB_SETCURSEL, static_cast<WPARAM>(row));
    SendMessageW(window, WM_COMMAND, MAKEWPARAM(static_cast<int>(id), CBN_SELCHANGE), 0);
  }
  void SelectInText(int from, int to) {
    Send(ControlId::kText, EM_SETSEL, static_cast<WPARAM>(from), to);
  }
  std::pair<int, int> SelectionInText() const {
    CHARRANGE selected{};
    Send(ControlId::kText, EM_EXGETSEL, 0, reinterpret_cast<LPARAM>(&selected));
    return {selected.cpMin, selected.cpMax};
  }
  void UndoInText() { Send(ControlId::kText, EM_UNDO); }
  void Copy(std::u16string_view text) {
    ASSERT_TRUE(OpenClipboard(window));
    EmptyClipboard();
    const HGLOBAL memory = GlobalAlloc(GHND, (text.size() + 1) * sizeof(wchar_t));
    std::copy(text.begin(), text.end(), static_cast<wchar_t*>(GlobalLock(memory)));
    GlobalUnlock(memory);
    SetClipboardData(CF_UNICODETEXT, memory);
    CloseClipboard();
  }
  void DropOnText(const std::filesystem::path& file) {
    const std::wstring name = file.wstring();
    const HGLOBAL memory =
        GlobalAlloc(GHND, sizeof(DROPFILES) + (name.size() + 2) * sizeof(wchar_t));
    auto* head = static_cast<DROPFILES*>(GlobalLock(memory));
    head->pFiles = sizeof(DROPFILES);
    head->fWide = TRUE;
    std::copy(name.begin(), name.end(), reinterpret_cast<wchar_t*>(head + 1));
    GlobalUnlock(memory);
    SendMessageW(window, WM_DROPFILES, reinterpret_cast<WPARAM>(memory), 0);
    Pump();
  }
  void SetDarkColors(bool dark) {
    constexpr int kParts[] = {COLOR_WINDOW, COLOR_BTNFACE};
    constexpr COLORREF kDark[] = {RGB(30, 30, 32), RGB(45, 45, 48)};
    SetSysColors(2, kParts, dark ? kDark : colors_);
    SendMessageW(window, WM_SYSCOLORCHANGE, 0, 0);
  }

  std::u16string TakeMessage() {
    Pump();
    return std::exchange(message_, {});
  }
  bool CancelProgress() {
    HWND dialog = nullptr;
    while ((dialog = FindWindowExW(nullptr, dialog, WC_DIALOG, nullptr)) != nullptr) {
      if (GetDlgItem(dialog, KERNO_PROGRESS_BAR) == nullptr || !IsWindowVisible(dialog)) continue;
      EXPECT_TRUE(IsWindowEnabled(window)) << "typing goes on";
      PostMessageW(GetDlgItem(dialog, IDCANCEL), BM_CLICK, 0, 0);
      return true;
    }
    return false;
  }

  void Place(const WindowRect& rect) {
    SetWindowPos(window, nullptr, rect.left, rect.top, rect.right - rect.left,
                 rect.bottom - rect.top, SWP_NOZORDER);
    Pump();
  }
  void Minimise() { ShowAs(SW_MINIMIZE); }
  void Maximise() { ShowAs(SW_MAXIMIZE); }
  bool Close() {
    SendMessageW(window, WM_CLOSE, 0, 0);
    MSG quit{};
    return PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE;
  }

  HWND Item(ControlId id) const {
    const HWND of_page = const_cast<MainWindow&>(main).cut_page().control(id);
    return of_page != nullptr ? of_page : GetDlgItem(window, static_cast<int>(id));
  }
  LRESULT Send(ControlId id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(Item(id), message, wparam, lparam);
  }
  RECT PlaceOf(HWND control) const {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
    return place;
  }
  static std::vector<std::u16string> Rows(HWND list, ListKind kind) {
    std::vector<std::u16string> rows;
    const UINT count = kind == ListKind::kListBox ? LB_GETCOUNT : CB_GETCOUNT;
    for (LRESULT i = 0; i < SendMessageW(list, count, 0, 0); ++i) {
      rows.push_back(TextOfRow(list, kind, i));
    }
    return rows;
  }
  void ShowAs(int show) {
    ShowWindow(window, show);
    Pump();
  }
  void Wait() {
    Sleep(10);
    Pump();
  }
  void Pump() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) main.Dispatch(message);
  }

  MainWindow main;
  HWND window = nullptr;

 private:
  HWND Edit(ControlId id) const {
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof parts;
    return GetComboBoxInfo(Item(id), &parts) && parts.hwndItem ? parts.hwndItem : Item(id);
  }
  void TypeHere(ControlId id, std::u16string_view text) {
    for (const char16_t unit : text) SendMessageW(Edit(id), WM_CHAR, unit, 0);
  }
  // A message has a loop of its own, into which only a timer reaches.
  void ReadMessage() {
    const HWND popup = GetLastActivePopup(window);
    if (popup == window || !IsWindowVisible(popup)) return;
    if (GetDlgItem(popup, KERNO_PROGRESS_BAR) != nullptr) return;
    if (!save_answer_.empty()) return SaveAs(popup);
    message_.clear();
    for (HWND part = GetWindow(popup, GW_CHILD); part; part = GetWindow(part, GW_HWNDNEXT)) {
      message_ += TextOfWindow(part);
    }
    PostMessageW(popup, WM_COMMAND, IDOK, 0);
  }

  // Types the file's name into the system's question.
  void SaveAs(HWND question) {
    HWND name = nullptr;
    EnumChildWindows(
        question,
        [](HWND part, LPARAM found) -> BOOL {
          wchar_t kind[8] = {};
          GetClassNameW(part, kind, 8);
          if (lstrcmpiW(kind, L"Edit") != 0 || !IsWindowVisible(part)) return TRUE;
          *reinterpret_cast<HWND*>(found) = part;
          return FALSE;
        },
        reinterpret_cast<LPARAM>(&name));
    if (name == nullptr) return;
    SetWindowTextW(name, std::exchange(save_answer_, {}).c_str());
    PostMessageW(question, WM_COMMAND, IDOK, 0);
  }

  static inline ViewDriver* shown;
  const COLORREF colors_[2] = {GetSysColor(COLOR_WINDOW), GetSysColor(COLOR_BTNFACE)};
  UINT_PTR timer_ = 0;
  std::u16string message_;
  std::filesystem::path save_answer_;
};

}  // namespace kerno::test
