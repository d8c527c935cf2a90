#include "export/svg_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

#include "export/draw_parts.h"
#include "export/svg_elements.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/memory_file.h"
#include "support/picture_compare.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::MemoryFile;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class SvgWriter : public testing::Test {
 protected:
  SvgWriter() : part_(model_.parts.emplace_back()) {
    ResetSvgPrecision();
    part_.name = u"Kerno";
    part_.pen.color = 0x0000FF;
    part_.pen.width = 2;
  }

  std::string Written() const {
    MemoryFile file;
    EXPECT_TRUE(WriteSvg(model_, {}, "out.svg", &file).ok());
    return file.bytes;
  }

  // The elements whose lines begin so, without their indentation and line ends.
  std::string Elements(std::string_view begin) const {
    std::istringstream lines(Written());
    std::string found;
    for (std::string line; std::getline(lines, line);) {
      line.erase(0, line.find_first_not_of(' '));
      if (line.starts_with(begin)) found += line;
    }
    return found;
  }

  test::FakeClock clock_;
  FakeSettings settings_;
  PartsA model_;
  PartsElement& part_;
};

TEST_F(SvgWriter, Texts) {
  const struct {
    const char16_t* face;
    double height, rotation, oblique;
    bool vertical;
    const char* element;
  } cases[] = {
      {u"", 3, -45, 15, true,
       "transform=\"translate(5,-7)\trotate(45,0,0)\tskewX(15)\ttranslate(0,0)\t\""},
      {u"", 3, 1e-8, -1e-8, false, " x=\"5\" y=\"-6\""},
      {u"", kNan, kNan, kNan, false, "font-size=\"2.25\" x=\"5\""},
  };
  part_.vertices.Append({5, 7});
  for (const auto& c : cases) {
    const TextLine line = {0, u"a<b", c.height, 0, c.rotation, c.oblique, c.face, 0, {}};
    part_.horizontal_texts.items.clear();
    part_.vertical_texts.items.clear();
    (c.vertical ? static_cast<ElementArray<TextLine>&>(part_.vertical_texts)
                : part_.horizontal_texts)
        .items.push_back(line);
    const std::string text = Elements("<text");
    EXPECT_NE(text.find(c.element), text.npos) << c.element << "\n" << text;
    EXPECT_NE(text.find(">a&lt;b</text>"), text.npos);
  }
  EXPECT_EQ(SvgFontFamily(u"ＭＳ Pゴシック"), "MS-PGothic");
  EXPECT_EQ(SvgFontFamily(u"MS Gothic"), "");
}

// A capital letter for the faces of a part, a small one for its outlines, brackets for groups. The
// parts: l and m with lines in two pens, f and g with faces of two brushes, b with both, h with
// both and a hollow brush, k with lines on another layer.
TEST_F(SvgWriter, GroupsKeepTheOrderOfFacesAndAreFewOtherwise) {
  const std::pair<std::string, std::string> cases[] = {
      {"lmlk", "[ac][b][d]"}, {"lfl", "[a][B][c]"}, {"ffllml", "[AB][cdf][e]"},
      {"bb", "[A][a][B][b]"}, {"fgf", "[A][B][C]"}, {"lhl", "[abc]"}};
  for (const auto& [parts, expected] : cases) {
    model_.parts.assign(parts.size(), {});
    for (size_t i = 0; i < parts.size(); ++i) {
      const auto is = [&](const char* kinds) { return std::strchr(kinds, parts[i]) != nullptr; };
      PartsElement& part = model_.parts[i];
      const auto at = static_cast<double>(i);
      if (is("lmbhk")) part.AddLine({at, 0}, {1, 1});
      if (is("fgbh")) part.AddFace(std::vector<P3>{{at, 0}, {1, 1}, {2, 3}}, 0);
      part.pen.style = is("m");
      part.brush = {is("g") ? 255 : 0, is("h"), 0};
      part.name = is("k") ? u"other" : u"layer";
    }
    std::istringstream lines(Written());
    std::string groups, line;
    while (std::getline(lines, line)) {
      if (line.starts_with(" <g ")) groups += "[";
      if (line == " </g>") groups += "]";
      if (line.starts_with("  <line")) groups += static_cast<char>(line[12] - '0' + 'a');
      if (line.starts_with("  <polygon")) groups += static_cast<char>(line[19] - '0' + 'A');
    }
    EXPECT_EQ(groups, expected) << parts;
    EXPECT_EQ(Elements("<!-- Layer  =other") != "", parts == "lmlk");
  }
}

TEST_F(SvgWriter, ThePrecisionIsReadAgainAfterElevenSeconds) {
  const struct {
    uint32_t later;  // milliseconds
    int setting;
    double value;
    const char* text;
  } cases[] = {{0, 15, 1.0 / 3, "0.333333333333333"},
               {10999, 3, 1.0 / 3, "0.333333333333333"},
               {1, 3, 1.0 / 3, "0.333"},
               {0, 3, -1e-9, "-0"},
               {0, 3, 12345, "1.23e+004"},
               {11000, -5, 1.0 / 3, "0.3"}};
  for (const auto& c : cases) {
    settings_.ints[{u"Dec", u"SvgOut::Precision"}] = c.setting;
    clock_.ticks += c.later;
    std::string text;
    AppendSvgNumber(&text, c.value, SvgPrecision());
    EXPECT_EQ(text, c.text);
  }
}

// How far an outside renderer's picture of the drawing, `pixels` to a unit, is like our own.
double Agreement(const PartsA& model, double pixels) {
  const test::TemporaryFolder folder;
  const auto svg = (folder / "x.svg").string();
  EXPECT_TRUE(ExportSvg(model, svg).ok());
  const Extent3 box = PictureBox(model, nullptr);
  const int width = static_cast<int>(std::lround((box.max.x - box.min.x) * pixels));
  const int height = static_cast<int>(std::lround((box.max.y - box.min.y) * pixels));
  test::OutputOf("rsvg-convert -b white -w " + std::to_string(width) + " -h " +
                 std::to_string(height) + " " + svg + " -o " + svg + ".png");
  const Affine fit = FlippedY(pixels, {-box.min.x * pixels, box.max.y * pixels});
  return test::AgreementNearInk(test::ReadPicture(svg + ".png"),
                                test::Drawn(model, width, height, fit));
}

TEST_F(SvgWriter, LooksLikeOurOwnPicture) {
  part_.brush.color = RgbColor(0, 128, 255);
  part_.AddFace(std::vector<P3>{{0, 0}, {60, 0}, {60, 60}, {30, 20}, {0, 60}}, 0);
  part_.AddLine({10, 10}, {90, 10});
  part_.AddLine({90, 10}, {50, 55});
  part_.AddLine({50, 55}, {10, 10});
  part_.AddCircle({80, 40}, 15, 0, {80, 40}, {80, 40});
  part_.AddCircle({80, 40}, 10, 0, {90, 40}, {80, 30});
  part_.AddCircle({80, 40}, 5, 0, {85, 40}, {80, 45});
  PartsElement dashed = part_;
  dashed.faces[0].items.clear();
  dashed.circles.items.clear();
  dashed.lines.items.clear();
  dashed.pen = {static_cast<int32_t>(RgbColor(0, 100, 0)), 2, 3, 0, 20};
  dashed.AddLine({0, 70}, {100, 75});
  dashed.AddFace(std::vector<P3>{{70, 0}, {95, 0}, {80, 30}}, 0);  // over what the first part drew
  model_.parts.push_back(dashed);
  for (int32_t hatch = 0; hatch < 6; ++hatch) {
    PartsElement hatched;
    hatched.brush = {static_cast<int32_t>(RgbColor(100, 0, 100)), 2, hatch};
    const double x = 10.0 * hatch + 1;  // off the patterns' own lines
    hatched.AddFace(std::vector<P3>{{x, 81}, {x + 9, 81}, {x + 9, 98}, {x, 98}}, 0);
    model_.parts.push_back(hatched);
  }
  EXPECT_GE(Agreement(model_, 1), 0.99);
  model_.parts.resize(2);
  EXPECT_GE(Agreement(model_, 6), 0.99);
}

}  // namespace
}  // namespace kerno
