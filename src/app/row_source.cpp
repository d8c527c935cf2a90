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
  CountedRows(uint64_t first, uint64_t last) : last_(last), number_(first - 1) {}

  bool Next(SeriesRow* row, Status*) override {
    if (number_ >= last_) return false;
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
  uint64_t last_;
  uint64_t number_;
};

}  // namespace

Status RowSource::Open(const RowList& list, std::unique_ptr<RowSource>* source) {
  if (list.kind == RowList::Kind::kCount) {
    *source = std::make_unique<CountedRows>(list.first, list.count);
    return Status::Ok();
  }
  return OpenTable(list, source);
}

}  // namespace kerno
