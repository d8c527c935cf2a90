#include "base/number_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale>
#include <random>
#include <sstream>

namespace kerno {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(NumberText, PrintsTheKnownForms) {
  const struct {
    double value;
    int digits;
    const char* text;
  } kCases[] = {
      {0.5, 15, "0.5"},
      {0, 15, "0"},
      {-0.0, 15, "-0"},
      {1e-20, 15, "0."},
      {-1e-20, 15, "-0."},
      {2, 15, "2"},
      {1.0 / 3, 15, "0.333333333333333"},
      {-0.25, 15, "-0.25"},
      {100, 15, "100"},
      {0.1, 1, "0.1"},
      {0.96, 1, "1."},  // rounded up to 1 within its fixed notation
      {1e14, 15, "100000000000000"},
      {1e15, 15, "1e+015"},
      {-1.5e20, 15, "-1.5e+020"},
      {1e100, 15, "1e+100"},
      {123456789012345.6, 15, "123456789012346"},
      {std::nextafter(1.0, 0.0), 15, "1."},
      {1.7976931348623157e308, 15, "1.79769313486232e+308"},
      {5e-324, 40, "0."},
      {kInfinity, 15, "inf"},
      {-kInfinity, 15, "-inf"},
      {std::nan(""), 15, "nan"},
  };
  for (const auto& c : kCases) EXPECT_EQ(NumberText(c.value, c.digits), c.text) << c.value;
}

std::string General(double value, int digits) {
  std::string text;
  AppendGeneral(&text, value, digits);
  return text;
}

TEST(NumberText, GeneralNotationIsThatOfStreamsWithLongExponents) {
  const struct {
    double value;
    const char* text;
  } kCases[] = {{420.0, "420"},       {296.98484809834997, "296.985"},
                {0.0, "0"},           {0.5, "0.5"},
                {1e-5, "1e-005"},     {1.5e6, "1.5e+006"},
                {999999.5, "1e+006"}, {0.0001, "0.0001"},
                {1e-100, "1e-100"},   {999999.4, "999999"},
                {-1e-5, "-1e-005"}};
  for (const auto& c : kCases) EXPECT_EQ(General(c.value, 6), c.text);

  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> mantissa(-10, 10);
  std::uniform_int_distribution<int> exponent(-300, 300);
  for (int i = 0; i < 80000; ++i) {
    const int digits = 1 + i % 20;
    double value = mantissa(random) * std::pow(10.0, exponent(random) / (i % 4 ? 20 : 1));
    const double near_power = std::pow(10.0, exponent(random) / 30);
    // Sixty-fourths, as glyph coordinates are, halves of the last digit, neighbours of powers.
    if (i % 4 == 1) value = std::round(value * 64) / 64;
    if (i % 4 == 2) value = std::round(value * 2e4) / 2e4;
    if (i % 4 == 3) value = std::nextafter(near_power, i % 8 == 3 ? 0.0 : 1e300);
    char printed[64];
    std::snprintf(printed, sizeof printed, "%.*g", digits, value);
    std::string wanted = printed;
    const size_t at = wanted.find('e');
    if (at != wanted.npos && wanted.size() - at == 4) wanted.insert(at + 2, "0");
    ASSERT_EQ(General(value, digits), wanted);
  }
}

class DecimalComma final : public std::numpunct<char> {
  char do_decimal_point() const override { return ','; }
  char do_thousands_sep() const override { return '.'; }
  std::string do_grouping() const override { return "\3"; }
};

TEST(NumberText, DoesNotFollowTheLocale) {
  const std::locale before =
      std::locale::global(std::locale(std::locale::classic(), new DecimalComma));
  for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8"}) {  // where they are installed
    if (std::setlocale(LC_NUMERIC, name)) break;
  }
  std::ostringstream stream;
  stream << 1234567.25;
  EXPECT_NE(stream.str().find(','), std::string::npos);
  EXPECT_EQ(NumberText(1234567.25, 15), "1234567.25");
  EXPECT_EQ(NumberText(0.25, 15), "0.25");
  EXPECT_EQ(General(1234567.25, 10), "1234567.25");
  std::setlocale(LC_NUMERIC, "C");
  std::locale::global(before);
}

TEST(NumberText, ShortestTextReadsBack) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const uint64_t bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    std::string text;
    AppendShortest(&text, value);
    if (std::isfinite(value)) {
      ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text;
    } else {
      ASSERT_EQ(text, "null");
    }
  }
}

}  // namespace
}  // namespace kerno
