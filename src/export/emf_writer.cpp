#include "export/emf_writer.h"

#include <algorithm>
#include <cmath>

#include "base/file_wait.h"
#include "base/text.h"
#include "export/draw_parts.h"
#include "export/emf_context.h"
#include "export/picture_notes.h"

namespace kerno {
namespace {

// Logical units of a pixel: fine enough for curves, and finer where 16 bits still hold them.
constexpr int32_t kLeastUnits = 16;
constexpr int32_t kMostUnits = 4096;
constexpr double kFineSide = 32767;    // logical units that 16 bits hold
constexpr double kSmallEmfSide = 256;  // pixels of a drawing smaller than one
constexpr double kHairlineRoom = 1;    // pixels around, for pens of no width

int32_t UnitsPerPixel(double side) {
  int32_t units = kLeastUnits;
  while (units < kMostUnits && side * units * 2 <= kFineSide) units *= 2;
  return units;
}

}  // namespace

EmfLayout LayOutEmf(const Extent3& box) {
  const double width = box.max.x - box.min.x;
  const double height = box.max.y - box.min.y;
  const double longest = std::max(width, height);
  double scale = 1;
  if (longest >= kLeastEnlarged && longest < 1) scale = kSmallEmfSide / longest;
  if (longest > kMaxEmfSide) scale = kMaxEmfSide / longest;
  EmfLayout layout;
  layout.one_to_one = scale == 1;
  const auto side = [&](double length) {
    return static_cast<int32_t>(std::ceil(length * scale + 2 * kHairlineRoom));
  };
  layout.frame.width = side(width);
  layout.frame.height = side(height);
  layout.frame.units_per_pixel = UnitsPerPixel(longest * scale + 2 * kHairlineRoom);
  layout.fit =
      FlippedY(scale, {kHairlineRoom - box.min.x * scale, kHairlineRoom + box.max.y * scale});
  return layout;
}

Status WriteEmf(const PartsA& model, const EmfOptions& options, const std::filesystem::path& name,
                FileReplacement* out) {
  const std::unique_ptr<DeviceContext> fonts = CreateMeasuringContext();
  const EmfLayout layout = LayOutEmf(PictureBox(model, fonts.get()));
  const std::u16string title = options.title.empty() ? PathText(name.filename()) : options.title;
  EmfContext context(layout.frame, title, out);
  if (!layout.one_to_one) TellScale(PixelsPerUnit(layout.fit), name);
  TellLeftOut(DrawParts(context, model, layout.fit, {}), kPicturedXY, name);
  return context.Finish();
}

Status ExportEmf(const PartsA& model, const std::filesystem::path& file,
                 const EmfOptions& options) {
  return ReplaceWhenFree(file,
                         [&](FileReplacement* out) { return WriteEmf(model, options, file, out); });
}

}  // namespace kerno
