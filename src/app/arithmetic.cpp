#include "app/arithmetic.h"

#include <charconv>
#include <cmath>

namespace kerno {
namespace {

constexpr int kDeepest = 50;  // parentheses and signs within each other

// By recursive descent: a sum of products of values.
class Calculator {
 public:
  explicit Calculator(std::string_view text) : text_(text) {}

  std::optional<double> Run() {
    const double value = Sum();
    SkipBlanks();
    if (failed_ || !text_.empty() || !std::isfinite(value)) return std::nullopt;
    return value;
  }

 private:
  void SkipBlanks() {
    while (!text_.empty() && text_.front() == ' ') text_.remove_prefix(1);
  }
  bool Take(char sign) {
    SkipBlanks();
    if (!text_.starts_with(sign)) return false;
    text_.remove_prefix(1);
    return true;
  }

  double Sum() {
    double value = Product();
    for (;;) {
      if (Take('+')) {
        value += Product();
      } else if (Take('-')) {
        value -= Product();
      } else {
        return value;
      }
    }
  }

  double Product() {
    double value = Value();
    for (;;) {
      if (Take('*')) {
        value *= Value();
      } else if (Take('/')) {
        value /= Value();  // by 0: not finite
      } else {
        return value;
      }
    }
  }

  double Value() {
    if (++depth_ > kDeepest) failed_ = true;
    double value = 0;
    if (failed_) return value;
    if (Take('-')) {
      value = -Value();
    } else if (Take('+')) {
      value = Value();
    } else if (Take('(')) {
      value = Sum();
      failed_ = !Take(')') || failed_;
    } else {
      value = Digits();
    }
    --depth_;
    return value;
  }

  double Digits() {
    SkipBlanks();
    double value = 0;
    const char* const first = text_.data();
    const auto [end, error] = std::from_chars(first, first + text_.size(), value);
    const bool is_word = end != first && (*first == 'i' || *first == 'n' || *first == 'I' ||
                                          *first == 'N');  // "inf", "nan"
    if (error != std::errc() || is_word) {
      failed_ = true;
      return 0;
    }
    text_.remove_prefix(static_cast<size_t>(end - first));
    return value;
  }

  std::string_view text_;
  bool failed_ = false;
  int depth_ = 0;
};

}  // namespace

std::optional<double> Calculate(std::string_view text) {
  return Calculator(text).Run();
}

}  // namespace kerno
