// The picture of a drawing for a machine: what is seen is what is cut.
//
// Drawing coordinates are those of the drawing, in its unit, y up. Frame coordinates are pixels, y
// down, from the frame's upper left corner; the rulers, where they are shown, are part of the
// frame.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/cut.h"
#include "app/cut_painter.h"
#include "app/measure_tool.h"
#include "app/preview_model.h"
#include "app/rulers.h"
#include "export/drawing_style.h"
#include "platform/drawing.h"

namespace kerno {

class CutPreview {
 public:
  // The frame's size in its pixels, and the device's pixels for each of them.
  void SetFrame(double width, double height, double density);

  // Paints this drawing from now on, in the colours of the style. Null: none. What the user chose
  // to see stays, as PreviewModel says.
  void SetDrawing(std::shared_ptr<const CutDrawing> drawing, const DrawingStyle& style = {});

  void SetLook(PreviewLook look) { look_ = look; }
  void SetGrid(bool shown) { shows_grid_ = shown; }
  void SetRulers(bool shown);

  void ShowAll() { model_.ShowAll(); }
  void ZoomAt(double x, double y, double steps);
  // About the middle.
  void ZoomBy(double steps);
  // 1:1 on a screen of so many frame pixels a millimetre, what is in the middle staying there.
  void ShowTrueSize(double pixels_per_mm);
  void Pan(double dx, double dy) { model_.Pan(dx, dy); }
  bool shows_all() const { return model_.shows_all(); }
  // 100 is true size on a screen of so many frame pixels a millimetre.
  double Percent(double pixels_per_mm) const;

  // Measuring: the first click begins, the second one ends, the next one begins again. A click near
  // a node is taken as the node.
  void MeasureClick(double x, double y);
  // Whether there is something new to paint.
  bool MeasureMove(double x, double y);
  void EndMeasuring() { measure_.reset(); }
  const std::optional<Distance>& measured() const { return measure_; }
  // "12.345 mm (x 10.000, y 7.234)"; empty where nothing is measured.
  std::u16string MeasuredText() const;

  // The point of the drawing at one of the frame. False on the rulers, and without a drawing.
  bool PointAt(double x, double y, P2* in_drawing) const;
  // "10.000, 7.234 mm"; empty where PointAt says no.
  std::u16string PointText(double x, double y) const;

  // The frame's picture in device pixels. Null where nothing of that size can be made.
  std::unique_ptr<BitmapSurface> Paint(const PreviewInks& inks);

  // Where a point of the drawing is in the frame.
  P2 InFrame(const P2& in_drawing) const;

 private:
  double Edge() const { return shows_rulers_ ? kRulerWidth : 0; }  // taken by the rulers
  void ShowFrame();
  P2 InDrawing(double x, double y) const;
  P2 SnappedAt(double x, double y) const;
  double UnitsPerMillimetre() const;
  void PaintMeasure(DrawingContext& dc, const Affine& fit, const PreviewInks& inks) const;

  PreviewModel model_;  // of the frame less the rulers
  CutPainter painter_;
  std::shared_ptr<const CutDrawing> drawing_;
  LengthUnit unit_ = LengthUnit::kMillimetre;
  PreviewLook look_ = PreviewLook::kFilled;
  bool shows_grid_ = false, shows_rulers_ = false;
  double width_ = 0, height_ = 0, density_ = 1;
  std::optional<Distance> measure_;
};

}  // namespace kerno
