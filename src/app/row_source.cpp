#include "app/row_source.h"

#include <utility>

#include "app/table_rows.h"
#include "base/text.h"

namespace kerno {
namespace {

std::string Joined(const std::vector<std::string>& fields) {
  std::string line;
  for (const std::string& field : fields) line += (line.empty() ? "" : ",") + field;
  return line + "\n";
}

// Rows that are numbers alone.
class CountedRows final : public RowSource {
 public:
  explicit CountedRows(uint64_t count) : count_(count) {}

  bool Next(SeriesRow* row, Status*) override {
    if (number_ == count_) return false;
    row->number = ++number_;
    row->fields.clear();
    row->raw.clear();
    row->fault.clear();
    return true;
  }

  std::string TableStart(const std::vector<std::string>& added) const override {
    return added.empty() ? "row\n" : Joined(added);
  }
  std::string TableRow(const SeriesRow& row, const std::vector<std::string>& added) const override {
    return added.empty() ? std::to_string(row.number) + "\n" : Joined(added);
  }

 private:
  uint64_t count_;
  uint64_t number_ = 0;
};

}  // namespace

Status RowSource::Open(const RowList& list, std::unique_ptr<RowSource>* source) {
  if (list.kind == RowList::Kind::kCount) {
    *source = std::make_unique<CountedRows>(list.count);
    return Status::Ok();
  }
  return OpenTable(list, source);
}

}  // namespace kerno
