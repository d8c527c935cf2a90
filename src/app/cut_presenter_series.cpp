// The series of the Cut page: rows in the preview, and all of them in files.

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "app/cut_services.h"
#include "base/text.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using Id = ControlId;

std::u16string Count(uint64_t count) {
  return Utf8ToUtf16Lossy(std::to_string(count));
}

// What is wrong and with what; that of a row stands after its number.
std::u16string SaidOf(const Message& message) {
  const bool of_row = message.what.starts_with("row ");
  const std::u16string what = of_row ? std::u16string() : Utf8ToUtf16Lossy(message.what);
  return SayStatus(Status::Error(Failure::kOther, what, Utf8ToUtf16Lossy(message.why)));
}

}  // namespace

void CutPresenter::OpenSeries(const fs::path& file) {
  const Status opened = series_.Open(file, [this] { view_.WakeUp(); });
  if (!opened.ok()) return Tell(SayStatus(opened), StatusKind::kFailure);
  row_ = 1;
  // A text without fields would make every sign the same: the columns take its place.
  if (text_.find(u'{') == text_.npos) {
    text_.clear();
    for (const std::string& column : series_.columns()) {
      text_ += (text_.empty() ? u"{" : u"\n{") + Utf8ToUtf16Lossy(column) + u"}";
    }
    has_sample_ = false;
    view_.ShowText(text_, TextChange::kUndoable);
  }
  form_.Set(Id::kSeriesNames, Utf8ToUtf16Lossy(series_.ProposedNames(form_.IsOn(Id::kSheets))));
  ShowField(Id::kSeriesNames);
  ShowSeries();
  Changed();
}

void CutPresenter::CloseSeries() {
  series_.Cancel();
  series_.Close();
  ShowSeries();
  Changed();
}

void CutPresenter::StepTo(uint64_t row) {
  if (!series_.is_open() || row < 1 || row > series_.rows() || row == row_) return;
  row_ = row;
  ShowSeries();
  Changed();
}

void CutPresenter::ShowSeries() {
  const bool is_open = series_.is_open();
  std::u16string text;
  if (is_open) {
    text = Say(u"{}: {} rows", {PathText(series_.file().filename()),
                                Count(series_.rows()) + (series_.all_counted() ? u"" : u"…")});
    view_.ShowControlText(Id::kSeriesRow, Count(row_));
  }
  view_.ShowControlText(Id::kSeriesFile, text);
  for (const CutControlRow& row : CutControls()) {
    const bool always = row.id == Id::kSeriesFile || row.id == Id::kOpenSeries;
    if (row.section != CutSection::kSeries || always) continue;
    const bool of_sheets = row.id >= Id::kSheetSize && row.id <= Id::kSheetNumbers;
    view_.ShowControl(row.id, is_open && (!of_sheets || form_.IsOn(Id::kSheets)));
  }
  view_.Enable(Id::kSeriesBack, is_open && row_ > 1);
  view_.Enable(Id::kSeriesForward, is_open && row_ < series_.rows());
  view_.Enable(Id::kSeriesWrite, is_open && !writes_series_);
}

// Files that are there already are counted first; then the user is asked about them.
void CutPresenter::WriteSeries(std::optional<ExistingFiles> existing) {
  if (!series_.is_open() || writes_series_) return;
  if (!existing) {
    const auto folder =
        view_.AskFolder(memory_.folder.empty() ? services_.Documents() : TextPath(memory_.folder));
    if (!folder) return;
    series_folder_ = *folder;
    memory_.folder = PathText(*folder);
  }
  SeriesOrder order;
  order.text = text_;
  order.texts = form_.Texts();
  order.names = Utf16ToUtf8(form_.Text(Id::kSeriesNames));
  order.folder = series_folder_;
  order.formats = {std::string(FormatOfSave().extension)};
  order.sheets = form_.Sheets();
  order.existing = existing;
  done_ = {};
  writes_series_ = series_.Start(std::move(order), [this] { view_.WakeUp(); });
  ShowStatus();
  ShowSeries();
}

void CutPresenter::ShowSeriesProgress() {
  const SeriesProgress now = series_.progress();
  if (!now.is_running) return EndSeries();
  // Rows are made before their sheets are written: each is half of the way.
  const uint64_t come = now.done + (now.on_sheets ? now.rows_on_sheets : now.done);
  const double part =
      now.rows > 0 ? static_cast<double>(come) / static_cast<double>(2 * now.rows) : 0;
  const bool writes_sheets = now.on_sheets && now.rows > 0 && now.done == now.rows;
  view_.ShowProgress(writes_sheets ? Say(u"Sheet {}", {Count(now.sheets + 1)})
                                   : Say(u"Row {} of {}", {Count(now.done), Count(now.rows)}),
                     part);
}

void CutPresenter::EndSeries() {
  writes_series_ = false;
  view_.ShowProgress(u"", -1);
  ShowSeries();
  const SeriesProgress end = series_.progress();
  if (end.end == SeriesEnd::kFilesStand) {
    const auto answer =
        view_.AskWhich(Say(u"{} of the files are there already.", {Count(end.standing)}),
                       {Say(u"Replace"), Say(u"Keep them and write the others")});
    if (answer) WriteSeries(*answer == 0 ? ExistingFiles::kReplace : ExistingFiles::kResume);
    return;
  }
  std::u16string text = Say(u"Wrote {} files of {} rows", {Count(end.files), Count(end.done)});
  if (end.failed > 0) {
    text += u"  ·  ";
    text += end.failed == 1 ? Say(u"1 row failed") : Say(u"{} rows failed", {Count(end.failed)});
  }
  if (end.kept > 0) {
    text += u"  ·  ";
    text += end.kept == 1 ? Say(u"1 row keeps its files")
                          : Say(u"{} rows keep their files", {Count(end.kept)});
  }
  for (const SeriesTrouble& trouble : end.failures) {
    const std::u16string row = trouble.row > 0 ? Say(u"row {}", {Count(trouble.row)}) + u": " : u"";
    text += u"  ·  " + row + SaidOf(trouble.message);
  }
  if (end.end == SeriesEnd::kStopped) text = Say(u"Cancelled.") + u" " + text;
  const bool is_good = end.failed == 0 && end.failures.empty();
  done_ = {std::move(text), is_good ? StatusKind::kNormal : StatusKind::kFailure,
           end.files > 0 ? series_folder_ / "" : fs::path()};
  ShowStatus();
}

}  // namespace kerno
