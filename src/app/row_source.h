// The rows that a series is made of: those of a table with commas, lines of a file, or numbers
// alone. They come one by one; a list may be larger than memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/list_bytes.h"
#include "app/text_coding.h"
#include "platform/status.h"

namespace kerno {

// The longest row that is read, in bytes as UTF-8 (or as the list has them).
inline constexpr size_t kLongestRow = 1 << 20;

// Where rows come from.
struct RowList {
  enum class Kind {
    kTable,  // comma-separated values (RFC 4180) after a header
    kLines,  // each line is a row of one column, "line"
    kCount,  // `count` rows without columns
  };
  Kind kind = Kind::kTable;
  std::filesystem::path file = {};
  std::u16string name = {};               // in messages; empty: the file's
  std::optional<TextCoding> coding = {};  // nothing: UTF-8, or UTF-16 by its mark
  IfHeld if_held = IfHeld::kWait;         // by another process
  char separator = 0;                     // of a table: ',', ';' or tab; 0: as its header has it
  uint64_t count = 0;
  uint64_t first = 1;  // of rows that are counted, the first that comes
};

struct SeriesRow {
  uint64_t number = 0;              // from 1, the header not counted
  std::vector<std::string> fields;  // of each column, UTF-8
  std::string raw;       // the row as pieces of its list have it, without the line end; empty where
                         // it is too long
  std::u16string fault;  // why it cannot be made; the fields then hold anything
};

// Between two rows of a list. Another source of it can go on from there.
struct RowPlace {
  uint64_t row = 0;  // the number of the row before
  PiecePlace piece;  // that the next row begins in
  size_t at = 0;     // of its bytes
  bool after_return = false;
};

class RowSource {
 public:
  virtual ~RowSource() = default;

  // Opens a list and reads its header. Fails for a file that cannot be read, and for a table
  // without a header. *source is set on success only.
  [[nodiscard]] static Status Open(const RowList& list, std::unique_ptr<RowSource>* source);

  // The names of the columns, without blanks around them.
  const std::vector<std::string>& columns() const { return columns_; }

  // The next row; false at the end, and when the list cannot be read on: *status.
  virtual bool Next(SeriesRow* row, Status* status) = 0;

  // Where it stands; nothing where that cannot be told, such as in the first piece of a list.
  virtual std::optional<RowPlace> Place() const { return std::nullopt; }
  // Goes to a place of the same list.
  [[nodiscard]] virtual Status GoTo(const RowPlace& /*place*/) { return Status::Ok(); }

  // A table of some of the rows, as a file that can be read as a list again: what it begins with,
  // and a row. `added` are columns that come after the list's own. Encoded as the list is.
  virtual std::string TableStart(const std::vector<std::string>& added) const = 0;
  virtual std::string TableRow(const SeriesRow& row,
                               const std::vector<std::string>& added) const = 0;

 protected:
  std::vector<std::string> columns_;
};

}  // namespace kerno
