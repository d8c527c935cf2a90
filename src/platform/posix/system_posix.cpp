#include <pwd.h>
#include <sys/auxv.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "platform/posix/system_error.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kProgramFolder = "kerno";

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// What the user database says, for when the environment is silent.
struct Account {
  std::string name;
  std::string home;
};

Account ReadAccount() {
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found) return {};
  return {found->pw_name ? found->pw_name : "", found->pw_dir ? found->pw_dir : ""};
}

fs::path HomeFolder() {
  fs::path home = Variable("HOME");
  if (!home.is_absolute()) home = ReadAccount().home;
  return home.is_absolute() ? home : fs::path();
}

// A base directory of the desktop conventions: the variable when it holds an absolute path, else
// the default under the home folder.
fs::path BaseDirectory(const char* variable, std::string_view under_home) {
  fs::path folder = Variable(variable);
  if (folder.is_absolute()) return folder;
  const fs::path home = HomeFolder();
  return home.empty() ? fs::path() : home / under_home;
}

// The folder that user-dirs.dirs names, whose lines are XDG_DESKTOP_DIR="$HOME/Desktop".
fs::path UserDirectory(std::string_view variable, std::string_view under_home) {
  const fs::path home = HomeFolder();
  if (home.empty()) return {};
  std::ifstream file(BaseDirectory("XDG_CONFIG_HOME", ".config") / "user-dirs.dirs");
  const std::string start = std::string(variable) + "=\"";
  constexpr std::string_view kHome = "$HOME/";
  for (std::string line; std::getline(file, line);) {
    const size_t end = line.rfind('"');
    if (line.compare(0, start.size(), start) != 0 || end < start.size()) continue;
    const std::string value = line.substr(start.size(), end - start.size());
    if (value.compare(0, kHome.size(), kHome) == 0) return home / value.substr(kHome.size());
    if (fs::path(value).is_absolute()) return value;
  }
  return home / under_home;
}

class PosixSystem final : public System {
 public:
  std::optional<std::u16string> Environment(std::u16string_view name) override {
    std::string bytes;
    for (const char16_t unit : name) bytes.push_back(static_cast<char>(unit));
    const char* value = std::getenv(bytes.c_str());
    if (!value) return std::nullopt;
    return SystemText(value);
  }

  fs::path ProgramPath() override {
    std::error_code error;
    fs::path program = fs::read_symlink("/proc/self/exe", error);
    if (!error) return program;
    // Settings stand beside the program: they are not given up for one call that failed.
    const auto* started = reinterpret_cast<const char*>(getauxval(AT_EXECFN));
    program = started ? fs::canonical(started, error) : fs::path();
    return error ? fs::path() : program;
  }

  std::u16string UserName() override {
    const std::string name = ReadAccount().name;
    return SystemText(name.empty() ? std::to_string(geteuid()) : name);
  }

  std::u16string ComputerName() override {
    std::array<char, HOST_NAME_MAX + 1> name{};
    if (gethostname(name.data(), name.size() - 1) != 0) return {};
    return SystemText(name.data());
  }

  fs::path CurrentFolder() override {
    std::error_code error;
    return fs::current_path(error);
  }

  fs::path TemporaryPath() override { return {}; }

  fs::path ConfigFolder() override { return OwnFolder("XDG_CONFIG_HOME", ".config"); }
  fs::path CacheFolder() override { return OwnFolder("XDG_CACHE_HOME", ".cache"); }

  fs::path SpecialFolder(SpecialFolderId id, MissingFolder missing) override;
  bool IsSystemPlace(const fs::path& path) override;
  Status MakePrivateFolder(const fs::path& folder) override;
  bool IsOwnFolder(const fs::path& folder) override;

 private:
  static fs::path OwnFolder(const char* variable, std::string_view under_home) {
    const fs::path base = BaseDirectory(variable, under_home);
    return base.empty() ? base : base / kProgramFolder;
  }
};

fs::path PosixSystem::SpecialFolder(SpecialFolderId id, MissingFolder /*missing*/) {
  switch (id) {
    case SpecialFolderId::kDesktop:
    case SpecialFolderId::kDesktopDirectory:
      return UserDirectory("XDG_DESKTOP_DIR", "Desktop");
    case SpecialFolderId::kPersonal:
      return UserDirectory("XDG_DOCUMENTS_DIR", "Documents");
    case SpecialFolderId::kMyMusic:
      return UserDirectory("XDG_MUSIC_DIR", "Music");
    case SpecialFolderId::kMyVideo:
      return UserDirectory("XDG_VIDEOS_DIR", "Videos");
    case SpecialFolderId::kMyPictures:
      return UserDirectory("XDG_PICTURES_DIR", "Pictures");
    case SpecialFolderId::kTemplates:
      return UserDirectory("XDG_TEMPLATES_DIR", "Templates");
    case SpecialFolderId::kCommonDocuments:
      return UserDirectory("XDG_PUBLICSHARE_DIR", "Public");
    case SpecialFolderId::kAppData:
      return BaseDirectory("XDG_CONFIG_HOME", ".config");
    case SpecialFolderId::kLocalAppData:
      return BaseDirectory("XDG_DATA_HOME", ".local/share");
    case SpecialFolderId::kInternetCache:
      return BaseDirectory("XDG_CACHE_HOME", ".cache");
    case SpecialFolderId::kStartup:
    case SpecialFolderId::kPrograms: {
      const bool start = id == SpecialFolderId::kStartup;
      const fs::path base = BaseDirectory(start ? "XDG_CONFIG_HOME" : "XDG_DATA_HOME",
                                          start ? ".config" : ".local/share");
      return base.empty() ? base : base / (start ? "autostart" : "applications");
    }
    case SpecialFolderId::kProfile:
      return HomeFolder();
    case SpecialFolderId::kFonts:
      return "/usr/share/fonts";
    case SpecialFolderId::kCommonAppData:
      return "/usr/share";
    case SpecialFolderId::kProgramFiles:
      return "/opt";
    default:
      return {};
  }
}

bool PosixSystem::IsSystemPlace(const fs::path& path) {
  std::error_code error;
  const fs::path real = fs::weakly_canonical(path, error);
  const fs::path& place = error ? path : real;
  for (const fs::path folder : {"/usr", "/opt"}) {
    auto [at_folder, at_place] =
        std::mismatch(folder.begin(), folder.end(), place.begin(), place.end());
    if (at_folder == folder.end()) return true;
  }
  return false;
}

constexpr mode_t kOthersWrite = S_IWGRP | S_IWOTH;

Status PosixSystem::MakePrivateFolder(const fs::path& folder) {
  constexpr mode_t kPrivate = 0700;
  if (mkdir(folder.c_str(), kPrivate) == 0) return Status::Ok();
  if (errno != EEXIST) return SystemError(folder, errno);
  struct stat info {};
  if (lstat(folder.c_str(), &info) != 0) return SystemError(folder, errno);
  if (!S_ISDIR(info.st_mode) || info.st_uid != geteuid()) {
    return Status::Error(Failure::kAccessDenied, SystemText(folder.native()),
                         u"it is not a folder of this user's own");
  }
  if ((info.st_mode & 0777) == kPrivate) return Status::Ok();
  if (chmod(folder.c_str(), kPrivate) != 0) return SystemError(folder, errno);
  std::error_code error;
  if ((info.st_mode & kOthersWrite) == 0 || fs::is_empty(folder, error)) return Status::Ok();
  chmod(folder.c_str(), info.st_mode & 07777);
  return Status::Error(Failure::kAccessDenied, SystemText(folder.native()),
                       u"other users could write in it");
}

bool PosixSystem::IsOwnFolder(const fs::path& folder) {
  struct stat info {};
  return stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode) && info.st_uid == geteuid() &&
         (info.st_mode & kOthersWrite) == 0;
}

PosixSystem posix_system;

}  // namespace

System& RealSystem() {
  return posix_system;
}

}  // namespace kerno
