#include "export/svg_writer.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "base/file_wait.h"
#include "base/number_text.h"
#include "base/text.h"
#include "export/draw_parts.h"
#include "export/file_comment.h"
#include "export/hatch.h"
#include "export/picture_notes.h"
#include "export/svg_groups.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

// The box that a reader shows: of a drawing without width or height something of it is made.
struct ViewBox {
  double left, top, width, height;
};

class SvgDrawing {
 public:
  SvgDrawing(const PartsA& model, XmlOut* xml, int digits)
      : model_(model), canvas_{*xml, digits, {xml, digits}} {
    const bool texts = std::ranges::any_of(
        PartsView(model), [](const PartsElement& p) { return CountElements(p).texts > 0; });
    const std::unique_ptr<DeviceContext> dc = texts ? CreateMeasuringContext() : nullptr;
    box_ = PictureBox(model, dc.get());
    const double width = box_.max.x - box_.min.x;
    const double height = box_.max.y - box_.min.y;
    double side = std::min(width, height);
    if (side == 0) side = std::max(width, height);
    canvas_.hairline = HatchUnit({{}, {side, side, 0}});
    canvas_.hatch_unit = HatchUnit(PictureBox(model, nullptr));
  }

  void Write(const SvgOptions& options, const std::filesystem::path& name) {
    canvas_.xml.Declaration();
    Heading(name);
    canvas_.xml.Begin("svg");
    const ViewBox view = View();
    std::string* out = canvas_.xml.BeginAttribute("viewBox");
    for (const double value : {view.left, view.top, view.width, view.height}) {
      if (out->back() != '"') out->push_back(' ');
      AppendSvgNumber(out, value, canvas_.digits);
    }
    canvas_.xml.EndAttribute();
    canvas_.xml.Attribute("xmlns", std::string_view("http://www.w3.org/2000/svg"));
    if (options.millimetres) {
      Millimetres("width", view.width);
      Millimetres("height", view.height);
    }
    WriteSvgGroups(model_, &canvas_);
    canvas_.xml.End();
  }

  size_t left_out() const { return canvas_.left_out; }

 private:
  ViewBox View() const;
  void Millimetres(std::string_view attribute, double value);
  void Heading(const std::filesystem::path& name);

  const PartsA& model_;
  SvgCanvas canvas_;
  Extent3 box_;
};

ViewBox SvgDrawing::View() const {
  const double around = HasHairlines(model_) ? canvas_.hairline / 2 : 0;
  ViewBox view = {box_.min.x - around, 0.0 - box_.max.y - around,
                  box_.max.x - box_.min.x + 2 * around, box_.max.y - box_.min.y + 2 * around};
  // Readers refuse a box of no size, and what is written of one must not vanish either.
  const double least = std::pow(10, 3 - canvas_.digits);
  for (double* side : {&view.width, &view.height}) {
    if (!(*side > 0)) *side = canvas_.hairline;
    *side = std::max(*side, least);
  }
  return view;
}

void SvgDrawing::Millimetres(std::string_view attribute, double value) {
  std::string* out = canvas_.xml.BeginAttribute(attribute);
  AppendSvgNumber(out, value, canvas_.digits);
  *out += "mm";
  canvas_.xml.EndAttribute();
}

void SvgDrawing::Heading(const std::filesystem::path& name) {
  const std::u16string size = SvgNumberText(box_.max.x - box_.min.x, canvas_.digits) + u"\t" +
                              SvgNumberText(box_.max.y - box_.min.y, canvas_.digits);
  std::string digits;
  AppendInteger(&digits, canvas_.digits);
  canvas_.xml.Comment(u"\r\n" + FileComment(u"SVG Exporter \t1.10\t") +                  //
                      u"Size         \t" + size +                                        //
                      u"\r\nSave         \t" + PathText(name.filename()) +               //
                      u"\r\n変換精度\tSvgOut::Precision\t" + Utf8ToUtf16Lossy(digits) +  //
                      u"\r\nUNICODE \t" +                                                //
                      u"\r\n大きさ補正\t1\t1\r\n");
}

}  // namespace

Status WriteSvg(const PartsA& model, const SvgOptions& options, const std::filesystem::path& name,
                FileReplacement* out) {
  XmlOut xml(out);
  SvgDrawing drawing(model, &xml, SvgPrecision());
  drawing.Write(options, name);
  Status status = xml.Finish();
  if (status.ok()) TellLeftOut({.left_out = drawing.left_out()}, kPicturedXY, name);
  return status;
}

Status ExportSvg(const PartsA& model, const std::filesystem::path& file,
                 const SvgOptions& options) {
  return ReplaceWhenFree(file,
                         [&](FileReplacement* out) { return WriteSvg(model, options, file, out); });
}

}  // namespace kerno
