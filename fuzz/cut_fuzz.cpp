// Texts with options, to a drawing for a machine and to parts: numbers are finite, outlines are
// closed, and the files are whole. The input's end is read as options, its beginning as the text.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "app/cut.h"
#include "app/job.h"
#include "base/text.h"
#include "export/drawing_dxf.h"
#include "export/drawing_svg.h"
#include "export/dxf_export.h"
#include "own_fonts.h"
#include "readers.h"
#include "support/memory_file.h"

namespace kerno {
namespace {

using fuzz::Require;

std::filesystem::path file;  // written again and again

// What the command line takes: any length of up to a kilometre, and the ones that signs have.
double Length(FuzzedDataProvider* input, bool negative) {
  constexpr double kUsual[] = {1e-5, 0.01, 0.1, 1, 2, 5, 20, 80};
  if (!negative || input->ConsumeBool()) {
    if (input->ConsumeBool()) return input->PickValueInArray(kUsual);
    return input->ConsumeFloatingPointInRange<double>(1e-5, 1e6);
  }
  return input->ConsumeFloatingPointInRange<double>(-1e3, 1e3);
}

template <class Choice>
Choice Pick(FuzzedDataProvider* input, int most) {
  return static_cast<Choice>(input->ConsumeIntegralInRange(0, most));
}

CutJob ReadCut(FuzzedDataProvider* input) {
  CutJob job;
  job.face.family = input->ConsumeBool() ? u"Fuzz" : u"Fuzz Wide";
  job.fallbacks = {u"Fuzz", u"Fuzz Wide"};
  constexpr const char* kFeatures[] = {"", "smcp", "liga=0,kern=0", "aalt=3,frac"};
  job.face.features = input->PickValueInArray(kFeatures);
  constexpr const char16_t* kStyles[] = {u"", u"", u"Bold", u"Italic", u"Bold Italic"};
  job.face.style = input->PickValueInArray(kStyles);
  if (input->ConsumeBool()) job.stroke_font = u"" KERNO_FUZZ_STROKES;
  constexpr const char* kLanguages[] = {"", "ja", "sr-Latn", "ar"};
  job.language = input->PickValueInArray(kLanguages);
  job.direction = Pick<ParagraphDirection>(input, 2);
  job.mode = Pick<WritingMode>(input, 1);
  job.across_digits = input->ConsumeIntegralInRange<size_t>(0, 9);
  job.align = Pick<Alignment>(input, 2);
  job.size = {Pick<CutSize::By>(input, 3), Length(input, false), Length(input, false)};
  job.anchor = {input->ConsumeIntegralInRange(0, 2), input->ConsumeIntegralInRange(0, 2)};
  job.unit = Pick<LengthUnit>(input, 1);
  job.curves = Pick<CurveForm>(input, 2);
  job.weld = Pick<WeldScope>(input, 2);
  job.order = Pick<CutOrder>(input, 1);
  job.mirror = input->ConsumeBool();
  if (input->ConsumeBool()) job.tolerance = Length(input, false);
  // Finer drawings, and circles around all, only take time.
  const double size = std::max(job.size.width, job.size.height);
  job.tolerance = std::max(job.tolerance, 1e-5 * size);
  if (input->ConsumeBool()) job.offset = std::clamp(Length(input, true), -size, size);
  if (input->ConsumeBool()) job.letter_spacing = Length(input, true);
  if (input->ConsumeBool()) job.line_spacing = input->ConsumeFloatingPointInRange(-9., 9.);
  if (input->ConsumeBool()) job.slant = input->ConsumeFloatingPointInRange(-80., 80.);
  if (input->ConsumeBool()) job.angle = input->ConsumeFloatingPointInRange(-1e6, 1e6);
  if (input->ConsumeBool()) job.at = {Length(input, true), Length(input, true)};
  return job;
}

std::string Written(const Status& status) {
  Require(status.ok());
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void CheckDrawing(const CutDrawing& made, const CutJob& job) {
  for (const Shape& shape : made.drawing.shapes) {
    for (const ShapePath& path : shape) {
      Require(!path.path.segments.empty() && (path.path.closed || made.drawing.strokes));
      for (const Segment& s : path.path.segments) {
        Require(std::isfinite(s.end.x + s.end.y + s.first.x + s.second.y + s.bulge));
        Require(job.curves == CurveForm::kCurves || s.kind == SegmentKind::kLine ||
                s.kind == SegmentKind::kArc);
      }
      const P2 end = path.path.segments.back().end;
      Require(!path.path.closed || (end.x == path.path.start.x && end.y == path.path.start.y));
    }
  }
  for (const PlacedShape& placed : made.drawing.placed) {
    Require(placed.shape < made.drawing.shapes.size() && std::isfinite(placed.at.x + placed.at.y));
  }
}

void Cut(const CutJob& job, FuzzedDataProvider* input) {
  CutDrawing made;
  if (!MakeCut(job, &made).ok()) return;
  CheckDrawing(made, job);
  DrawingStyle style;
  style.layer = Utf8ToUtf16Lossy("L" + input->ConsumeRandomLengthString(8));
  style.layers = Pick<LayerRule>(input, 3);
  style.color = input->ConsumeIntegralInRange(1, 255);
  style.svg = Pick<SvgLook>(input, 1);
  if (job.curves != CurveForm::kCurves) style.dxf = Pick<DxfVersion>(input, 1);
  fuzz::CheckDxf(Written(WriteDrawingDxf(made.drawing, style, file)));
  if (style.svg == SvgLook::kFill && style.layers == LayerRule::kDepth) style.svg = SvgLook::kCut;
  fuzz::CheckXml(Written(WriteDrawingSvg(made.drawing, style, file)));
}

void Convert(const std::u16string& text, FuzzedDataProvider* input) {
  Job job;
  job.text.text = text;
  job.text.face.name = input->ConsumeBool() ? u"Fuzz" : u"Fuzz Wide";
  if (input->ConsumeBool()) SetVertical(&job.text);
  const bool usual = input->ConsumeBool();
  job.text.height = input->ConsumeIntegralInRange(usual ? -200 : -32768, usual ? 200 : 32767);
  job.text.width = usual ? 0 : input->ConsumeIntegralInRange(0, 32767);
  job.text.weight = input->ConsumeIntegralInRange(0, 1000);
  job.text.italic = input->ConsumeBool();
  job.text.layout.pitch = Pick<VerticalPitch>(input, 1);
  job.text.placement.slant = input->ConsumeFloatingPointInRange(-360., 360.);
  job.text.placement.angle = input->ConsumeFloatingPointInRange(-1e6, 1e6);
  job.parts.elements = Pick<ContourElements>(input, 2);
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  const auto set = Make(job, typesetter);
  Require(set.has_value());
  size_t points = 0;
  std::vector<P2> room;
  for (size_t i = 0; i < set->contours.size(); ++i) {
    const std::span<const P2> contour = set->contours.Contour(i, &room);
    Require(!contour.empty());
    const P2 first = contour.front(), last = contour.back();
    Require(std::isfinite(first.x + first.y) && first.x == last.x && first.y == last.y);
    points += contour.size();
  }
  Require(points == set->contours.point_count());
  const PartsA model = DrawingOf(std::make_shared<const TextContours>(set->contours), job.parts);
  test::MemoryFile written;
  Require(WriteDxf(model, {}, "fuzz", &written).ok());
  fuzz::CheckDxf(written.bytes);
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  kerno::file = kerno::fuzz::UseOwnFonts() / "drawing";
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider input(data, size);
  constexpr size_t kLongest = 40;  // bytes of text: longer ones only repeat
  const bool cut = input.ConsumeBool();
  kerno::CutJob job;
  if (cut) job = kerno::ReadCut(&input);
  const std::u16string text = kerno::Utf8ToUtf16Lossy(input.ConsumeRandomLengthString(kLongest));
  job.text = text;
  cut ? kerno::Cut(job, &input) : kerno::Convert(text, &input);
  return 0;
}
