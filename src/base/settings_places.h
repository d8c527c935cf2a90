// Where settings live: the names of registry keys, and the folder of INI files. All of it is worked
// out once per process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "base/file_wait.h"
#include "platform/status.h"

namespace kerno {

inline constexpr std::u16string_view kStoreName = u"Quenkit";

// What the program says of itself; a process without it is as one that chose nothing.
struct Application {
  std::u16string registry_key;  // not empty: settings of general stores live in the registry
  std::u16string profile_file;  // INI file of stores without a name, for instance "Quenkit.ini"
};

// Why the INI base folder is where it is, in the order in which the places are tried.
enum class IniBaseReason {
  kOverride,           // "IniFullBase" in the registry
  kBesideProgram,      // "Quenkit_Setting" beside the program exists
  kTempBesideProgram,  // "Temp/Quenkit_Setting" beside the program, which can be written, or where
                       // there are settings while the next place has none
  kConfigFolder,       // "Quenkit_Setting" in the user's configuration folder
  kTemporaryFolder,    // nothing else can be had; without a folder of the user's own, none
};

struct IniBase {
  std::filesystem::path folder;
  IniBaseReason reason = IniBaseReason::kTemporaryFolder;
  // Not ok when an earlier place could not be looked at: the settings may be there, so those of
  // `folder` are read but none is written.
  Status trouble;
};

// What the process keeps about its settings. A test starts a new process's worth by constructing
// one, which is the process's while it lives.
class SettingsProcess {
 public:
  SettingsProcess();
  ~SettingsProcess();
  SettingsProcess(const SettingsProcess&) = delete;
  SettingsProcess& operator=(const SettingsProcess&) = delete;

  static SettingsProcess& Current();

  std::optional<Application> application;

  // The caching switch; nothing until a store has settled it.
  std::optional<bool> use_cache;

  // "Message"/"DrawTiming"; nothing until it is read.
  std::optional<int32_t> draw_timing;

  // "Debug\Parts"/"CopyLog"; nothing until it is read.
  std::optional<bool> copy_log;

  bool dump_begun = false;  // a dump user has read its switch

  int unnamed_stores = 0;            // constructed so far
  bool cleaned_test_files = false;   // leftovers of the writability test
  std::recursive_mutex preparation;  // of INI files
  Patience patience;                 // with those who hold files of settings

  // What is the matter with the settings, the first time that it is told.
  void TellOnce(const std::u16string& message);

  // "Quenkit", or what the registry puts in its place.
  const std::u16string& BaseName();

  // The folder of INI files. Both names are written back to the registry for the user to see.
  const IniBase& Base();

  // Why nothing may be written in `folder`; not ok only for the INI base folder once it is known.
  Status TroubleOf(const std::filesystem::path& folder) const;

  // "Software\<base name>\Quenkit".
  std::u16string RegistryKey();

 private:
  // A value of the registry, empty when it is missing; what keeps it from being read is kept.
  std::u16string UserText(std::u16string_view key, std::u16string_view name);
  IniBase FindBase();

  Status registry_trouble_;
  std::set<std::u16string> told_;
  std::optional<std::u16string> base_name_;
  std::optional<IniBase> base_;
  SettingsProcess* before_;
};

// The full path of an INI file: a name without a folder goes into the INI base folder, and ".ini"
// is appended unless the extension is "ini" in any case. "\" separates folders as "/" does. Empty
// for a name without a folder when there is no INI base folder.
std::filesystem::path ResolveIniPath(std::u16string_view name);

// Whether files can be created in a folder (which exists), found by creating and deleting one; what
// killed processes left of that is removed.
Status TestWriting(const std::filesystem::path& folder);
bool CanWriteFolder(const std::filesystem::path& folder);

// Removes such leftovers, once per process.
void RemoveLeftTestFiles(const std::filesystem::path& folder);

}  // namespace kerno
