#include "export/aci.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>

#include "support/run.h"

namespace kerno {
namespace {

TEST(Aci, TheWheelIsTheOneThatReadersUse) {
  std::istringstream table(test::OutputOfPython("export/read_dxf.py --palette"));
  int count = 0;
  for (int index, red, green, blue; table >> index >> red >> green >> blue; ++count) {
    EXPECT_EQ(AciToRgb(index), RgbColor(red, green, blue)) << index;
  }
  EXPECT_EQ(count, 240);
}

TEST(Aci, TheClassicRule) {
  // Pure colours, and the two greys; greys look at the grey ramp alone, where a step down wraps to
  // a long way: the ramp's own colours and those up to 18 below one of them find it, the others
  // stay at its start; exact colours, those a little below, and the many that nothing comes near
  // to.
  const std::tuple<int, int, int, int> cases[] = {
      {255, 255, 255, 7},   {251, 251, 251, 7}, {4, 4, 4, 7},       {255, 255, 4, 2},
      {251, 0, 0, 1},       {126, 129, 127, 8}, {191, 194, 192, 9}, {125, 125, 125, 252},
      {130, 130, 130, 250}, {33, 33, 33, 250},  {250, 250, 250, 7}, {255, 127, 127, 11},
      {164, 0, 0, 12},      {166, 0, 0, 1},     {96, 96, 95, 8},    {97, 96, 96, 1}};
  for (const auto& [red, green, blue, index] : cases) {
    EXPECT_EQ(RgbToAci(RgbColor(red, green, blue)), index) << red << " " << green << " " << blue;
  }
}

TEST(Aci, TheNearestColourIsTheNearest) {
  for (int index = 1; index < 255; ++index) {
    const int16_t found = RgbToAci(AciToRgb(index), AciRule::kNearest);
    EXPECT_EQ(AciToRgb(found), AciToRgb(index)) << index;
    EXPECT_LE(found, index);
  }
  EXPECT_EQ(RgbToAci(RgbColor(166, 0, 0), AciRule::kNearest), 12);
  EXPECT_EQ(RgbToAci(RgbColor(255, 255, 255), AciRule::kNearest), 7);
}

}  // namespace
}  // namespace kerno
