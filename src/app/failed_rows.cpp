#include "app/failed_rows.h"

#include <utility>

namespace kerno {

Status FailedRows::Open(const std::filesystem::path& file) {
  Status status;
  file_ = FileReplacement::Create(file, &status);
  return status;
}

Status FailedRows::Put(std::string_view bytes) {
  constexpr size_t kBlock = 1 << 16;
  if (!std::exchange(started_, true)) pending_ = rows_->TableStart(numbers_);
  pending_ += bytes;
  if (pending_.size() < kBlock) return Status::Ok();
  return file_->Write(std::exchange(pending_, {}));
}

Status FailedRows::Add(const SeriesRow& row) {
  const bool is_lost = row.raw.empty() && !row.fault.empty();
  if (is_lost) {
    ++left_out_;
    return Status::Ok();
  }
  return Put(
      rows_->TableRow(row, std::vector<std::string>(numbers_.size(), std::to_string(row.number))));
}

Status FailedRows::Finish() {
  if (Status put = Put({}); !put.ok()) return put;
  return file_->Write(std::exchange(pending_, {}));
}

Status FailedRows::Commit() {
  return file_->Commit();
}

}  // namespace kerno
