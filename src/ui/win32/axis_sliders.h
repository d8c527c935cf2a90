// A slider with a name and a figure for each axis of a variable font, one below the other in a
// window of its own.
#pragma once

#include <functional>
#include <vector>

#include "app/cut_view.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class AxisSliders {
 public:
  // `host` receives the sliders' messages and gives them to Moved.
  AxisSliders(HINSTANCE instance, HWND host) : instance_(instance), host_(host) {}

  std::function<void(size_t axis, double place)> on_moved;

  // Sliders stay where their axes are the same, so that one can be dragged meanwhile.
  void Show(const std::vector<AxisRow>& axes);
  void SetFont(HFONT font, int dpi);
  int Height() const;
  void LayOut(int width) const;
  bool IsEmpty() const { return rows_.empty(); }

  // The answer to WM_HSCROLL of a slider. Whether it was one of these.
  bool Moved(HWND slider);

 private:
  struct Row {
    AxisRow axis;
    HWND name, slider, figure;
  };
  void Clear();
  static double Step(const AxisRow& axis);

  HINSTANCE instance_;
  HWND host_;
  HFONT font_ = nullptr;
  int dpi_ = USER_DEFAULT_SCREEN_DPI;
  std::vector<Row> rows_;
};

}  // namespace kerno
