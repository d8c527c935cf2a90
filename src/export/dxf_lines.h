// The pairs of lines, a group code and a value, that DXF consists of.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "drawing/geometry.h"

namespace kerno {

// Collects lines; codes are given as they stand in a file, three characters wide.
class DxfLines {
 public:
  void Put(std::string_view text) { text_ += text; }
  void Pair(std::string_view code, std::string_view value);
  void Integer(std::string_view code, int64_t value);
  void Number(std::string_view code, double value, int decimals);
  void Point(const P2& p, int decimals);

  std::string& text() { return text_; }

 private:
  std::string text_;
};

// As handles are written.
std::string DxfHex(uint64_t value);

}  // namespace kerno
