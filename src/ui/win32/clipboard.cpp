#include "ui/win32/clipboard.h"

#include <algorithm>
#include <string>

#include "base/text.h"

namespace kerno {
namespace {

class OpenClipboardFor {
 public:
  explicit OpenClipboardFor(HWND owner) {
    // A program that watches the clipboard holds it for a moment after each change.
    for (int tries = 0; tries < 10 && !is_open_; ++tries) {
      is_open_ = OpenClipboard(owner) != FALSE;
      if (!is_open_) Sleep(20);
    }
    if (is_open_) EmptyClipboard();
  }
  ~OpenClipboardFor() {
    if (is_open_) CloseClipboard();
  }
  OpenClipboardFor(const OpenClipboardFor&) = delete;
  OpenClipboardFor& operator=(const OpenClipboardFor&) = delete;

  template <class Unit>
  bool Put(UINT format, std::basic_string_view<Unit> text, size_t zeros) const {
    if (!is_open_) return false;
    const HGLOBAL memory = GlobalAlloc(GHND, (text.size() + zeros) * sizeof(Unit));
    if (memory == nullptr) return false;
    std::copy(text.begin(), text.end(), static_cast<Unit*>(GlobalLock(memory)));
    GlobalUnlock(memory);
    if (SetClipboardData(format, memory) != nullptr) return true;
    GlobalFree(memory);
    return false;
  }

 private:
  bool is_open_ = false;
};

}  // namespace

bool CopyToClipboard(HWND owner, std::u16string_view text) {
  return OpenClipboardFor(owner).Put(CF_UNICODETEXT, text, 1);
}

bool CopySvgToClipboard(HWND owner, std::string_view svg) {
  const OpenClipboardFor clipboard(owner);
  const bool picture = clipboard.Put(RegisterClipboardFormatW(L"image/svg+xml"), svg, 0);
  const std::u16string text = Utf8ToUtf16Lossy(svg);
  return clipboard.Put(CF_UNICODETEXT, std::u16string_view(text), 1) && picture;
}

}  // namespace kerno
