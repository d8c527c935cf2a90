#include "cli/series_printer.h"

#include <utility>

#include "base/text.h"
#include "cli/console.h"
#include "cli/cut_report.h"

namespace kerno {
namespace {

const char* NameOf(RowOutcome outcome) {
  constexpr const char* kNames[] = {"made", "kept", "done", "failed", "not tried"};
  return kNames[static_cast<size_t>(outcome)];
}

void ReportKept(const std::string& first, uint64_t count) {
  ReportError(first, std::string("files that are there are kept") +
                         (count > 1 ? ", as in " + std::to_string(count - 1) + " more" : "") +
                         " (--replace writes them again, --resume takes them for done)");
}

// "12 sheets (3 done before, 1 failed)"
std::string SheetsText(const SheetCounts& counts) {
  std::string parts;
  for (const auto& [count, what] :
       {std::pair(counts.done, " done before"), std::pair(counts.kept, " kept"),
        std::pair(counts.failed, " failed")}) {
    if (count > 0) parts += (parts.empty() ? " (" : ", ") + std::to_string(count) + what;
  }
  return std::to_string(counts.sheets) + (counts.sheets == 1 ? " sheet" : " sheets") + parts +
         (parts.empty() ? "" : ")");
}

}  // namespace

std::string SeriesPrinter::Describe(const CutDrawing& made, const std::vector<WrittenFile>& files) {
  return json_ ? JsonOf(made, files) : std::string();
}

void SeriesPrinter::Begin(uint64_t rows) {
  messages_.emplace(quiet_, rows);
}

void SeriesPrinter::RowSays(uint64_t row, const std::vector<Message>& messages) {
  messages_->Show(row, messages);
}

void SeriesPrinter::SheetsSay(const std::vector<Message>& messages) {
  messages_->Show(messages);
}

void SeriesPrinter::RowEnds(const RowResult& result) {
  if (!json_) return;
  const bool is_failed = result.outcome == RowOutcome::kFailed;
  const bool is_lost = is_failed || result.outcome == RowOutcome::kNotTried;
  std::string line = "{\"row\": " + std::to_string(result.row.number) + ", \"outcome\": \"" +
                     NameOf(result.outcome) + "\"";
  if (is_failed) {
    line += ", \"error\": ";
    AppendJsonString(&line, Utf8ToUtf16Lossy(result.why));
  }
  line += is_lost || result.description.empty() ? "}\n" : ", " + result.description.substr(1);
  all_printed_ &= Print(line);
}

void SeriesPrinter::SheetEnds(const SheetResult& sheet) {
  if (!json_) return;
  sheet_lines_ += "{\"sheet\": " + std::to_string(sheet.number) + ", \"files\": [";
  for (const std::string& name : sheet.files) {
    if (&name != sheet.files.data()) sheet_lines_ += ", ";
    AppendJsonString(&sheet_lines_, Utf8ToUtf16Lossy(name));
  }
  sheet_lines_ += "]}\n";
}

void SeriesPrinter::Came(const SeriesCounts& counts) {
  messages_->ShowProgress(counts.given - counts.not_tried, counts.failed);
}

void SeriesPrinter::End(const SeriesCounts& counts, const Status& list) {
  if (counts.sheets && counts.sheets->kept_files > 0) {
    ReportKept(counts.sheets->first_kept, counts.sheets->kept_files);
  }
  if (!sheet_lines_.empty()) all_printed_ &= Print(sheet_lines_);
  messages_->Finish();
  if (!list.ok()) ReportError(list);
  if (counts.not_tried > 0) {
    ReportError("series",
                "stops, for files cannot be written: " + std::to_string(counts.not_tried) +
                    " rows are not tried (--resume goes on)");
  }
  if (counts.kept > 0 && !counts.sheets) ReportKept(counts.first_kept, counts.kept);
}

bool SeriesPrinter::PrintSummary(const SeriesCounts& counts) {
  if (!messages_) return true;
  const auto part = [](uint64_t count, const char* what) {
    return count == 0 ? std::string() : ", " + std::to_string(count) + what;
  };
  if (!quiet_ && !json_) {
    all_printed_ &=
        PrintLine(std::to_string(counts.rows) + (counts.rows == 1 ? " row: " : " rows: ") +
                  std::to_string(counts.made) + " made" + part(counts.done, " done before") +
                  part(counts.kept, " kept") + part(counts.failed, " failed") +
                  part(counts.not_tried, " not tried") +
                  (counts.sheets ? ", " + SheetsText(*counts.sheets) : "") + ", " +
                  std::to_string(counts.files) + (counts.files == 1 ? " file, " : " files, ") +
                  std::to_string(counts.bytes) + " bytes");
  }
  return FinishPrinting() && all_printed_;
}

}  // namespace kerno
