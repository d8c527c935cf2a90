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

TEST(IpxText, ElementsAndTheirLines) {
  EXPECT_EQ(ToText(P3{1e-20, -1e-20, 0.9999999999999999}), u"0. -0. 1. ");
  EXPECT_EQ(Reread<P3>(u"0. -0. 1. "), u"0 -0 1 ");
  const std::pair<P3, std::u16string> points[] = {
      {{0.5, 1e-15, -0.0}, u"0.5 0.000000000000001 -0 "},
      {{1234.5, -1e15, 0.1 + 0.2}, u"1234.5 -1e+015 0.3 "},
      {{kInfinity, -kInfinity, std::nan("")}, u"inf -inf nan "}};
  for (const auto& [point, text] : points) {
    EXPECT_EQ(ToText(point), text);
    EXPECT_EQ(Reread<P3>(text), text);
  }
  // Escaping goes one way.
  const std::u16string escaped = u"a\\tb\\x2cc\\\\d\\x22e\\x27f\\r\\n";
  EXPECT_EQ(ToText(TextItem{0, u"a\tb,c\\d\"e'f\r\n"}), u"0 \"" + escaped + u"\" ");
  TextItem read;
  FromText(u"0 \"" + escaped + u"\" ", &read);
  EXPECT_EQ(read.text, escaped);
}

TEST(IpxText, LinesAreReadLeniently) {
  const struct {
    std::u16string line;
    std::u16string as_text_line;
  } kTexts[] = {
      {u"5", u"5 \"\" 0 0 0 0 \"\" 0 \"\""},
      {u"x \"t\" 1e1 y 0x10 .5 \"f\" 9z \"'1 2' 3 '' '4\"",
       u"0 \"t\" 10 0 16 0.5 \"f\" 9 \"'1 2 ' '3 0 ' '0 0 ' '0 0 ' \""},
      {u"1 \"a\nb\"", u"1 \"a\\nb\" 0 0 0 0 \"\" 0 \"\""},
      // A lone quote belongs to its field; a quote inside a field does not end it.
      {u"1 \" 2", u"1 \"\\x22\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 \"a\"b\" 2", u"1 \"a\\x22b\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 'a \"b c\" d' 2", u"1 \"a \\x22b c\\x22 d\" 2 0 0 0 \"\" 0 \"\""},
      {u"1 \"\" 1 2 3 4 \"\" 5 \"'\"1 2\"' \"", u"1 \"\" 1 2 3 4 \"\" 5 \"'1 0 ' \""},
  };
  for (const auto& c : kTexts) {
    EXPECT_EQ(Reread<TextLine>(c.line), c.as_text_line) << Utf16ToUtf8(c.line);
  }
  EXPECT_EQ(Reread<LineItem>(u"99999999999 -99999999999999999999999"), u"2147483647 -2147483648 ");
  EXPECT_EQ(Reread<PointSet>(u"1 2 3 \"'7' x \"8\" -\""), u"1 2 3 \"7 0 0 \" ");
  EXPECT_EQ(Reread<FaceItem>(u"7 7 7 \"1 2\" 3"), u"2 2 1 \"1 2 \" \"3 \" 0 0 ");
  EXPECT_EQ(Reread<EdgeItem>(u"1 2"), u"1 2 45 -1 -1 0 -1 ");
  // Fields that open quotes and never close them must not make a long line slow.
  std::u16string line = u"1 2 3 \"";
  for (int i = 0; i < 300000; ++i) line += u"'a ";
  PointSet set;
  FromText(line + u"\"", &set);
  EXPECT_EQ(set.vertices.size(), 300000u);
}

// A text in the quotes that are chosen for it reads back, or none are.
TEST(IpxText, QuotesThatHoldTheirText) {
  const std::pair<std::u16string, char> cases[] = {
      {u"", '"'},          {u"a b", '"'},       {u"\"", '"'},       {u"a\"b'", '"'},
      {u"a\" b", '\''},    {u"\" ", '\''},      {u"a\"\nb'", '\''}, {u"a\rb", '"'},
      {u"a\" 'b", '\''},   {u"a\" b' c", '\0'}, {u"a\r\nb", '\0'},  {u"' ' \"\"字", '"'},
      {u"\"\" \"字", '\''}};
  for (const auto& [text, quote] : cases) {
    EXPECT_EQ(ipx::QuoteFor(text), quote) << Utf16ToUtf8(text);
    if (quote == '\0') continue;
    PartsElement part, read;
    part.name = part.second_text = text;
    part.trailing = 7;
    FromText(ToText(part), &read);
    EXPECT_EQ(read.name, text);
    EXPECT_EQ(read.second_text, text);
    EXPECT_EQ(read.trailing, 7);
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
  // The same from and to the bytes of a file, in either order, wherever a piece begins.
  for (const size_t from : {0, 1, 7, 8, 0xFFF0, 0xFFFF}) {
    const std::u16string_view rest = std::u16string_view(text).substr(from);
    std::string little, big;
    for (const char16_t unit : rest) {
      little += {static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)};
      big += {static_cast<char>(unit >> 8), static_cast<char>(unit & 0xFF)};
    }
    const std::string packed = ipx::Pack(rest);
    ASSERT_TRUE(ipx::Unpack(packed) == rest && ipx::UnpackBytes(packed) == little) << from;
    for (const auto& [bytes, order] :
         {std::pair(little, ipx::ByteOrder::kLittle), std::pair(big, ipx::ByteOrder::kBig)}) {
      std::string of_bytes;
      ipx::AppendPackedBytes(&of_bytes, bytes + "x", order);
      ASSERT_TRUE(of_bytes == packed) << from;
    }
  }
}

}  // namespace
}  // namespace kerno
