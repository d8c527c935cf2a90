// Names of faces as a search finds them: "ｉｐａ ごしっく" finds "IPAゴシック".
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// What spellings of a text have in common: lower case, narrow letters without accents, full-width
// hiragana for both kana of either width, single blanks.
std::u16string FoldedName(std::u16string_view name);

// The folded names of one face.
struct SearchNames {
  std::vector<std::u16string> names;  // the one that is shown comes first
  // Of single styles: found by their beginning alone, as "bold" is a word of too many.
  std::vector<std::u16string> full_names;
};

struct NameFind {
  int rank = 0;     // the lower the better
  size_t name = 0;  // which of the names has the first word
};

// Nothing where a word of the search stands in none of the names. Names that start with a word come
// before those of which a word does, and these before names that hold it elsewhere.
std::optional<NameFind> FindName(const SearchNames& names, std::u16string_view folded_search);

}  // namespace kerno
