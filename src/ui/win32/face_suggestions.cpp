#include "ui/win32/face_suggestions.h"

#include <algorithm>

#include "platform/win32/wide_text.h"
#include "ui/win32/window_text.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr UINT_PTR kSubclass = 1;

}  // namespace

std::vector<std::u16string> FacesThatHold(std::u16string_view typed,
                                          const std::vector<std::u16string>& faces) {
  std::vector<std::u16string> holding;
  if (typed.empty()) return holding;
  const std::wstring part = ToWide(typed);
  for (const std::u16string& face : faces) {
    const std::wstring name = ToWide(face);
    const int at =
        FindNLSStringEx(LOCALE_NAME_USER_DEFAULT,
                        FIND_FROMSTART | NORM_IGNORECASE | NORM_IGNOREWIDTH | NORM_IGNOREKANATYPE,
                        name.c_str(), static_cast<int>(name.size()), part.c_str(),
                        static_cast<int>(part.size()), nullptr, nullptr, nullptr, 0);
    if (at >= 0) holding.push_back(face);
  }
  return holding;
}

FaceSuggestions::FaceSuggestions(HINSTANCE instance, HWND combo)
    : combo_(combo),
      list_(CreateWindowExW(WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, L"LISTBOX", L"",
                            WS_POPUP | WS_BORDER | WS_VSCROLL | LBS_OWNERDRAWFIXED |
                                LBS_HASSTRINGS | LBS_SORT | LBS_NOINTEGRALHEIGHT,
                            0, 0, 0, 0, GetParent(combo), nullptr, instance, nullptr)) {
  SetWindowSubclass(list_, ListProc, kSubclass, reinterpret_cast<DWORD_PTR>(this));
}

FaceSuggestions::~FaceSuggestions() {
  RemoveWindowSubclass(list_, ListProc, kSubclass);
  DestroyWindow(list_);
}

void FaceSuggestions::Offer(std::u16string_view typed, int rows, int item_height) {
  const std::vector<std::u16string> holding = FacesThatHold(typed, faces_);
  if (holding.empty() || (holding.size() == 1 && holding.front() == typed)) return Hide();
  SendMessageW(list_, WM_SETREDRAW, FALSE, 0);
  SendMessageW(list_, LB_RESETCONTENT, 0, 0);
  for (const std::u16string& face : holding) {
    SendMessageW(list_, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(ToWide(face).c_str()));
  }
  SendMessageW(list_, LB_SETITEMHEIGHT, 0, item_height);
  SendMessageW(list_, WM_SETREDRAW, TRUE, 0);
  RECT place{};
  GetWindowRect(combo_, &place);
  const int shown = std::min(rows, static_cast<int>(holding.size()));
  const int frame = 2 * GetSystemMetrics(SM_CYBORDER);
  SetWindowPos(list_, HWND_TOP, place.left, place.bottom, place.right - place.left,
               shown * item_height + frame, SWP_NOACTIVATE | SWP_SHOWWINDOW);
  InvalidateRect(list_, nullptr, TRUE);
}

void FaceSuggestions::Hide() {
  if (IsShown()) ShowWindow(list_, SW_HIDE);
}

bool FaceSuggestions::TakesKey(const MSG& message) {
  if (message.message != WM_KEYDOWN || !IsShown() || !IsChild(combo_, message.hwnd)) return false;
  RECT area{};
  GetClientRect(list_, &area);
  const auto height = static_cast<int>(SendMessageW(list_, LB_GETITEMHEIGHT, 0, 0));
  const int page = std::max(1, static_cast<int>(area.bottom) / std::max(height, 1) - 1);
  switch (message.wParam) {
    case VK_DOWN:
      return Move(1), true;
    case VK_UP:
      return Move(-1), true;
    case VK_NEXT:
      return Move(page), true;
    case VK_PRIOR:
      return Move(-page), true;
    case VK_ESCAPE:
      return Hide(), true;
    case VK_RETURN:
      if (SendMessageW(list_, LB_GETCURSEL, 0, 0) == LB_ERR) return Hide(), true;
      return Choose(), true;
    default:
      return false;
  }
}

void FaceSuggestions::Move(int rows) {
  const auto count = static_cast<int>(SendMessageW(list_, LB_GETCOUNT, 0, 0));
  const auto now = static_cast<int>(SendMessageW(list_, LB_GETCURSEL, 0, 0));
  const int next = std::clamp(now + rows, 0, std::max(count - 1, 0));
  SendMessageW(list_, LB_SETCURSEL, static_cast<WPARAM>(next), 0);
}

void FaceSuggestions::Choose() {
  const LRESULT selected = SendMessageW(list_, LB_GETCURSEL, 0, 0);
  if (selected == LB_ERR) return;
  const std::u16string face = TextOfRow(list_, ListKind::kListBox, selected);
  Hide();
  if (on_chosen) on_chosen(face);
}

// The list follows the pointer and takes neither the keyboard nor the window's place in front.
LRESULT CALLBACK FaceSuggestions::ListProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                           UINT_PTR /*id*/, DWORD_PTR self) {
  switch (message) {
    case WM_MOUSEACTIVATE:
      return MA_NOACTIVATE;
    case WM_MOUSEMOVE:
    case WM_LBUTTONDOWN: {
      const LRESULT item = SendMessageW(window, LB_ITEMFROMPOINT, 0, lparam);
      if (HIWORD(item) == 0) SendMessageW(window, LB_SETCURSEL, LOWORD(item), 0);
      return 0;
    }
    case WM_LBUTTONUP:
      reinterpret_cast<FaceSuggestions*>(self)->Choose();
      return 0;
    default:
      return DefSubclassProc(window, message, wparam, lparam);
  }
}

}  // namespace kerno
