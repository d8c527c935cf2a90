#include "cli/series_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <system_error>
#include <thread>
#include <vector>

#include "app/option_values.h"
#include "base/text.h"
#include "cli/choices.h"
#include "cli/console.h"
#include "platform/file_replacement.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

constexpr int32_t kMostRows = 2147483647;
constexpr int32_t kMostJobs = 256;

// Standard input, or a pipe that has a name, piece by piece.
Status CopyInput(const RowList& list, bool is_standard, FileReplacement* out) {
  std::ifstream named;
  if (!is_standard) {
    errno = 0;
    named.open(PathToOpen(list.file), std::ios::binary);
    if (!named) {
      const std::error_code reason(errno ? errno : EIO, std::generic_category());
      return Status::Error(Failure::kOther, PathText(list.file), ErrorText(reason));
    }
  }
  std::vector<char> piece(1 << 16);
  for (;;) {
    size_t count = 0;
    if (is_standard) {
      count = std::fread(piece.data(), 1, piece.size(), stdin);
    } else {
      named.read(piece.data(), static_cast<std::streamsize>(piece.size()));
      count = static_cast<size_t>(named.gcount());
    }
    if (count == 0) break;
    if (Status written = out->Write({piece.data(), count}); !written.ok()) return written;
  }
  const bool whole = is_standard ? std::ferror(stdin) == 0 : !named.bad();
  if (whole) return Status::Ok();
  return Status::Error(Failure::kOther, is_standard ? u"standard input" : PathText(list.file),
                       u"cannot be read");
}

}  // namespace

void SeriesOptions::AddTo(CLI::App& app) {
  app_ = &app;
  const char* const group = "Series";
  app.add_option("--data", data_,
                 "a file for each row of a table (CSV; \"-\": standard input), whose columns fill "
                 "fields such as {name} of texts, options and file names; {row} and {n} are its "
                 "number, {n:04} in four digits, {{ a brace")
      ->type_name("FILE")
      ->group(group);
  app.add_option("--separator", separator_, "--data: between fields; without it the header tells")
      ->type_name(ChoiceText(kSeparatorChoices))
      ->group(group);
  app.add_option("--lines", lines_, "a file for each line, which fills {line}")
      ->type_name("FILE")
      ->group(group);
  app.add_option("--count", count_, "N files, of which {n} is the number")
      ->type_name("N")
      ->group(group);
  app.add_option("--rows", rows_, "these rows alone")->type_name("A-B")->group(group);
  app.add_option("--jobs", jobs_, "rows at work at a time (as many as there are processors)")
      ->type_name("N")
      ->group(group);
  app.add_flag("--replace", replace_, "write files again that are there; without it they are kept")
      ->group(group);
  app.add_flag("--resume", resume_,
               "go on after a run that was stopped: files that are there are done")
      ->group(group);
  app.add_option("--failed", failed_, "write the rows that fail to FILE, which --data takes again")
      ->type_name("FILE")
      ->group(group);
}

bool SeriesOptions::IsWanted() const {
  return app_->count("--data") + app_->count("--lines") + app_->count("--count") > 0;
}

bool SeriesOptions::UsesStandardInput() const {
  return data_ == "-" || lines_ == "-";
}

bool SeriesOptions::HasLines() const {
  return app_->count("--lines") > 0;
}

bool SeriesOptions::AreUsable() const {
  if (IsWanted()) return true;
  for (const char* option :
       {"--separator", "--rows", "--jobs", "--replace", "--resume", "--failed"}) {
    if (app_->count(option) == 0) continue;
    ReportError(option, "needs rows: --data, --lines or --count");
    return false;
  }
  return true;
}

bool SeriesOptions::ReadList(const TextSource& text, RowList* list) const {
  if (app_->count("--data") + app_->count("--lines") + app_->count("--count") > 1) {
    ReportError("rows", "are given more than once (--data, --lines, --count)");
    return false;
  }
  if (app_->count("--count") > 0) {
    const auto count = WholeNumber("--count", count_, 1, kMostRows);
    list->kind = RowList::Kind::kCount;
    list->count = static_cast<uint64_t>(count.value_or(0));
    return count.has_value();
  }
  const bool is_table = app_->count("--data") > 0;
  const std::string& file = is_table ? data_ : lines_;
  list->kind = is_table ? RowList::Kind::kTable : RowList::Kind::kLines;
  if (!IsFileName(is_table ? "--data" : "--lines", file)) return false;
  list->file = PathArgument(file);
  if (app_->count("--separator") > 0) {
    if (!is_table) {
      ReportError("--separator", "needs --data FILE");
      return false;
    }
    const bool known = Choose(kSeparatorChoices, separator_, &list->separator);
    if (!known) return false;
  }
  return text.ReadCoding(&list->coding);
}

// "7", "7-12", "7-" or "-12".
bool SeriesOptions::ReadRange(SeriesJob* job) const {
  if (app_->count("--rows") == 0) return true;
  const size_t dash = rows_.find('-');
  const std::string first = rows_.substr(0, dash);
  const std::string last = dash == rows_.npos ? first : rows_.substr(dash + 1);
  if (first.empty() && last.empty()) {
    ReportError("--rows", "\"" + rows_ + "\" is no range A-B");
    return false;
  }
  const auto read = [](const std::string& text, uint64_t* number) {
    if (text.empty()) return true;
    const auto value = WholeNumber("--rows", text, 1, kMostRows);
    if (value) *number = static_cast<uint64_t>(*value);
    return value.has_value();
  };
  if (!read(first, &job->first) || !read(last, &job->last)) return false;
  if (job->first <= job->last) return true;
  ReportError("--rows", "\"" + rows_ + "\" ends before it begins");
  return false;
}

// A table of failed rows in place of the list would lose all other rows.
bool SeriesOptions::ReadFailed(SeriesJob* job) const {
  if (app_->count("--failed") == 0) return true;
  if (!IsFileName("--failed", failed_)) return false;
  job->failed = failed_;
  if (job->list.kind == RowList::Kind::kCount) return true;
  std::error_code error;
  const bool is_list = std::filesystem::equivalent(PathToOpen(PathArgument(failed_)),
                                                   PathToOpen(job->list.file), error);
  if (is_list) ReportError("--failed", "\"" + failed_ + "\" is the list itself");
  return !is_list;
}

// The list is read twice: what comes through a pipe goes to a file first.
bool SeriesOptions::KeepInput(RowList* list) {
  if (list->kind == RowList::Kind::kCount) return true;
  const bool is_standard = PathBytes(list->file) == "-";
  if (!is_standard && FactsOfPath(list->file).kind != PathKind::kOther) return true;
  kept_ = std::make_unique<ScratchPath>("list");
  Status kept =
      kept_->status().ok()
          ? ReplaceFile(kept_->path(),
                        [&](FileReplacement* out) { return CopyInput(*list, is_standard, out); })
          : kept_->status();
  list->name = is_standard ? u"standard input" : PathText(list->file);
  if (!kept.ok()) {
    if (kept.what != list->name) kept.what = list->name + u": " + kept.what;  // the copy's place
    ReportError(kept);
  }
  list->file = kept_->ReadPath();
  return kept.ok();
}

std::optional<SeriesJob> SeriesOptions::Read(const TextSource& text, ExitStatus* status) {
  *status = kWrongUsage;
  SeriesJob job;
  if (!IsWanted()) {
    job.list = {.kind = RowList::Kind::kCount, .count = 1};
    job.existing = ExistingFiles::kReplace;
    return job;
  }
  if (!ReadList(text, &job.list) || !ReadRange(&job)) return std::nullopt;
  job.jobs = std::max(1U, std::thread::hardware_concurrency());
  if (app_->count("--jobs") > 0) {
    const auto jobs = WholeNumber("--jobs", jobs_, 1, kMostJobs);
    if (!jobs) return std::nullopt;
    job.jobs = static_cast<size_t>(*jobs);
  }
  if (replace_ && resume_) {
    ReportError("--resume", "goes not with --replace");
    return std::nullopt;
  }
  job.existing = replace_  ? ExistingFiles::kReplace
                 : resume_ ? ExistingFiles::kResume
                           : ExistingFiles::kKeep;
  if (!ReadFailed(&job)) return std::nullopt;
  *status = kFailed;
  if (!KeepInput(&job.list)) return std::nullopt;
  *status = kDone;
  return job;
}

}  // namespace kerno
