// A list whose rows are looked at one by one, in any order: rows are counted beside the window and
// reached through places that are remembered, some hundred rows apart. The file is held while it is
// read alone.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "app/row_source.h"

namespace kerno {

class SeriesList {
 public:
  // A table, or the lines of a ".txt". Without a mark it is UTF-8, or the code page that its bytes
  // look like. Never waits: kSharingViolation where another process holds it. *list is set on
  // success only. `counted` is called by any thread when all rows are counted.
  [[nodiscard]] static Status Open(const std::filesystem::path& file, std::function<void()> counted,
                                   std::unique_ptr<SeriesList>* list);
  ~SeriesList();
  SeriesList(const SeriesList&) = delete;
  SeriesList& operator=(const SeriesList&) = delete;

  const RowList& list() const { return list_; }
  const std::vector<std::string>& columns() const { return columns_; }
  const std::function<void()>& counted() const { return counted_; }

  // The rows that are known so far, and whether these are all.
  uint64_t rows() const;
  bool all_counted() const;

  // Whether the file is another than when it was opened.
  bool HasChanged() const;

  // The row of a number from 1 on; kNotFound where there is none.
  [[nodiscard]] Status RowAt(uint64_t number, SeriesRow* row);

 private:
  struct Stamp {
    uint64_t size = 0;
    std::filesystem::file_time_type written;
    bool operator==(const Stamp&) const = default;
  };
  static Stamp StampOf(const std::filesystem::path& file);

  SeriesList(RowList list, std::function<void()> counted)
      : list_(std::move(list)), counted_(std::move(counted)), stamp_(StampOf(list_.file)) {}
  void CountBeside(std::unique_ptr<RowSource> rows);
  void CountRows(RowSource* rows);
  std::optional<RowPlace> PlaceBefore(uint64_t row) const;

  RowList list_;
  std::function<void()> counted_;
  Stamp stamp_;
  std::vector<std::string> columns_;
  SeriesRow last_;  // that was asked for

  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<RowPlace> places_;  // in the order of their rows
  uint64_t rows_ = 0;
  bool all_counted_ = false;
  std::atomic<bool> stops_ = false;
  std::thread counter_;
};

}  // namespace kerno
