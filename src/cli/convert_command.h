// kerno convert: a text as outline files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "app/rebuild.h"
#include "cli/text_options.h"
#include "export/export.h"

namespace kerno {

class ConvertCommand final : public Command {
 public:
  const char* Name() const override { return "convert"; }
  const char* Description() const override { return "write the outlines of a text to files"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  struct Output {
    std::filesystem::path path;
    ExportFormat format;
  };

  bool ReadChoices();
  bool ReadOutputs();
  bool Write(const Output& output, const SetText& set, const PartsA& parts) const;

  TextOptions text_;
  std::vector<std::string> files_;
  std::string elements_ = "lines";
  std::string layer_ = "Kerno";
  std::string dxf_layers_ = "name";
  std::string aci_ = "classic";
  std::vector<Output> outputs_;
  RebuildOptions rebuild_;
  ExportOptions export_;
};

}  // namespace kerno
