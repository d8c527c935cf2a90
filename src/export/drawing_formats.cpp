#include "export/drawing_formats.h"

#include <mutex>

#include "base/text.h"
#include "export/drawing_dxf.h"
#include "export/drawing_parts.h"
#include "export/drawing_pdf.h"
#include "export/drawing_plt.h"
#include "export/drawing_svg.h"
#include "platform/system.h"

namespace kerno {
namespace {

constexpr double kPixelsPerInch = 96;               // as the header of a bitmap says
constexpr double kMetafilePixelsPerMillimetre = 4;  // of its reference device

// Pictures and metafiles count in pixels.
double UnitsPerLength(const Format& format, LengthUnit unit) {
  double per_millimetre = 1;
  if (format.extension == "bmp") {
    per_millimetre = kPixelsPerInch / kMillimetresPerInch;
  } else if (format.extension == "emf") {
    per_millimetre = kMetafilePixelsPerMillimetre;
  } else {
    return 1;
  }
  return unit == LengthUnit::kInch ? per_millimetre * kMillimetresPerInch : per_millimetre;
}

}  // namespace

Status WriteDrawing(const Drawing& drawing, const DrawingStyle& style, double tolerance,
                    const Format& format, const std::filesystem::path& file) {
  if (format.extension == "dxf") return WriteDrawingDxf(drawing, style, file);
  if (format.extension == "svg") return WriteDrawingSvg(drawing, style, file);
  if (format.extension == "plt") return WriteDrawingPlt(drawing, style, tolerance, file);
  if (format.extension == "pdf") return WriteDrawingPdf(drawing, style, tolerance, file);
  // The parts model keeps settings and the state of its searches for one thread at a time.
  static std::mutex parts_model;
  const std::lock_guard lock(parts_model);
  OutputOptions options;
  options.program = PathText(CurrentSystem().ProgramPath());
  options.moment = style.moment;
  const double scale = UnitsPerLength(format, drawing.unit);
  const ArcForm arcs = format.extension == "ipx" ? ArcForm::kArcs : ArcForm::kChords;
  return format.write(PartsOf(drawing, style, tolerance, scale, arcs), file, options);
}

}  // namespace kerno
