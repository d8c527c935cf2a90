#include "app/cut_preview.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <regex>

#include "base/text_file.h"
#include "export/drawing_svg.h"
#include "support/picture_compare.h"

namespace kerno {
namespace {

constexpr Color kLight = 0xFFFFFF, kDark = 0x202020;

// A rectangle of 20 by 10 with a quarter of a circle of radius 2 at its upper right corner.
std::shared_ptr<CutDrawing> Plate(LengthUnit unit = LengthUnit::kMillimetre) {
  Path path;
  path.segments = {
      {.end = {20, 0}},
      {.end = {20, 8}},
      {.kind = SegmentKind::kArc, .end = {18, 10}, .bulge = std::tan(std::numbers::pi / 8)},
      {.end = {0, 10}},
      {.end = {0, 0}}};
  auto plate = std::make_shared<CutDrawing>();
  plate->drawing.unit = unit;
  plate->drawing.shapes = {{{path, 0}}};
  plate->drawing.placed = {{.shape = 0, .at = {5, 3}}};
  return plate;
}

std::shared_ptr<CutDrawing> CutOf(std::u16string_view text, std::u16string_view face,
                                  CurveForm curves) {
  CutJob job;
  job.text = text;
  job.face.family = face;
  job.curves = curves;
  auto made = std::make_shared<CutDrawing>();
  EXPECT_TRUE(MakeCut(job, made.get()).ok());
  return made;
}

Color At(const BitmapSurface& picture, const P2& at) {
  const auto pixel = static_cast<int>(at.y) * picture.Width() + static_cast<int>(at.x);
  const auto bgr = picture.Pixels().subspan(static_cast<size_t>(pixel) * 4, 4);
  return RgbColor(bgr[2], bgr[1], bgr[0]);
}

test::Picture Cropped(const BitmapSurface& surface, int left, int top, int width, int height) {
  test::Picture picture{width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const Color c = At(surface, {left + x + 0.0, top + y + 0.0});
      for (const int channel : {Red(c), Green(c), Blue(c)}) {
        picture.rgb.push_back(static_cast<uint8_t>(channel));
      }
    }
  }
  return picture;
}

// The share on which the preview and another program's picture of the SVG file agree.
double Agreement(const CutDrawing& cut, const test::Picture& seen, PreviewLook look) {
  const test::TemporaryFolder folder;
  const std::string svg = (folder / "x.svg").string();
  DrawingStyle style;
  style.svg = look == PreviewLook::kFilled ? SvgLook::kFill : SvgLook::kCut;
  EXPECT_TRUE(WriteDrawingSvg(cut.drawing, style, svg).ok());
  std::string text;
  EXPECT_TRUE(ReadFileBytes(svg, &text).ok());
  const double pixel = cut.ink.Width() / seen.width;  // as wide as the preview's hairline
  test::WriteBytes(svg, std::regex_replace(text, std::regex("stroke-width=\"[0-9.]+\""),
                                           "stroke-width=\"" + std::to_string(pixel) + "\""));
  test::OutputOf("rsvg-convert -b white -w " + std::to_string(seen.width) + " -h " +
                 std::to_string(seen.height) + " " + svg + " -o " + svg + ".png");
  return test::AgreementNearInk(test::ReadPicture(svg + ".png"), seen);
}

TEST(CutPreviewTest, ShowsWhatTheFilesHold) {
  constexpr int kWidth = 300, kMargin = 8;
  const std::u16string latin = u"DejaVu Sans";
  const std::pair<std::u16string, std::u16string> texts[] = {{u"O8&g\nÄr%", latin},
                                                             {u"看板", u"IPAMincho"}};
  for (const auto& [text, face] : texts) {
    for (const CurveForm curves : {CurveForm::kArcs, CurveForm::kLines, CurveForm::kCurves}) {
      const auto cut = CutOf(text, face, curves);
      const double height = kWidth * cut->ink.Height() / cut->ink.Width();
      CutPreview preview;
      preview.SetFrame(kWidth + 2 * kMargin, height + 2 * kMargin, 1);
      preview.SetDrawing(cut);
      const auto filled = preview.Paint(InksOn(kLight));
      const int rows = static_cast<int>(std::lround(height));
      const auto seen = Cropped(*filled, kMargin, kMargin, kWidth, rows);
      EXPECT_GT(Agreement(*cut, seen, PreviewLook::kFilled), 0.99);
      preview.SetLook(PreviewLook::kCutLines);
      PreviewInks inks = InksOn(kLight);
      inks.start = kLight;  // the marks hide a part of the lines
      const auto lines = preview.Paint(inks);
      EXPECT_GT(
          Agreement(*cut, Cropped(*lines, kMargin, kMargin, kWidth, rows), PreviewLook::kCutLines),
          0.93);
      if (face != latin) continue;
      const P2 in_o = preview.InFrame({cut->ink.min.x + 9, cut->ink.max.y - 10});
      EXPECT_EQ(At(*filled, in_o), kLight) << "the counter of the O is open";
    }
  }
}

TEST(CutPreviewTest, MarksStartsAndNodesInInksThatCanBeRead) {
  for (const Color paper : {kLight, kDark}) {
    const PreviewInks inks = InksOn(paper);
    CutPreview preview;
    preview.SetFrame(400, 300, 1);
    preview.SetDrawing(Plate());
    preview.SetLook(PreviewLook::kCutLines);
    const P2 start = preview.InFrame({5, 3}), arrow = start + P2{7, 0};
    const auto lines = preview.Paint(inks);
    EXPECT_EQ(At(*lines, start), inks.start);
    EXPECT_EQ(At(*lines, arrow), inks.start) << "to the right, where the path goes";
    EXPECT_NE(At(*lines, start + P2{0, -20}), paper);
    preview.SetLook(PreviewLook::kNodes);
    const auto nodes = preview.Paint(inks);
    EXPECT_EQ(At(*nodes, preview.InFrame({5, 3}) + P2{1, 1}), inks.corner);
    EXPECT_EQ(At(*nodes, preview.InFrame({25, 11})), inks.paper) << "open at the arc's end";
    for (const Color ink : {inks.start, inks.corner, inks.node, inks.control, inks.measure}) {
      EXPECT_EQ(LegibleOn(paper, ink), ink);
    }
    preview.SetFrame(60, 40, 1);
    preview.SetLook(PreviewLook::kFilled);
    for (int aci = 1; aci <= 255; ++aci) {
      DrawingStyle style;
      style.color = aci;
      preview.SetDrawing(Plate(), style);
      const Color seen = At(*preview.Paint(inks), {30, 20});
      EXPECT_EQ(LegibleOn(paper, seen), seen) << aci;
    }
  }
}

TEST(CutPreviewTest, MeasuresBetweenNodesNearTheClicks) {
  CutPreview preview;
  preview.SetFrame(640, 400, 1.75);
  preview.SetRulers(true);
  preview.SetDrawing(Plate());
  const P2 from = preview.InFrame({5, 3}), to = preview.InFrame({25, 11});
  EXPECT_FALSE(preview.MeasureMove(1, 1));
  preview.MeasureClick(from.x - 3, from.y + 4);
  EXPECT_TRUE(preview.MeasureMove(from.x + 100, from.y));
  preview.MeasureClick(to.x + 4, to.y - 3);
  ASSERT_TRUE(preview.measured() && preview.measured()->ended);
  EXPECT_EQ(preview.MeasuredText(), u"21.541 mm (x 20.000, y 8.000)");
  EXPECT_EQ(preview.PointText(from.x, from.y), u"5.000, 3.000 mm");
  EXPECT_EQ(preview.PointText(kRulerWidth - 1, 200), u"") << "on a ruler";
  preview.MeasureClick(from.x + 20, from.y - 30);  // far from any node
  EXPECT_FALSE(preview.measured()->ended);
  P2 there;
  ASSERT_TRUE(preview.PointAt(from.x + 20, from.y - 30, &there));
  EXPECT_EQ(preview.measured()->from, there);
  preview.SetDrawing(Plate(LengthUnit::kInch));
  EXPECT_EQ(preview.PointText(from.x, from.y), u"5.0000, 3.0000 in");
}

TEST(CutPreviewTest, ShowsTrueSize) {
  constexpr double kPerMm = 2;
  const struct {
    LengthUnit unit;
    double width;
  } cases[] = {{LengthUnit::kMillimetre, 40}, {LengthUnit::kInch, 40 * 25.4}};
  for (const auto& c : cases) {
    CutPreview preview;
    preview.SetFrame(1200, 300, 1);
    preview.SetDrawing(Plate(c.unit));
    preview.ShowTrueSize(kPerMm);
    EXPECT_FALSE(preview.shows_all());
    EXPECT_DOUBLE_EQ(preview.Percent(kPerMm), 100);
    const auto picture = preview.Paint(InksOn(kLight));
    const double y = preview.InFrame({0, 8}).y;
    int ink = 0;
    for (int x = 0; x < picture->Width(); ++x) ink += At(*picture, {x + 0.0, y}) != kLight;
    EXPECT_NEAR(ink, c.width, 1);
    preview.ZoomBy(1);
    EXPECT_DOUBLE_EQ(preview.Percent(kPerMm), 125);
  }
}

TEST(CutPreviewTest, RulersHaveTheirMarksWhereTheDrawingIs) {
  const struct {
    LengthUnit unit;
    double pixels, figures, marks;
  } steps[] = {{LengthUnit::kMillimetre, 4, 20, 2},
               {LengthUnit::kMillimetre, 0.01, 10000, 1000},
               {LengthUnit::kMillimetre, 500, 0.2, 0.02},
               {LengthUnit::kMillimetre, 12, 5, 0.5},
               {LengthUnit::kInch, 96, 1, 0.0625},
               {LengthUnit::kInch, 300, 0.25, 0.03125},
               {LengthUnit::kInch, 11.2, 5, 1}};
  for (const auto& s : steps) {
    const RulerSteps found = RulerStepsFor(s.unit, s.pixels);
    EXPECT_DOUBLE_EQ(found.figures, s.figures) << s.pixels;
    EXPECT_DOUBLE_EQ(found.marks, s.marks) << s.pixels;
  }
  EXPECT_EQ(RulerFigure(-12.5) + RulerFigure(-0.0) + RulerFigure(3 * 0.1) + RulerFigure(20000),
            "-12.500.320000");
  for (const double density : {1.0, 1.75}) {
    CutPreview preview;
    preview.SetFrame(640, 400, density);
    preview.SetRulers(true);
    preview.SetGrid(true);
    preview.SetDrawing(Plate());
    preview.ShowTrueSize(4);
    const PreviewInks inks = InksOn(kLight);
    const auto picture = preview.Paint(inks);
    const double row = std::round(kRulerWidth * density) - 6 * density;
    std::vector<double> expected, found;  // the long marks, to the right of the corner
    for (double x = -100; x < 200; x += 20) {
      const double at = std::floor(preview.InFrame({x, 0}).x * density);
      if (at >= kRulerWidth * density && at < picture->Width()) expected.push_back(at);
    }
    for (double x = std::round(kRulerWidth * density); x < picture->Width(); ++x) {
      if (At(*picture, {x, row}) == inks.ruler_ink) found.push_back(x);
    }
    EXPECT_EQ(found, expected) << density;
    EXPECT_EQ(At(*picture, {preview.InFrame({0, 0}).x * density, picture->Height() - 1.0}),
              inks.axis);
  }
}

}  // namespace
}  // namespace kerno
