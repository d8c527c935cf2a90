#include "web/upload_profile.h"

#include "platform/folder_path.h"
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
  return folder / "UpFile.ini";
}

int32_t UploadProfile::GetInt(std::u16string_view section, std::u16string_view key,
                              int32_t default_value) {
  const auto value = ReadProfileString(UploadSettingsFile(), section, key, kMostOfValue);
  return value ? ParseProfileInt(*value) : default_value;
}

std::u16string UploadProfile::GetStr(std::u16string_view section, std::u16string_view key,
                                     std::u16string_view default_value) {
  return ReadProfileString(UploadSettingsFile(), section, key, kMostOfValue)
      .value_or(std::u16string(default_value));
}

bool UploadIsConfigured() {
  UploadProfile profile;
  return Uploader(profile, UploadSettingsFile(), SystemHttpSession()).IsConfigured();
}

UploadResult UploadFile(const std::filesystem::path& file) {
  UploadProfile profile;
  return Uploader(profile, UploadSettingsFile(), SystemHttpSession()).Upload(file);
}

}  // namespace kerno
