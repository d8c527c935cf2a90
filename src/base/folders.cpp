#include "base/folders.h"

#include <string>

#include "base/notices.h"
#include "base/text.h"
#include "base/time_text.h"
#include "platform/folder_path.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

fs::path WithSeparator(const fs::path& folder) {
  return folder.empty() || !folder.has_filename() ? folder : folder / "";
}

fs::path FromEnvironment() {
  for (const char16_t* name : {u"TMP", u"TMPDIR", u"TEMP"}) {
    const auto value = CurrentSystem().Environment(name);
    if (value && !value->empty()) return TextPath(*value);
  }
  return {};
}

// The user's name as the name of a folder.
fs::path UserFolderName() {
  for (const char16_t* name : {u"USER", u"USERNAME"}) {
    const auto value = CurrentSystem().Environment(name);
    if (!value || value->empty()) continue;
    const bool plain =
        value->find_first_of(u"/\\") == value->npos && *value != u"." && *value != u"..";
    return plain ? TextPath(*value) : fs::path("___");
  }
  return "___";
}

fs::path PerUserFolder() {
  System& system = CurrentSystem();
  const fs::path base = IsFolder("/tmp") ? fs::path("/tmp") : system.CurrentFolder();
  fs::path own = base / UserFolderName();
  if (system.MakePrivateFolder(own).ok()) return own;
  // Somebody else's folder has the name, or there is no right to make one.
  const fs::path cache = system.CacheFolder();
  const bool made = MakeFolders(cache).ok();  // no message: the next place is tried
  if (made && system.MakePrivateFolder(cache / "tmp").ok()) {
    return cache / "tmp";
  }
  return system.CurrentFolder();
}

fs::path DayFolderIn(const fs::path& temp) {
  return temp / "Quenkit.tmp" / TextPath(FormatTime(CurrentClock().Now(), u"%Y%m%d"));
}

}  // namespace

fs::path TempFolder() {
  fs::path folder = CurrentSystem().TemporaryPath();
  if (AsciiLower(PathText(folder)).find(u"windows") != std::u16string::npos) {
    folder = ProgramFolder() / "Temp";
  }
  if (folder.empty()) folder = FromEnvironment();
  if (folder.empty()) folder = PerUserFolder();
  return WithSeparator(folder);
}

fs::path CurrentFolder() {
  return WithSeparator(CurrentSystem().CurrentFolder());
}

fs::path ProgramFolder() {
  return WithSeparator(CurrentSystem().ProgramPath().parent_path());
}

fs::path WorkFolder() {
  const fs::path day = DayFolderIn(TempFolder());
  if (CreateFolderPath(day)) return WithSeparator(day);
  fs::path second = DayFolderIn(ProgramFolder() / "Temp");
  const fs::path cache = CurrentSystem().CacheFolder();
  if (!CreateFolderPath(second) && !cache.empty()) {
    second = DayFolderIn(cache);
    CreateFolderPath(second);
  }
  return WithSeparator(second);
}

fs::path SpecialFolder(uint32_t id) {
  const auto number = static_cast<SpecialFolderId>(id & ~kCreateSpecialFolder);
  const bool create = (id & kCreateSpecialFolder) != 0;
  const fs::path folder =
      CurrentSystem().SpecialFolder(number, create ? MissingFolder::kMake : MissingFolder::kLeave);
  return folder.empty() || !create || CreateFolderPath(folder) ? folder : fs::path();
}

Status MakeFolders(const fs::path& path) {
  for (const fs::path& level : FolderLevels(path)) {
    if (PathExists(level)) continue;
    if (Status made = MakeFolder(level); !made.ok()) return made;
  }
  if (IsFolder(path)) return Status::Ok();
  const char16_t* why =
      PathExists(path) ? u"a file of that name stands there" : u"there is no such folder";
  return Status::Error(Failure::kNotFound, PathText(path), why);
}

bool CreateFolderPath(const fs::path& path) {
  const Status made = MakeFolders(path);
  if (!made.ok()) CurrentNotices().Message(u"Can't create " + made.what);
  return made.ok();
}

}  // namespace kerno
