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

std::string Printed(const char* form, double value, int digits) {
  char printed[512];
  std::snprintf(printed, sizeof printed, form, digits, value);
  return printed;
}

// The general notation made of what the C library prints.
std::string PlainlyGeneral(double value, int digits) {
  std::string text = Printed("%.*g", value, digits);
  const size_t at = text.find('e');
  if (at != text.npos && text.size() - at == 4) text.insert(at + 2, "0");
  return text;
}

TEST(NumberText, GeneralNotationIsThatOfStreamsWithLongExponents) {
  const struct {
    double value;
    const char* text;
  } kCases[] = {{0.0001, "0.0001"}, {-1e-5, "-1e-005"}, {999999.5, "1e+006"}, {1e-100, "1e-100"}};
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
    ASSERT_EQ(General(value, digits), PlainlyGeneral(value, digits));
  }
}

// The number form made of what the C library prints.
std::string Plainly(double value, int digits) {
  if (std::fabs(value) >= 1 || value == 0) return PlainlyGeneral(value, digits);
  std::string text = Printed("%.*f", value, digits);
  while (text.back() == '0' && text.size() > 1) text.pop_back();
  return text;
}

TEST(NumberText, IsWhatTheCLibraryPrints) {
  std::mt19937_64 random(3);
  const auto below = [&](uint64_t limit) { return static_cast<int>(random() % limit); };
  for (int i = 0; i < 400000; ++i) {
    double value = 0;
    switch (i % 6) {
      case 0: {  // any bits
        const uint64_t bits = random();
        std::memcpy(&value, &bits, sizeof value);
        break;
      }
      case 1:  // what scaled outlines hold
        value = static_cast<double>(static_cast<int32_t>(random())) / 65536.0;
        break;
      case 2:  // exact halves of the last digit: fractions of few bits
        value = std::ldexp(static_cast<double>(random() % (1u << 20)), -below(50));
        break;
      case 3:  // beside powers of ten
        value = std::pow(10.0, below(40) - 20);
        for (int steps = below(4); steps > 0; --steps) value = std::nextafter(value, 0);
        break;
      case 4:  // decimal numbers with a five behind their last digit
        value =
            (static_cast<double>(random() % 1000000000000000) + 0.5) * std::pow(10.0, -below(16));
        break;
      default:
        value = static_cast<double>(random() >> 11) * std::pow(10.0, below(60) - 40);
    }
    if (!std::isfinite(value)) continue;
    if (random() & 1) value = -value;
    const int digits = i % 3 ? 15 : 1 + below(17);
    ASSERT_EQ(NumberText(value, digits), Plainly(value, digits)) << std::hexfloat << value;
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
