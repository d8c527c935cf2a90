#include "cli/text_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cmath>
#include <limits>

#include "app/cut_warnings.h"
#include "app/face_choice.h"
#include "app/option_values.h"
#include "app/shortcomings.h"
#include "app/text_source.h"
#include "base/text.h"
#include "cli/choices.h"
#include "cli/console.h"

namespace kerno {
namespace {

constexpr int32_t kLowestHeight = -32768;
constexpr int32_t kHighestHeight = 32767;

// "is set from left to right, its letters are not joined"
std::string Shortcomings(const ScriptNeeds& needs) {
  std::string text;
  for (const std::u16string_view lack : ShortcomingsFor(needs)) {
    text += (text.empty() ? "" : ", ") + Utf16ToUtf8(lack);
  }
  return text;
}

// Tells what the classic layout does not do for the text; false when that ends the command.
bool ReportUnshaped(std::u16string_view text, bool strict) {
  for (const ScriptNeeds& needs : NeedsOf(text)) {
    const std::string what = needs.name.empty() ? "text" : needs.name + " text";
    const std::string why = Shortcomings(needs) + " (kerno cut shapes it)";
    if (strict) {
      ReportError(what, why);
      return false;
    }
    ReportWarning(what, why);
  }
  return true;
}

}  // namespace

void TextOptions::AddTo(CLI::App& app) {
  app_ = &app;
  source_.AddTo(app);
  app.add_option("--line-ends", line_ends_,
                 "crlf: every line end starts a new line; keep: as they stand (a lone LF does not "
                 "return to the margin)")
      ->type_name(ChoiceText(kLineEndChoices))
      ->capture_default_str();
  face_.AddTo(app);
  app.add_option("--height", height_, "above 0 cell height, below 0 em height, 0 the default")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--width", width_, "average character width, 0 the face's own")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--weight", weight_, "400 normal, 700 bold")
      ->type_name("N")
      ->capture_default_str();
  app.add_flag("--vertical", vertical_, "the \"@\" form of the face, for vertical writing");
  app.add_option("--pitch", pitch_,
                 "vertical advance: the mean of advance and ink height, or the full cell")
      ->type_name(ChoiceText(kPitchChoices))
      ->capture_default_str();
  app.add_option("--slant", slant_, "lean the block by DEG degrees")
      ->type_name("DEG")
      ->capture_default_str();
  app.add_option("--angle", angle_, "turn the block by DEG degrees, counter-clockwise")
      ->type_name("DEG")
      ->capture_default_str();
  app.add_option("--at", at_, "where the block's centre lands")
      ->type_name("X,Y")
      ->capture_default_str();
  app.add_option("--scale", scale_, "multiply the finished geometry by F")
      ->type_name("F")
      ->capture_default_str();
  app.add_flag("--substitute", substitute_, "take what the system offers for a missing face");
  app.add_flag("--strict", strict_,
               "a character without a glyph or outline, or a text that needs shaping, is an error");
  app.add_flag("--quiet", quiet_, "no warnings and no summary");
}

std::optional<Job> TextOptions::Resolve(ExitStatus* status) {
  *status = kWrongUsage;
  if (quiet_) SilenceWarnings();
  Job job;
  if (!ReadNumbers(&job)) return std::nullopt;
  bool crlf = true;
  if (!Choose(kLineEndChoices, line_ends_, &crlf)) {
    return std::nullopt;
  }
  const auto text = source_.Read(status);
  if (!text) return std::nullopt;
  job.text.text = crlf ? WithCrLf(*text) : *text;
  *status = kWrongUsage;
  const auto face = face_.Read();
  if (!face) return std::nullopt;
  if (!face->style.empty() && app_->count("--weight") > 0) {
    ReportError("--weight", "does not go with --style");
    return std::nullopt;
  }
  job.text.face = FaceFormOf(face->family);
  job.text.face.vertical |= vertical_;
  *status = ChooseFace(&job);
  if (*status == kDone) *status = ChooseStyle(face->style, &job);
  if (*status != kDone) return std::nullopt;
  if (job.text.face.vertical) SetVertical(&job.text);
  return job;
}

bool TextOptions::ReadNumbers(Job* job) {
  const auto height = WholeNumber("--height", height_, kLowestHeight, kHighestHeight);
  const auto width = height ? WholeNumber("--width", width_, 0, kHighestHeight) : std::nullopt;
  const auto weight = width ? WholeNumber("--weight", weight_, 0, 1000) : std::nullopt;
  const auto slant = weight ? Number("--slant", slant_) : std::nullopt;
  const auto angle = slant ? Number("--angle", angle_) : std::nullopt;
  const auto at = angle ? Point("--at", at_) : std::nullopt;
  const auto scale = at ? Number("--scale", scale_) : std::nullopt;
  if (!scale) return false;
  if (*scale == 0) {
    ReportError("--scale", "0 leaves no geometry");
    return false;
  }
  // There numbers lie further apart than the steps of an outline, 1/64 unit.
  constexpr double kLargestPlace = 1.0 / 64 / std::numeric_limits<double>::epsilon();
  if (std::max(std::fabs(at->x), std::fabs(at->y)) > kLargestPlace * std::fabs(*scale)) {
    ReportError("--at", "so far away the drawing loses its shape");
    return false;
  }
  if (!Choose(kPitchChoices, pitch_, &job->text.layout.pitch)) {
    return false;
  }
  job->text.height = *height;
  job->text.width = *width;
  job->text.weight = *weight;
  job->text.placement.slant = *slant;
  job->text.placement.angle = *angle;
  job->at = *at;
  job->scale = *scale;
  return true;
}

ExitStatus TextOptions::ChooseFace(Job* job) const {
  const FaceChoice choice = kerno::ChooseFace(job->text.face);
  job->text.face = choice.face;
  if (choice.style && app_->count("--weight") == 0) job->text.weight = choice.style->weight;
  if (choice.style) job->text.italic = choice.style->italic;
  if (choice.installed || (substitute_ && !choice.unreadable)) return kDone;
  ReportError(Utf16ToUtf8(choice.what), Utf16ToUtf8(choice.why));
  return choice.unreadable || choice.in_doubt ? kFailed : kFaceTrouble;
}

// A style by its name, and bold by its number where the family has none.
ExitStatus TextOptions::ChooseStyle(std::u16string_view style, Job* job) const {
  constexpr int32_t kBoldFrom = 550;  // weights above count as bold
  FaceForm& face = job->text.face;
  const bool bold = style.empty() && job->text.weight > kBoldFrom && !face.name.empty();
  if (style.empty() && !bold) return kDone;
  SystemStyle chosen;
  std::u16string name = face.name;
  const Status found = kerno::ChooseStyle(bold ? u"Bold" : style, &name, &chosen);
  if (!found.ok() && found.what != u"style" && found.what != u"face") {
    ReportError(found);
    return kFailed;
  }
  if (!found.ok()) {
    if (bold) return kDone;  // the rasteriser has its own way with weights
    ReportError("--style", Utf16ToUtf8(found.why));
    return kFaceTrouble;
  }
  if (!bold) {
    job->text.weight = chosen.weight;
    job->text.italic = chosen.italic;
    face.name = name;
  }
  if (!chosen.made_bold) return kDone;
  const std::string what = "\"" + Utf16ToUtf8(name) + "\" has no bold letters";
  if (strict_) {
    ReportError("face", what);
    return kFaceTrouble;
  }
  ReportWarning("face", what + ": the rasteriser makes them, and their outlines may cross");
  return kDone;
}

std::optional<TypesetText> TextOptions::MakeAndReport(const Job& job, Placing placing,
                                                      ExitStatus* status) const {
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  auto set = placing == Placing::kPlaced ? Make(job, typesetter) : typesetter.LayOut(job.text);
  if (const Status reading = context->FontReading(); !reading.ok()) {
    ReportError(reading);
    *status = kFailed;
    return std::nullopt;
  }
  if (!set) {
    ReportError("faces", "the system has none installed");
    *status = kFaceTrouble;
    return std::nullopt;
  }
  const std::string face = Utf16ToUtf8(set->face);
  if (substitute_ && !IsNameOf(job.text.face, set->face)) {
    ReportWarning(Utf16ToUtf8(SystemFaceName(job.text.face)),
                  "is not installed, " + face + " takes its place");
  }
  if (!ReportUnshaped(job.text.text, strict_) ||
      !ReportLost("no glyph in " + face, set->missing, strict_) ||
      !ReportLost("no outline of this size in " + face, set->notes.refused, strict_)) {
    *status = kFaceTrouble;
    return std::nullopt;
  }
  if (set->ended_by_nul) {
    ReportWarning("text", "ends at a NUL after " + std::to_string(set->characters) + " characters");
  }
  if (const uint32_t touching = set->notes.overlapping; touching > 0) {
    ReportWarning("vertical text",
                  std::to_string(touching) +
                      (touching == 1 ? " character touches" : " characters touch") +
                      " the one before (--pitch cell sets them apart)");
  }
  if (set->contours.empty()) ReportWarning("text", "has no outlines");
  *status = kDone;
  return set;
}

void TextOptions::ReportLicence(const Job& job, const TypesetText& set) {
  if (LicenceForbids(set.face, {.weight = job.text.weight, .italic = job.text.italic})) {
    WarnOfLicence(Utf16ToUtf8(set.face));
  }
}

bool TextOptions::CheckRange(const TextContours& contours) {
  bool finite = true;
  contours.EachPoint(
      [&](const P2& p) { finite = finite && std::isfinite(p.x) && std::isfinite(p.y); });
  return finite || ReportRange();
}

bool TextOptions::CheckRange(const P2& size) {
  return (std::isfinite(size.x) && std::isfinite(size.y)) || ReportRange();
}

bool TextOptions::ReportRange() {
  ReportError("--scale and --at", "take the drawing out of the range of numbers");
  return false;
}

}  // namespace kerno
