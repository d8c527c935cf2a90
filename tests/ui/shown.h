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

struct ShownList {
  int window_bottom = 0, top = 0, item_height = 0;  // in the window's pixels
  int rows = 0;                                     // at most seen at once
  std::vector<std::u16string> items;
};

}  // namespace kerno::test
