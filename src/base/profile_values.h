// Typed values as the text under which settings keep them.
//
// Reading is lenient: what is missing or no number is 0. Writing and reading do not follow the
// locale. Numbers are written with 20 significant digits, so that a double comes back as it was.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/private_profile.h"

namespace kerno {

// Edges in the order in which they are written: left, top, right, bottom.
struct ProfileRect {
  int32_t left = 0;
  int32_t top = 0;
  int32_t right = 0;
  int32_t bottom = 0;
  bool operator==(const ProfileRect&) const = default;
};

struct ProfilePoint {
  int32_t x = 0;
  int32_t y = 0;
  bool operator==(const ProfilePoint&) const = default;
};

struct ProfilePoint3 {
  double x = 0;
  double y = 0;
  double z = 0;
};

// Key suffixes of the types; plain integers and strings have none.
inline constexpr std::u16string_view kInt64Suffix = u"_I64_";
inline constexpr std::u16string_view kDoubleSuffix = u"_Flt_";
inline constexpr std::u16string_view kRectSuffix = u"_LTRB";
inline constexpr std::u16string_view kPointSuffix = u"_L_XY";
inline constexpr std::u16string_view kPoint3Suffix = u"_P_3_";

enum class NumberForm {
  kPlain,   // "%d" and "%.20g"
  kPadded,  // "%09d" for integers, "%f" (six decimals) for doubles
};

std::u16string Int64Text(int64_t value);
std::u16string DoubleText(double value);
std::u16string RectText(const ProfileRect& value, NumberForm form = NumberForm::kPlain);
std::u16string PointText(const ProfilePoint& value, NumberForm form = NumberForm::kPlain);
std::u16string Point3Text(const ProfilePoint3& value, NumberForm form = NumberForm::kPlain);

// Values beyond the range of the type become its nearest end.
int64_t Int64OfText(std::u16string_view text);
double DoubleOfText(std::u16string_view text);
ProfileRect RectOfText(std::u16string_view text);
ProfilePoint PointOfText(std::u16string_view text);
ProfilePoint3 Point3OfText(std::u16string_view text);

}  // namespace kerno
