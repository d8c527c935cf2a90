#include "export/svg_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "export/build_time.h"
#include "export/draw_parts.h"
#include "export/svg_elements.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/fake_system.h"
#include "support/memory_file.h"
#include "support/picture_compare.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::MemoryFile;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
const std::string kRound = " stroke-linecap=\"round\" stroke-linejoin=\"round\"";
constexpr Color kRed = RgbColor(255, 0, 16);

class SvgWriter : public testing::Test {
 protected:
  SvgWriter() : part_(model_.parts.emplace_back()) {
    ResetSvgPrecision();
    part_.name = u"Kerno";
    part_.pen.color = static_cast<int32_t>(kRed);
    part_.pen.width = 2;
  }

  std::string Written(const SvgOptions& options = {}) const {
    MemoryFile file;
    EXPECT_TRUE(WriteSvg(model_, options, "out.svg", &file).ok());
    return file.bytes;
  }

  // What stands inside the groups, one element a line.
  std::string Elements() const {
    const std::string file = Written();
    const size_t root = file.find(">\n", file.find("<svg")) + 2;
    return file.substr(root, file.rfind("</svg>") - root);
  }

  bool Holds(const std::string& piece) const { return Written().find(piece) != std::string::npos; }

  test::FakeClock clock_;
  test::FakeSystem system_;
  FakeSettings settings_;
  PartsA model_;
  PartsElement& part_;
};

TEST_F(SvgWriter, AWholeDocument) {
  system_.program = "/opt/a--b/kerno";
  part_.AddLine({0, 0}, {10, 0});
  part_.AddLine({10, 0}, {10, 5.5});
  part_.AddLine({10, 5.5}, {0, 0});
  EXPECT_EQ(
      Written({.millimetres = true}),
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<!--\r\n"
      "SVG Exporter \t1.10\t" +
          std::string(BuildTime()) +
          "\r\n"
          "EXE          \t    \t/opt/a- -b/kerno\r\n"
          "Time         \t    \t2026/11/21 09:00:00\r\n"
          "Size         \t12\t7.5\r\n"
          "Save         \tout.svg\r\n"
          "変換精度\tSvgOut::Precision\t15\r\n"
          "UNICODE \t\r\n"
          "大きさ補正\t1\t1\r\n"
          "-->\n"
          "<svg viewBox=\"-1 -6.5 12 7.5\" xmlns=\"http://www.w3.org/2000/svg\" width=\"12mm\""
          " height=\"7.5mm\">\n"
          " <!-- Layer  =Kerno PColor =#ff0010 PStyle =0 PWidth =2 UWidth =0 ULength=0"
          " HInt   =0 -->\n"
          " <g stroke=\"#ff0010\" stroke-width=\"2\"" +
          kRound +
          " fill=\"none\">\n"
          "  <polygon points=\"0,0 10,0 10,-5.5\"/>\n"
          " </g>\n"
          "</svg>\n");
}

TEST_F(SvgWriter, LinesThatChainAreOnePath) {
  using Lines = std::vector<std::pair<P3, P3>>;
  const P3 a = {0, 0}, b = {1, 0}, c = {1, 1}, d = {0, 1};
  const struct {
    const char* what;
    Lines lines;
    std::string elements;
  } cases[] = {
      {"one line", {{a, b}}, "line x1=\"0\" y1=\"0\" x2=\"1\" y2=\"0\"/>"},
      {"open", {{a, b}, {b, c}}, "polyline points=\"0,0 1,0 1,-1\"/>"},
      {"closed", {{a, b}, {b, c}, {c, a}}, "polygon points=\"0,0 1,0 1,-1\"/>"},
      {"closed, then on",
       {{a, b}, {b, c}, {c, a}, {a, d}},
       "polygon points=\"0,0 1,0 1,-1\"/>line x1=\"0\" y1=\"0\" x2=\"0\" y2=\"-1\"/>"},
      {"there and back", {{a, b}, {b, a}}, "polyline points=\"0,0 1,0 0,0\"/>"},
      {"two",
       {{a, b}, {c, d}},
       "line x1=\"0\" y1=\"0\" x2=\"1\" y2=\"0\"/>line x1=\"1\" y1=\"-1\" x2=\"0\" y2=\"-1\"/>"},
  };
  for (const auto& c1 : cases) {
    part_.lines.items.clear();
    for (const auto& [from, to] : c1.lines) part_.AddLine(from, to);
    const std::string file = Written();
    std::string found;
    for (size_t at = file.find("<g "); (at = file.find("  <", at)) != file.npos; ++at) {
      found += file.substr(at + 3, file.find('\n', at) - at - 3);
    }
    EXPECT_EQ(found, c1.elements) << c1.what;
  }
}

TEST_F(SvgWriter, CirclesAndArcs) {
  const P3 centre = {10, 10};
  const auto at = [&](double degrees) {
    const double a = degrees * 3.14159265358979323846 / 180;
    return P3{10 + std::round(5 * std::cos(a)), 10 + std::round(5 * std::sin(a))};
  };
  const struct {
    P3 first, second;
    const char* element;
  } cases[] = {
      {at(0), at(0), "<circle cx=\"10\" cy=\"-10\" r=\"5\"/>"},
      {at(0), at(90), "<path d=\"M15,-10 A5,5 0 0,0 10,-15\"/>"},
      {at(90), at(0), "<path d=\"M10,-15 A5,5 0 1,0 15,-10\"/>"},
      {at(0), at(180), "<path d=\"M15,-10 A5,5 0 0,0 5,-10\"/>"},
      {at(180), at(90), "<path d=\"M5,-10 A5,5 0 1,0 10,-15\"/>"},
      {at(270), at(0), "<path d=\"M10,-5 A5,5 0 0,0 15,-10\"/>"},
  };
  for (const auto& c : cases) {
    part_.circles.items.clear();
    part_.AddCircle(centre, 5, 0, c.first, c.second);
    EXPECT_TRUE(Holds(c.element)) << c.element << Elements();
  }
}

TEST_F(SvgWriter, Texts) {
  const struct {
    const char16_t* face;
    double height, rotation, oblique;
    bool vertical;
    const char* element;
  } cases[] = {
      {u"ＭＳ 明朝", 30, 0, 0, false,
       "<text text-anchor=\"middle\" font-size=\"27\" font-family=\"MS-Mincho\" x=\"5\" y=\"3\""},
      {u"@ＭＳ ゴシック", 10, 0, 0, true,
       "<text writing-mode=\"tb\" text-anchor=\"middle\" font-size=\"9\" font-family=\"MS-Gothic\""
       " x=\"5\" y=\"-7\""},
      {u"Arial", 3, 30, 0, false,
       "<text text-anchor=\"middle\" font-size=\"2.7\" "
       "transform=\"translate(5,-7)\trotate(-30,0,0)\t"
       "translate(0,1)\t\""},
      {u"", 3, 0, 15, false, "transform=\"translate(5,-7)\tskewX(15)\ttranslate(0,1)\t\""},
      {u"", 3, -45, 15, true,
       "transform=\"translate(5,-7)\trotate(45,0,0)\tskewX(15)\ttranslate(0,0)\t\""},
      {u"", 3, 1e-8, -1e-8, false, " x=\"5\" y=\"-6\""},
      {u"", kNan, kNan, kNan, false, "font-size=\"2.25\" x=\"5\""},
  };
  for (const auto& c : cases) {
    part_.horizontal_texts.items.clear();
    part_.vertical_texts.items.clear();
    TextLine line;
    line.text = u"a<b";
    line.face_name = c.face;
    line.values[0] = c.height;
    line.values[2] = c.rotation;
    line.values[3] = c.oblique;
    c.vertical ? part_.AddVerticalText({5, 7}, line) : part_.AddHorizontalText({5, 7}, line);
    EXPECT_TRUE(Holds(c.element)) << c.element << "\n" << Elements();
    EXPECT_TRUE(Holds(">a&lt;b</text>"));
  }
  EXPECT_EQ(SvgFontFamily(u"ＭＳ Pゴシック"), "MS-PGothic");
  EXPECT_EQ(SvgFontFamily(u"@ＭＳ P明朝"), "MS-PMincho");
  EXPECT_EQ(SvgFontFamily(u"MS Gothic"), "");
}

TEST_F(SvgWriter, OneGroupForEachPenAndDashes) {
  const PartsElement first = part_;
  model_.parts.resize(5, first);
  for (PartsElement& part : model_.parts) part.AddLine({0, 0}, {1, 1});
  model_.parts[1].pen.style = 1;
  model_.parts[3].name = u"other";
  model_.parts[4].pen.style = 5;
  const std::string file = Written();
  std::string groups;
  for (size_t at = 0; (at = file.find("<g ", at)) != file.npos; ++at) {
    groups += file.substr(at, file.find('\n', at) - at + 1);
  }
  EXPECT_EQ(groups, "<g stroke=\"#ff0010\" stroke-width=\"2\"" + kRound +
                        " fill=\"none\">\n"
                        "<g stroke=\"#ff0010\" stroke-width=\"2\"" +
                        kRound +
                        " fill=\"none\" stroke-dasharray=\"36 12\">\n"
                        "<g stroke=\"#ff0010\" stroke-width=\"2\"" +
                        kRound +
                        " fill=\"none\">\n"
                        "<g stroke=\"none\" stroke-width=\"2\"" +
                        kRound + " fill=\"none\">\n");
  EXPECT_NE(file.find("Layer  =other PColor"), file.npos);
}

TEST_F(SvgWriter, FacesAndHatches) {
  part_.brush.color = RgbColor(0, 128, 255);
  part_.AddFace(std::vector<P3>{{0, 0}, {8, 0}, {8, 8}, {0, 8}, {0, 0}}, 0);
  EXPECT_EQ(Elements(),
            " <g stroke=\"none\" fill=\"#0080ff\" fill-rule=\"evenodd\">\n"
            "  <polygon points=\"0,0 8,0 8,-8 0,-8\"/>\n </g>\n");
  part_.brush.style = 1;
  EXPECT_EQ(Elements(), "");
  part_.brush.style = 2;
  part_.brush.hatch = 0;
  EXPECT_TRUE(
      Holds("<clipPath id=\"Clip-Path-1\" clip-rule=\"evenodd\">\n"
            "   <polygon points=\"0,0 8,0 8,-8 0,-8\"/>"));
  EXPECT_TRUE(Holds("<g clip-path=\"url(#Clip-Path-1)\">"));
  EXPECT_FALSE(Holds("Clip-Path-2"));
  EXPECT_TRUE(Holds("<line x1=\""));
}

TEST_F(SvgWriter, ThePrecisionIsReadAgainAfterElevenSeconds) {
  const auto number = [](double value) {
    std::string text;
    AppendSvgNumber(&text, value, SvgPrecision());
    return text;
  };
  const FakeSettings::Key key = {u"Dec", u"SvgOut::Precision"};
  EXPECT_EQ(number(1.0 / 3), "0.333333333333333");
  settings_.ints[key] = 3;
  clock_.ticks += 10999;
  EXPECT_EQ(number(1.0 / 3), "0.333333333333333");
  clock_.ticks += 1;
  EXPECT_EQ(number(1.0 / 3), "0.333");
  EXPECT_EQ(number(123.456), "123");
  EXPECT_EQ(number(1e-9), "0");
  EXPECT_EQ(number(-1e-9), "-0");
  EXPECT_EQ(number(0.9999), "1");
  EXPECT_EQ(number(12345), "1.23e+004");
  settings_.ints[key] = -5;
  clock_.ticks += 11000;
  EXPECT_EQ(number(1.0 / 3), "0.3");
  settings_.ints[key] = 1000;
  clock_.ticks += 11000;
  EXPECT_EQ(number(0.5), "0.5");
}

// Models that no drawing should hold still give a document that readers take.
TEST_F(SvgWriter, AwkwardModelsAreAccepted) {
  const test::TemporaryFolder folder;
  const auto square = [&](double side, double width) {
    PartsElement part;
    part.pen.width = width;
    part.AddLine({0, 0}, {side, 0});
    part.AddLine({side, 0}, {side, side});
    return part;
  };
  PartsElement broken = square(10, kNan);
  broken.vertices.Append({kNan, 0});
  broken.lines.items.push_back({0, 3});
  broken.lines.items.push_back({3, 99});
  broken.circles.items.push_back({0, kNan, 0, 0, 0});
  broken.faces[0].items.push_back({0, {0, 1, 3}, {}, 0});
  broken.name = u"\x01--<&\xD800";
  const struct {
    PartsElement part;
    size_t messages;
  } cases[] = {
      {{}, 0}, {square(1e-9, 0), 0}, {square(1e9, 0), 0}, {square(0, 1e-300), 0}, {broken, 1}};
  for (const auto& c : cases) {
    model_.parts[0] = c.part;
    test::RecordingNotices notices;
    const auto file = (folder / "x.svg").string();
    EXPECT_TRUE(ExportSvg(model_, file).ok());
    EXPECT_EQ(notices.messages.size(), c.messages);
    EXPECT_EQ(test::OutputOf("xmllint --noout --nonet " + file), "");
    EXPECT_EQ(test::OutputOf("rsvg-convert -w 50 -h 50 " + file + " -o " + file + ".png"), "");
    EXPECT_EQ(test::ReadBytes(file).find("nan"), std::string::npos);
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
  PartsElement dashed = part_;
  dashed.faces[0].items.clear();
  dashed.circles.items.clear();
  dashed.lines.items.clear();
  dashed.pen = {static_cast<int32_t>(RgbColor(0, 100, 0)), 2, 3, 0, 20};
  dashed.AddLine({0, 70}, {100, 75});
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
