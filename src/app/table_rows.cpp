#include "app/table_rows.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "app/list_bytes.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr std::string_view kSeparators = ",;\t";
constexpr char16_t kOpenQuote[] =
    u": a quote is not closed, so that the rest of the list was taken for one field";

// Follows text that may be a table, whichever its separator is: a quote opens at the start of a
// field alone.
class QuoteTracker {
 public:
  // Whether the character, the next one of the text, stands outside of quotes.
  bool IsOutside(char c) {
    if (c == '"' && at_ != At::kPlain) {
      at_ = at_ == At::kQuotes ? At::kAfterQuotes : At::kQuotes;
      return false;
    }
    if (at_ == At::kQuotes) return false;
    const bool starts = c == '\n' || c == '\r' || kSeparators.find(c) != kSeparators.npos;
    at_ = starts ? At::kStart : At::kPlain;
    return true;
  }

 private:
  enum class At { kStart, kPlain, kQuotes, kAfterQuotes };
  At at_ = At::kStart;
};

// The separator that stands most often in the first line, quotes left out; a comma where none does.
char SeparatorOf(std::string_view header) {
  QuoteTracker quotes;
  size_t counts[kSeparators.size()] = {};
  for (const char c : header) {
    const size_t which = kSeparators.find(c);
    if (quotes.IsOutside(c) && which != kSeparators.npos) ++counts[which];
  }
  return kSeparators[static_cast<size_t>(std::ranges::max_element(counts) - counts)];
}

// Up to the first line end outside of quotes, empty lines before it included; all of the text where
// there is none.
std::string_view FirstLine(std::string_view text) {
  QuoteTracker quotes;
  bool is_empty = true;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool ends = text[i] == '\n' || text[i] == '\r';
    if (quotes.IsOutside(text[i]) && ends && !is_empty) return text.substr(0, i);
    is_empty &= ends;
  }
  return text;
}

bool IsSeparatorLine(std::string_view line) {
  constexpr std::string_view kStart = "sep=";
  return line.size() == kStart.size() + 1 && line.starts_with(kStart) &&
         kSeparators.find(line.back()) != kSeparators.npos;
}

std::string WithoutBlanks(std::string_view text) {
  const size_t first = text.find_first_not_of(" \t");
  if (first == text.npos) return {};
  return std::string(text.substr(first, text.find_last_not_of(" \t") + 1 - first));
}

// A field as any reader of such tables takes it.
std::string Quoted(std::string_view field) {
  std::string quoted = "\"";
  for (const char c : field) quoted.append(c == '"' ? 2 : 1, c);
  return quoted + "\"";
}

class TableRows final : public RowSource {
 public:
  TableRows(std::unique_ptr<ListBytes> bytes, const RowList& list)
      : bytes_(std::move(bytes)),
        name_(list.name.empty() ? PathText(list.file) : list.name),
        is_table_(list.kind == RowList::Kind::kTable),
        separator_(list.separator) {}

  Status ReadHeader();
  bool Next(SeriesRow* row, Status* status) override;
  std::optional<RowPlace> Place() const override;
  Status GoTo(const RowPlace& place) override;
  std::string TableStart(const std::vector<std::string>& added) const override;
  std::string TableRow(const SeriesRow& row, const std::vector<std::string>& added) const override;

 private:
  enum class In { kStart, kPlain, kQuotes, kAfterQuotes };  // where in a field

  bool Refill(Status* status);
  Status LoadHeaderLine();
  bool ReadRecord(SeriesRow* row, Status* status);
  bool EndsLine(char c);
  void Take(char c, SeriesRow* row);
  void Put(char c, std::vector<std::string>* fields);
  void Finish(SeriesRow* row);
  std::string Line(std::string line, const std::vector<std::string>& added) const;

  std::unique_ptr<ListBytes> bytes_;
  std::u16string name_;
  bool is_table_;
  char separator_;
  std::string told_;  // the line that tells the separator
  std::string header_;
  std::string line_end_;  // the list's first one
  uint64_t number_ = 0;

  std::string piece_;
  std::optional<PiecePlace> place_;  // of the piece
  size_t at_ = 0;                    // in it
  bool after_return_ = false;        // a line feed next belongs to the line end before
  // Of the record at hand.
  In in_ = In::kStart;
  size_t field_ = 0;  // the field that characters go to
  size_t length_ = 0;
  bool after_quote_ = false;  // text stands after a closing quote
};

bool TableRows::Refill(Status* status) {
  place_ = bytes_->Place();
  *status = bytes_->Next(&piece_);
  at_ = 0;
  return status->ok() && !piece_.empty();
}

// Has the whole header in piece_, so that its separators can be counted.
Status TableRows::LoadHeaderLine() {
  std::string text, next;
  while (FirstLine(text).size() == text.size() && text.size() <= kLongestRow) {
    if (Status read = bytes_->Next(&next); !read.ok()) return read;
    if (next.empty()) break;
    text += next;
  }
  // Spreadsheets tell the separator in a line of its own.
  if (const std::string_view line = FirstLine(text); IsSeparatorLine(line)) {
    told_ = line;
    if (separator_ == 0) separator_ = told_.back();
    text.erase(0, told_.size());
  }
  if (separator_ == 0) separator_ = SeparatorOf(FirstLine(text));
  piece_ = std::move(text);
  return Status::Ok();
}

Status TableRows::ReadHeader() {
  if (!is_table_) {
    columns_ = {"line"};
    return Status::Ok();
  }
  if (Status loaded = LoadHeaderLine(); !loaded.ok()) return loaded;
  SeriesRow header;
  Status status;
  if (!ReadRecord(&header, &status)) {
    return status.ok() ? Status::Error(Failure::kOther, name_, u"holds no header") : status;
  }
  columns_ = header.fields;
  Finish(&header);
  if (!header.fault.empty())
    return Status::Error(Failure::kOther, name_, u"header: " + header.fault);
  header_ = header.raw;
  columns_ = std::move(header.fields);
  for (std::string& column : columns_) column = WithoutBlanks(column);
  return Status::Ok();
}

// Whether the character ends a line outside of quotes; the second half of CR LF is nothing.
bool TableRows::EndsLine(char c) {
  if (std::exchange(after_return_, false)) {
    if (line_end_ == "\r" && c == '\n' && number_ == 0) line_end_ = "\r\n";
    if (c == '\n') return true;
  }
  if (c != '\n' && c != '\r') return false;
  after_return_ = c == '\r';
  if (line_end_.empty()) line_end_ = c;
  return true;
}

void TableRows::Put(char c, std::vector<std::string>* fields) {
  const bool is_kept = field_ < fields->size() && length_ <= kLongestRow;
  if (is_kept) (*fields)[field_].push_back(c);
}

void TableRows::Take(char c, SeriesRow* row) {
  std::vector<std::string>& fields = row->fields;
  const bool in_quotes = in_ == In::kQuotes;
  if (is_table_ && c == separator_ && !in_quotes) {
    in_ = In::kStart;
    ++field_;
    // While the header is read there is no end of columns.
    if (columns_.empty() && fields.size() == field_) fields.emplace_back();
    return;
  }
  if (is_table_ && c == '"' && in_ != In::kPlain) {
    if (in_ == In::kAfterQuotes) Put(c, &fields);
    in_ = in_quotes ? In::kAfterQuotes : In::kQuotes;
    return;
  }
  after_quote_ |= in_ == In::kAfterQuotes;
  if (!in_quotes) in_ = In::kPlain;
  Put(c, &fields);
}

// False where there is no further record. The fields are bytes of the list.
bool TableRows::ReadRecord(SeriesRow* row, Status* status) {
  row->fields.resize(std::max<size_t>(columns_.size(), 1));
  for (std::string& field : row->fields) field.clear();
  row->raw.clear();
  row->fault.clear();
  in_ = In::kStart;
  field_ = length_ = 0;
  after_quote_ = false;
  *status = Status::Ok();
  for (;;) {
    if (at_ == piece_.size() && !Refill(status)) break;
    const char c = piece_[at_++];
    if (in_ != In::kQuotes && EndsLine(c)) {
      if (length_ == 0) continue;  // an empty line
      return true;
    }
    if (++length_ <= kLongestRow) row->raw.push_back(c);
    Take(c, row);
  }
  return status->ok() && length_ > 0;
}

// Says what is wrong with the record and makes its fields UTF-8.
void TableRows::Finish(SeriesRow* row) {
  const auto number = [](size_t n) { return Utf8ToUtf16Lossy(std::to_string(n)); };
  const size_t fields = field_ + 1;
  if (length_ > kLongestRow) {
    row->raw.clear();
    row->fault = u"is longer than a row may be, 1 MiB";
    if (in_ == In::kQuotes) {
      row->fault += kOpenQuote;
    } else if (is_table_) {
      row->fault += u": is a quote not closed?";
    }
  } else if (in_ == In::kQuotes) {
    row->fault = u"is not whole" + std::u16string(kOpenQuote);
  } else if (after_quote_) {
    row->fault = u"text stands after a closing quote";
  } else if (row->raw.find('\0') != row->raw.npos) {
    row->fault = u"holds a NUL; --encoding tells of UTF-16 without a mark";
  } else if (fields != columns_.size()) {
    row->fault = u"has " + number(fields) + (fields == 1 ? u" field" : u" fields") +
                 u", the header has " + number(columns_.size());
  }
  for (size_t i = 0; row->fault.empty() && i < row->fields.size(); ++i) {
    if (bytes_->Decode(&row->fields[i])) continue;
    row->fault = u"\"" + Utf8ToUtf16Lossy(columns_[i]) + u"\" is not " +
                 Utf8ToUtf16Lossy(bytes_->coding_name()) + u" (--encoding tells another encoding)";
  }
}

bool TableRows::Next(SeriesRow* row, Status* status) {
  if (!ReadRecord(row, status)) return false;
  row->number = ++number_;
  Finish(row);
  return true;
}

std::optional<RowPlace> TableRows::Place() const {
  if (!place_) return std::nullopt;
  return RowPlace{number_, *place_, at_, after_return_};
}

Status TableRows::GoTo(const RowPlace& place) {
  bytes_->GoTo(place.piece);
  Status status;
  Refill(&status);
  number_ = place.row;
  at_ = std::min(place.at, piece_.size());
  after_return_ = place.after_return;
  return status;
}

std::string TableRows::Line(std::string line, const std::vector<std::string>& added) const {
  for (const std::string& field : added) line += (is_table_ ? separator_ : ',') + field;
  return bytes_->AsInFile(line + (line_end_.empty() ? "\n" : line_end_));
}

std::string TableRows::TableStart(const std::vector<std::string>& added) const {
  // At the start of a file such a header would lose what looks like a mark; an empty line is none.
  const bool is_misread = header_.starts_with("\xEF\xBB\xBF");
  const std::string told = told_.empty() && !is_misread ? "" : Line(told_, {});
  return bytes_->Mark() + told + Line(is_table_ ? header_ : columns_[0], added);
}

std::string TableRows::TableRow(const SeriesRow& row, const std::vector<std::string>& added) const {
  return Line(is_table_ ? row.raw : Quoted(row.raw), added);
}

}  // namespace

Status OpenTable(const RowList& list, std::unique_ptr<RowSource>* source) {
  std::unique_ptr<ListBytes> bytes;
  if (Status opened = ListBytes::Open(list.file, list.name, list.coding, list.if_held, &bytes);
      !opened.ok())
    return opened;
  auto rows = std::make_unique<TableRows>(std::move(bytes), list);
  if (Status read = rows->ReadHeader(); !read.ok()) return read;
  *source = std::move(rows);
  return Status::Ok();
}

}  // namespace kerno
