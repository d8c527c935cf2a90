#include "export/aci.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <tuple>
#include <vector>

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

TEST(Aci, ColoursOutsideTheWheel) {
  const std::pair<int, Color> cases[] = {
      {1, 0x0000FF},   {2, 0x00FFFF},   {3, 0x00FF00},   {4, 0xFFFF00},   {5, 0xFF0000},
      {6, 0xFF00FF},   {7, 0xFFFFFF},   {8, 0x606060},   {9, 0xC0C0C0},   {250, 0x202020},
      {251, 0x404040}, {252, 0x808080}, {253, 0xA0A0A0}, {254, 0xE0E0E0}, {255, 0xFFFFFF},
      {0, 0},          {-1, 0},         {256, 0}};
  for (const auto& [index, color] : cases) EXPECT_EQ(AciToRgb(index), color) << index;
}

TEST(Aci, TheClassicRule) {
  // Pure colours, and the two greys.
  using Case = std::tuple<int, int, int, int>;
  const std::vector<Case> pure = {
      {255, 255, 255, 7}, {251, 251, 251, 7}, {0, 0, 0, 7},      {4, 4, 4, 7},   {255, 255, 4, 2},
      {255, 4, 255, 6},   {251, 0, 0, 1},     {0, 255, 255, 4},  {0, 251, 0, 3}, {4, 0, 255, 5},
      {126, 129, 127, 8}, {128, 128, 128, 8}, {191, 194, 192, 9}};
  // Greys look at the grey ramp alone, where a step down wraps to a long way: the ramp's own
  // colours and those up to 18 below one of them find it, the others stay at its start.
  const std::vector<Case> greys = {{125, 125, 125, 252}, {130, 130, 130, 250}, {32, 32, 32, 250},
                                   {60, 60, 60, 251},    {33, 33, 33, 250},    {155, 155, 155, 253},
                                   {160, 160, 160, 253}, {223, 223, 223, 254}, {5, 5, 5, 250},
                                   {250, 250, 250, 7}};
  // Exact ones of the palette, those a little below, and the many that nothing comes near to.
  const std::vector<Case> mixed = {{255, 127, 127, 11}, {165, 0, 0, 12}, {164, 0, 0, 12},
                                   {250, 125, 120, 11}, {166, 0, 0, 1},  {96, 96, 95, 8},
                                   {97, 96, 96, 1}};
  for (const auto& cases : {pure, greys, mixed}) {
    for (const auto& [red, green, blue, index] : cases) {
      EXPECT_EQ(RgbToAci(RgbColor(red, green, blue)), index) << red << " " << green << " " << blue;
    }
  }
}

TEST(Aci, TheNearestColourIsTheNearest) {
  for (int index = 1; index < 255; ++index) {
    const int16_t found = RgbToAci(AciToRgb(index), AciRule::kNearest);
    EXPECT_EQ(AciToRgb(found), AciToRgb(index)) << index;
    EXPECT_LE(found, index);
  }
  EXPECT_EQ(RgbToAci(RgbColor(254, 1, 1), AciRule::kNearest), 1);
  EXPECT_EQ(RgbToAci(RgbColor(166, 0, 0), AciRule::kNearest), 12);
  EXPECT_EQ(RgbToAci(RgbColor(255, 255, 255), AciRule::kNearest), 7);
}

}  // namespace
}  // namespace kerno
