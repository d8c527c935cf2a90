#include "app/system_services.h"

#include <string>

#include "app/background.h"
#include "app/dialog_settings.h"
#include "app/font_face_list.h"
#include "base/file_wait.h"
#include "base/launch.h"
#include "base/stop.h"
#include "base/text.h"
#include "base/version_info.h"
#include "export/export.h"
#include "parts/ipx.h"
#include "platform/font_faces.h"
#include "platform/system.h"
#include "platform/system_facts.h"
#include "web/output_run.h"
#include "web/upload_profile.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kMostMarks = 16;

// Faces that can be outlined; the "@" check box puts the "@" in front.
class OutlineFaces final : public FontFaceList {
 public:
  using FontFaceList::FontFaceList;

 private:
  int WantTrueTypeOnly() const override { return 1; }
  int ExcludeVerticalFaces() const override { return 1; }
};

}  // namespace

SystemServices::SystemServices() : cache_(TempFolder(), PathText(CurrentSystem().ProgramPath())) {}

std::unique_ptr<DeviceContext> SystemServices::CreateMeasuringContext() {
  return kerno::CreateMeasuringContext();
}

std::vector<std::u16string> SystemServices::Faces() {
  OutlineFaces list(this);
  list.Enumerate();
  return list.Entries();
}

Status SystemServices::LoadFontFile(const fs::path& file, std::vector<std::u16string>* faces) {
  return AddFontFile(file, faces);
}

DialogMemory SystemServices::Load() {
  loaded_ = LoadDialogMemory();
  return loaded_;
}

Status SystemServices::Save(const DialogMemory& memory) {
  Status saved = SaveDialogMemory(memory, loaded_);
  if (saved.ok()) loaded_ = memory;
  return saved;
}

std::u16string SystemServices::LoadSavedText() {
  return LoadDialogText();
}

Status SystemServices::SaveText(std::u16string_view text) {
  return SaveDialogText(text);
}

// Each run holds the first mark that is free, a file of its own.
int SystemServices::WindowsBefore() {
  if (windows_before_) return *windows_before_;
  const fs::path folder = OwnTempFolder();
  windows_before_ = 0;
  if (folder.empty()) return 0;
  for (int number = 0; number < kMostMarks; ++number) {
    const fs::path mark = folder / ("Kerno-window-" + std::to_string(number));
    (void)CreateNewFile(mark, "");  // it may stand there from an earlier run
    Status status = Status::Ok();
    window_mark_ = HeldFile::Open(mark, Deny::kAll, &status);
    if (window_mark_) windows_before_ = number;
    if (window_mark_ || status.failure != Failure::kSharingViolation) break;
  }
  return *windows_before_;
}

fs::path SystemServices::DefaultOutputFolder() {
  const fs::path temp = OwnTempFolder();
  return temp.empty() ? temp : temp / "Kerno.tmp";
}

bool SystemServices::OpenFolder(const fs::path& folder) {
  LaunchRequest request;
  // With a separator at the end: a shell may take the bare name for that of a program beside it
  // ("Drawings" for "Drawings.exe").
  request.file = folder.has_filename() ? folder / "" : folder;
  return Launch(&request);
}

Status SystemServices::WriteBytes(const fs::path& file, std::string_view bytes) {
  return ReplaceWhenFree(file, bytes);
}

Status SystemServices::Write(const Format& format, const PartsA& parts,
                             const OutputOptions& options, const fs::path& file) {
  OutputOptions own = options;
  own.program = PathText(CurrentSystem().ProgramPath());
  own.after_export = [this](const PartsA& model, const fs::path& written) {
    cache_.KeepCopy(model, written);
  };
  const auto write = [&] {
    if (format.dispatch == Format::Dispatch::kNever) return format.write(parts, file, own);
    Status status = Status::Ok();
    Export(parts, file, own, &status);
    return status;
  };
  const Background* const work = Background::OfThisThread();
  return RunStoppable([work] { return work && work->IsCancelled(); }, PathText(file), write);
}

Status SystemServices::ReadParts(const fs::path& file, PartsA* parts) {
  return ReadIpxFile(file, parts);
}

Status SystemServices::BuildPage(const PageRequest& request, fs::path* page) {
  const fs::path base = fs::path(request.base_path).replace_extension();
  *page = PageOfRun(base);
  return WriteOutputPage(base, {request.text, request.face, request.height});
}

Status SystemServices::RefreshPage(const fs::path& base_path) {
  return RefreshOutputPage(fs::path(base_path).replace_extension());
}

bool SystemServices::CanUpload() {
  return UploadIsConfigured();
}

Status SystemServices::Upload(const std::vector<fs::path>& files, std::u16string* answer) {
  for (const fs::path& file : files) {
    const UploadResult result = UploadFile(file);
    *answer = result.message;
    if (!result.ok()) return Status::Error(Failure::kOther, result.message, u"");
  }
  return Status::Ok();
}

std::u16string SystemServices::TextLocale() {
  return kerno::TextLocale();
}

void SystemServices::AboutTexts(std::u16string* version, std::u16string* copyright) {
  const kerno::AboutTexts texts = ReadAboutTexts();
  *version = texts.version;
  *copyright = texts.copyright;
}

}  // namespace kerno
