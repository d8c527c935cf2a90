// kerno upload: posts files to the server that the uploader's settings name.
#pragma once

#include <string>
#include <vector>

#include "cli/command.h"

namespace kerno {

class UploadCommand final : public Command {
 public:
  const char* Name() const override { return "upload"; }
  const char* Description() const override { return "post files to a server"; }
  void AddOptions(CLI::App& app) override;
  ExitStatus Run() override;

  // What the help says of the server, whose settings are in `file`.
  static std::string ServerNote(const std::string& file);

 private:
  std::vector<std::string> files_;
};

}  // namespace kerno
