// Paints the paths of a drawing for a machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "app/preview_inks.h"
#include "drawing/affine.h"
#include "drawing/drawing.h"
#include "export/drawing_style.h"
#include "platform/drawing.h"

namespace kerno {

// Keeps the chords of each shape, which are the same for all of its places, while the scale stays.
class CutPainter {
 public:
  // `drawing` lives until the next call. Null: nothing to paint.
  void SetDrawing(const Drawing* drawing, const DrawingStyle& style);

  // The picture, and how the drawing lies in it.
  struct View {
    Affine fit;  // from the drawing to the context's pixels
    double width = 0, height = 0;
    double density = 1;  // of the context's pixels in one of the frame
  };
  // What lies outside of the picture is passed over. Starts and nodes are thinned out where they
  // would lie on each other.
  void Paint(DrawingContext& dc, const View& view, PreviewLook look, const PreviewInks& inks);

 private:
  // Pixels about the shape's origin, y down.
  struct Chords {
    uint32_t first = 0, count = 0;  // of the points
    bool closed = false;
    double size = 0;  // the larger side
  };
  struct ShapeChords {
    uint32_t first = 0;  // of its paths in chords_
    bool is_made = false;
  };
  // A placed shape that is seen at least in part.
  struct Seen {
    size_t placed = 0;
    DevicePoint at;  // its origin
  };
  class Marks;

  void Look(const View& view);
  void MakeChords(uint32_t shape);
  bool IsFilled(const PlacedShape& placed) const {
    return !drawing_->strokes && placed.role == ShapeRole::kText;
  }
  Color InkOf(ShapeRole role, const PreviewInks& inks) const;
  void Gather(const Seen& seen, bool closed);
  void FillShapes(DrawingContext& dc, const PreviewInks& inks);
  void DrawLines(DrawingContext& dc, ShapeRole role);
  void DrawSpecks(DrawingContext& dc, const View& view, const PreviewInks& inks);
  void DrawStarts(DrawingContext& dc, const View& view, const PreviewInks& inks);
  void DrawNodes(DrawingContext& dc, const View& view, const PreviewInks& inks);
  void DrawSheet(DrawingContext& dc, const View& view, const PreviewInks& inks);

  const Drawing* drawing_ = nullptr;
  std::vector<DrawingLayer> layers_;
  std::vector<Box2> boxes_;  // of the shapes, in the drawing's unit; at least as large as they are
  double scale_ = 0;         // that the chords are for
  std::vector<ShapeChords> shapes_;
  std::vector<Chords> chords_;
  std::vector<DevicePoint> points_;
  std::vector<Seen> seen_;
  // On the way to the context.
  std::vector<DevicePoint> out_;
  std::vector<uint32_t> counts_;
};

}  // namespace kerno
