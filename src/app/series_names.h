// Finds rows of a series that would write one file, before any is written.
//
// Names are looked at twice: the first time each leaves a number of 8 bytes, the second time those
// whose numbers came more than once are compared. So a list of a million rows needs no memory for
// its names.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// Two rows and the file that both would write.
struct NameClash {
  uint64_t first = 0, second = 0;
  std::string first_name, second_name;  // UTF-8; they may differ by case
};

class SeriesNames {
 public:
  // The first time: every name of every row.
  void Note(std::string_view name);
  // Whether the second time is needed at all.
  bool HasRepeats();

  // The second time: the first clash that this name, of this row, is part of. Names that differ by
  // case alone clash where their folder does not tell them apart.
  std::optional<NameClash> Compare(uint64_t row, const std::string& name);

 private:
  struct Known {
    uint64_t row;
    std::string name;
  };
  bool IsOneFile(const std::string& file);

  std::vector<uint64_t> hashes_;
  std::string probed_;                               // the folder that was tried out last
  bool folds_ = false;                               // what came out
  std::map<std::string, std::vector<Known>> known_;  // by names without case
};

// The name of a file with "." and doubled separators taken out.
std::string PlainName(const std::string& name);

}  // namespace kerno
