#include "app/series_list.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

#include "app/text_source.h"
#include "base/text.h"
#include "base/text_file.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

constexpr uint64_t kRowsToAPlace = 512;
constexpr size_t kMostGuessed = 1 << 20;  // bytes that the code page is taken from

// The code page of bytes that are not UTF-8 and have no mark of UTF-16; nothing where they are.
std::optional<TextCoding> CodePageOf(std::string bytes) {
  if (HasUtf16Mark(bytes)) return std::nullopt;
  // A character that is cut off says nothing.
  if (bytes.size() == kMostGuessed) bytes.erase(bytes.find_last_of("\r\n") + 1);
  if (Utf8ToUtf16(bytes)) return std::nullopt;
  if (const auto guessed = GuessCoding(bytes)) return guessed;
  std::u16string text;
  const bool is_western = DecodeAs(TextCoding::kCodePage1252, bytes, {}, &text).ok();
  return is_western ? std::optional(TextCoding::kCodePage1252) : std::nullopt;
}

}  // namespace

SeriesList::Stamp SeriesList::StampOf(const std::filesystem::path& file) {
  std::error_code error;
  const std::filesystem::path path = PathToOpen(file);
  return {FactsOfPath(file).size, std::filesystem::last_write_time(path, error)};
}

Status SeriesList::Open(const std::filesystem::path& file, std::function<void()> counted,
                        std::unique_ptr<SeriesList>* list) {
  RowList rows = {.file = file, .if_held = IfHeld::kFail};
  if (AsciiLower(PathText(file.extension())) == u".txt") rows.kind = RowList::Kind::kLines;
  std::string bytes;
  if (Status read = PeekFile(file, &bytes, kMostGuessed); !read.ok()) return read;
  rows.coding = CodePageOf(std::move(bytes));
  std::unique_ptr<SeriesList> made(new SeriesList(std::move(rows), std::move(counted)));
  std::unique_ptr<RowSource> source;
  if (Status opened = RowSource::Open(made->list_, &source); !opened.ok()) return opened;
  made->columns_ = source->columns();
  made->CountBeside(std::move(source));
  *list = std::move(made);
  return Status::Ok();
}

SeriesList::~SeriesList() {
  stops_ = true;
  if (counter_.joinable()) counter_.join();
}

// A short list is counted when this returns.
void SeriesList::CountBeside(std::unique_ptr<RowSource> rows) {
  constexpr auto kShort = std::chrono::milliseconds(40);
  const std::shared_ptr<RowSource> shared = std::move(rows);
  try {
    counter_ = std::thread([this, shared] { CountRows(shared.get()); });
  } catch (const std::system_error&) {
    return CountRows(shared.get());  // where the system gives no thread
  }
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, kShort, [this] { return all_counted_; });
}

void SeriesList::CountRows(RowSource* rows) {
  SeriesRow row;
  Status status;
  uint64_t count = 0;
  while (!stops_ && rows->Next(&row, &status)) {
    if (++count % kRowsToAPlace != 0) continue;
    const auto place = rows->Place();
    const std::lock_guard lock(mutex_);
    rows_ = count;
    if (place) places_.push_back(*place);
  }
  {
    const std::lock_guard lock(mutex_);
    rows_ = count;
    all_counted_ = true;
    changed_.notify_all();
  }
  if (!stops_ && counted_) counted_();
}

uint64_t SeriesList::rows() const {
  const std::lock_guard lock(mutex_);
  return rows_;
}

bool SeriesList::all_counted() const {
  const std::lock_guard lock(mutex_);
  return all_counted_;
}

bool SeriesList::HasChanged() const {
  return StampOf(list_.file) != stamp_;
}

std::optional<RowPlace> SeriesList::PlaceBefore(uint64_t row) const {
  const std::lock_guard lock(mutex_);
  const auto after = std::ranges::lower_bound(places_, row, {}, &RowPlace::row);
  return after == places_.begin() ? std::nullopt : std::optional(*std::prev(after));
}

Status SeriesList::RowAt(uint64_t number, SeriesRow* row) {
  if (last_.number == number && number > 0) {
    *row = last_;
    return Status::Ok();
  }
  std::unique_ptr<RowSource> source;
  Status status = RowSource::Open(list_, &source);
  if (!status.ok()) return status;
  if (const auto place = PlaceBefore(number)) status = source->GoTo(*place);
  while (status.ok() && last_.number != number) {
    if (source->Next(&last_, &status)) continue;
    last_.number = 0;
    if (!status.ok()) return status;
    return Status::Error(Failure::kNotFound, PathText(list_.file),
                         u"has no row " + Utf8ToUtf16Lossy(std::to_string(number)));
  }
  *row = last_;
  return status;
}

}  // namespace kerno
