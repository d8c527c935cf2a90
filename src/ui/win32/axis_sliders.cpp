#include "ui/win32/axis_sliders.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

#include "platform/win32/wide_text.h"
#include "ui/win32/looks.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

// In pixels of the first density.
constexpr int kRowHeight = 26;
constexpr int kNameWidth = 90;
constexpr int kFigureWidth = 56;
constexpr double kWide = 20;  // axes from this length on move by whole numbers

std::wstring Figure(const AxisRow& axis) {
  wchar_t text[32];
  const bool whole = axis.most - axis.least >= kWide;
  std::swprintf(text, std::size(text), L"%.*f", whole ? 0 : 2, axis.place);
  return text;
}

bool SameAxis(const AxisRow& a, const AxisRow& b) {
  return a.name == b.name && a.least == b.least && a.most == b.most;
}

}  // namespace

double AxisSliders::Step(const AxisRow& axis) {
  return axis.most - axis.least >= kWide ? 1 : std::max(axis.most - axis.least, 0.01) / 200;
}

void AxisSliders::Clear() {
  for (const Row& row : rows_) {
    for (const HWND window : {row.name, row.slider, row.figure}) DestroyWindow(window);
  }
  rows_.clear();
}

void AxisSliders::Show(const std::vector<AxisRow>& axes) {
  const bool same = std::ranges::equal(
      axes, rows_, [](const AxisRow& a, const Row& row) { return SameAxis(a, row.axis); });
  if (!same) {
    Clear();
    const auto make = [this](const wchar_t* name, const std::wstring& text, DWORD style) {
      return CreateWindowExW(0, name, text.c_str(), style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
                             host_, nullptr, instance_, nullptr);
    };
    for (const AxisRow& axis : axes) {
      Row row{axis, make(L"STATIC", ToWide(axis.name), SS_CENTERIMAGE | SS_NOPREFIX),
              make(TRACKBAR_CLASSW, ToWide(axis.name), WS_TABSTOP | TBS_HORZ | TBS_NOTICKS),
              make(L"STATIC", L"", SS_CENTERIMAGE | SS_RIGHT | SS_NOPREFIX)};
      const auto steps = static_cast<LPARAM>(std::lround((axis.most - axis.least) / Step(axis)));
      SendMessageW(row.slider, TBM_SETRANGEMIN, FALSE, 0);
      SendMessageW(row.slider, TBM_SETRANGEMAX, FALSE, steps);
      SendMessageW(row.slider, TBM_SETPAGESIZE, 0, std::max<LPARAM>(1, steps / 10));
      rows_.push_back(row);
    }
    SetFont(font_, dpi_);
    if (!rows_.empty()) ApplyLooks(host_);
  }
  for (size_t i = 0; i < axes.size(); ++i) {
    Row& row = rows_[i];
    row.axis = axes[i];
    const auto place =
        static_cast<LPARAM>(std::lround((row.axis.place - row.axis.least) / Step(row.axis)));
    if (SendMessageW(row.slider, TBM_GETPOS, 0, 0) != place) {
      SendMessageW(row.slider, TBM_SETPOS, TRUE, place);
    }
    SetWindowTextW(row.figure, Figure(row.axis).c_str());
  }
}

void AxisSliders::SetFont(HFONT font, int dpi) {
  font_ = font;
  dpi_ = dpi;
  for (const Row& row : rows_) {
    for (const HWND window : {row.name, row.figure}) {
      SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    }
  }
}

int AxisSliders::Height() const {
  return static_cast<int>(rows_.size()) * MulDiv(kRowHeight, dpi_, USER_DEFAULT_SCREEN_DPI);
}

void AxisSliders::LayOut(int width) const {
  const auto scaled = [this](int units) { return MulDiv(units, dpi_, USER_DEFAULT_SCREEN_DPI); };
  const int name = scaled(kNameWidth);
  const int figure = scaled(kFigureWidth);
  const int high = scaled(kRowHeight);
  int top = 0;
  for (const Row& row : rows_) {
    SetWindowPos(row.name, nullptr, 0, top, name, high, SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowPos(row.slider, nullptr, name, top, std::max(0, width - name - figure), high,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    SetWindowPos(row.figure, nullptr, width - figure, top, figure, high,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    top += high;
  }
}

bool AxisSliders::Moved(HWND slider) {
  const auto row = std::ranges::find(rows_, slider, &Row::slider);
  if (row == rows_.end()) return false;
  const auto steps = static_cast<double>(SendMessageW(slider, TBM_GETPOS, 0, 0));
  AxisRow& axis = row->axis;
  axis.place = std::min(axis.most, axis.least + steps * Step(axis));
  SetWindowTextW(row->figure, Figure(axis).c_str());
  if (on_moved) on_moved(static_cast<size_t>(row - rows_.begin()), axis.place);
  return true;
}

}  // namespace kerno
