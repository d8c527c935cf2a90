#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <sstream>

#include "base/number_text.h"
#include "base/text.h"
#include "parts/ipx.h"
#include "parts/ipx_lexer.h"

namespace kerno {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The text of what a line reads as: what the line says in the writer's own words.
template <class Item>
std::u16string Reread(std::u16string_view line) {
  Item item;
  FromText(line, &item);
  return ToText(item);
}

template <class Item>
struct Case {
  Item item;
  std::u16string text;
};

// Each text is what the item writes, and reads back as an item that writes it again.
template <class Item>
void ExpectPairs(const std::vector<Case<Item>>& cases) {
  for (const auto& c : cases) {
    EXPECT_EQ(ToText(c.item), c.text) << Utf16ToUtf8(c.text);
    EXPECT_EQ(Reread<Item>(c.text), c.text) << Utf16ToUtf8(c.text);
  }
}

TEST(IpxText, ElementsAndTheirLines) {
  EXPECT_EQ(ToText(P3{1e-20, -1e-20, 0.9999999999999999}), u"0. -0. 1. ");
  EXPECT_EQ(Reread<P3>(u"0. -0. 1. "), u"0 -0 1 ");
  ExpectPairs<P3>({{{0.5, 1e-15, -0.0}, u"0.5 0.000000000000001 -0 "},
                   {{1234.5, -1e15, 0.1 + 0.2}, u"1234.5 -1e+015 0.3 "},
                   {{kInfinity, -kInfinity, std::nan("")}, u"inf -inf nan "}});
  ExpectPairs<TextItem>({{{}, u"-1 \"\" "}, {{3, u"文字 A"}, u"3 \"文字 A\" "}});
  ExpectPairs<LineItem>(
      {{{}, u"-1 -1 "}, {{2147483647, -2147483647 - 1}, u"2147483647 -2147483648 "}});
  ExpectPairs<CircleItem>({{{1, 2.5, 3, 4, 5}, u"1 2.5 3 4 5 "}});
  ExpectPairs<FaceItem>({{{9, {1, 2, 3}, {4, 5, 6}, 7}, u"3 3 3 \"1 2 3 \" \"4 5 6 \" 9 7 "},
                         {{9, {1}, {}, 7}, u"1 1 0 \"1 \" \"\" 9 7 "}});
  ExpectPairs<EdgeItem>({{{}, u"-1 -1 45 -1 -1 0 -1 "}});
  ExpectPairs<PointSet>({{{}, u"-1 0 -1 \"\" "}, {{1, 2, 3, {4, 5}}, u"1 2 3 \"4 5 \" "}});
  ExpectPairs<TextLine>({{{1, u"字", {1.5, 0, -0.25, 8}, u"ＭＳ 明朝", 6, {{0, 1}, {-0.5, 2}}},
                          u"1 \"字\" 1.5 0 -0.25 8 \"ＭＳ 明朝\" 6 \"'0 1 ' '-0.5 2 ' \""},
                         {{}, u"-1 \"\" 0 0 0 0 \"\" 0 \"\""}});
}

TEST(IpxText, ArraysAndTheirBlocks) {
  P3A pool;
  pool.Append({0, 0, 0});
  pool.Append({12.5, 0.25, -3});
  EXPECT_EQ(ToText(pool), u"2 0 ;\tP3A_\t\r\n0 0 0 \r\n12.5 0.25 -3 \r\n");
  EXPECT_EQ(Reread<P3A>(ToText(pool)), ToText(pool));
  ExpectPairs<TextA>({{{}, u"0 0 ;\tTextA\t\r\n"}});
  ExpectPairs<LineA>({{{5, {{0, 1}}}, u"1 5 ;\tLineA\t\r\n0 1 \r\n"}});
  ExpectPairs<CircleA>({{{}, u"0 0 ;\tCircleA\t\r\n"}});
  ExpectPairs<FaceA>({{{}, u"0 0 ;\tFaceA\t\r\n"}});
  ExpectPairs<EdgeA>({{{}, u"0 0 ;\tEdgeA\t\r\n"}});
  ExpectPairs<PointA>({{{}, u"0 0 ;\tPointA\t\r\n"}});
  ExpectPairs<TextHA>({{{}, u"0 0 ;\tTextHA\t\r\n"}});
  ExpectPairs<TextVA>({{{}, u"0 0 ;\tTextVA\t\r\n"}});
}

TEST(IpxText, EscapingGoesOneWay) {
  const TextItem item = {0, u"a\tb,c\\d\"e'f\r\n"};
  const std::u16string line = u"0 \"a\\tb\\x2cc\\\\d\\x22e\\x27f\\r\\n\" ";
  EXPECT_EQ(ToText(item), line);
  TextItem read;
  FromText(line, &read);
  EXPECT_EQ(read.text, u"a\\tb\\x2cc\\\\d\\x22e\\x27f\\r\\n");
}

TEST(IpxText, LinesAreReadLeniently) {
  const struct {
    std::u16string line;
    std::u16string as_text_line;
  } kTexts[] = {
      {u"", u"-1 \"\" 0 0 0 0 \"\" 0 \"\""},
      {u"   \r \n ", u"-1 \"\" 0 0 0 0 \"\" 0 \"\""},
      {u"5", u"5 \"\" 0 0 0 0 \"\" 0 \"\""},
      {u"x \"t\" 1e1 y 0x10 .5 \"f\" 9z \"'1 2' 3 '' '4\"",
       u"0 \"t\" 10 0 16 0.5 \"f\" 9 \"'1 2 ' '3 0 ' '0 0 ' '0 0 ' \""},
      {u"\"5\" 't' \"1\" '2' 3 4 'f' \"6\"", u"5 \"t\" 1 2 3 4 \"f\" 6 \"\""},
      {u"1 \"a\nb\"", u"1 \"a\\nb\" 0 0 0 0 \"\" 0 \"\""},
      // A lone quote belongs to its field; a quote inside a field does not end it.
      {u"1 \" 2", u"1 \"\\x22\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 \"a\"b\" 2", u"1 \"a\\x22b\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 \"\"\" 2", u"1 \"\\x22\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 'a \"b c\" d' 2", u"1 \"a \\x22b c\\x22 d\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 \"\" 1 2 3 4 \"\" 5 \"'\"1 2\"' \"", u"1 \"\" 1 2 3 4 \"\" 5 \"'1 0 ' \""},
  };
  for (const auto& c : kTexts) {
    EXPECT_EQ(Reread<TextLine>(c.line), c.as_text_line) << Utf16ToUtf8(c.line);
  }
  EXPECT_EQ(Reread<LineItem>(u"99999999999 -99999999999999999999999"), u"2147483647 -2147483648 ");
  EXPECT_EQ(Reread<PointSet>(u"4"), u"4 0 -1 \"\" ");
  EXPECT_EQ(Reread<PointSet>(u"1 2 3 \"'7' x \"8\" -\""), u"1 2 3 \"7 0 0 \" ");
  EXPECT_EQ(Reread<FaceItem>(u"7 7 7 \"1 2\" 3"), u"2 2 1 \"1 2 \" \"3 \" 0 0 ");
  EXPECT_EQ(Reread<EdgeItem>(u"1 2"), u"1 2 45 -1 -1 0 -1 ");
  EXPECT_EQ(Reread<P3>(u"\t7 + -"), u"7 0 0 ");
}

TEST(IpxText, CountsAreCutToTheLines) {
  const struct {
    std::u16string block;
    size_t count;
    std::u16string last;
  } kCases[] = {
      {u"", 0, u""},
      {u"-1 0\r\n1 2 \r\n", 0, u""},
      {u"1 0\r\n1 2 \r\n3 4 \r\n", 1, u"1 2 "},
      {u"2147483648 0\r\n1 2 \r\n3 4 \r\n", 2, u"3 4 "},
      {u"1000000000000000000 0\r\n1 2 \r\n3 4", 2, u"3 4 "},
      {u"-9999999999999999999999 0\r\n1 2", 0, u""},
      {u"9999999999999999999999 0\r\n1 2", 1, u"1 2 "},
      {u"3 0\r\n1 2\r\n\r\n", 2, u"-1 -1 "},
      {u"two 0\r\n1 2\r\n", 0, u""},
  };
  for (const auto& c : kCases) {
    LineA array;
    FromText(c.block, &array);
    ASSERT_EQ(array.items.size(), c.count) << Utf16ToUtf8(c.block);
    const std::u16string last = array.items.empty() ? u"" : ToText(array.items.back());
    EXPECT_EQ(last, c.last) << Utf16ToUtf8(c.block);
  }
}

// The C library in its own locale is the measure.
TEST(IpxText, NumbersReadAsTheCLibraryReadsThem) {
  // What the random texts below do not hold.
  std::istringstream texts(
      "1e5x 1,5 abc inf -Infinity nan infinite 1e308 1e309 -1e999 1e-310 4.9e-324 2e-324 "
      "1e-999 0e999 0x10 0x 0x1p4 -0x.8 0x1p99999 0x1p-9999 1e99999999999999999999 "
      "1e-99999999999999999999 179769313486231580793e289 "
      "0.00000000000000000000000000000000000000001 123456789012345678901234567890 "
      "1e00000000000002");
  const auto expect_same = [](const std::string& text) {
    const double ours = ipx::LeadingNumber(text);
    char* end = nullptr;
    double theirs = std::strtod(text.c_str(), &end);
    if (end == text.c_str()) theirs = 0;  // some libraries give it the sign
    if (std::isnan(theirs)) {
      EXPECT_TRUE(std::isnan(ours)) << text;
    } else {
      EXPECT_EQ(ours, theirs) << text;
      EXPECT_EQ(std::signbit(ours), std::signbit(theirs)) << text;
    }
  };
  for (std::string text; texts >> text;) expect_same(text);
  expect_same(std::string(400, '9'));
  expect_same("0." + std::string(400, '0') + "1");
  std::mt19937_64 random(20180726);
  for (int i = 0; i < 20000; ++i) {
    static constexpr char kLetters[] = "00123456789..eE+--";
    std::string text;
    for (size_t n = random() % 24; n-- > 0;) text += kLetters[random() % (sizeof kLetters - 1)];
    expect_same(text);
    const double scaled = static_cast<double>(random() >> 11) * std::pow(10.0, -(i % 24));
    expect_same(NumberText(i % 2 ? scaled : -scaled, 1 + i % 17));
    expect_same(std::to_string(random()) + "." + std::to_string(random()));
  }
}

TEST(IpxText, EveryUnitPacksAndUnpacks) {
  std::u16string text;
  for (unsigned unit = 0; unit < 0x10000; ++unit) text.push_back(static_cast<char16_t>(unit));
  EXPECT_EQ(ipx::Unpack(ipx::Pack(text)), text);
  EXPECT_EQ(ipx::Pack(u"aé日"), "a\xC3\xA9\xE6\x97\xA5");
  // The same from and to the bytes of a file, in either order, wherever a piece begins.
  for (const size_t from : {0, 1, 7, 8, 100, 0xFFF0, 0xFFFF}) {
    const std::u16string_view rest = std::u16string_view(text).substr(from);
    std::string little;
    std::string big;
    for (const char16_t unit : rest) {
      little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
      big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    }
    ASSERT_TRUE(ipx::UnpackBytes(ipx::Pack(rest)) == little) << from;
    for (const auto& [bytes, order] :
         {std::pair(little, ipx::ByteOrder::kLittle), std::pair(big, ipx::ByteOrder::kBig)}) {
      std::string packed;
      ipx::AppendPackedBytes(&packed, bytes + "x", order);
      ASSERT_TRUE(packed == ipx::Pack(rest)) << from;
    }
  }
  // What a slice in the middle of a unit leaves is garbage, but no harm.
  ipx::Unpack("\xE6\x97");
  for (size_t at = 0; at < 20; ++at) {
    std::string bytes(20, 'a');
    bytes[at] = '\x80';
    EXPECT_EQ(ipx::AsciiPrefix(bytes), at);
  }
}

// Fields that open quotes and never close them must not make a long line slow.
TEST(IpxText, LoneQuotesOfALongLineAreReadOnce) {
  std::u16string line = u"1 2 3 \"";
  for (int i = 0; i < 300000; ++i) line += u"'a ";
  line += u"\"";
  PointSet set;
  FromText(line, &set);
  EXPECT_EQ(set.vertices.size(), 300000u);
}

}  // namespace
}  // namespace kerno
