// Where settings live: the names of registry keys, and the folder of INI files. All of it is worked
// out once per process.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

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
  kTempBesideProgram,  // "Temp/Quenkit_Setting" beside the program, which can be written
  kConfigFolder,       // "Quenkit_Setting" in the user's configuration folder
  kTemporaryFolder,    // nothing else can be written
};

struct IniBase {
  std::filesystem::path folder;
  IniBaseReason reason = IniBaseReason::kTemporaryFolder;
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

  // "Quenkit", or what the registry puts in its place.
  const std::u16string& BaseName();

  // The folder of INI files. Both names are written back to the registry for the user to see.
  const IniBase& Base();

  // "Software\<base name>\Quenkit".
  std::u16string RegistryKey();

 private:
  std::optional<std::u16string> base_name_;
  std::optional<IniBase> base_;
  SettingsProcess* before_;
};

// The full path of an INI file: a name without a folder goes into the INI base folder, and ".ini"
// is appended unless the extension is "ini" in any case. "\" separates folders as "/" does.
std::filesystem::path ResolveIniPath(std::u16string_view name);

// Whether files can be created in a folder (which exists), found by creating and deleting one.
bool CanWriteFolder(const std::filesystem::path& folder);

}  // namespace kerno
