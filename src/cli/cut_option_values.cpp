#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>

#include "base/source_date.h"
#include "base/text.h"
#include "cli/arguments.h"
#include "cli/choice.h"
#include "cli/console.h"
#include "cli/cut_options.h"
#include "cli/lengths.h"
#include "export/drawing_dxf_frame.h"
#include "export/drawing_formats.h"

namespace kerno {
namespace {

// Words of letters and digits with hyphens between them, as BCP 47 has them.
bool IsLanguageTag(std::string_view tag) {
  size_t length = 0;  // of the word at hand
  for (const char c : tag) {
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    const bool digit = c >= '0' && c <= '9';
    if (c == '-' ? length == 0 : !letter && !digit) return false;
    length = c == '-' ? 0 : length + 1;
    if (length > 8) return false;
  }
  return length > 0;
}

}  // namespace

bool CutOptions::ReadSize() {
  const int given =
      static_cast<int>(app_->count("--cap-height") + app_->count("--em") + app_->count("--fit"));
  if (given > 1) {
    ReportError("size", "is given more than once (--cap-height, --em, --fit)");
    return false;
  }
  if (stretch_ && app_->count("--fit") == 0) {
    ReportError("--stretch", "needs --fit WxH");
    return false;
  }
  const double per_unit = job_.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  CutSize size = {CutSize::By::kCapHeight, 0, 20 / per_unit};
  if (app_->count("--cap-height") > 0 || app_->count("--em") > 0) {
    const bool by_em = app_->count("--em") > 0;
    const auto length = by_em ? ReadLength("--em", em_, LengthSign::kPositive)
                              : ReadLength("--cap-height", cap_height_, LengthSign::kPositive);
    if (!length) return false;
    size = {by_em ? CutSize::By::kEm : CutSize::By::kCapHeight, 0, *length / per_unit};
  } else if (app_->count("--fit") > 0) {
    const auto box = ReadLengthPair("--fit", fit_);
    if (!box) return false;
    if (stretch_ && (box->width == 0 || box->height == 0)) {
      ReportError("--stretch", "needs both sides: --fit WxH");
      return false;
    }
    size = {stretch_ ? CutSize::By::kStretch : CutSize::By::kFit, box->width / per_unit,
            box->height / per_unit};
  }
  job_.size = size;
  return true;
}

bool CutOptions::ReadPlace() {
  const double per_unit = job_.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  const auto line_spacing = Number("--line-spacing", line_spacing_);
  const auto letter_spacing =
      line_spacing ? ReadLength("--letter-spacing", letter_spacing_, LengthSign::kAny)
                   : std::nullopt;
  const auto at = letter_spacing ? ReadLengthPoint("--at", at_) : std::nullopt;
  const auto angle = at ? Number("--angle", angle_) : std::nullopt;
  const auto slant = angle ? Number("--slant", slant_) : std::nullopt;
  if (!slant) return false;
  if (!(std::fabs(*slant) <= 80)) {
    ReportError("--slant", "\"" + slant_ + "\" is outside -80 to 80");
    return false;
  }
  job_.line_spacing = *line_spacing;
  job_.letter_spacing = *letter_spacing / per_unit;
  job_.at = {at->width / per_unit, at->height / per_unit};
  job_.angle = *angle;
  job_.slant = *slant;
  job_.mirror = mirror_;
  return Choose<Alignment>("--align", align_,
                           {{"left", Alignment::kLeft},
                            {"centre", Alignment::kCentre},
                            {"center", Alignment::kCentre},
                            {"right", Alignment::kRight}},
                           &job_.align) &&
         Choose<Anchor>("--anchor", anchor_,
                        {{"bottom-left", {0, 0}},
                         {"bottom-centre", {1, 0}},
                         {"bottom-right", {2, 0}},
                         {"middle-left", {0, 1}},
                         {"middle-centre", {1, 1}},
                         {"middle-right", {2, 1}},
                         {"top-left", {0, 2}},
                         {"top-centre", {1, 2}},
                         {"top-right", {2, 2}}},
                        &job_.anchor);
}

bool CutOptions::ReadPaths() {
  const double per_unit = job_.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  const auto tolerance = ReadLength("--tolerance", tolerance_, LengthSign::kPositive);
  const auto offset = tolerance ? ReadLength("--offset", offset_, LengthSign::kAny) : std::nullopt;
  if (!offset) return false;
  constexpr double kFinest = 1e-5;  // millimetres; the decimals of files end soon after
  if (*tolerance < kFinest) {
    ReportError("--tolerance",
                "\"" + tolerance_ + "\" is finer than files are: at least 0.00001mm");
    return false;
  }
  job_.tolerance = *tolerance / per_unit;
  job_.offset = *offset / per_unit;
  return Choose<CurveForm>("--curves", curves_,
                           {{"arcs", CurveForm::kArcs},
                            {"lines", CurveForm::kLines},
                            {"curves", CurveForm::kCurves}},
                           &job_.curves) &&
         Choose<WeldScope>(
             "--weld", weld_,
             {{"text", WeldScope::kText}, {"glyph", WeldScope::kGlyph}, {"off", WeldScope::kNone}},
             &job_.weld) &&
         Choose<CutOrder>("--order", order_,
                          {{"inside-first", CutOrder::kInsideFirst}, {"text", CutOrder::kText}},
                          &job_.order);
}

bool CutOptions::ReadStyle() {
  const auto color = WholeNumber("--colour", color_, 1, 255);
  const auto layer = color ? TextArgument("--layer", layer_) : std::nullopt;
  if (!layer) return false;
  if (layer->empty()) {
    ReportError("--layer", "the name is empty");
    return false;
  }
  const auto turner = std::ranges::find_if(*layer, IsDirectionControl);
  if (turner != layer->end()) {
    ReportError("--layer", "the name holds " + CodeOf(*turner) + ", a control of direction");
    return false;
  }
  if (const Status dated = ReadSourceDate(&style_.moment); !dated.ok()) {
    ReportError(dated);
    return false;
  }
  style_.color = *color;
  style_.layer = *layer;
  return Choose<DxfVersion>("--dxf", dxf_,
                            {{"r2000", DxfVersion::kR2000}, {"r12", DxfVersion::kR12}},
                            &style_.dxf) &&
         Choose<LayerRule>("--layers", layers_,
                           {{"one", LayerRule::kOne},
                            {"glyph", LayerRule::kGlyph},
                            {"line", LayerRule::kLine},
                            {"depth", LayerRule::kDepth}},
                           &style_.layers) &&
         Choose<SvgLook>("--svg-style", svg_style_,
                         {{"cut", SvgLook::kCut}, {"fill", SvgLook::kFill}}, &style_.svg);
}

bool CutOptions::ReadScripts() {
  for (const std::string& name : fallbacks_) {
    const auto family = TextArgument("--fallback", name);
    if (!family) return false;
    if (family->empty()) {
      ReportError("--fallback", "the name is empty");
      return false;
    }
    job_.fallbacks.push_back(*family);
  }
  if (app_->count("--language") > 0 && !IsLanguageTag(language_)) {
    ReportError("--language", "\"" + language_ + "\" is no language tag, such as ja or sr-Latn");
    return false;
  }
  job_.language = language_;
  const auto digits = WholeNumber("--tate-chu-yoko", across_digits_, 0, 9);
  if (!digits) return false;
  if (*digits > 0 && !vertical_) {
    ReportError("--tate-chu-yoko", "needs --vertical");
    return false;
  }
  job_.across_digits = static_cast<size_t>(*digits);
  return Choose<ParagraphDirection>("--direction", direction_,
                                    {{"auto", ParagraphDirection::kAuto},
                                     {"ltr", ParagraphDirection::kLeftToRight},
                                     {"rtl", ParagraphDirection::kRightToLeft}},
                                    &job_.direction);
}

bool CutOptions::ReadStrokeFont() {
  if (app_->count("--stroke-font") == 0) return true;
  for (const char* other : {"--face", "--style", "--font-file", "--variation", "--features",
                            "--fallback", "--language", "--direction", "--tate-chu-yoko"}) {
    if (app_->count(other) == 0) continue;
    ReportError(other, "is of fonts with outlines and goes not with --stroke-font");
    return false;
  }
  // Left out, the offset is 0.
  if (app_->count("--offset") > 0 && job_.offset != 0) {
    ReportError("--offset", "strokes have no outside: it needs a font with outlines");
    return false;
  }
  if (!IsFileName("--stroke-font", stroke_font_)) return false;
  const auto name = TextArgument("--stroke-font", stroke_font_);
  if (name) job_.stroke_font = *name;
  return name.has_value();
}

bool CutOptions::ReadJob() {
  auto face = face_.Read();
  if (!face) return false;
  job_.face = std::move(*face);
  job_.mode = vertical_ ? WritingMode::kVertical : WritingMode::kHorizontal;
  return Choose<LengthUnit>("--unit", unit_,
                            {{"mm", LengthUnit::kMillimetre}, {"in", LengthUnit::kInch}},
                            &job_.unit) &&
         ReadScripts() && ReadSize() && ReadPlace() && ReadPaths() && ReadStyle() &&
         ReadStrokeFont() && GoTogether();
}

// Refuses choices that leave an output without sense, and tells of names that cannot stay.
bool CutOptions::GoTogether() const {
  if (style_.layers == LayerRule::kDepth && style_.svg == SvgLook::kFill && outputs_.Has("svg")) {
    ReportError("--layers", "\"depth\" takes counters out of filled figures; use --svg-style cut");
    return false;
  }
  if (!outputs_.Has("dxf")) return true;
  if (style_.dxf == DxfVersion::kR12 && job_.curves == CurveForm::kCurves) {
    ReportError("--dxf", "\"r12\" has no curves; use --curves arcs, or --dxf r2000");
    return false;
  }
  if (std::ranges::any_of(style_.layer, IsKeptByDxf)) {
    ReportWarning("--layer", "\"_\" stands in DXF for characters that it keeps for itself");
  }
  return true;
}

Status CutOptions::Write(const CutDrawing& made, const Format& format,
                         const std::filesystem::path& file) const {
  return WriteDrawing(made.drawing, style_, job_.tolerance, format, file);
}

}  // namespace kerno
