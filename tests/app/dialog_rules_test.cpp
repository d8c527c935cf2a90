// The dialog's rules that are plain numbers.
#include <gtest/gtest.h>

#include "app/controls.h"
#include "app/height_text.h"
#include "app/preview_model.h"
#include "app/status_text.h"
#include "app/window_place.h"
#include "base/text.h"

namespace kerno {
namespace {

TEST(DialogRules, DropDownRowsKeepClearOfTheBottom) {
  const struct {
    int bottom, top, item, rows;
  } cases[] = {{100, 0, 10, 8}, {29, 0, 10, 2}, {30, 0, 10, 1},
               {39, 0, 10, 1},  {40, 0, 10, 2}, {100, 0, 0, 1}};
  for (const auto& c : cases) {
    EXPECT_EQ(c.rows, DropDownRows(c.bottom, c.top, c.item)) << c.bottom << " " << c.top;
  }
}

TEST(DialogRules, HeightsReadAsPlainDecimals) {
  const struct {
    const char16_t* text;
    int32_t height;
  } cases[] = {{u"", 0},
               {u"  -7x9", -7},
               {u"+3", 3},
               {u"--1", 0},
               {u"1.9", 1},
               {u"2147483648", INT32_MAX},
               {u"-99999999999999999999", INT32_MIN},
               {u"１２", 0}};
  for (const auto& c : cases) EXPECT_EQ(c.height, HeightNumber(c.text));
  EXPECT_EQ(u"10000", SteppedHeight(u"2147483647", 1));
  EXPECT_EQ(u"-1000", SteppedHeight(u"-2147483648", -1));
  EXPECT_EQ(u"1", SteppedHeight(u"abc", 1));
}

TEST(DialogRules, CharactersWithoutAGlyphAreNamedVisibly) {
  TypesetText set;
  set.missing = {u'\v', 0x202E, u'あ', 0x3000, 0xD800};
  const std::u16string status = DescribeWarnings(set, {});
  EXPECT_TRUE(status.ends_with(u"no glyph for U+000B U+202E あ U+3000 U+D800"))
      << Utf16ToUtf8(status);
  set = {};
  set.notes.refused = {u'W'};
  EXPECT_TRUE(DescribeWarnings(set, {}).ends_with(u"no outline of this size for W"));
}

TEST(DialogRules, TheWindowStaysInSight) {
  const WindowRect screens[] = {{0, 0, 1000, 800}, {1000, 0, 2000, 800}};
  const struct {
    const char* name;
    WindowRect wanted, place;
  } cases[] = {
      {"never stored", {0, 0, 0, 0}, {0, 0, 0, 0}},
      {"partly out", {-200, 50, 400, 450}, {-200, 50, 400, 450}},
      {"title bar above", {100, -300, 500, 100}, {300, 200, 700, 600}},
      {"screen gone", {2500, 50, 2900, 450}, {300, 200, 700, 600}},
      {"hardly a grip left", {990, 900, 1990, 1700}, {0, 0, 1000, 800}},
      {"larger than any", {0, 0, 5000, 4000}, {0, 0, 1000, 800}},
      {"nonsense", {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {0, 0, 1000, 800}},
  };
  for (const auto& c : cases) EXPECT_EQ(c.place, KeepInSight(c.wanted, screens)) << c.name;
}

TEST(PreviewModel, FitsUntilTheUserChoosesAndThenKeepsThat) {
  PreviewModel model;
  model.SetFrame(216, 116);
  model.SetDrawing({{0, 0, 0}, {100, 10, 0}});
  EXPECT_DOUBLE_EQ(2, PixelsPerUnit(model.fit()));
  const P2 before = model.fit().Apply({25, 5});
  model.ZoomAt(before.x, before.y, 3);
  EXPECT_DOUBLE_EQ(before.x, model.fit().Apply({25, 5}).x);
  EXPECT_DOUBLE_EQ(before.y, model.fit().Apply({25, 5}).y);
  const double scale = PixelsPerUnit(model.fit());
  model.SetDrawing({{0, 0, 0}, {120, 10, 0}});
  EXPECT_DOUBLE_EQ(scale, PixelsPerUnit(model.fit()))
      << "typing does not move what the user looks at";
  model.SetDrawing({{5000, 0, 0}, {5100, 10, 0}});
  EXPECT_TRUE(model.shows_all()) << "nothing would be seen";

  for (int i = 0; i < 1000; ++i) model.ZoomAt(0, 0, 10);
  EXPECT_DOUBLE_EQ(2 * PreviewModel::kDeepest, PixelsPerUnit(model.fit()));
  for (int i = 0; i < 1000; ++i) model.ZoomAt(0, 0, -10);
  EXPECT_DOUBLE_EQ(2 * PreviewModel::kShallowest, PixelsPerUnit(model.fit()));
  model.ShowAll();
  EXPECT_DOUBLE_EQ(2, PixelsPerUnit(model.fit()));
  model.SetDrawing({});  // an empty drawing, and a frame of nothing
  model.SetFrame(0, 0);
  model.ZoomAt(0, 0, 1);
  EXPECT_GT(PixelsPerUnit(model.fit()), 0);
}

}  // namespace
}  // namespace kerno
