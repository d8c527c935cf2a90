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

fs::path AsFolderName(const std::u16string& name) {
  const bool plain =
      !name.empty() && name.find_first_of(u"/\\") == name.npos && name != u"." && name != u"..";
  return plain ? TextPath(name) : fs::path("___");
}

// The user's name, by the environment or the account, as the name of a folder.
fs::path UserFolderName() {
  for (const char16_t* name : {u"USER", u"USERNAME"}) {
    const auto value = CurrentSystem().Environment(name);
    if (value && !value->empty()) return AsFolderName(*value);
  }
  return AsFolderName(CurrentSystem().UserName());
}

// The answer of the system or of the environment; empty without one.
fs::path NamedTempFolder() {
  const fs::path folder = CurrentSystem().TemporaryPath();
  if (AsciiLower(PathText(folder)).find(u"windows") != std::u16string::npos) {
    return ProgramFolder() / "Temp";
  }
  return folder.empty() ? FromEnvironment() : folder;
}

// A private folder in `shared` of this name; empty when it cannot be had: somebody else's may have
// the name.
fs::path PrivateFolder(const fs::path& shared, const fs::path& name) {
  const bool made = !shared.empty() && CurrentSystem().MakePrivateFolder(shared / name).ok();
  return made ? shared / name : fs::path();
}

// One in `shared`, else in the cache folder, else in `shared` under another name.
fs::path PrivateFolderIn(const fs::path& shared) {
  System& system = CurrentSystem();
  fs::path own = PrivateFolder(shared, UserFolderName());
  const fs::path cache = system.CacheFolder();
  if (own.empty() && !cache.empty() && MakeFolders(cache).ok()) own = PrivateFolder(cache, "tmp");
  return own.empty() ? PrivateFolder(shared, TextPath(u"kerno-" + system.UserName())) : own;
}

// The folder when nobody else can write in it, else a private one in it.
fs::path OwnPartOf(const fs::path& folder) {
  const bool own = MakeFolders(folder).ok() && CurrentSystem().IsOwnFolder(folder);
  return own ? folder : PrivateFolder(folder, UserFolderName());
}

fs::path DayFolderIn(const fs::path& temp) {
  return temp / "Quenkit.tmp" / TextPath(FormatTime(CurrentClock().Now(), u"%Y%m%d"));
}

}  // namespace

fs::path TempFolder() {
  fs::path folder = NamedTempFolder();
  if (folder.empty()) {
    folder = PrivateFolderIn(IsFolder("/tmp") ? fs::path("/tmp") : CurrentSystem().CurrentFolder());
  }
  return WithSeparator(folder.empty() ? CurrentSystem().CurrentFolder() : folder);
}

fs::path OwnTempFolder() {
  const fs::path named = NamedTempFolder();
  if (named.empty()) return WithSeparator(PrivateFolderIn(IsFolder("/tmp") ? "/tmp" : ""));
  const fs::path own = OwnPartOf(named);
  return WithSeparator(own.empty() ? PrivateFolderIn(named) : own);
}

fs::path CurrentFolder() {
  return WithSeparator(CurrentSystem().CurrentFolder());
}

fs::path ProgramFolder() {
  return WithSeparator(CurrentSystem().ProgramPath().parent_path());
}

fs::path WorkFolder() {
  const fs::path named = NamedTempFolder();
  const fs::path temp = named.empty() ? OwnTempFolder() : OwnPartOf(named);
  const fs::path day = DayFolderIn(temp);
  if (!temp.empty() && CreateFolderPath(day)) return WithSeparator(day);
  // Where the program's folder cannot be told, it is not the current one.
  const fs::path program = ProgramFolder();
  fs::path second = program.empty() ? fs::path() : DayFolderIn(program / "Temp");
  const fs::path cache = CurrentSystem().CacheFolder();
  if ((second.empty() || !CreateFolderPath(second)) && !cache.empty()) {
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
