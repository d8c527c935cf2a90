#include "app/job.h"

#include <gtest/gtest.h>

namespace kerno {
namespace {

TEST(BuildParts, DegenerateContours) {
  const struct {
    GlyphContours contours;
    size_t lines, faces;
  } cases[] = {
      // A square whose native form repeats its start, as many fonts' do.
      {{{{10, 0}, {10, 10}, {0, 10}, {0, 0}, {0, 0}, {10, 0}}, {6}}, 4, 1},
      {{{{1, 1}, {1, 1}}, {2}}, 0, 1},
      {{{{1, 1}, {2, 2}, {1, 1}}, {3}}, 2, 1},
      {{{}, {0}}, 0, 0},
  };
  for (const auto& c : cases) {
    PartsA parts;
    BuildParts(c.contours, {.elements = ContourElements::kBoth}, &parts);
    ASSERT_EQ(1u, parts.parts.size());
    EXPECT_EQ(c.lines, parts.parts[0].lines.items.size());
    EXPECT_EQ(c.faces, parts.parts[0].faces[0].items.size());
  }
}

}  // namespace
}  // namespace kerno
