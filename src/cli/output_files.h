// The files that one run writes: which formats, where, and how.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/output_list.h"
#include "cli/command.h"
#include "export/formats.h"
#include "parts/parts.h"

namespace kerno {

// Writes what a command made in a format to a file.
using WriteFormat = std::function<Status(const Format& format, const std::filesystem::path& file)>;

// What is told of each file.
struct WriteSummary {
  std::string text;
  bool quiet = false;
  // When the work on what is written began; without it the time of writing alone is told.
  std::optional<std::chrono::steady_clock::time_point> began = {};
};

class OutputFiles {
 public:
  void AddTo(CLI::App& app);

  // Whether an option, by its name, is one of these.
  static bool Owns(std::string_view option);

  // Checks the names and choices; what is wrong is reported.
  bool Read();

  // Writes every file and prints a line for each: its path, the summary, its size and time. False
  // when one could not be written; the others are written all the same. `written` tells of those
  // that are, but for standard output.
  bool WriteAll(const WriteFormat& write, const WriteSummary& summary,
                std::vector<WrittenFile>* written = nullptr) const;

  // Whether one of the outputs is standard output, so that nothing else may be printed there.
  bool UsesStandardOutput() const;

  // What Read has found; "-" is standard output.
  const OutputList& outputs() const { return outputs_; }

 private:
  bool AddOutput(const std::string& file);
  static bool Write(const OutputFile& output, const WriteFormat& write, const WriteSummary& summary,
                    WrittenFile* file);

  std::vector<std::string> files_;
  std::string format_;
  OutputList outputs_;
};

// What the writers of the parts model are told.
class WriterOptions {
 public:
  void AddTo(CLI::App& app);
  static bool Owns(std::string_view option);
  // Checks the choices; what is wrong is reported.
  bool Read();

  const OutputOptions& options() const { return options_; }

 private:
  bool ReadSize();

  std::string dxf_layers_ = "name";
  std::string aci_ = "classic";
  std::string units_ = "none";
  std::string size_;
  OutputOptions options_;
};

}  // namespace kerno
