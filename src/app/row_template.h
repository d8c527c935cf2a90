// Texts with fields that each row of a series fills: "{name}", "{row}", "{n:04}"; "{{" and "}}" are
// braces. They are read once and filled for every row.
//
// A name is that of a column, or one of these, unless a column has it, too:
//   row, n   the number of the row, from 1
//   sheet    the number of the sheet, where rows go on sheets
// After a colon stands how a whole number is written: "04" in four digits at least.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/row_source.h"
#include "platform/status.h"

namespace kerno {

// What fields are filled with.
struct RowValues {
  const SeriesRow* row = nullptr;
  uint64_t sheet = 0;
};

enum class Escapes {
  kNone,       // a backslash is one
  kBackslash,  // outside of fields, \n is a line end, \t a tab and \\ a backslash
};

class RowTemplate {
 public:
  // Fails for a name that is none of the columns (the reason lists them), and for braces that do
  // not pair. `what` names the text in a failure. *read is set on success only.
  [[nodiscard]] static Status Read(std::string_view text, const std::vector<std::string>& columns,
                                   Escapes escapes, std::u16string_view what, RowTemplate* read);

  bool HasFields() const;
  // Whether it holds the number of the row, as "row" or as "n".
  bool UsesNumber(std::string_view name) const;
  bool UsesSheet() const;
  // Whether it holds anything of the row: a column or a number of its own.
  bool UsesRow() const;

  // Fails for a field that is no whole number where its template wants one.
  [[nodiscard]] Status Fill(const RowValues& values, std::string* text) const;

  // As Fill, for the name of a file: every field is cleaned as CleanFileName does, so that it
  // neither leads into another folder nor is refused by some system.
  [[nodiscard]] Status FillName(const RowValues& values, std::string* name) const;

 private:
  enum class From { kText, kColumn, kNumber, kSheet };
  struct Piece {
    From from = From::kText;
    std::string text;   // of kText, or the field's name
    size_t column = 0;  // of kColumn
    int digits = 0;     // above 0: a whole number in so many digits at least
  };
  [[nodiscard]] Status AddField(std::string_view field, const std::vector<std::string>& columns);
  [[nodiscard]] Status FillPiece(const Piece& piece, const RowValues& values,
                                 std::string* text) const;

  std::u16string what_;
  std::vector<Piece> pieces_;
};

}  // namespace kerno
