#include "app/cut_texts.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/cut_choices.h"
#include "app/lengths.h"
#include "app/option_values.h"
#include "app/reports.h"
#include "base/source_date.h"
#include "base/text.h"
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

class CutReader {
 public:
  CutReader(const CutTexts& texts, const WantsFormat& wants) : texts_(texts), wants_(wants) {}

  bool Read();
  CutJob TakeJob() { return std::move(job_); }
  DrawingStyle TakeStyle() { return std::move(style_); }

 private:
  bool IsGiven(std::string_view option) const { return texts_.IsGiven(option); }
  bool ReadScripts();
  bool ReadSize();
  bool ReadPlace();
  bool ReadPaths();
  bool ReadStyle();
  bool ReadStrokeFont();
  bool GoTogether() const;

  const CutTexts& texts_;
  const WantsFormat& wants_;
  CutJob job_;
  DrawingStyle style_;
};

bool CutReader::ReadSize() {
  const int given = static_cast<int>(IsGiven("--cap-height")) + static_cast<int>(IsGiven("--em")) +
                    static_cast<int>(IsGiven("--fit"));
  if (given > 1) {
    ReportError("size", "is given more than once (--cap-height, --em, --fit)");
    return false;
  }
  if (texts_.stretch && !IsGiven("--fit")) {
    ReportError("--stretch", "needs --fit WxH");
    return false;
  }
  const double per_unit = job_.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  CutSize size = {CutSize::By::kCapHeight, 0, 20 / per_unit};
  if (IsGiven("--cap-height") || IsGiven("--em")) {
    const bool by_em = IsGiven("--em");
    const auto length = by_em
                            ? ReadLength("--em", texts_.em, LengthSign::kPositive)
                            : ReadLength("--cap-height", texts_.cap_height, LengthSign::kPositive);
    if (!length) return false;
    size = {by_em ? CutSize::By::kEm : CutSize::By::kCapHeight, 0, *length / per_unit};
  } else if (IsGiven("--fit")) {
    const auto box = ReadLengthPair("--fit", texts_.fit);
    if (!box) return false;
    if (texts_.stretch && (box->width == 0 || box->height == 0)) {
      ReportError("--stretch", "needs both sides: --fit WxH");
      return false;
    }
    size = {texts_.stretch ? CutSize::By::kStretch : CutSize::By::kFit, box->width / per_unit,
            box->height / per_unit};
  }
  job_.size = size;
  return true;
}

bool CutReader::ReadPlace() {
  const double per_unit = job_.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  const auto line_spacing = Number("--line-spacing", texts_.line_spacing);
  const auto letter_spacing =
      line_spacing ? ReadLength("--letter-spacing", texts_.letter_spacing, LengthSign::kAny)
                   : std::nullopt;
  const auto at = letter_spacing ? ReadLengthPoint("--at", texts_.at) : std::nullopt;
  const auto angle = at ? Number("--angle", texts_.angle) : std::nullopt;
  const auto slant = angle ? Number("--slant", texts_.slant) : std::nullopt;
  if (!slant) return false;
  if (!(std::fabs(*slant) <= 80)) {
    ReportError("--slant", "\"" + texts_.slant + "\" is outside -80 to 80");
    return false;
  }
  job_.line_spacing = *line_spacing;
  job_.letter_spacing = *letter_spacing / per_unit;
  job_.at = {at->width / per_unit, at->height / per_unit};
  job_.angle = *angle;
  job_.slant = *slant;
  job_.mirror = texts_.mirror;
  return Choose(kAlignChoices, texts_.align, &job_.align) &&
         Choose(kAnchorChoices, texts_.anchor, &job_.anchor);
}

bool CutReader::ReadPaths() {
  const double per_unit = job_.unit == LengthUnit::kInch ? kMillimetresPerInch : 1;
  const auto tolerance = ReadLength("--tolerance", texts_.tolerance, LengthSign::kPositive);
  const auto offset =
      tolerance ? ReadLength("--offset", texts_.offset, LengthSign::kAny) : std::nullopt;
  if (!offset) return false;
  constexpr double kFinest = 1e-5;  // millimetres; the decimals of files end soon after
  if (*tolerance < kFinest) {
    ReportError("--tolerance",
                "\"" + texts_.tolerance + "\" is finer than files are: at least 0.00001mm");
    return false;
  }
  job_.tolerance = *tolerance / per_unit;
  job_.offset = *offset / per_unit;
  return Choose(kCurveChoices, texts_.curves, &job_.curves) &&
         Choose(kWeldChoices, texts_.weld, &job_.weld) &&
         Choose(kOrderChoices, texts_.order, &job_.order);
}

bool CutReader::ReadStyle() {
  const auto color = WholeNumber("--colour", texts_.color, 1, 255);
  const auto layer = color ? TextArgument("--layer", texts_.layer) : std::nullopt;
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
  return Choose(kDxfChoices, texts_.dxf, &style_.dxf) &&
         Choose(kLayersChoices, texts_.layers, &style_.layers) &&
         Choose(kSvgStyleChoices, texts_.svg_style, &style_.svg);
}

bool CutReader::ReadScripts() {
  for (const std::string& name : texts_.fallbacks) {
    const auto family = TextArgument("--fallback", name);
    if (!family) return false;
    if (family->empty()) {
      ReportError("--fallback", "the name is empty");
      return false;
    }
    job_.fallbacks.push_back(*family);
  }
  if (IsGiven("--language") && !IsLanguageTag(texts_.language)) {
    ReportError("--language",
                "\"" + texts_.language + "\" is no language tag, such as ja or sr-Latn");
    return false;
  }
  job_.language = texts_.language;
  const auto digits = WholeNumber("--tate-chu-yoko", texts_.across_digits, 0, 9);
  if (!digits) return false;
  if (*digits > 0 && !texts_.vertical) {
    ReportError("--tate-chu-yoko", "needs --vertical");
    return false;
  }
  job_.across_digits = static_cast<size_t>(*digits);
  return Choose(kDirectionChoices, texts_.direction, &job_.direction);
}

bool CutReader::ReadStrokeFont() {
  if (!IsGiven("--stroke-font")) return true;
  for (const char* other : {"--face", "--style", "--font-file", "--variation", "--features",
                            "--fallback", "--language", "--direction", "--tate-chu-yoko"}) {
    if (!IsGiven(other)) continue;
    ReportError(other, "is of fonts with outlines and goes not with --stroke-font");
    return false;
  }
  // Left out, the offset is 0.
  if (IsGiven("--offset") && job_.offset != 0) {
    ReportError("--offset", "strokes have no outside: it needs a font with outlines");
    return false;
  }
  if (!IsFileName("--stroke-font", texts_.stroke_font)) return false;
  const auto name = TextArgument("--stroke-font", texts_.stroke_font);
  if (name) job_.stroke_font = *name;
  return name.has_value();
}

bool CutReader::Read() {
  auto face = ReadFace(texts_.face, texts_.given);
  if (!face) return false;
  job_.face = std::move(*face);
  job_.mode = texts_.vertical ? WritingMode::kVertical : WritingMode::kHorizontal;
  return Choose(kUnitChoices, texts_.unit, &job_.unit) && ReadScripts() && ReadSize() &&
         ReadPlace() && ReadPaths() && ReadStyle() && ReadStrokeFont() && GoTogether();
}

// Refuses choices that leave an output without sense, and tells of names that cannot stay.
bool CutReader::GoTogether() const {
  if (style_.layers == LayerRule::kDepth && style_.svg == SvgLook::kFill && wants_("svg")) {
    ReportError("--layers", "\"depth\" takes counters out of filled figures; use --svg-style cut");
    return false;
  }
  if (!wants_("dxf")) return true;
  if (style_.dxf == DxfVersion::kR12 && job_.curves == CurveForm::kCurves) {
    ReportError("--dxf", "\"r12\" has no curves; use --curves arcs, or --dxf r2000");
    return false;
  }
  if (std::ranges::any_of(style_.layer, IsKeptByDxf)) {
    ReportWarning("--layer", "\"_\" stands in DXF for characters that it keeps for itself");
  }
  return true;
}

}  // namespace

void CutTexts::ForEachText(
    const std::function<void(const char* option, std::string* value)>& visit) {
  face.ForEachText(visit);
  for (std::string& name : fallbacks) visit("--fallback", &name);
  const std::pair<const char*, std::string*> values[] = {{"--stroke-font", &stroke_font},
                                                         {"--language", &language},
                                                         {"--direction", &direction},
                                                         {"--tate-chu-yoko", &across_digits},
                                                         {"--cap-height", &cap_height},
                                                         {"--em", &em},
                                                         {"--fit", &fit},
                                                         {"--unit", &unit},
                                                         {"--align", &align},
                                                         {"--line-spacing", &line_spacing},
                                                         {"--letter-spacing", &letter_spacing},
                                                         {"--at", &at},
                                                         {"--anchor", &anchor},
                                                         {"--angle", &angle},
                                                         {"--slant", &slant},
                                                         {"--curves", &curves},
                                                         {"--tolerance", &tolerance},
                                                         {"--weld", &weld},
                                                         {"--offset", &offset},
                                                         {"--order", &order},
                                                         {"--dxf", &dxf},
                                                         {"--layer", &layer},
                                                         {"--layers", &layers},
                                                         {"--colour", &color},
                                                         {"--svg-style", &svg_style}};
  for (const auto& [option, value] : values) visit(option, value);
}

void CutTexts::ForEachFlag(const std::function<void(const char* option, bool* value)>& visit) {
  visit("--vertical", &vertical);
  visit("--stretch", &stretch);
  visit("--mirror", &mirror);
}

bool CutTexts::Set(std::string_view option, std::string value) {
  bool is_known = option == "--fallback";
  if (is_known) fallbacks.push_back(value);
  ForEachFlag([&](const char* name, bool* flag) {
    if (name != option) return;
    *flag = value == "on";
    is_known = true;
  });
  ForEachText([&](const char* name, std::string* text) {
    if (name != option || option == "--fallback") return;
    *text = value;
    is_known = true;
  });
  if (is_known) given.emplace(option);
  return is_known;
}

void CutTexts::Unset(std::string_view option) {
  if (option == "--fallback") fallbacks.clear();
  CutTexts start;
  ForEachFlag([&](const char* name, bool* flag) {
    if (name == option) *flag = false;
  });
  ForEachText([&](const char* name, std::string* text) {
    if (name != option || option == "--fallback") return;
    start.ForEachText([&](const char* other, const std::string* value) {
      if (other == option) *text = *value;
    });
  });
  if (const auto found = given.find(option); found != given.end()) given.erase(found);
}

bool ReadCut(const CutTexts& texts, const WantsFormat& wants, CutJob* job, DrawingStyle* style) {
  CutReader reader(texts, wants);
  if (!reader.Read()) return false;
  *job = reader.TakeJob();
  *style = reader.TakeStyle();
  return true;
}

Status WriteCut(const CutJob& job, const CutDrawing& made, const DrawingStyle& style,
                const Format& format, const std::filesystem::path& file) {
  return WriteDrawing(made.drawing, style, job.tolerance, format, file);
}

}  // namespace kerno
