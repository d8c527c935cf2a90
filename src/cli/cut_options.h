// What a cut is told beside its text: the face, sizes, paths and files, as options of a command.
//
// The values are texts until they are read, and a copy can be given others: the rows of a series
// fill theirs.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "app/cut.h"
#include "cli/face_options.h"
#include "cli/output_files.h"
#include "export/drawing_style.h"

namespace kerno {

class CutOptions {
 public:
  void AddTo(CLI::App& app);

  // Calls `visit` with every value beside names of files to write and its option, always in the
  // same order.
  void ForEachText(const std::function<void(const char* option, std::string* value)>& visit);

  // Checks the names of files and the format; what is wrong is reported.
  bool ReadOutputs() { return outputs_.Read(); }
  // Checks all other values, once for each object, and that they go with the files. The job then
  // lacks its text.
  bool ReadJob();

  const OutputFiles& outputs() const { return outputs_; }
  const CutJob& job() const { return job_; }
  const DrawingStyle& style() const { return style_; }
  // Whether the face is left to the system.
  bool FaceIsOpen() const { return face_.IsOpen() && job_.stroke_font.empty(); }

  // Writes what was made of the job.
  Status Write(const CutDrawing& made, const Format& format,
               const std::filesystem::path& file) const;

 private:
  void AddScriptOptions(CLI::App& app);
  void AddSizeOptions(CLI::App& app);
  void AddPathOptions(CLI::App& app);
  void AddFileOptions(CLI::App& app);
  bool ReadScripts();
  bool ReadSize();
  bool ReadPlace();
  bool ReadPaths();
  bool ReadStyle();
  bool ReadStrokeFont();
  bool GoTogether() const;

  CLI::App* app_ = nullptr;
  FaceOptions face_;
  OutputFiles outputs_;
  std::string stroke_font_, language_, direction_ = "auto", across_digits_ = "0";
  std::vector<std::string> fallbacks_;
  bool vertical_ = false, stretch_ = false, mirror_ = false;
  std::string cap_height_, em_, fit_;
  std::string unit_ = "mm", align_ = "left", line_spacing_ = "1", letter_spacing_ = "0";
  std::string at_ = "0,0", anchor_ = "bottom-left", angle_ = "0", slant_ = "0";
  std::string curves_ = "arcs", tolerance_ = "0.01mm", weld_ = "text", offset_ = "0";
  std::string order_ = "inside-first";
  std::string dxf_ = "r2000", layer_ = "Cut", layers_ = "one", color_ = "1", svg_style_ = "cut";
  CutJob job_;
  DrawingStyle style_;
};

}  // namespace kerno
