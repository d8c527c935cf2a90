// What a window shows, as the drivers of both toolkits report it.
//
// view_test.cpp includes the "view_driver.h" of the toolkit that the program is built with.
#pragma once

#include <string>
#include <vector>

#include "parts/color.h"

namespace kerno::test {

struct ShownText {
  std::u16string face;
  Color ink = 0;
  Color paper = 0;
};

}  // namespace kerno::test
