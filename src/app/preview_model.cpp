#include "app/preview_model.h"

#include <algorithm>
#include <cmath>

namespace kerno {

Affine PreviewModel::WholeFit() const {
  return FitExtent(box_, {.left = 0, .top = 0, .width = width_, .height = height_}, kMargin);
}

bool PreviewModel::IsSeen() const {
  const DevicePoint low = Placed(fit_, box_.min), high = Placed(fit_, box_.max);
  return low.x < width_ && high.x > 0 && high.y < height_ && low.y > 0;
}

void PreviewModel::SetFrame(double width, double height) {
  if (!shows_all_) {  // what was in the middle stays there
    fit_.to.x += (width - width_) / 2;
    fit_.to.y += (height - height_) / 2;
  }
  width_ = width;
  height_ = height;
  if (shows_all_) fit_ = WholeFit();
}

void PreviewModel::SetDrawing(const Extent3& box) {
  box_ = box;
  if (shows_all_ || !IsSeen()) ShowAll();
}

void PreviewModel::ShowAll() {
  shows_all_ = true;
  fit_ = WholeFit();
}

void PreviewModel::ZoomAt(double x, double y, double steps) {
  const double whole = PixelsPerUnit(WholeFit());
  const double wanted = PixelsPerUnit(fit_) * std::pow(kWheelFactor, steps);
  ShowScale(std::clamp(wanted, whole * kShallowest, whole * kDeepest), x, y);
}

void PreviewModel::ShowScale(double scale, double x, double y) {
  const double factor = scale / PixelsPerUnit(fit_);
  if (!std::isfinite(factor) || factor <= 0) return;
  fit_ = FlippedY(scale, {x - (x - fit_.to.x) * factor, y - (y - fit_.to.y) * factor});
  shows_all_ = false;
}

void PreviewModel::Pan(double dx, double dy) {
  fit_.to.x += dx;
  fit_.to.y += dy;
  shows_all_ = false;
}

}  // namespace kerno
