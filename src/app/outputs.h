// The outputs of a run: one base path, the writers behind the buttons, and what follows what.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "app/dialog_services.h"
#include "export/formats.h"
#include "parts/parts.h"

namespace kerno {

// Told after each output whether it succeeded or not; `result` says which.
class OutputNotifier {
 public:
  virtual ~OutputNotifier() = default;
  virtual void MetafileWritten(const std::filesystem::path& metafile, const Status& result) = 0;
  virtual void FileWritten(const std::filesystem::path& file, const Status& result) = 0;
};

// What names the outputs and stands in the copy of the text.
struct OutputSubject {
  std::u16string face;  // "@" in front for vertical writing
  std::u16string height;
  std::u16string text;
  std::u16string made_of;  // what the drawing shows: the text, or the name of a parts file
  Color color = 0;
};

// The first output of a process opens its folder in the shell; tests set this again.
extern bool open_folder_on_first_save;

// The base path stays what the first output of the run made it, even when the text changes
// afterwards: the outputs of one run stay together.
class Outputs {
 public:
  Outputs(DialogServices& services, OutputNotifier& notifier)
      : services_(services), notifier_(notifier) {}

  // Where the outputs go. Another folder begins another run.
  void SetFolder(std::filesystem::path folder);
  const std::filesystem::path& folder() const { return folder_; }

  // Writes an output and what follows it (Format::followed_by), or the page alone. Nothing is
  // shown; the notifier hears of each file. False when the base path could not be made, and then
  // nothing else was tried.
  bool Write(const Format& format, const PartsA& parts, const OutputOptions& options,
             const OutputSubject& subject);
  bool WritePage(const OutputSubject& subject);

  const std::filesystem::path& base_path() const { return base_path_; }

  // Whether the last Write replaced a file of this run that was made of something else.
  bool replaced_another() const { return replaced_another_; }

  // The files of this run that were written, in order, each once.
  const std::vector<std::filesystem::path>& written() const { return written_; }

 private:
  bool MakeBasePath(const OutputSubject& subject);
  void WriteOne(const Format& format, const PartsA& parts, const OutputOptions& options,
                const OutputSubject& subject);
  void BuildPage(const OutputSubject& subject);
  void Keep(const std::filesystem::path& file, const Status& result);
  void LearnSource(const std::filesystem::path& file, const OutputSubject& subject);

  DialogServices& services_;
  OutputNotifier& notifier_;
  std::filesystem::path folder_;
  std::filesystem::path base_path_;
  std::vector<std::filesystem::path> written_;
  std::map<std::filesystem::path, std::u16string> made_of_;  // of the files of this run
  bool replaced_another_ = false;
};

}  // namespace kerno
