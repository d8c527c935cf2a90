// What a cut is told beside its text, as options of a command, and the files that it writes.
#pragma once

#include "app/cut_texts.h"
#include "cli/command.h"
#include "cli/output_files.h"

namespace kerno {

class CutOptions {
 public:
  void AddTo(CLI::App& app);

  // Checks the names of files and the format; what is wrong is reported.
  bool ReadOutputs() { return outputs_.Read(); }
  // Checks all other values, and that they go with the files. The job then
  // lacks its text.
  bool ReadJob();

  const OutputFiles& outputs() const { return outputs_; }
  // The values, with those that are given.
  CutTexts Texts() const;
  const CutJob& job() const { return job_; }
  const DrawingStyle& style() const { return style_; }
  // Whether the face is left to the system.
  bool FaceIsOpen() const { return texts_.FaceIsOpen(); }

  // Writes what was made of the job.
  Status Write(const CutDrawing& made, const Format& format,
               const std::filesystem::path& file) const {
    return WriteCut(job_, made, style_, format, file);
  }

 private:
  void AddScriptOptions(CLI::App& app);
  void AddSizeOptions(CLI::App& app);
  void AddPathOptions(CLI::App& app);
  void AddFileOptions(CLI::App& app);

  CLI::App* app_ = nullptr;
  CutTexts texts_;
  OutputFiles outputs_;
  CutJob job_;
  DrawingStyle style_;
};

}  // namespace kerno
