#include "base/nearest_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kerno {
namespace {

using ::testing::ElementsAre;

TEST(NearestNames, NearestFirstAndNoMoreThanWanted) {
  EXPECT_EQ(EditDistance(u"", u"abc"), 3U);
  EXPECT_EQ(EditDistance(u"Kitten", u"sittinG"), 3U);
  EXPECT_EQ(EditDistance(u"IPAゴシック", u"IPAゴチック"), 1U);
  const std::vector<std::u16string> names = {u"DejaVu Sans", u"DejaVu Sans Mono", u"DejaVu Serif",
                                             u"IPAGothic", u"IPAMincho"};
  EXPECT_THAT(NearestNames(u"Deja Vu Sans", names, 2),
              ElementsAre(u"DejaVu Sans", u"DejaVu Serif"));
  EXPECT_THAT(NearestNames(u"x", names, 9).size(), names.size());
}

}  // namespace
}  // namespace kerno
