#include "cli/cut_command.h"

#include <CLI/CLI.hpp>
#include <chrono>

#include "app/cut_warnings.h"
#include "app/series_run.h"
#include "base/text.h"
#include "cli/console.h"
#include "cli/cut_report.h"
#include "cli/series_printer.h"

namespace kerno {
namespace {

// A template that stands for the text itself.
std::string AsTemplate(const std::string& text) {
  std::string out;
  for (const char c : text) out.append(c == '{' || c == '}' ? 2 : 1, c);
  return out;
}

}  // namespace

void CutCommand::AddOptions(CLI::App& app) {
  source_.AddTo(app);
  options_.AddTo(app);
  app.add_flag("--strict", strict_, "a character without a glyph is an error");
  app.add_flag("--quiet", quiet_, "no warnings and no summary");
  app.add_flag("--json", json_, "print what was made, with every glyph, as one JSON object");
  series_.AddTo(app);
  sheets_.AddTo(app);
}

ExitStatus CutCommand::Run() {
  if (quiet_) SilenceWarnings();
  if (!series_.AreUsable() || !sheets_.AreUsable()) return kWrongUsage;
  return series_.IsWanted() || sheets_.IsGiven() ? RunSeries() : RunOnce();
}

ExitStatus CutCommand::RunOnce() {
  const auto began = std::chrono::steady_clock::now();
  if (!options_.ReadOutputs() || !options_.ReadJob()) return kWrongUsage;
  ExitStatus status = kWrongUsage;
  const auto text = source_.Read(&status);
  if (!text) return status;
  CutJob job = options_.job();
  job.text = *text;
  CutDrawing made;
  if (const Status done = MakeCut(job, &made); !done.ok()) {
    ReportError(done);
    return done.failure == Failure::kNotFound ? kFaceTrouble : kFailed;
  }
  if (!ReportOnCut(made, strict_)) return kFaceTrouble;
  const auto write = [&](const Format& format, const std::filesystem::path& file) {
    return options_.Write(made, format, file);
  };
  const bool told_face = options_.FaceIsOpen() || !made.faces[0].variations.empty();
  const std::string face = told_face ? NameWithPlaces(made.faces[0]) + ", " : "";
  const OutputFiles& outputs = options_.outputs();
  std::vector<WrittenFile> files;
  const bool written =
      outputs.WriteAll(write, {face + SummaryOf(made), quiet_ || json_, began}, &files);
  const bool told =
      !json_ || outputs.UsesStandardOutput() || (Print(JsonOf(made, files)) && FinishPrinting());
  if (written && !told)
    ReportError("output", "every file is whole; only the report could not be printed");
  return written && told ? kDone : kFailed;
}

ExitStatus CutCommand::RunSeries() {
  source_.ShareEncoding();
  ExitStatus status = kWrongUsage;
  if (!options_.ReadOutputs()) return status;
  if (series_.UsesStandardInput() && source_.UsesStandardInput()) {
    ReportError("--text-file", "standard input holds the rows already");
    return status;
  }
  std::string text = "{line}";
  const bool is_default = series_.HasLines() && !source_.IsGiven();
  if (!is_default) {
    const auto given = source_.Read(&status);
    if (!given) return status;
    text = Utf16ToUtf8(*given);
    // One text on sheets is no template.
    if (!series_.IsWanted()) text = AsTemplate(text);
  }
  auto job = series_.Read(source_, &status);
  if (!job) return status;
  const bool is_plain = source_.IsOfFile() || !series_.IsWanted();
  job->text = std::move(text);
  job->escapes = is_plain ? Escapes::kNone : Escapes::kBackslash;
  job->strict = strict_;
  job->texts = options_.Texts();
  job->outputs = options_.outputs().outputs();
  if (sheets_.IsGiven()) job->sheets = sheets_.Texts();
  return RunJob(std::move(*job));
}

ExitStatus CutCommand::RunJob(SeriesJob job) const {
  SeriesPrinter printer(quiet_, json_);
  SeriesRun run(std::move(job), printer);
  const SeriesEnd end = run.Run();
  const bool is_told = printer.PrintSummary(run.counts());
  switch (end) {
    case SeriesEnd::kDone:
      return is_told ? kDone : kFailed;
    case SeriesEnd::kWrongUsage:
      return kWrongUsage;
    case SeriesEnd::kFaceTrouble:
      return kFaceTrouble;
    default:
      return kFailed;
  }
}

}  // namespace kerno
