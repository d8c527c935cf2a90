#include "export/aci.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

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
  const struct {
    int index;
    Color color;
  } cases[] = {
      {1, RgbColor(255, 0, 0)},
      {2, RgbColor(255, 255, 0)},
      {3, RgbColor(0, 255, 0)},
      {4, RgbColor(0, 255, 255)},
      {5, RgbColor(0, 0, 255)},
      {6, RgbColor(255, 0, 255)},
      {7, RgbColor(255, 255, 255)},
      {8, RgbColor(96, 96, 96)},
      {9, RgbColor(192, 192, 192)},
      {250, RgbColor(32, 32, 32)},
      {251, RgbColor(64, 64, 64)},
      {252, RgbColor(128, 128, 128)},
      {253, RgbColor(160, 160, 160)},
      {254, RgbColor(224, 224, 224)},
      {255, RgbColor(255, 255, 255)},
      {0, 0},
      {-1, 0},
      {256, 0},
  };
  for (const auto& c : cases) EXPECT_EQ(AciToRgb(c.index), c.color) << c.index;
}

TEST(Aci, TheClassicRule) {
  const struct {
    int red, green, blue, index;
  } cases[] = {
      {255, 255, 255, 7},
      {251, 251, 251, 7},
      {0, 0, 0, 7},
      {4, 4, 4, 7},
      {255, 255, 4, 2},
      {255, 4, 255, 6},
      {251, 0, 0, 1},
      {0, 255, 255, 4},
      {0, 251, 0, 3},
      {4, 0, 255, 5},
      {126, 129, 127, 8},
      {128, 128, 128, 8},
      {191, 194, 192, 9},
      // Greys look at the grey ramp alone, where a step down wraps to a long way: the ramp's own
      // colours and those up to 18 below one of them find it, the others stay at its start.
      {125, 125, 125, 252},
      {130, 130, 130, 250},
      {32, 32, 32, 250},
      {60, 60, 60, 251},
      {33, 33, 33, 250},
      {155, 155, 155, 253},
      {160, 160, 160, 253},
      {223, 223, 223, 254},
      {5, 5, 5, 250},
      {250, 250, 250, 7},
      // Mixed colours: exact ones of the palette, those a little below, and the many that nothing
      // comes near to.
      {255, 127, 127, 11},
      {165, 0, 0, 12},
      {164, 0, 0, 12},
      {250, 125, 120, 11},
      {166, 0, 0, 1},
      {96, 96, 95, 8},
      {97, 96, 96, 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(RgbToAci(RgbColor(c.red, c.green, c.blue)), c.index)
        << c.red << " " << c.green << " " << c.blue;
  }
}

// The contours' own colours all look red to the classic rule.
TEST(Aci, TheHuesOfContours) {
  for (int hue = 0; hue < 360; hue += 30) {
    const Color color = HlsColor(hue, 128, 128);
    EXPECT_EQ(RgbToAci(color), 1) << hue;
    EXPECT_NE(RgbToAci(color, AciRule::kNearest), 1) << hue;
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
