// The list of faces with the user's text in each, as the Cut page has it.
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "app/cut_view.h"
#include "platform/drawing.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class FaceRowList {
 public:
  // An owner-drawn list that keeps no items (LBS_NODATA), with the faces' own rows.
  explicit FaceRowList(HWND list);
  FaceRowList(const FaceRowList&) = delete;
  FaceRowList& operator=(const FaceRowList&) = delete;

  // The sample of a row in pixels, null while it is not made.
  std::function<const BitmapSurface*(size_t row, int width, int height, Color ink, Color paper)>
      sample;
  // The star of a row was clicked, or its key pressed.
  std::function<void(size_t row)> on_star;

  void Show(std::vector<FaceListRow> rows, std::optional<size_t> selected);
  void Repaint() const { InvalidateRect(list_, nullptr, FALSE); }
  void SetDensity(int dpi);

  // The answer to WM_DRAWITEM.
  void Draw(const DRAWITEMSTRUCT& item) const;

 private:
  static LRESULT CALLBACK ListProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                   UINT_PTR id, DWORD_PTR self);
  bool ClickStar(POINT at) const;
  bool TypeStar() const;
  int StarWidth() const;

  HWND list_;
  int dpi_ = USER_DEFAULT_SCREEN_DPI;
  std::vector<FaceListRow> rows_;
};

}  // namespace kerno
