// What each row of a series fills: the text, values of options, names of files.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/cut_texts.h"
#include "app/output_list.h"
#include "app/row_template.h"

namespace kerno {

class SeriesPlan {
 public:
  // Takes the templates from the text, the options and the names of files. What is wrong is
  // reported.
  bool Read(const CutTexts& texts, const OutputList& outputs, std::string_view text,
            Escapes escapes, const std::vector<std::string>& columns);

  // Whether rows have options of their own.
  bool OptionsVary() const { return !values_.empty(); }
  // What names of files, and what all else speaks of.
  bool NamesUseSheet() const;
  bool NamesUseRows() const;
  bool TextsUseSheet() const;
  // Which names of a row's number are used anywhere: "row", "n".
  std::vector<std::string> NumbersUsed() const;

  // Each fills what it says for a row; what cannot be filled is reported.
  bool FillText(const RowValues& values, std::u16string* text) const;
  bool FillNames(const RowValues& values, std::vector<std::string>* names) const;
  bool FillOptions(const RowValues& values, CutTexts* texts) const;

  // Puts values that are right for any drawing in place of those with fields, so that the others
  // can be checked before any row.
  void FillSamples(CutTexts* texts) const;
  // Whether rows choose their faces.
  bool FacesVary() const;

  // Whether names of files differ by the number of their row, so that no two rows of numbers alone
  // write one file.
  bool NamesDifferByNumber(uint64_t last) const;

 private:
  template <class Visit>
  bool Any(const Visit& visit) const;

  RowTemplate text_;
  std::vector<RowTemplate> names_;  // of each output
  // A value with fields, by its place in CutTexts::ForEachText.
  struct Value {
    size_t place;
    std::string option;
    RowTemplate text;
  };
  std::vector<Value> values_;
};

}  // namespace kerno
