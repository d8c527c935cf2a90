// Lists of a series. Whatever the reader takes for rows, a table of them reads as the same rows
// again, and their fields lead no name of a file out of its folder. The first byte chooses the kind
// of list and its encoding.
#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "app/row_source.h"
#include "app/row_template.h"
#include "readers.h"

namespace {

using namespace kerno;

using fuzz::Require;

// A file in memory.
class MemoryFile {
 public:
  explicit MemoryFile(std::string_view bytes) : fd_(memfd_create("list", 0)) {
    Require(write(fd_, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()));
  }
  ~MemoryFile() { close(fd_); }
  std::filesystem::path path() const { return "/proc/self/fd/" + std::to_string(fd_); }

 private:
  int fd_;
};

// The rows without a fault; *table becomes a table of them.
std::vector<SeriesRow> RowsOf(const RowList& list, std::string* table) {
  std::vector<SeriesRow> rows;
  std::unique_ptr<RowSource> source;
  if (!RowSource::Open(list, &source).ok()) return rows;
  *table = source->TableStart({});
  SeriesRow row;
  Status status;
  uint64_t last = 0;
  while (source->Next(&row, &status)) {
    Require(row.number == ++last);
    if (!row.fault.empty()) continue;
    Require(row.fields.size() == source->columns().size());
    *table += source->TableRow(row, {});
    rows.push_back(row);
  }
  return rows;
}

void CheckName(const std::vector<std::string>& columns, const SeriesRow& row) {
  for (const std::string& column : columns) {
    RowTemplate name;
    if (!RowTemplate::Read("{" + column + "}", columns, Escapes::kNone, u"-o", &name).ok()) return;
    std::string filled;
    if (!name.FillName({&row}, &filled).ok()) continue;
    Require(filled.find_first_of("/\\") == filled.npos && filled != "." && filled != "..");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  constexpr TextCoding kCodings[] = {TextCoding::kUtf8, TextCoding::kUtf16Le,
                                     TextCoding::kCodePage932, TextCoding::kEucJp};
  const MemoryFile file({reinterpret_cast<const char*>(data) + 1, size - 1});
  RowList list;
  list.kind = (data[0] & 1) != 0 ? RowList::Kind::kLines : RowList::Kind::kTable;
  list.file = file.path();
  if ((data[0] & 2) != 0) list.coding = kCodings[data[0] >> 2 & 3];
  const bool is_table = list.kind == RowList::Kind::kTable;
  // Named, not guessed: other rows may make another guess of a header with stray quotes.
  if (is_table) list.separator = ",;\t,"[data[0] >> 4 & 3];
  std::string table;
  const std::vector<SeriesRow> rows = RowsOf(list, &table);
  if (rows.empty()) return 0;
  const MemoryFile again(table);
  list.file = again.path();
  list.kind = RowList::Kind::kTable;
  std::string unused;
  const std::vector<SeriesRow> read = RowsOf(list, &unused);
  Require(read.size() == rows.size());
  std::unique_ptr<RowSource> source;
  Require(RowSource::Open(list, &source).ok());
  for (size_t i = 0; i < rows.size(); ++i) {
    Require(read[i].fields == rows[i].fields);
    CheckName(source->columns(), read[i]);
  }
  return 0;
}
