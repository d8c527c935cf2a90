#include "setup/search_path.h"

#include <gtest/gtest.h>

#include <random>

namespace kerno {
namespace {

TEST(SearchPath, AddsOneEntryAndTakesThatOut) {
  const std::u16string folder = u"C:\\Users\\花子 A\\Kerno";
  const struct {
    std::u16string before;
    std::u16string after;
  } kCases[] = {
      {u"", folder},
      {u"C:\\a", u"C:\\a;" + folder},
      {u"C:\\a;", u"C:\\a;" + folder + u";"},
      {u";;C:\\a;;", u";;C:\\a;;" + folder + u";"},
      {u"%USERPROFILE%\\bin;\"C:\\b;c\"", u"%USERPROFILE%\\bin;\"C:\\b;c\";" + folder},
      {folder + u"2;C:\\x\\" + folder, folder + u"2;C:\\x\\" + folder + u";" + folder},
  };
  for (const auto& c : kCases) {
    EXPECT_FALSE(HasFolder(c.before, folder));
    const auto longer = WithFolder(c.before, folder);
    ASSERT_TRUE(longer);
    EXPECT_EQ(*longer, c.after);
    EXPECT_EQ(WithoutFolder(*longer, folder), c.before);
  }
}

TEST(SearchPath, KnowsAFolderInOtherSpellings) {
  for (const char16_t* path :
       {u"x;c:/users/KERNO/", u"\"C:\\Users\\Kerno\\\"", u"C:\\USERS\\kerno;y"}) {
    EXPECT_TRUE(HasFolder(path, u"C:\\Users\\Kerno")) << testing::PrintToString(path);
  }
  EXPECT_FALSE(HasFolder(u"C:\\Users;Kerno;C:\\Users\\Kerno\\bin", u"C:\\Users\\Kerno"));
  EXPECT_EQ(WithoutFolder(u"a;b", u"c"), u"a;b");
  EXPECT_EQ(WithoutFolder(u"a;c:\\K\\;b", u"C:\\k"), u"a;b");  // others stand around it now
}

TEST(SearchPath, RefusesWhatWouldBeReadOtherwise) {
  EXPECT_FALSE(WithFolder(u"a", u"C:\\100%\\Kerno"));
  EXPECT_FALSE(WithFolder(u"a", u""));
  EXPECT_FALSE(WithFolder(u"a;\"b", u"C:\\Kerno"));  // within an open quote
  EXPECT_EQ(WithFolder(u"a", u"C:\\x;y"), u"a;\"C:\\x;y\"");
  const std::u16string most(kLongestSearchPath - 2, u'a');
  EXPECT_TRUE(WithFolder(most, u"K"));
  EXPECT_FALSE(WithFolder(most + u"a", u"K"));
}

// Paths of chance, of units that mean something in them.
TEST(SearchPath, NeverLosesAUnit) {
  std::mt19937 random(18);
  const std::u16string units = u";;;\"\\/aK% ";
  for (int run = 0; run < 20000; ++run) {
    std::u16string path(random() % 12, u' ');
    for (char16_t& unit : path) unit = units[random() % units.size()];
    const auto longer = WithFolder(path, u"K");
    if (!longer || HasFolder(path, u"K")) continue;
    ASSERT_TRUE(HasFolder(*longer, u"K")) << testing::PrintToString(path);
    ASSERT_EQ(WithoutFolder(*longer, u"K"), path);
  }
}

}  // namespace
}  // namespace kerno
