#include "cli/cut_options.h"

#include <CLI/CLI.hpp>
#include <utility>

namespace kerno {

void CutOptions::AddTo(CLI::App& app) {
  app_ = &app;
  face_.AddTo(app, FaceOptions::Source::kFont);
  app.add_option("--stroke-font", stroke_font_,
                 "lines instead of outlines: a .jhf, .lff or SVG font, or the name of one "
                 "(kerno faces --strokes)")
      ->type_name("FILE|NAME");
  app.add_flag("--vertical", vertical_, "columns from top to bottom, the first one on the right");
  AddScriptOptions(app);
  AddSizeOptions(app);
  AddPathOptions(app);
  AddFileOptions(app);
}

void CutOptions::AddScriptOptions(CLI::App& app) {
  app.add_option("--fallback", fallbacks_,
                 "a family that gives the characters which the face lacks; repeat it for more")
      ->type_name("NAME")
      ->take_all()
      ->allow_extra_args(false);
  app.add_option("--language", language_, "of the text, such as ja or sr-Latn")->type_name("TAG");
  app.add_option("--direction", direction_,
                 "of each line; auto: that of its first letter with a direction")
      ->type_name("auto|ltr|rtl")
      ->capture_default_str();
  app.add_option("--tate-chu-yoko", across_digits_,
                 "--vertical: set numbers of up to N digits across the column")
      ->type_name("N")
      ->capture_default_str();
}

void CutOptions::AddSizeOptions(CLI::App& app) {
  app.add_option("--cap-height", cap_height_,
                 "height of capital letters (20mm unless a size is given)")
      ->type_name("L");
  app.add_option("--em", em_, "size of an em")->type_name("L");
  app.add_option("--fit", fit_, "size of the ink: W, xH or WxH, proportions kept")
      ->type_name("W|xH|WxH");
  app.add_flag("--stretch", stretch_, "--fit WxH fills both sides");
  app.add_option("--unit", unit_, "unit of the files")->type_name("mm|in")->capture_default_str();
  app.add_option("--align", align_, "of several lines")
      ->type_name("left|centre|right")
      ->capture_default_str();
  app.add_option("--line-spacing", line_spacing_, "multiplies the face's own distance of lines")
      ->type_name("F")
      ->capture_default_str();
  app.add_option("--letter-spacing", letter_spacing_, "added after each character")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--at", at_, "where the anchor of the ink's box lands")
      ->type_name("X,Y")
      ->capture_default_str();
  app.add_option("--anchor", anchor_,
                 "a point of the ink's box: top, middle or bottom, and left, "
                 "centre or right")
      ->type_name("bottom-left|...|top-right")
      ->capture_default_str();
  app.add_option("--angle", angle_, "turn by DEG degrees, counter-clockwise")
      ->type_name("DEG")
      ->capture_default_str();
  app.add_option("--slant", slant_, "lean to the right by DEG degrees")
      ->type_name("DEG")
      ->capture_default_str();
  app.add_flag("--mirror", mirror_, "left and right change places");
}

void CutOptions::AddPathOptions(CLI::App& app) {
  app.add_option("--curves", curves_, "what curves become")
      ->type_name("arcs|lines|curves")
      ->capture_default_str();
  app.add_option("--tolerance", tolerance_, "the farthest that a path strays from the true curve")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--weld", weld_, "join what overlaps: in the whole text, in each glyph, or not")
      ->type_name("text|glyph|off")
      ->capture_default_str();
  app.add_option(
         "--offset", offset_,
         "move outlines outwards, below 0 inwards, for the beam's width; curves become arcs")
      ->type_name("L")
      ->capture_default_str();
  app.add_option("--order", order_,
                 "counters before the contour around them, or as the text has them")
      ->type_name("inside-first|text")
      ->capture_default_str();
}

void CutOptions::AddFileOptions(CLI::App& app) {
  outputs_.AddTo(app);
  app.add_option("--dxf", dxf_, "version of DXF files")
      ->type_name("r2000|r12")
      ->capture_default_str();
  app.add_option("--layer", layer_, "name of the layer, or the first word of the layers' names")
      ->type_name("NAME")
      ->capture_default_str();
  app.add_option("--layers", layers_,
                 "one for all, or one for each glyph, line, or inside and outside")
      ->type_name("one|glyph|line|depth")
      ->capture_default_str();
  app.add_option("--colour", color_, "AutoCAD colour index of what is cut, 1 red to 255")
      ->type_name("N")
      ->capture_default_str();
  app.add_option("--svg-style", svg_style_, "SVG: hairlines to cut, or filled figures")
      ->type_name("cut|fill")
      ->capture_default_str();
}

void CutOptions::ForEachText(
    const std::function<void(const char* option, std::string* value)>& visit) {
  face_.ForEachText(visit);
  for (std::string& name : fallbacks_) visit("--fallback", &name);
  const std::pair<const char*, std::string*> values[] = {{"--stroke-font", &stroke_font_},
                                                         {"--language", &language_},
                                                         {"--direction", &direction_},
                                                         {"--tate-chu-yoko", &across_digits_},
                                                         {"--cap-height", &cap_height_},
                                                         {"--em", &em_},
                                                         {"--fit", &fit_},
                                                         {"--unit", &unit_},
                                                         {"--align", &align_},
                                                         {"--line-spacing", &line_spacing_},
                                                         {"--letter-spacing", &letter_spacing_},
                                                         {"--at", &at_},
                                                         {"--anchor", &anchor_},
                                                         {"--angle", &angle_},
                                                         {"--slant", &slant_},
                                                         {"--curves", &curves_},
                                                         {"--tolerance", &tolerance_},
                                                         {"--weld", &weld_},
                                                         {"--offset", &offset_},
                                                         {"--order", &order_},
                                                         {"--dxf", &dxf_},
                                                         {"--layer", &layer_},
                                                         {"--layers", &layers_},
                                                         {"--colour", &color_},
                                                         {"--svg-style", &svg_style_}};
  for (const auto& [option, value] : values) visit(option, value);
}

}  // namespace kerno
