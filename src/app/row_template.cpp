#include "app/row_template.h"

#include <algorithm>
#include <optional>

#include "app/output_name.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr int kMostDigits = 18;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::u16string Quoted(std::string_view text) {
  return u"\"" + Utf8ToUtf16Lossy(text) + u"\"";
}

std::string_view WithoutBlanks(std::string_view text) {
  while (text.starts_with(' ')) text.remove_prefix(1);
  while (text.ends_with(' ')) text.remove_suffix(1);
  return text;
}

// "name, table": the columns that can be told apart and named.
std::u16string NamesOf(const std::vector<std::string>& columns) {
  constexpr size_t kMostNamed = 30;
  std::u16string names;
  for (size_t i = 0; i < columns.size() && i < kMostNamed; ++i) {
    names += (i == 0 ? u"" : u", ") + Utf8ToUtf16Lossy(columns[i]);
  }
  if (columns.size() > kMostNamed) names += u", ...";
  return names;
}

// The digits that "04" asks for; nothing where it is no such form.
std::optional<int> DigitsOf(std::string_view form) {
  if (form.size() < 2 || form.size() > 3 || form[0] != '0') return std::nullopt;
  if (!std::ranges::all_of(form, IsDigit)) return std::nullopt;
  const int digits = std::stoi(std::string(form));
  if (digits < 1 || digits > kMostDigits) return std::nullopt;
  return digits;
}

// Puts zeros in front of a whole number; false where the text is none.
bool AppendPadded(std::string_view number, int digits, std::string* text) {
  number = WithoutBlanks(number);
  const bool is_below = number.starts_with('-');
  const std::string_view plain = number.substr(is_below ? 1 : 0);
  if (plain.empty() || !std::ranges::all_of(plain, IsDigit)) return false;
  if (is_below) text->push_back('-');
  const auto width = static_cast<size_t>(digits) - (is_below ? 1 : 0);
  if (plain.size() < width) text->append(width - plain.size(), '0');
  text->append(plain);
  return true;
}

// A field after other characters of its level, where a "-", a "." or a device's name does no harm.
std::string CleanWithin(std::string_view field) {
  const std::u16string clean = CleanFileName(u"x" + Utf8ToUtf16Lossy(WithoutBlanks(field)));
  return clean.size() == 1 ? "_" : Utf16ToUtf8(clean.substr(1));
}

// Cuts the last level of a name, which begins at `level`, to what file systems take. Its extension
// stays.
void ShortenLevel(size_t level, std::string* name) {
  if (name->size() - level <= kLongestName) return;
  const size_t dot = name->rfind('.');
  const bool has_extension =
      dot > level && dot != name->npos && name->size() - dot <= kLongestSuffix;
  const std::string extension = has_extension ? name->substr(dot) : "";
  size_t end = level + kLongestName - extension.size();
  while (end > level && (static_cast<unsigned char>((*name)[end]) & 0xC0) == 0x80) --end;
  while (end > level + 1 && ((*name)[end - 1] == ' ' || (*name)[end - 1] == '.')) --end;
  name->erase(end);
  *name += extension;
}

// The character of an escape; 0 where the backslash is one itself.
char EscapeOf(char next) {
  return next == 'n' ? '\n' : next == 't' ? '\t' : next == '\\' ? '\\' : '\0';
}

}  // namespace

Status RowTemplate::AddField(std::string_view field, const std::vector<std::string>& columns) {
  const auto is_known = [&](std::string_view name) {
    return name == "row" || name == "n" || name == "sheet" ||
           std::ranges::find(columns, name) != columns.end();
  };
  std::string_view name = WithoutBlanks(field);
  int digits = 0;
  if (const size_t colon = name.rfind(':'); colon != name.npos && !is_known(name)) {
    const std::string_view form = name.substr(colon + 1);
    name = WithoutBlanks(name.substr(0, colon));
    if (is_known(name) && !DigitsOf(form)) {
      return Status::Error(Failure::kOther, what_,
                           Quoted(field) + u" has no number of digits such as 04 after its colon");
    }
    digits = DigitsOf(form).value_or(0);
  }
  const auto column = std::ranges::find(columns, name);
  if (column == columns.end() && !is_known(name)) {
    std::u16string known = u"row and n are known alone";
    if (!columns.empty()) known = u"the columns are " + NamesOf(columns) + u", and row and n";
    return Status::Error(Failure::kOther, what_,
                         u"there is no column " + Quoted(name) + u"; " + known);
  }
  if (column != columns.end() && std::find(column + 1, columns.end(), name) != columns.end()) {
    return Status::Error(Failure::kOther, what_, u"two columns are called " + Quoted(name));
  }
  Piece& piece = pieces_.emplace_back();
  piece.from = column != columns.end() ? From::kColumn
               : name == "sheet"       ? From::kSheet
                                       : From::kNumber;
  piece.text = name;
  piece.column = static_cast<size_t>(column - columns.begin());
  piece.digits = digits;
  return Status::Ok();
}

Status RowTemplate::Read(std::string_view text, const std::vector<std::string>& columns,
                         Escapes escapes, std::u16string_view what, RowTemplate* read) {
  RowTemplate made;
  made.what_ = what;
  const auto put = [&made](char c) {
    std::vector<Piece>& pieces = made.pieces_;
    if (pieces.empty() || pieces.back().from != From::kText) pieces.emplace_back();
    pieces.back().text.push_back(c);
  };
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i], next = i + 1 < text.size() ? text[i + 1] : '\0';
    const bool is_brace = c == '{' || c == '}';
    const char escape = escapes == Escapes::kBackslash && c == '\\' ? EscapeOf(next) : '\0';
    if ((is_brace && next == c) || escape != 0) {
      put(is_brace ? c : escape);
      ++i;
    } else if (!is_brace) {
      put(c);
    } else if (const size_t end = text.find('}', i); c == '{' && end != text.npos) {
      Status added = made.AddField(text.substr(i + 1, end - i - 1), columns);
      if (!added.ok()) return added;
      i = end;
    } else {
      return Status::Error(Failure::kOther, std::u16string(what),
                           c == '{' ? u"\"{\" has no partner; \"{{\" is a brace"
                                    : u"\"}\" has no partner; \"}}\" is a brace");
    }
  }
  *read = std::move(made);
  return Status::Ok();
}

bool RowTemplate::HasFields() const {
  return std::ranges::any_of(pieces_, [](const Piece& p) { return p.from != From::kText; });
}

bool RowTemplate::UsesNumber(std::string_view name) const {
  return std::ranges::any_of(
      pieces_, [&](const Piece& p) { return p.from == From::kNumber && p.text == name; });
}

bool RowTemplate::UsesSheet() const {
  return std::ranges::any_of(pieces_, [](const Piece& p) { return p.from == From::kSheet; });
}

bool RowTemplate::UsesRow() const {
  return std::ranges::any_of(
      pieces_, [](const Piece& p) { return p.from == From::kColumn || p.from == From::kNumber; });
}

Status RowTemplate::FillPiece(const Piece& piece, const RowValues& values,
                              std::string* text) const {
  std::string number;
  std::string_view value;
  switch (piece.from) {
    case From::kText:
      text->append(piece.text);
      return Status::Ok();
    case From::kColumn:
      value = values.row->fields[piece.column];
      break;
    case From::kNumber:
    case From::kSheet:
      number = std::to_string(piece.from == From::kSheet ? values.sheet : values.row->number);
      value = number;
      break;
  }
  if (piece.digits == 0) {
    text->append(value);
  } else if (!AppendPadded(value, piece.digits, text)) {
    return Status::Error(Failure::kOther, what_,
                         Quoted(piece.text) + u" is " + Quoted(value) + u", no whole number");
  }
  return Status::Ok();
}

Status RowTemplate::Fill(const RowValues& values, std::string* text) const {
  text->clear();
  for (const Piece& piece : pieces_) {
    if (Status filled = FillPiece(piece, values, text); !filled.ok()) return filled;
  }
  return Status::Ok();
}

Status RowTemplate::FillName(const RowValues& values, std::string* name) const {
  name->clear();
  size_t level = 0;  // where the part of the path begins that is being filled
  bool has_field = false;
  const std::string separators = {'/',
                                  static_cast<char>(std::filesystem::path::preferred_separator)};
  const auto end_level = [&] {
    if (has_field && IsDeviceName(Utf8ToUtf16Lossy(name->substr(level)))) name->insert(level, "_");
    if (has_field) ShortenLevel(level, name);
    has_field = false;
  };
  std::string field;
  for (const Piece& piece : pieces_) {
    if (piece.from != From::kText) {
      field.clear();
      if (Status filled = FillPiece(piece, values, &field); !filled.ok()) return filled;
      *name += name->size() == level ? Utf16ToUtf8(CleanFileName(Utf8ToUtf16Lossy(field)))
                                     : CleanWithin(field);
      has_field = true;
      continue;
    }
    for (const char c : piece.text) {
      const bool leads_on = separators.find(c) != separators.npos;
      if (leads_on) end_level();
      name->push_back(c);
      if (leads_on) level = name->size();
    }
  }
  end_level();
  return Status::Ok();
}

}  // namespace kerno
