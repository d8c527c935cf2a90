// What the user does in the preview of the Cut page.

#include <charconv>
#include <cmath>
#include <iterator>

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "base/text.h"

namespace kerno {
namespace {

using Id = ControlId;

// "47 %", "0.4 %": two digits at least, so that no figure is nothing.
std::u16string PercentText(double percent) {
  int decimals = 0;
  for (double rest = percent; rest < 9.95 && decimals < 9; rest *= 10) ++decimals;
  char text[40];
  const auto end = std::to_chars(text, std::end(text), percent, std::chars_format::fixed, decimals);
  return end.ec == std::errc() ? Utf8ToUtf16Lossy({text, end.ptr}) + u" %" : u"";
}

}  // namespace

void CutPresenter::PreviewResized(double width, double height, double density) {
  preview_.SetFrame(width, height, density);
  ShowZoom();
  view_.RepaintPreview();
}

void CutPresenter::PreviewZoomed(double x, double y, double steps) {
  preview_.ZoomAt(x, y, steps);
  ShowZoom();
  view_.RepaintPreview();
}

void CutPresenter::PreviewGrabbed(double x, double y) {
  if (measures_) {
    preview_.MeasureClick(x, y);
    ShowPointer(x, y);
    return view_.RepaintPreview();
  }
  grabbed_at_ = P2{x, y};
}

void CutPresenter::PreviewPointedAt(double x, double y) {
  if (grabbed_at_) {
    preview_.Pan(x - grabbed_at_->x, y - grabbed_at_->y);
    grabbed_at_ = P2{x, y};
    return view_.RepaintPreview();
  }
  if (measures_ && preview_.MeasureMove(x, y)) view_.RepaintPreview();
  ShowPointer(x, y);
}

void CutPresenter::PreviewReleased() {
  grabbed_at_.reset();
}

void CutPresenter::PreviewDoubleClicked() {
  if (measures_) return;
  preview_.ShowAll();
  ShowZoom();
  view_.RepaintPreview();
}

bool CutPresenter::PreviewKeyPressed(char16_t key) {
  for (const PreviewKeyRow& row : PreviewKeys()) {
    if (row.key != key) continue;
    if (row.zoom_steps != 0) {
      preview_.ZoomBy(row.zoom_steps);
    } else if (row.right != 0 || row.down != 0) {
      preview_.Pan(row.right, row.down);
    } else {
      preview_.ShowAll();
    }
    ShowZoom();
    view_.RepaintPreview();
    return true;
  }
  return false;
}

std::unique_ptr<BitmapSurface> CutPresenter::PreviewPicture(Color paper) {
  return preview_.Paint(InksOn(paper));
}

void CutPresenter::ShowZoom() {
  const double percent = preview_.Percent(view_.PixelsPerMillimetre());
  const bool is_shown = made_ && std::isfinite(percent) && percent > 0;
  view_.ShowControlText(Id::kZoomFigure, is_shown ? PercentText(percent) : u"");
}

void CutPresenter::ShowPointer(double x, double y) {
  const std::u16string measured = preview_.MeasuredText();
  view_.ShowControlText(Id::kPointer,
                        measures_ && !measured.empty() ? measured : preview_.PointText(x, y));
}

}  // namespace kerno
