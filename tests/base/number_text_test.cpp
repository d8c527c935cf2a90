#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <random>

namespace kerno {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

std::string General(double value, int digits) {
  std::string text;
  AppendGeneral(&text, value, digits);
  return text;
}

TEST(NumberText, PrintsTheKnownForms) {
  const std::pair<double, const char*> kCases[] = {{-0.0, "-0"},
                                                   {-1e-20, "-0."},
                                                   {kInfinity, "inf"},
                                                   {-kInfinity, "-inf"},
                                                   {std::nan(""), "nan"}};
  for (const auto& [value, text] : kCases) EXPECT_EQ(NumberText(value, 15), text);
}

std::string Printed(const char* form, double value, int digits) {
  char printed[512];
  std::snprintf(printed, sizeof printed, form, digits, value);
  return printed;
}

// The general notation made of what the C library prints: exponents have three digits.
std::string PlainlyGeneral(double value, int digits) {
  std::string text = Printed("%.*g", value, digits);
  const size_t at = text.find('e');
  if (at != text.npos && text.size() - at == 4) text.insert(at + 2, "0");
  return text;
}

// The number form made of what the C library prints.
std::string Plainly(double value, int digits) {
  if (std::fabs(value) >= 1 || value == 0) return PlainlyGeneral(value, digits);
  std::string text = Printed("%.*f", value, digits);
  while (text.back() == '0' && text.size() > 1) text.pop_back();
  return text;
}

double AnyBits(uint64_t bits) {
  double value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

TEST(NumberText, IsWhatTheCLibraryPrints) {
  std::mt19937_64 random(3);
  const auto below = [&](uint64_t limit) { return static_cast<int>(random() % limit); };
  const auto number = [&](int kind) {
    const double units = static_cast<double>(random() % 1000000000000000);
    switch (kind) {
      case 0:
        return AnyBits(random());
      case 1:  // what scaled outlines hold
        return static_cast<double>(static_cast<int32_t>(random())) / 65536.0;
      case 2:  // exact halves of the last digit: fractions of few bits
        return std::ldexp(static_cast<double>(random() % (1u << 20)), -below(50));
      case 3:  // beside powers of ten
        return std::nextafter(std::pow(10.0, below(40) - 20), below(2) ? 0 : 1e300);
      case 4:  // decimal numbers with a five after their last digit
        return (units + 0.5) * std::pow(10.0, -below(16));
      default:
        return units * std::pow(10.0, below(60) - 40);
    }
  };
  for (int i = 0; i < 400000; ++i) {
    const double value = number(i % 6) * (below(2) ? 1 : -1);
    if (!std::isfinite(value)) continue;
    const int digits = i % 3 ? 15 : 1 + below(20);
    ASSERT_EQ(NumberText(value, digits), Plainly(value, digits)) << std::hexfloat << value;
    ASSERT_EQ(General(value, digits), PlainlyGeneral(value, digits)) << std::hexfloat << value;
  }
}

TEST(NumberText, ShortestTextReadsBack) {
  std::mt19937_64 random(2);
  for (int i = 0; i < 20000; ++i) {
    const double value = AnyBits(random());
    std::string text;
    AppendShortest(&text, value);
    ASSERT_TRUE(std::isfinite(value) ? std::strtod(text.c_str(), nullptr) == value : text == "null")
        << text;
  }
}

}  // namespace
}  // namespace kerno
