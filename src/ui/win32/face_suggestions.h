// The list of installed faces that opens under the face's combo box while a part of a name is
// typed.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/win32/windows_api.h"

namespace kerno {

// The faces that hold what was typed, in their own order; letters' case and width (half or full)
// and the kind of kana make no difference.
std::vector<std::u16string> FacesThatHold(std::u16string_view typed,
                                          const std::vector<std::u16string>& faces);

// A list of its own, not the combo box's: the combo box would put the first face into its edit
// while the user types. The keyboard stays with the edit.
class FaceSuggestions {
 public:
  // `combo` has an edit. The list's owner draws its items (WM_DRAWITEM) as those of `combo`.
  FaceSuggestions(HINSTANCE instance, HWND combo);
  ~FaceSuggestions();
  FaceSuggestions(const FaceSuggestions&) = delete;
  FaceSuggestions& operator=(const FaceSuggestions&) = delete;

  // Called with the face that the user takes from the list.
  std::function<void(std::u16string_view)> on_chosen;

  void SetFaces(std::vector<std::u16string> faces) { faces_ = std::move(faces); }

  // Shows the faces that hold what was typed, as many rows as said; hides the list when there is
  // nothing to offer.
  void Offer(std::u16string_view typed, int rows, int item_height);
  void Hide();
  bool IsShown() const { return IsWindowVisible(list_) != FALSE; }
  HWND list() const { return list_; }

  // Keys that move in the list, take from it and close it, while it is shown. Whether the message
  // was one.
  bool TakesKey(const MSG& message);

 private:
  static LRESULT CALLBACK ListProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                   UINT_PTR id, DWORD_PTR self);
  void Move(int rows);
  void Choose();

  HWND combo_;
  HWND list_;
  std::vector<std::u16string> faces_;
};

}  // namespace kerno
