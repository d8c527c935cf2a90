// The rows of a series that could not be made, as a table that can be its list again.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/row_source.h"
#include "platform/file_replacement.h"

namespace kerno {

// The file appears whole, with its header even where no row failed, or stays as it was. Rows keep
// the bytes that their list has; where numbers of rows are filled in somewhere, columns of their
// names are added, so that rows have the numbers that they had.
class FailedRows {
 public:
  // `rows` is the list, of which numbers `numbers` ("row", "n") are used.
  FailedRows(const RowSource* rows, std::vector<std::string> numbers)
      : rows_(rows), numbers_(std::move(numbers)) {}

  [[nodiscard]] Status Open(const std::filesystem::path& file);
  [[nodiscard]] Status Add(const SeriesRow& row);
  // The last that needs the list.
  [[nodiscard]] Status Finish();
  [[nodiscard]] Status Commit();

  // Rows that are too long to be there.
  uint64_t left_out() const { return left_out_; }

 private:
  [[nodiscard]] Status Put(std::string_view bytes);

  const RowSource* rows_;
  std::vector<std::string> numbers_;
  std::unique_ptr<FileReplacement> file_;
  std::string pending_;
  bool started_ = false;
  uint64_t left_out_ = 0;
};

}  // namespace kerno
