#include "setup/settings_files.h"

#include "base/text.h"
#include "platform/folder_path.h"
#include "setup/installed_files.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr const char* kSettingsFiles[] = {
    "Quenkit_Setting/Quenkit.ini", "Quenkit_Setting/Quenkit.ini.orig",
    "Temp/Quenkit_Setting/Quenkit.ini", "Temp/Quenkit_Setting/Quenkit.ini.orig"};

SetupResult NotWritable(const fs::path& path, const std::error_code& error) {
  return {SetupOutcome::kNotWritable,
          Status::Error(Failure::kAccessDenied, PathText(path), ErrorText(error))};
}

}  // namespace

SetupResult CarrySettings(const fs::path& from, const fs::path& to) {
  std::error_code error;
  for (const char* const name : kSettingsFiles) {
    if (!fs::exists(from / name, error) || fs::exists(to / name, error)) continue;
    fs::create_directories((to / name).parent_path(), error);
    fs::copy_file(from / name, to / name, error);
    if (error) return NotWritable(to / name, error);
    fs::remove(from / name, error);  // where it stays, nobody reads it any more
  }
  RemoveEmptySettingsFolders(from);
  return {};
}

SetupResult RemoveSettings(const fs::path& folder) {
  for (const char* const name : kSettingsFiles) {
    std::error_code error;
    fs::remove(folder / name, error);
    if (error) return NotWritable(folder / name, error);
  }
  RemoveEmptySettingsFolders(folder);
  return {};
}

void RemoveEmptySettingsFolders(const fs::path& folder) {
  for (const char* const name : kSettingsFiles) RemoveEmptyFolders(folder, name);
}

}  // namespace kerno
