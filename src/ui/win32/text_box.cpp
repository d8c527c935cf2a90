#include "ui/win32/text_box.h"

#include <tom.h>

#include <algorithm>
#include <cwchar>
#include <string>

#include "app/color_choices.h"
#include "platform/device_context.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/interface.h"
#include "ui/win32/looks.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// ITextDocument, whose identity no import library has.
constexpr GUID kTextDocument = {
    0x8CC497C0, 0xA1DF, 0x11CE, {0x80, 0x98, 0x00, 0xAA, 0x00, 0x47, 0xBE, 0x5D}};
constexpr UINT kUtf16 = 1200;         // the code page number of UTF-16
constexpr int kTextHeight = 14 * 20;  // in twentieths of a point
constexpr LPARAM kLongestText = 0x7FFFFFFE;
constexpr UINT_PTR kSubclass = 1;

// While it lives, changes of the control are nothing that the user can undo.
class NothingToUndo {
 public:
  explicit NothingToUndo(HWND control) {
    Interface<IUnknown> object;
    SendMessageW(control, EM_GETOLEINTERFACE, 0, reinterpret_cast<LPARAM>(object.put()));
    if (object) object->QueryInterface(kTextDocument, document_.put_void());
    if (document_) document_->Undo(tomSuspend, nullptr);
  }
  ~NothingToUndo() {
    if (document_) document_->Undo(tomResume, nullptr);
  }
  NothingToUndo(const NothingToUndo&) = delete;
  NothingToUndo& operator=(const NothingToUndo&) = delete;

 private:
  Interface<ITextDocument> document_;
};

// Plain text replaces the selection, however the clipboard came by it: the control's own way may
// take the formats of other programs, and the text around along with them.
void Paste(HWND control) {
  if (!OpenClipboard(control)) return;
  const HANDLE memory = GetClipboardData(CF_UNICODETEXT);
  const void* const locked = memory != nullptr ? GlobalLock(memory) : nullptr;
  if (locked != nullptr) {
    const auto* const text = static_cast<const wchar_t*>(locked);
    const std::wstring whole(text, wcsnlen(text, GlobalSize(memory) / sizeof(wchar_t)));
    GlobalUnlock(memory);
    SendMessageW(control, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(whole.c_str()));
  }
  CloseClipboard();
}

bool IsPasteKey(UINT message, WPARAM key) {
  if (message != WM_KEYDOWN) return false;
  const bool control = GetKeyState(VK_CONTROL) < 0, shift = GetKeyState(VK_SHIFT) < 0;
  return (key == 'V' && control && GetKeyState(VK_MENU) >= 0) ||
         (key == VK_INSERT && shift && !control);
}

// A dialog selects all of an edit that gets the keyboard, and the next key would replace the text.
LRESULT CALLBACK KeepText(HWND window, UINT message, WPARAM wparam, LPARAM lparam, UINT_PTR id,
                          DWORD_PTR /*data*/) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(window, KeepText, id);
  if (message == WM_PASTE || IsPasteKey(message, wparam)) return Paste(window), 0;
  const LRESULT result = DefSubclassProc(window, message, wparam, lparam);
  return message == WM_GETDLGCODE ? result & ~static_cast<LRESULT>(DLGC_HASSETSEL) : result;
}

// The control ends its lines with U+000D.
std::wstring WithReturns(std::u16string_view text) {
  std::wstring wide = ToWide(text);
  std::replace(wide.begin(), wide.end(), L'\n', L'\r');
  return wide;
}

}  // namespace

TextBox::TextBox(HWND control) : control_(control) {
  SetWindowSubclass(control_, KeepText, kSubclass, 0);
  // Plain text has one format for all of it.
  SendMessageW(control_, EM_SETTEXTMODE, TM_PLAINTEXT | TM_MULTILEVELUNDO | TM_MULTICODEPAGE, 0);
  SendMessageW(control_, EM_EXLIMITTEXT, 0, kLongestText);
  const auto mask = static_cast<DWORD>(SendMessageW(control_, EM_GETEVENTMASK, 0, 0));
  SendMessageW(control_, EM_SETEVENTMASK, 0,
               mask | static_cast<DWORD>(ENM_CHANGE) | static_cast<DWORD>(ENM_MOUSEEVENTS) |
                   static_cast<DWORD>(ENM_SELCHANGE));
  // The text stays in the face that was chosen, whatever its characters.
  const LRESULT options = SendMessageW(control_, EM_GETLANGOPTIONS, 0, 0);
  SendMessageW(control_, EM_SETLANGOPTIONS, 0,
               options & ~static_cast<LRESULT>(IMF_AUTOFONT | IMF_AUTOFONTSIZEADJUST));
}

std::u16string TextBox::Text() const {
  GETTEXTLENGTHEX ask = {GTL_NUMCHARS | GTL_PRECISE, kUtf16};
  const LRESULT length =
      SendMessageW(control_, EM_GETTEXTLENGTHEX, reinterpret_cast<WPARAM>(&ask), 0);
  if (length <= 0) return {};
  std::wstring text(static_cast<size_t>(length) + 1, L'\0');
  GETTEXTEX get{};
  get.cb = static_cast<DWORD>(text.size() * sizeof(wchar_t));
  get.flags = GT_DEFAULT;
  get.codepage = kUtf16;
  const LRESULT got = SendMessageW(control_, EM_GETTEXTEX, reinterpret_cast<WPARAM>(&get),
                                   reinterpret_cast<LPARAM>(text.data()));
  text.resize(static_cast<size_t>(std::clamp<LRESULT>(got, 0, length)));
  std::u16string lines = FromWide(text);
  std::replace(lines.begin(), lines.end(), u'\r', u'\n');
  std::replace(lines.begin(), lines.end(), u'\v', u'\n');  // a line end within a paragraph
  return lines;
}

void TextBox::ShowText(std::u16string_view text, TextChange change) {
  const std::wstring wide = WithReturns(text);
  if (change == TextChange::kFresh) {
    SETTEXTEX set = {ST_DEFAULT, kUtf16};
    SendMessageW(control_, EM_SETTEXTEX, reinterpret_cast<WPARAM>(&set),
                 reinterpret_cast<LPARAM>(wide.c_str()));
    SendMessageW(control_, EM_EMPTYUNDOBUFFER, 0, 0);
    const auto end = static_cast<LONG>(wide.size());
    CHARRANGE caret = {end, end};
    SendMessageW(control_, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&caret));
    return;
  }
  CHARRANGE all = {0, -1};
  SendMessageW(control_, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&all));
  SendMessageW(control_, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(wide.c_str()));
}

void TextBox::ShowFormat(std::u16string_view face, Color color, int dpi) {
  CHARFORMAT2W format{};
  format.cbSize = sizeof format;
  format.dwMask = CFM_FACE | CFM_COLOR | CFM_SIZE | CFM_CHARSET;
  // The control counts in points of the system's density, wherever its window stands.
  format.yHeight = MulDiv(kTextHeight, dpi, static_cast<int>(GetDpiForSystem()));
  format.crTextColor = color;
  format.bCharSet = DEFAULT_CHARSET;
  const std::u16string_view name = face.substr(0, kMaxFaceName);
  std::copy(name.begin(), name.end(), format.szFaceName);
  const NothingToUndo quiet(control_);
  SendMessageW(control_, EM_SETCHARFORMAT, SCF_DEFAULT, reinterpret_cast<LPARAM>(&format));
  SendMessageW(control_, EM_SETCHARFORMAT, SCF_ALL, reinterpret_cast<LPARAM>(&format));
  const Color paper = PaperFor(color, LookColor(COLOR_WINDOW));
  SendMessageW(control_, EM_SETBKGNDCOLOR, 0, static_cast<LPARAM>(paper));
}

bool TextBox::IsComposing() const {
  const HIMC context = ImmGetContext(control_);
  if (context == nullptr) return false;
  const LONG length = ImmGetCompositionStringW(context, GCS_COMPSTR, nullptr, 0);
  ImmReleaseContext(control_, context);
  return length > 0;
}

}  // namespace kerno
