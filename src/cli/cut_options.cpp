#include "cli/cut_options.h"

#include <CLI/CLI.hpp>

#include "app/cut_choices.h"
#include "cli/face_options.h"

namespace kerno {

void CutOptions::AddTo(CLI::App& app) {
  app_ = &app;
  AddFaceOptions(app, FaceSource::kFont, &texts_.face);
  app.add_option("--stroke-font", texts_.stroke_font,
                 "lines instead of outlines: a .jhf, .lff or SVG font, or the name of one "
                 "(kerno faces --strokes)")
      ->type_name("FILE|NAME");
  app.add_flag("--vertical", texts_.vertical,
               "columns from top to bottom, the first one on the right");
  AddScriptOptions(app);
  AddSizeOptions(app);
  AddPathOptions(app);
  AddFileOptions(app);
}

void CutOptions::AddScriptOptions(CLI::App& app) {
  app.add_option("--fallback", texts_.fallbacks,
                 "a family that gives the characters which the face lacks; repeat it for more")
      ->type_name("NAME")
      ->take_all()
      ->allow_extra_args(false);
  app.add_option("--language", texts_.language, "of the text, such as ja or sr-Latn")
      ->type_name("TAG");
  app.add_option("--direction", texts_.direction,
                 "of each line; auto: that of its first letter with a direction")
      ->type_name(ChoiceText(kDirectionChoices))
      ->capture_default_str();
  app.add_option("--tate-chu-yoko", texts_.across_digits,
                 "--vertical: set numbers of up to N digits across the column")
      ->type_name("N")
      ->capture_default_str();
}

void CutOptions::AddSizeOptions(CLI::App& app) {
  app.add_option("--cap-height", texts_.cap_height,
                 "height of capital letters (20mm unless a size is given)")
      ->type_name("L");
  app.add_option("--em", texts_.em, "size of an em")->type_name("L");
  app.add_option("--fit", texts_.fit, "size of the ink: W, xH or WxH, proportions kept")
      ->type_name("W|xH|WxH");
  app.add_flag("--stretch", texts_.stretch, "--fit WxH fills both sides");
  app.add_option("--unit", texts_.unit, "unit of the files")
      ->type_name(ChoiceText(kUnitChoices))
      ->capture_default_str();
  app.add_option("--align", texts_.align, "of several lines")
      ->type_name(ChoiceText(kAlignChoices))
      ->capture_default_str();
  app.add_option("--line-spacing", texts_.line_spacing,
                 "multiplies the face's own distance of lines")
      ->type_name("F")
      ->capture_default_str();
  app.add_option("--letter-spacing", texts_.letter_spacing, "added after each character")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--at", texts_.at, "where the anchor of the ink's box lands")
      ->type_name("X,Y")
      ->capture_default_str();
  app.add_option("--anchor", texts_.anchor,
                 "a point of the ink's box: top, middle or bottom, and left, "
                 "centre or right")
      ->type_name("bottom-left|...|top-right")
      ->capture_default_str();
  app.add_option("--angle", texts_.angle, "turn by DEG degrees, counter-clockwise")
      ->type_name("DEG")
      ->capture_default_str();
  app.add_option("--slant", texts_.slant, "lean to the right by DEG degrees")
      ->type_name("DEG")
      ->capture_default_str();
  app.add_flag("--mirror", texts_.mirror, "left and right change places");
}

void CutOptions::AddPathOptions(CLI::App& app) {
  app.add_option("--curves", texts_.curves, "what curves become")
      ->type_name(ChoiceText(kCurveChoices))
      ->capture_default_str();
  app.add_option("--tolerance", texts_.tolerance,
                 "the farthest that a path strays from the true curve")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--weld", texts_.weld,
                 "join what overlaps: in the whole text, in each glyph, or not")
      ->type_name(ChoiceText(kWeldChoices))
      ->capture_default_str();
  app.add_option(
         "--offset", texts_.offset,
         "move outlines outwards, below 0 inwards, for the beam's width; curves become arcs")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--order", texts_.order,
                 "counters before the contour around them, or as the text has them")
      ->type_name(ChoiceText(kOrderChoices))
      ->capture_default_str();
}

void CutOptions::AddFileOptions(CLI::App& app) {
  outputs_.AddTo(app);
  app.add_option("--dxf", texts_.dxf, "version of DXF files")
      ->type_name(ChoiceText(kDxfChoices))
      ->capture_default_str();
  app.add_option("--layer", texts_.layer,
                 "name of the layer, or the first word of the layers' names")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_option("--layers", texts_.layers,
                 "one for all, or one for each glyph, line, or inside and outside")
      ->type_name(ChoiceText(kLayersChoices))
      ->capture_default_str();
  app.add_option("--colour", texts_.color, "AutoCAD colour index of what is cut, 1 red to 255")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--svg-style", texts_.svg_style, "SVG: hairlines to cut, or filled figures")
      ->type_name(ChoiceText(kSvgStyleChoices))
      ->capture_default_str();
}

CutTexts CutOptions::Texts() const {
  CutTexts texts = texts_;
  const auto learn = [&](const char* option) {
    if (app_->count(option) > 0) texts.given.emplace(option);
  };
  texts.ForEachFlag([&](const char* option, const bool*) { learn(option); });
  texts.ForEachText([&](const char* option, const std::string*) { learn(option); });
  return texts;
}

bool CutOptions::ReadJob() {
  const auto wants = [this](std::string_view extension) {
    return HasFormat(outputs_.outputs(), extension);
  };
  return ReadCut(Texts(), wants, &job_, &style_);
}

}  // namespace kerno
