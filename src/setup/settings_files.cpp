#include "setup/settings_files.h"

#include <vector>

#include "base/text.h"
#include "platform/folder_path.h"
#include "setup/installed_files.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// The two places beside the programs, and all that is kept there: the settings, what they were
// before they were converted, and the text of the window.
constexpr const char* kPlaces[] = {"Quenkit_Setting", "Temp/Quenkit_Setting"};
constexpr const char* kNames[] = {"Quenkit.ini", "Quenkit.ini.orig", "Kerno_Text.txt"};

// By their paths from the installation on.
std::vector<fs::path> SettingsFiles() {
  std::vector<fs::path> files;
  for (const char* const place : kPlaces) {
    for (const char* const name : kNames) files.push_back(fs::path(place) / name);
  }
  return files;
}

SetupResult NotWritable(const fs::path& path, const std::error_code& error) {
  return {SetupOutcome::kNotWritable,
          Status::Error(Failure::kAccessDenied, PathText(path), ErrorText(error))};
}

}  // namespace

SetupResult CarrySettings(const fs::path& from, const fs::path& to) {
  std::error_code error;
  for (const fs::path& name : SettingsFiles()) {
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
  for (const fs::path& name : SettingsFiles()) {
    std::error_code error;
    fs::remove(folder / name, error);
    if (error) return NotWritable(folder / name, error);
  }
  RemoveEmptySettingsFolders(folder);
  return {};
}

void RemoveEmptySettingsFolders(const fs::path& folder) {
  for (const fs::path& name : SettingsFiles()) RemoveEmptyFolders(folder, name);
}

}  // namespace kerno
