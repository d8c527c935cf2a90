// Prints what a list is read as: a line for each row, its number, its fault or its fields, bytes in
// hexadecimal. For tests that read the same list by another program.
//
// usage: rows_dump FILE [ENCODING]
#include <cstdio>
#include <string>

#include "app/row_source.h"
#include "base/text.h"

namespace {

void PrintHex(const std::string& text) {
  for (const char c : text) std::printf("%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
  std::putchar(' ');
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) return 2;
  kerno::RowList list = {.file = argv[1]};
  if (argc > 2) list.coding = kerno::FindCoding(argv[2]);
  std::unique_ptr<kerno::RowSource> rows;
  kerno::Status status = kerno::RowSource::Open(list, &rows);
  kerno::SeriesRow row;
  if (status.ok()) {
    std::printf("0 ok ");
    for (const std::string& column : rows->columns()) PrintHex(column);
    std::putchar('\n');
  }
  while (status.ok() && rows->Next(&row, &status)) {
    std::printf("%u %s ", static_cast<unsigned>(row.number), row.fault.empty() ? "ok" : "bad");
    for (const std::string& field : row.fields) PrintHex(field);
    std::putchar('\n');
  }
  if (!status.ok()) std::printf("error %s\n", kerno::Utf16ToUtf8(status.why).c_str());
  return 0;
}
