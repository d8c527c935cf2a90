// Who runs the program, where, and where the system keeps things.
//
// Folders are absolute and without a separator at the end; an empty path means that the system does
// not know.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// Numbers of the shell's special folders (CSIDL_...).
enum class SpecialFolderId : uint32_t {
  kDesktop = 0x00,
  kPrograms = 0x02,
  kPersonal = 0x05,  // the user's documents
  kFavorites = 0x06,
  kStartup = 0x07,
  kRecent = 0x08,
  kSendTo = 0x09,
  kStartMenu = 0x0B,
  kMyMusic = 0x0D,
  kMyVideo = 0x0E,
  kDesktopDirectory = 0x10,
  kFonts = 0x14,
  kTemplates = 0x15,
  kCommonDesktopDirectory = 0x19,
  kAppData = 0x1A,  // settings that follow the user
  kLocalAppData = 0x1C,
  kInternetCache = 0x20,
  kCommonAppData = 0x23,
  kWindows = 0x24,
  kSystem = 0x25,
  kProgramFiles = 0x26,
  kMyPictures = 0x27,
  kProfile = 0x28,  // the user's home
  kProgramFilesCommon = 0x2B,
  kCommonTemplates = 0x2D,
  kCommonDocuments = 0x2E,
};

enum class MissingFolder { kLeave, kMake };

class System {
 public:
  virtual ~System() = default;

  // A variable of the environment; nothing when it is not set.
  virtual std::optional<std::u16string> Environment(std::u16string_view name) = 0;

  // The file of the running program.
  virtual std::filesystem::path ProgramPath() = 0;

  // Both are empty when the system does not tell.
  virtual std::u16string UserName() = 0;
  virtual std::u16string ComputerName() = 0;

  // The process's current folder.
  virtual std::filesystem::path CurrentFolder() = 0;

  // The system's own answer to where temporary files go, apart from the environment; POSIX systems
  // have none.
  virtual std::filesystem::path TemporaryPath() = 0;

  // Where the user's settings and caches of this program go by the system's conventions.
  virtual std::filesystem::path ConfigFolder() = 0;
  virtual std::filesystem::path CacheFolder() = 0;

  // With kLeave a folder that is known but missing may be unknown to the system; whether kMake made
  // it is for the caller to see.
  virtual std::filesystem::path SpecialFolder(SpecialFolderId id, MissingFolder missing) = 0;

  // Whether a path lies where the system keeps installed software, which is not the place for a
  // user's files even when it can be written.
  virtual bool IsSystemPlace(const std::filesystem::path& path) = 0;

  // Makes `folder` (its parent exists) so that no other user can look into it, or makes an existing
  // one of the user so. kAccessDenied when it belongs to somebody else, is no real folder, or holds
  // something that others had the right to put there.
  virtual Status MakePrivateFolder(const std::filesystem::path& folder) = 0;

  // Whether a folder, links followed, is the user's and nobody else can put anything into it.
  virtual bool IsOwnFolder(const std::filesystem::path& folder) = 0;
};

System& RealSystem();

// The process's system; a test may set its own. ReplaceSystem returns the one before; null stands
// for the real one. The caller keeps ownership.
System& CurrentSystem();
System* ReplaceSystem(System* system);

}  // namespace kerno
