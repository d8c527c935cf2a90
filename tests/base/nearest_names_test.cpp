#include "base/nearest_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kerno {
namespace {

using ::testing::ElementsAre;

TEST(NearestNames, EditDistance) {
  EXPECT_EQ(EditDistance(u"", u""), 0U);
  EXPECT_EQ(EditDistance(u"", u"abc"), 3U);
  EXPECT_EQ(EditDistance(u"abc", u""), 3U);
  EXPECT_EQ(EditDistance(u"DejaVu Sans", u"dejavu sans"), 0U);
  EXPECT_EQ(EditDistance(u"kitten", u"sitting"), 3U);
  EXPECT_EQ(EditDistance(u"IPAゴシック", u"IPAゴチック"), 1U);
}

TEST(NearestNames, NearestFirstAndNoMoreThanWanted) {
  const std::vector<std::u16string> names = {u"DejaVu Sans", u"DejaVu Sans Mono", u"DejaVu Serif",
                                             u"IPAGothic", u"IPAMincho"};
  EXPECT_THAT(NearestNames(u"Deja Vu Sans", names, 2),
              ElementsAre(u"DejaVu Sans", u"DejaVu Serif"));
  EXPECT_THAT(NearestNames(u"ipagotic", names, 1), ElementsAre(u"IPAGothic"));
  EXPECT_THAT(NearestNames(u"x", names, 9).size(), names.size());
  EXPECT_TRUE(NearestNames(u"x", {}, 3).empty());
}

}  // namespace
}  // namespace kerno
