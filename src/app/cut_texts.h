// What a cut is told beside its text, as texts: the face, sizes, paths and layers as the options of
// `kerno cut` and the fields of the window's Cut page hold them.
//
// They are texts until they are read, and a copy can be given others: the rows of a series fill
// theirs.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "app/cut.h"
#include "app/face_texts.h"
#include "export/drawing_style.h"
#include "export/formats.h"

namespace kerno {

struct CutTexts {
  FaceTexts face;
  std::string stroke_font, language, direction = "auto", across_digits = "0";
  std::vector<std::string> fallbacks;
  bool vertical = false, stretch = false, mirror = false;
  std::string cap_height, em, fit;
  std::string unit = "mm", align = "left", line_spacing = "1", letter_spacing = "0";
  std::string at = "0,0", anchor = "bottom-left", angle = "0", slant = "0";
  std::string curves = "arcs", tolerance = "0.01mm", weld = "text", offset = "0";
  std::string order = "inside-first";
  std::string dxf = "r2000", layer = "Cut", layers = "one", color = "1", svg_style = "cut";
  GivenOptions given;

  // Calls `visit` with every value and its option ("--fit"), flags left out, always in the same
  // order.
  void ForEachText(const std::function<void(const char* option, std::string* value)>& visit);
  void ForEachFlag(const std::function<void(const char* option, bool* value)>& visit);

  // Gives an option a value; that of a flag is "on" or "off", --fallback takes one more at each
  // call. False where there is no such option.
  bool Set(std::string_view option, std::string value);
  // The option has its default again.
  void Unset(std::string_view option);
  bool IsGiven(std::string_view option) const { return given.contains(option); }

  // Whether the face is left to the system.
  bool FaceIsOpen() const { return face.IsOpen() && stroke_font.empty(); }
};

// Whether a file of a format, by its extension, is wanted.
using WantsFormat = std::function<bool(std::string_view extension)>;

// Checks all values, and that they go with each other and with the files. What is wrong is reported
// under the option's name. The job then lacks its text.
[[nodiscard]] bool ReadCut(const CutTexts& texts, const WantsFormat& wants, CutJob* job,
                           DrawingStyle* style);

// Writes what was made of such a job.
[[nodiscard]] Status WriteCut(const CutJob& job, const CutDrawing& made, const DrawingStyle& style,
                              const Format& format, const std::filesystem::path& file);

}  // namespace kerno
