#include "export/draw_texts.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "outline/draw_outline.h"
#include "outline/typesetter.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

// A font this high keeps its shapes when its outline is cut to whole units, and a glyph of it has
// few enough points that a line of text stays within one call's limits.
constexpr double kFineHeight = 128;
constexpr double kMaxUnits = 4096;
constexpr double kMaxFontHeight = 30000;

double HeightOf(const TextLine& line) {
  const double height = std::fabs(line.height);
  return height > 0 && std::isfinite(height) ? height : kDefaultTextHeight;
}

double AngleOr0(double degrees) {
  return std::isfinite(degrees) ? degrees : 0;
}

// Logical units of a pixel for letters `height` pixels high.
int32_t UnitsFor(double height) {
  if (!(height > 0) || height >= kFineHeight) return 1;
  return static_cast<int32_t>(std::min(kMaxUnits, std::ceil(kFineHeight / height)));
}

// The request for a text whose model units are `scale` logical units each; its placement is left
// at the origin.
TextRequest RequestOf(const TextLine& line, WritingDirection direction, double scale) {
  TextRequest request;
  request.text = line.text;
  request.face = FaceFormOf(line.face_name.empty() ? DefaultFaceName(direction) : line.face_name);
  if (request.face.vertical) SetVertical(&request);
  request.height =
      static_cast<int32_t>(std::lround(std::min(kMaxFontHeight, HeightOf(line) * scale)));
  const double width = std::fabs(line.width) * scale;
  if (width > 0 && width < kMaxFontHeight) {
    request.width = std::max(1, static_cast<int32_t>(std::lround(width)));
  }
  request.layout.vertical = direction == WritingDirection::kVertical;
  request.placement.angle = AngleOr0(line.rotation);
  request.placement.slant = AngleOr0(line.oblique);
  return request;
}

// Selects a font for the life of the object.
class SelectedFontScope {
 public:
  SelectedFontScope(DeviceContext& dc, int32_t height)
      : dc_(dc),
        font_(dc.CreateFontIndirect(
            BuildLogFont(height, 0, 400, DefaultFaceName(WritingDirection::kHorizontal)))),
        before_(dc.SelectFont(font_.get())) {}
  ~SelectedFontScope() { dc_.SelectFont(before_); }
  SelectedFontScope(const SelectedFontScope&) = delete;
  SelectedFontScope& operator=(const SelectedFontScope&) = delete;

 private:
  DeviceContext& dc_;
  std::unique_ptr<Font> font_;
  Font* before_;
};

}  // namespace

void DrawTextLine(DrawingContext& dc, const P3& anchor, const TextLine& line,
                  WritingDirection direction, const Affine& fit, PictureNotes* notes) {
  const double pixels = HeightOf(line) * PixelsPerUnit(fit);
  const int32_t units = UnitsFor(pixels);
  if (pixels * units < 0.5 || pixels > kMaxFontHeight) {
    ++notes->texts_no_size;
    return;
  }
  TextRequest request = RequestOf(line, direction, PixelsPerUnit(fit) * units);
  const DevicePoint at = Placed(fit, anchor);
  request.placement.insertion = {at.x * units, at.y * units};
  const int32_t before = dc.SetLogicalUnits(units);
  // In model units, so that the scale of the picture does not decide whether a text is shown.
  const auto own_height =
      static_cast<int32_t>(std::lround(std::clamp(HeightOf(line), 1.0, kMaxFontHeight)));
  if (DrawOutline(dc, request, own_height) == OutlineDrawing::kTooLarge) ++notes->texts_too_large;
  dc.SetLogicalUnits(before);
}

void DrawPlainText(DrawingContext& dc, const P3& anchor, std::u16string_view text, uint32_t color,
                   const Affine& fit, PictureNotes* notes) {
  const double pixels = kDefaultTextHeight * PixelsPerUnit(fit);
  const int32_t units = UnitsFor(pixels);
  const DevicePoint at = Placed(fit, anchor);
  constexpr double kReach = std::numeric_limits<int32_t>::max();
  if (pixels * units < 0.5 || pixels > kMaxFontHeight ||
      !(std::max(std::fabs(at.x), std::fabs(at.y)) * units < kReach / 2)) {
    ++notes->texts_no_size;
    return;
  }
  const SelectedFontScope font(dc, static_cast<int32_t>(std::lround(pixels * units)));
  const int32_t before = dc.SetLogicalUnits(units);
  const uint32_t color_before = dc.SetTextColor(color);
  Extent extent;
  if (dc.GetTextExtent(text, &extent)) {
    dc.TextOut(static_cast<int32_t>(at.x * units) - extent.cx / 2,
               static_cast<int32_t>(at.y * units) - extent.cy / 2, text);
  }
  dc.SetTextColor(color_before);
  dc.SetLogicalUnits(before);
}

Extent3 TextLineBox(DeviceContext& dc, const P3& anchor, const TextLine& line,
                    WritingDirection direction) {
  const double scale = kFineHeight / HeightOf(line);
  if (!std::isfinite(scale)) return {anchor, anchor};
  GlyphContours contours;
  StringOutline(dc, RequestOf(line, direction, scale), &contours);
  Extent3 box = {anchor, anchor};
  for (const P2& p : contours.points) {
    Include(&box, {anchor.x + p.x / scale, anchor.y - p.y / scale, anchor.z});
  }
  return box;
}

Extent3 PlainTextBox(DeviceContext& dc, const P3& anchor, std::u16string_view text) {
  const SelectedFontScope font(dc, static_cast<int32_t>(kFineHeight));
  Extent extent;
  if (!dc.GetTextExtent(text, &extent)) return {anchor, anchor};
  const double half_width = extent.cx * kDefaultTextHeight / kFineHeight / 2;
  const double half_height = extent.cy * kDefaultTextHeight / kFineHeight / 2;
  return {{anchor.x - half_width, anchor.y - half_height, anchor.z},
          {anchor.x + half_width, anchor.y + half_height, anchor.z}};
}

}  // namespace kerno
