#include "web/upload_profile.h"

#include "base/file_wait.h"
#include "base/text.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"
#include "platform/private_profile.h"
#include "platform/system.h"

namespace kerno {
namespace {

constexpr size_t kMostOfValue = 10'000;

}  // namespace

std::filesystem::path UploadSettingsFile() {
  const auto drive = CurrentDrive();
  const std::filesystem::path folder =
      drive ? *drive / "Temp" / "Quenkit" / "_Setting" : CurrentSystem().ConfigFolder();
  return folder.empty() ? folder : folder / "UpFile.ini";
}

int32_t UploadProfile::GetInt(std::u16string_view section, std::u16string_view key,
                              int32_t default_value) {
  const auto value = ReadProfileString(file_, section, key, kMostOfValue);
  return value ? ParseProfileInt(*value) : default_value;
}

std::u16string UploadProfile::GetStr(std::u16string_view section, std::u16string_view key,
                                     std::u16string_view default_value) {
  return ReadProfileString(file_, section, key, kMostOfValue)
      .value_or(std::u16string(default_value));
}

bool UploadIsConfigured() {
  UploadProfile profile(UploadSettingsFile());
  return Uploader(profile, UploadSettingsFile(), SystemHttpSession()).IsConfigured();
}

UploadResult UploadFile(const std::filesystem::path& file, const std::filesystem::path& settings) {
  const Status readable = WaitForFile(settings, FileWait::kRead, [&] {
    std::string start;
    return PeekFile(settings, &start, 1);
  });
  UploadProfile profile(settings);
  UploadResult result = Uploader(profile, settings, SystemHttpSession()).Upload(file);
  // A file that cannot be read says nothing, which is not that no server is set in it.
  const bool unreadable = !readable.ok() && readable.failure != Failure::kNotFound;
  if (result.end == UploadEnd::kNotConfigured && unreadable) {
    result.end = UploadEnd::kBadSettings;
    result.message = PathText(settings) + u": " + readable.why;
  }
  return result;
}

}  // namespace kerno
