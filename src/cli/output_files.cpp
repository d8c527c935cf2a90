#include "cli/output_files.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <fstream>

#include "app/option_values.h"
#include "base/folders.h"
#include "base/text.h"
#include "cli/choices.h"
#include "cli/console.h"
#include "cli/scratch_path.h"
#include "export/export.h"
#include "platform/folder_path.h"
#include "platform/system.h"

namespace kerno {
namespace {

constexpr char kStandardOutput[] = "-";

// The failure of a scratch file, in words about standard output, which it is for.
Status ForStandardOutput(const Status& status, const ScratchPath& scratch) {
  const bool of_folder = !scratch.status().ok();
  if (!of_folder && status.what != PathText(scratch.path())) return status;
  const std::u16string folder = PathText(TempFolder());
  return Status::Error(status.failure, u"standard output",
                       (of_folder ? u"goes through the temporary folder (TMPDIR), "
                                  : u"its copy in the temporary folder (TMPDIR), ") +
                           folder + u": " + status.why);
}

// Nothing is printed before the whole output stands in a scratch file.
bool WriteToStandardOutput(const Format& format, const WriteFormat& write) {
  const ScratchPath scratch(format.extension);
  const Status status = scratch.status().ok() ? write(format, scratch.path()) : scratch.status();
  if (!status.ok()) {
    ReportError(ForStandardOutput(status, scratch));
    return false;
  }
  std::ifstream file(PathToOpen(scratch.ReadPath()), std::ios::binary);
  scratch.Remove();
  std::vector<char> chunk(1 << 16);
  while (file.read(chunk.data(), static_cast<std::streamsize>(chunk.size())) || file.gcount() > 0) {
    if (!Print({chunk.data(), static_cast<size_t>(file.gcount())})) return false;
  }
  if (!file.eof()) {
    ReportError("standard output", "its copy in the temporary folder cannot be read");
    return false;
  }
  return FinishPrinting();
}

}  // namespace

void OutputFiles::AddTo(CLI::App& app) {
  app.add_option("-o", files_,
                 "file to write, \"-\" for standard output; the extension chooses the format (" +
                     FormatNames() + ")")
      ->type_name("FILE")
      ->take_all()
      ->allow_extra_args(false);  // one file each, so that a text may follow
  app.add_option("--format", format_, "the format, whatever the files are called")
      ->type_name("NAME");
}

bool OutputFiles::Owns(std::string_view option) {
  return option == "-o" || option == "--format";
}

bool OutputFiles::Read() {
  if (files_.empty()) {
    ReportError("-o", "no file to write is given");
    return false;
  }
  for (const std::string& file : files_) {
    if (!AddOutput(file)) return false;
  }
  return true;
}

bool OutputFiles::AddOutput(const std::string& file) {
  if (file == kStandardOutput && format_.empty()) {
    ReportError("-o -", "needs --format");
    return false;
  }
  auto output = ReadOutput(file, format_);
  if (output) outputs_.push_back(std::move(*output));
  return output.has_value();
}

bool OutputFiles::Write(const OutputFile& output, const WriteFormat& write,
                        const WriteSummary& summary, WrittenFile* file) {
  using Clock = std::chrono::steady_clock;
  const auto start = summary.began.value_or(Clock::now());
  const std::filesystem::path path = PathArgument(output.name);
  const Status status = write(*output.format, path);
  if (!status.ok()) {
    ReportError(status);
    return false;
  }
  const PathFacts facts = FactsOfPath(path);
  file->name = output.name;
  file->bytes = facts.kind == PathKind::kFile ? facts.size : 0;
  file->milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  return true;
}

bool OutputFiles::UsesStandardOutput() const {
  return std::ranges::any_of(
      outputs_, [](const OutputFile& output) { return output.name == kStandardOutput; });
}

bool OutputFiles::WriteAll(const WriteFormat& write, const WriteSummary& summary,
                           std::vector<WrittenFile>* written) const {
  bool all_written = true, all_told = true;
  const bool quiet = summary.quiet || UsesStandardOutput();  // the lines would stand in the output
  for (const OutputFile& output : outputs_) {
    if (output.name == kStandardOutput) {
      all_written &= WriteToStandardOutput(*output.format, write);
      continue;
    }
    WrittenFile file;
    if (!Write(output, write, summary, &file)) {
      all_written = false;
      continue;
    }
    if (written) written->push_back(file);
    if (quiet) continue;
    std::string line = output.name + ": " + summary.text;
    if (file.bytes > 0) line += ", " + std::to_string(file.bytes) + " bytes";
    all_told &= PrintLine(line + ", " + std::to_string(file.milliseconds) + " ms");
  }
  all_told &= FinishPrinting();
  if (all_written && !all_told && !UsesStandardOutput()) {
    ReportError("output", "every file is whole; only the summary could not be printed");
  }
  return all_written && all_told;
}

void WriterOptions::AddTo(CLI::App& app) {
  app.add_option("--dxf-layers", dxf_layers_,
                 "DXF layers: by name, or by colour where an element has no name")
      ->type_name(ChoiceText(kDxfLayerChoices))
      ->capture_default_str();
  app.add_option("--aci", aci_, "DXF colour index: by the classic rule, or the nearest colour")
      ->type_name(ChoiceText(kAciChoices))
      ->capture_default_str();
  app.add_option("--units", units_, "SVG: with a size on paper, one unit a millimetre")
      ->type_name(ChoiceText(kUnitsChoices))
      ->capture_default_str();
  app.add_option("--size", size_, "size of a bitmap in pixels (one unit is one pixel)")
      ->type_name("WxH");
}

bool WriterOptions::Owns(std::string_view option) {
  for (const std::string_view mine : {"--dxf-layers", "--aci", "--units", "--size"}) {
    if (option == mine) return true;
  }
  return false;
}

bool WriterOptions::Read() {
  options_.program = PathText(CurrentSystem().ProgramPath());
  return Choose(kDxfLayerChoices, dxf_layers_, &options_.dxf.layers) &&
         Choose(kAciChoices, aci_, &options_.dxf.aci) &&
         Choose(kUnitsChoices, units_, &options_.svg.millimetres) && (size_.empty() || ReadSize());
}

bool WriterOptions::ReadSize() {
  const size_t cross = size_.find('x');
  if (cross == size_.npos) {
    ReportError("--size", "\"" + size_ + "\" is not a size WxH");
    return false;
  }
  const auto width = WholeNumber("--size", size_.substr(0, cross), 1, kMaxBmpSide);
  const auto height =
      width ? WholeNumber("--size", size_.substr(cross + 1), 1, kMaxBmpSide) : std::nullopt;
  if (!height) return false;
  options_.bmp.width = *width;
  options_.bmp.height = *height;
  return true;
}

}  // namespace kerno
