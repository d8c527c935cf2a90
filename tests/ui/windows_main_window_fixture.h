// The window of the Windows program, shown to a test that handles it as a user does. Needs a
// display.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/controls.h"
#include "support/recording_view.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {

inline std::wstring WindowText(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(
      static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

inline RECT PlaceIn(HWND parent, HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
  return place;
}

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
    main->presenter().FillFaces();
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
      std::exchange(look_at_popup, nullptr)(popup);
      PostMessageW(popup, WM_COMMAND, popup_answer, 0);
    });
    open();
    Pump();
    KillTimer(nullptr, timer);
    EXPECT_FALSE(look_at_popup) << "nothing was shown";
  }

  static std::wstring TextsIn(HWND popup) {
    std::wstring all;
    for (HWND part = GetWindow(popup, GW_CHILD); part; part = GetWindow(part, GW_HWNDNEXT)) {
      all += WindowText(part);
    }
    return all;
  }

  // What the screen shows of a control, row by row.
  std::vector<uint32_t> PixelsOf(ControlId id) const {
    const RECT place = PlaceIn(window, Item(id));
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    const HDC screen = GetDC(window);
    const HDC copy = CreateCompatibleDC(screen);
    const HBITMAP bitmap = CreateCompatibleBitmap(screen, width, height);
    const HGDIOBJ before = SelectObject(copy, bitmap);
    BitBlt(copy, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
    SelectObject(copy, before);
    std::vector<uint32_t> pixels(static_cast<size_t>(width * height));
    GetDIBits(copy, bitmap, 0, static_cast<UINT>(height), pixels.data(), &info, DIB_RGB_COLORS);
    DeleteObject(bitmap);
    DeleteDC(copy);
    ReleaseDC(window, screen);
    return pixels;
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

}  // namespace kerno
