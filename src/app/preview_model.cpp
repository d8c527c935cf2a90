#include "app/preview_model.h"

#include <algorithm>
#include <cmath>

namespace kerno {

Fit PreviewModel::WholeFit() const {
  return FitExtent(box_, {.left = 0, .top = 0, .width = width_, .height = height_}, kMargin);
}

bool PreviewModel::IsSeen() const {
  const DevicePoint low = fit_.Apply(box_.min), high = fit_.Apply(box_.max);
  return low.x < width_ && high.x > 0 && high.y < height_ && low.y > 0;
}

void PreviewModel::SetFrame(double width, double height) {
  if (!shows_all_) {  // what was in the middle stays there
    fit_.dx += (width - width_) / 2;
    fit_.dy += (height - height_) / 2;
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
  const double whole = WholeFit().scale;
  const double wanted = fit_.scale * std::pow(kWheelFactor, steps);
  const double scale = std::clamp(wanted, whole * kShallowest, whole * kDeepest);
  const double factor = scale / fit_.scale;
  if (!std::isfinite(factor) || factor <= 0) return;
  fit_ = {.scale = scale, .dx = x - (x - fit_.dx) * factor, .dy = y - (y - fit_.dy) * factor};
  shows_all_ = false;
}

void PreviewModel::Pan(double dx, double dy) {
  fit_.dx += dx;
  fit_.dy += dy;
  shows_all_ = false;
}

}  // namespace kerno
