#include "setup/settings_files.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "platform/folder_path.h"
#include "setup/installed_files.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// The two places beside the programs, and all that the programs keep there: the settings, what they
// were before they were converted (KeepCopy numbers further copies), the text of the window, and
// what the Cut page keeps.
constexpr const char* kPlaces[] = {"Quenkit_Setting", "Temp/Quenkit_Setting"};
constexpr std::u16string_view kNames[] = {u"quenkit.ini", u"kerno_text.txt", u"kerno_cut.txt"};
constexpr std::u16string_view kCopies = u"quenkit.ini.orig";

// On Windows a name may stand there in any case.
bool IsOurs(const fs::path& path) {
  const std::u16string name = AsciiLower(PathText(path.filename()));
  return std::ranges::find(kNames, name) != std::end(kNames) ||
         (name.starts_with(kCopies) &&
          name.find_first_not_of(u"0123456789", kCopies.size()) == name.npos);
}

// Those that are there, by their paths from the installation on.
std::vector<fs::path> SettingsFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const char* const place : kPlaces) {
    std::error_code error;
    for (fs::directory_iterator at(folder / place, error), end; !error && at != end;
         at.increment(error)) {
      if (IsOurs(at->path())) files.push_back(fs::path(place) / at->path().filename());
    }
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
  for (const fs::path& name : SettingsFiles(from)) {
    if (fs::exists(to / name, error)) continue;
    fs::create_directories((to / name).parent_path(), error);
    fs::copy_file(from / name, to / name, error);
    if (error) return NotWritable(to / name, error);
    fs::remove(from / name, error);  // where it stays, nobody reads it any more
  }
  RemoveEmptySettingsFolders(from);
  return {};
}

SetupResult RemoveSettings(const fs::path& folder) {
  for (const fs::path& name : SettingsFiles(folder)) {
    std::error_code error;
    fs::remove(folder / name, error);
    if (error) return NotWritable(folder / name, error);
  }
  RemoveEmptySettingsFolders(folder);
  return {};
}

void RemoveEmptySettingsFolders(const fs::path& folder) {
  for (const char* const place : kPlaces) RemoveEmptyFolders(folder, fs::path(place) / kNames[0]);
}

}  // namespace kerno
