// What part of the drawing the preview shows, as plain numbers.
//
// Drawing coordinates point y up; frame coordinates are pixels, y down, from the frame's upper left
// corner.
#pragma once

#include "drawing/geometry.h"
#include "export/fit.h"

namespace kerno {

// Shows the whole drawing until the user zooms or pans; from then on what the user chose, through
// changes of the drawing and of the frame's size, until Fit or until nothing of the drawing would
// be seen.
class PreviewModel {
 public:
  static constexpr double kMargin = 8;          // pixels kept free round a drawing shown whole
  static constexpr double kWheelFactor = 1.25;  // scale by one step of the wheel
  static constexpr double kDeepest = 4096;      // of the scale that shows all
  static constexpr double kShallowest = 1.0 / 64;

  void SetFrame(double width, double height);
  void SetDrawing(const Extent3& box);

  void ShowAll();
  // Scales by kWheelFactor to the power of `steps`, what lies under the point staying there.
  void ZoomAt(double x, double y, double steps);
  // Takes a scale as it is, however large the drawing is by it.
  void ShowScale(double pixels_per_unit, double x, double y);
  void Pan(double dx, double dy);

  double width() const { return width_; }
  double height() const { return height_; }
  const Affine& fit() const { return fit_; }
  bool shows_all() const { return shows_all_; }

 private:
  Affine WholeFit() const;
  bool IsSeen() const;

  double width_ = 0, height_ = 0;
  Extent3 box_;
  Affine fit_ = FlippedY(1, {});
  bool shows_all_ = true;
};

}  // namespace kerno
