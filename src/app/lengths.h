// Arguments that are lengths with a unit: "20mm", "2.5 cm", "1in", "12pt"; a bare number is a
// length in millimetres.
#pragma once

#include <optional>
#include <string_view>

namespace kerno {

enum class LengthSign { kAny, kPositive };

// In millimetres. What is no length, or too large for a drawing (beyond a kilometre), is reported
// under the option's name.
std::optional<double> ReadLength(std::string_view option, std::string_view text, LengthSign sign);

// "100x50mm", "100mm", "x50mm": a unit at the end serves both sides. A side that is not given is 0.
struct LengthPair {
  double width = 0, height = 0;
};
std::optional<LengthPair> ReadLengthPair(std::string_view option, std::string_view text);

// "X,Y"; a unit at the end serves both.
std::optional<LengthPair> ReadLengthPoint(std::string_view option, std::string_view text);

}  // namespace kerno
