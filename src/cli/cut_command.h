// kerno cut: a text as files that a machine cuts as they are.
#pragma once

#include <string>
#include <vector>

#include "app/cut.h"
#include "cli/face_options.h"
#include "cli/output_files.h"
#include "cli/text_source.h"
#include "export/drawing_style.h"

namespace kerno {

class CutCommand final : public Command {
 public:
  const char* Name() const override { return "cut"; }
  const char* Description() const override {
    return "write a text as closed paths of true size, ready for a machine";
  }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  void AddScriptOptions(CLI::App& app);
  void AddSizeOptions(CLI::App& app);
  void AddPathOptions(CLI::App& app);
  void AddFileOptions(CLI::App& app);
  bool ReadJob();
  bool GoTogether() const;
  bool ReadScripts();
  bool ReadSize();
  bool ReadPlace();
  bool ReadPaths();
  bool ReadStyle();
  bool ReadStrokeFont();
  Status Write(const CutDrawing& made, const Format& format,
               const std::filesystem::path& file) const;

  CLI::App* app_ = nullptr;
  TextSource source_;
  FaceOptions face_;
  OutputFiles outputs_;
  std::string stroke_font_, language_, direction_ = "auto", across_digits_ = "0";
  std::vector<std::string> fallbacks_;
  bool vertical_ = false, strict_ = false, quiet_ = false, json_ = false;
  bool stretch_ = false, mirror_ = false;
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
