// kerno convert: a text, or a parts file, as outline files.
#pragma once

#include <string>

#include "app/job.h"
#include "cli/output_files.h"
#include "cli/text_options.h"

namespace kerno {

class ConvertCommand final : public Command {
 public:
  const char* Name() const override { return "convert"; }
  const char* Description() const override {
    return "write the outlines of a text to files: the rasteriser's, hinted to whole units (cut "
           "writes the "
           "font's own)";
  }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  bool ReadChoices();
  ExitStatus BuildFromText(PartsA* model, std::string* summary);
  ExitStatus ReadParts(PartsA* model, std::string* summary) const;

  TextOptions text_;
  OutputFiles outputs_;
  WriterOptions writers_;
  std::string elements_ = "lines";
  std::string layer_ = "Kerno";
  std::string ipx_;
  PartsOptions parts_;
  CLI::App* app_ = nullptr;
};

}  // namespace kerno
