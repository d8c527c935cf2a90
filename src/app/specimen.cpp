#include "app/specimen.h"

#include <algorithm>
#include <memory>

#include "app/cut.h"
#include "drawing/vector.h"
#include "outline/shaping_font.h"
#include "outline/text_block.h"

namespace kerno {
namespace {

constexpr double kNameEm = 4, kTextEm = 12;  // sizes of an em
constexpr double kTextLeft = 60;             // where the text begins
constexpr double kGap = 6;                   // between rows

// Sets a text with its upper left corner at a point.
Status SetAt(std::u16string_view text, const FaceRequest& face, double em, P2 at,
             CutDrawing* made) {
  CutJob job;
  job.text = text;
  job.face = face;
  job.size = {CutSize::By::kEm, 0, em};
  job.at = at;
  job.anchor = {0, 2};
  job.curves = CurveForm::kCurves;
  return MakeCut(job, made);
}

void Append(const Drawing& part, uint32_t line, Drawing* whole) {
  const auto first = static_cast<uint32_t>(whole->shapes.size());
  whole->shapes.insert(whole->shapes.end(), part.shapes.begin(), part.shapes.end());
  for (PlacedShape placed : part.placed) {
    placed.shape += first;
    placed.line = line;
    whole->placed.push_back(placed);
  }
}

}  // namespace

bool CoversText(const FaceRequest& face, std::u16string_view text) {
  FontData data;
  std::unique_ptr<ShapingFont> font;
  if (!FindFontData(face, &data).ok() || !ShapingFont::Open(data, &font).ok()) return false;
  const ShapingFont* const fonts[] = {font.get()};
  return SetBlock(fonts, text, {}).missing.empty();
}

Status MakeSpecimen(std::u16string_view text, const std::vector<std::u16string>& families,
                    Specimen* made) {
  Specimen sheet;
  double top = 0;
  for (const std::u16string& family : families) {
    CutDrawing sample, name;
    const bool shown = SetAt(text, {.family = family}, kTextEm, {kTextLeft, top}, &sample).ok() &&
                       !sample.drawing.placed.empty() &&
                       SetAt(family, {}, kNameEm, {0, top}, &name).ok();
    if (!shown) continue;
    const auto row = static_cast<uint32_t>(sheet.rows++);
    Append(name.drawing, row, &sheet.drawing);
    Append(sample.drawing, row, &sheet.drawing);
    const double name_height = name.drawing.placed.empty() ? 0 : name.ink.Height();
    top -= std::max(sample.ink.Height(), name_height) + kGap;
  }
  if (sheet.rows == 0) {
    return Status::Error(Failure::kNotFound, u"faces", u"none can show this text");
  }
  *made = std::move(sheet);
  return Status::Ok();
}

}  // namespace kerno
