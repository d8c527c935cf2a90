#include "app/outputs.h"

#include <algorithm>
#include <system_error>

#include "app/captions.h"
#include "app/output_name.h"
#include "app/rtf_writer.h"
#include "base/folders.h"
#include "base/text.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

Status MakeOutputFolder(const fs::path& folder) {
  if (folder.empty()) {
    return Status::Error(Failure::kNotFound, u"Kerno.tmp",
                         u"there is no temporary folder of the user's own; choose another folder");
  }
  Status made = MakeFolders(folder);
  if (made.ok()) return made;
  return Status::Error(Failure::kOther, PathText(folder),
                       Say(u"the folder of the outputs cannot be made: {}", {Say(made.why)}));
}

}  // namespace

bool open_folder_on_first_save = true;

void Outputs::SetFolder(fs::path folder) {
  if (folder == folder_) return;
  folder_ = std::move(folder);
  base_path_.clear();
  written_.clear();
  made_of_.clear();
}

bool Outputs::MakeBasePath(const OutputSubject& subject) {
  replaced_another_ = false;
  if (!base_path_.empty()) {
    // Scratch folders are emptied behind a long run's back.
    const Status made = MakeOutputFolder(folder_);
    if (!made.ok()) notifier_.FileWritten(base_path_, made);
    return made.ok();
  }
  const fs::path path =
      folder_ / TextPath(OutputBaseName(subject.face, subject.height, subject.text) + u".rtf");
  Status result = MakeOutputFolder(folder_);
  if (result.ok()) {
    const RtfOptions options = {.face = subject.face, .color = subject.color};
    result = services_.WriteBytes(path, RtfDocument(subject.text, options));
  }
  if (result.ok()) base_path_ = path;
  notifier_.FileWritten(path, result);
  if (!result.ok()) return false;
  return true;
}

bool Outputs::Write(const Format& format, const PartsA& parts, const OutputOptions& options,
                    const OutputSubject& subject) {
  if (!MakeBasePath(subject)) return false;
  WriteOne(format, parts, options, subject);
  bool page_is_new = false;
  for (const std::string_view next : format.followed_by) {
    page_is_new = next == kPageExtension;
    if (page_is_new) {
      BuildPage(subject);
    } else if (const Format* follower = FindFormat(Utf8ToUtf16Lossy(next))) {
      WriteOne(*follower, parts, options, subject);
    }
  }
  if (!page_is_new) {
    const Status refreshed = services_.RefreshPage(base_path_);
    if (!refreshed.ok()) {
      notifier_.FileWritten(OutputPath(base_path_, Utf8ToUtf16Lossy(kPageExtension)), refreshed);
    }
  }
  return true;
}

bool Outputs::WritePage(const OutputSubject& subject) {
  if (!MakeBasePath(subject)) return false;
  BuildPage(subject);
  return true;
}

void Outputs::WriteOne(const Format& format, const PartsA& parts, const OutputOptions& options,
                       const OutputSubject& subject) {
  const fs::path file = OutputPath(base_path_, Utf8ToUtf16Lossy(format.extension));
  const Status result = services_.Write(format, parts, options, file);
  if (result.ok()) LearnSource(file, subject);
  Keep(file, result);
}

void Outputs::LearnSource(const fs::path& file, const OutputSubject& subject) {
  const auto [entry, is_new] = made_of_.try_emplace(file, subject.made_of);
  if (is_new || entry->second == subject.made_of) return;
  entry->second = subject.made_of;
  replaced_another_ = true;
}

void Outputs::BuildPage(const OutputSubject& subject) {
  fs::path page = OutputPath(base_path_, Utf8ToUtf16Lossy(kPageExtension));
  const Status result = services_.BuildPage({.base_path = base_path_,
                                             .text = subject.text,
                                             .face = subject.face,
                                             .height = subject.height},
                                            &page);
  Keep(page, result);
}

void Outputs::Keep(const fs::path& file, const Status& result) {
  if (result.ok() && std::find(written_.begin(), written_.end(), file) == written_.end()) {
    written_.push_back(file);
  }
  if (file.extension() == ".emf") {
    notifier_.MetafileWritten(file, result);
  } else {
    notifier_.FileWritten(file, result);
  }
}

}  // namespace kerno
