// kerno faces: the faces that can be set.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/output_files.h"
#include "platform/font_faces.h"

namespace kerno {

class FacesCommand final : public Command {
 public:
  const char* Name() const override { return "faces"; }
  const char* Description() const override { return "list the installed faces"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

 private:
  ExitStatus ListStrokeFonts() const;
  bool CheckNames() const;
  ExitStatus ListNames() const;
  ExitStatus DescribeFile() const;
  bool ReadTexts();
  std::vector<std::u16string> Families() const;
  ExitStatus DrawSheet(const std::vector<std::u16string>& families) const;
  std::string Json(const std::vector<ListedFace>& listed) const;

  CLI::App* app_ = nullptr;
  OutputFiles outputs_;
  std::string covers_, sample_, font_file_, family_;
  std::u16string covered_, shown_;  // those texts
  bool json_ = false;
  bool vertical_ = false;
  bool skipped_ = false;
  bool strokes_ = false;
  bool names_ = false;
  bool styles_ = false;
  bool tags_ = false;
  bool axes_ = false;
};

}  // namespace kerno
