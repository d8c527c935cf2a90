// The rich edit control with the text: plain text in one face and colour.
#pragma once

#include <string>
#include <string_view>

#include "app/dialog_view.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class TextBox {
 public:
  // Prepares a control that is empty yet.
  explicit TextBox(HWND control);

  // Lines end in U+000A.
  std::u16string Text() const;
  void ShowText(std::u16string_view text, TextChange change);

  // Text, undo, caret, selection and an input method's composition stay.
  void ShowFormat(std::u16string_view face, Color color, int dpi);

  // Whether an input method is composing: what it shows is not typed yet.
  bool IsComposing() const;

  HWND control() const { return control_; }

 private:
  HWND control_;
};

}  // namespace kerno
