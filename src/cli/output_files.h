// The files that one run writes: which formats, where, and how.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/command.h"
#include "export/formats.h"
#include "parts/parts.h"

namespace kerno {

class OutputFiles {
 public:
  void AddTo(CLI::App& app);

  // Whether an option, by its name, is one of these.
  static bool Owns(std::string_view option);

  // Checks the names and choices; what is wrong is reported.
  bool Read();

  // Writes every file and prints a line for each: its path, `summary`, its size and time. False
  // when one could not be written; the others are written all the same.
  bool WriteAll(const PartsA& model, const std::string& summary, bool quiet) const;

 private:
  struct Output {
    std::string name;  // as given; "-" is standard output
    const Format* format;
  };

  bool AddOutput(const std::string& file);
  bool ReadSize();
  bool Write(const Output& output, const PartsA& model, const std::string& summary,
             bool quiet) const;

  std::vector<std::string> files_;
  std::string format_;
  std::string dxf_layers_ = "name";
  std::string aci_ = "classic";
  std::string units_ = "none";
  std::string size_;
  std::vector<Output> outputs_;
  OutputOptions options_;
};

}  // namespace kerno
