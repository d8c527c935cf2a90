#include "app/cut_series.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "app/output_list.h"
#include "app/series_list.h"
#include "app/series_plan.h"
#include "app/series_run.h"
#include "base/folders.h"
#include "base/text.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

// A template that stands for the text itself.
std::string AsTemplate(const std::string& text) {
  std::string out;
  for (const char c : text) out.append(c == '{' || c == '}' ? 2 : 1, c);
  return out;
}

// The names of a row's files, one for each format; what is wrong is reported.
bool ReadOutputs(const SeriesOrder& order, OutputList* outputs) {
  std::string name = order.names;
  std::vector<std::string> formats = order.formats;
  const std::string extension = Utf16ToUtf8(AsciiLower(Extension(Utf8ToUtf16Lossy(name))));
  if (!extension.empty() && FindFormat(Utf8ToUtf16Lossy(extension))) {
    name.erase(name.size() - extension.size() - 1);
    if (formats.empty()) formats = {extension};
  }
  if (name.empty()) {
    ReportError("-o", "no file to write is given");
    return false;
  }
  // A path that ends in a separator keeps it.
  const std::string folder = order.folder.empty() ? "" : PathBytes(order.folder / "");
  for (const std::string& format : formats) {
    auto output = ReadOutput(AsTemplate(folder) + name + "." + format, {});
    if (!output) return false;
    outputs->push_back(std::move(*output));
  }
  if (outputs->empty()) ReportError("-o", "has no extension to choose the format by");
  return !outputs->empty();
}

// As many as there are, but for the one that the window runs on.
size_t SpareProcessors() {
  return std::max(2U, std::thread::hardware_concurrency()) - 1;
}

// Names that a field can have.
bool IsPlainName(const std::string& column) {
  return !column.empty() && column.find_first_of("{}:") == column.npos;
}

}  // namespace

// A run beside the window, and what it has told.
class CutSeries::Run final : public SeriesObserver {
 public:
  // Runs nothing where the job is wrong already: `wrong` says why.
  Run(SeriesJob job, bool on_sheets, std::vector<Message> wrong, SeriesWake wake)
      : is_good_(wrong.empty()), run_(std::move(job), *this), wake_(std::move(wake)) {
    shown_.is_running = true;
    shown_.on_sheets = on_sheets;
    Keep(0, wrong);
  }
  ~Run() override {
    Stop();
    if (thread_.joinable()) thread_.join();
  }
  Run(const Run&) = delete;
  Run& operator=(const Run&) = delete;

  void Start() {
    try {
      thread_ = std::thread([this] { RunAll(); });
    } catch (const std::system_error&) {
      RunAll();  // where the system gives no thread
    }
  }
  void Stop() {
    is_cancelled_ = true;
    run_.Stop();
  }

  SeriesProgress progress() const {
    const std::lock_guard lock(mutex_);
    return shown_;
  }

 private:
  using Clock = std::chrono::steady_clock;

  void Begin(uint64_t rows) override {
    {
      const std::lock_guard lock(mutex_);
      shown_.writes = true;
      shown_.rows = rows;
    }
    wake_();
  }
  void RowSays(uint64_t row, const std::vector<Message>& messages) override { Keep(row, messages); }
  void SheetsSay(const std::vector<Message>& messages) override { Keep(0, messages); }
  void RowEnds(const RowResult& /*result*/) override {}
  void SheetEnds(const SheetResult& sheet) override {
    {
      const std::lock_guard lock(mutex_);
      ++shown_.sheets;
      shown_.rows_on_sheets = sheet.rows;
      shown_.files += sheet.files.size();
    }
    WakeNowAndThen();
  }
  void Came(const SeriesCounts& counts) override {
    Show(counts);
    WakeNowAndThen();
  }
  void End(const SeriesCounts& counts, const Status& list) override {
    Show(counts);
    if (!list.ok()) ReportError(list);
    if (counts.not_tried > 0 && !is_cancelled_) {
      ReportError("series", "stops, for files cannot be written: " +
                                std::to_string(counts.not_tried) + " rows are not tried");
    }
  }

  void Show(const SeriesCounts& counts) {
    const std::lock_guard lock(mutex_);
    shown_.done = counts.given - counts.not_tried;
    shown_.failed = counts.failed;
    shown_.kept = counts.kept + counts.done;
    if (counts.files > 0) shown_.files = counts.files;
  }

  // The first failures, and each warning once.
  void Keep(uint64_t row, const std::vector<Message>& messages) {
    const std::lock_guard lock(mutex_);
    for (const Message& message : messages) {
      auto& kept = message.is_warning ? shown_.warnings : shown_.failures;
      const auto is_same = [&](const SeriesTrouble& known) {
        return known.message.what == message.what && known.message.why == message.why;
      };
      if (kept.size() == SeriesProgress::kMostTroubles) continue;
      if (message.is_warning && std::ranges::any_of(kept, is_same)) continue;
      kept.push_back({row, message});
    }
  }

  void WakeNowAndThen() {
    constexpr auto kPause = std::chrono::milliseconds(50);
    const auto now = Clock::now();
    if (now - woken_ < kPause) return;
    woken_ = now;
    wake_();
  }

  void RunAll() {
    SeriesEnd end = SeriesEnd::kWrongUsage;
    std::vector<Message> told;
    if (is_good_) {
      const HeldMessages held(&told);
      try {
        end = run_.Run();
      } catch (const std::exception& error) {
        end = SeriesEnd::kFailed;
        ReportError("series", error.what());
      }
    }
    Keep(0, told);
    {
      const std::lock_guard lock(mutex_);
      shown_.standing = run_.counts().standing;
      shown_.end = end;
      shown_.is_running = false;
    }
    wake_();
  }

  const bool is_good_;
  std::atomic<bool> is_cancelled_ = false;
  SeriesRun run_;
  SeriesWake wake_;
  Clock::time_point woken_ = Clock::now();
  mutable std::mutex mutex_;
  SeriesProgress shown_;
  std::thread thread_;
};

CutSeries::CutSeries() = default;
CutSeries::~CutSeries() = default;

Status CutSeries::Open(const std::filesystem::path& file, SeriesWake wake) {
  return SeriesList::Open(file, std::move(wake), &list_);
}

void CutSeries::Close() {
  list_.reset();
}

const std::filesystem::path& CutSeries::file() const {
  static const std::filesystem::path kNone;
  return list_ ? list_->list().file : kNone;
}

const std::vector<std::string>& CutSeries::columns() const {
  static const std::vector<std::string> kNone;
  return list_ ? list_->columns() : kNone;
}

uint64_t CutSeries::rows() const {
  return list_ ? list_->rows() : 0;
}

bool CutSeries::all_counted() const {
  return !list_ || list_->all_counted();
}

// A list that has changed is another one.
bool CutSeries::RowAt(uint64_t number, SeriesRow* row) {
  if (!list_) return false;
  Status status;
  if (list_->HasChanged()) status = Open(std::filesystem::path(file()), list_->counted());
  if (status.ok()) status = list_->RowAt(number, row);
  if (!status.ok()) ReportError(status);
  return status.ok();
}

bool CutSeries::Fill(uint64_t row, std::u16string_view text, const CutTexts& texts,
                     std::u16string* filled_text, CutTexts* filled) {
  SeriesRow found;
  if (!RowAt(row, &found)) return false;
  if (!found.fault.empty()) {
    ReportError("row " + std::to_string(row), Utf16ToUtf8(found.fault));
    return false;
  }
  SeriesPlan plan;
  if (!plan.Read(texts, {}, Utf16ToUtf8(text), Escapes::kNone, columns())) return false;
  if (plan.TextsUseSheet()) {
    ReportError("{sheet}", "is known only in names of files");
    return false;
  }
  std::u16string made_text;
  CutTexts made = texts;
  if (!plan.FillText({&found}, &made_text) || !plan.FillOptions({&found}, &made)) return false;
  *filled_text = std::move(made_text);
  *filled = std::move(made);
  return true;
}

std::string CutSeries::ProposedNames(bool on_sheets) const {
  if (on_sheets) return "sheet-{sheet:02}";
  const auto is_column = [this](const char* name) {
    return std::ranges::find(columns(), name) != columns().end();
  };
  const size_t digits = std::max<size_t>(2, std::to_string(rows()).size());
  std::string names = (is_column("row") ? "{n:0" : "{row:0") + std::to_string(digits) + "}";
  const auto column = std::ranges::find_if(columns(), IsPlainName);
  if (column != columns().end()) names += "-{" + *column + "}";
  return names;
}

bool CutSeries::Start(SeriesOrder order, SeriesWake wake) {
  if (!list_ || (run_ && run_->progress().is_running)) return false;
  SeriesJob job;
  std::vector<Message> wrong;
  {
    const HeldMessages held(&wrong);
    static_cast<void>(ReadOutputs(order, &job.outputs));
  }
  job.list = list_->list();
  job.jobs = SpareProcessors();
  job.existing = order.existing.value_or(ExistingFiles::kKeep);
  job.asks_first = !order.existing;
  job.text = Utf16ToUtf8(order.text);
  job.texts = std::move(order.texts);
  job.sheets = std::move(order.sheets);
  const bool on_sheets = job.sheets.has_value();
  run_ = std::make_unique<Run>(std::move(job), on_sheets, std::move(wrong), std::move(wake));
  run_->Start();
  return true;
}

void CutSeries::Cancel() {
  if (run_) run_->Stop();
}

SeriesProgress CutSeries::progress() const {
  return run_ ? run_->progress() : SeriesProgress();
}

}  // namespace kerno
