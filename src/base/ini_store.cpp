#include <chrono>

#include "base/folders.h"
#include "base/profile_store.h"
#include "base/registry_access.h"
#include "base/settings_places.h"
#include "base/text.h"
#include "base/time_text.h"
#include "platform/folder_path.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kStampSection = u"ProfileINI";
constexpr std::u16string_view kStampValue = u"ThisMTimeV";
constexpr std::u16string_view kStampText = u"ThisMTimeS_";
constexpr size_t kTagLength = 32;
constexpr int64_t kTolerance = 5;  // seconds

// Machine, user and program in 32 characters, so that each combination stamps under its own name.
std::u16string StampTag() {
  System& system = CurrentSystem();
  const std::u16string program = u"_" + PathText(system.ProgramPath().stem()) + u"_";
  std::u16string tag = u"_" + system.ComputerName() + u"__" + system.UserName() + u"_";
  tag.resize(program.size() < kTagLength ? kTagLength - program.size() : 0, u'_');
  return (tag + program).substr(0, kTagLength);
}

std::optional<int64_t> ModificationTime(const fs::path& file) {
  std::error_code error;
  const auto time = fs::last_write_time(file, error);
  if (error) return std::nullopt;
  const auto since_epoch = fs::file_time_type::clock::to_sys(time).time_since_epoch();
  return std::chrono::duration_cast<std::chrono::seconds>(since_epoch).count();
}

std::u16string StampKey() {
  return SettingsProcess::Current().RegistryKey() + u"\\ProfileINI";
}

}  // namespace

IniStore::IniStore(std::u16string_view name) {
  OpenFile(FindFile(ResolveIniPath(name)));
  ReadSwitches(!name.empty());
  CheckStamp();
}

fs::path IniStore::FindFile(const fs::path& wanted) {
  SettingsProcess& process = SettingsProcess::Current();
  const IniBase& base = process.Base();
  fs::path folder = wanted.parent_path();
  if (folder.empty()) folder = ".";
  RemoveLeftTestFiles(folder);
  if (!base.trouble.ok()) return wanted;
  fs::path path = wanted;
  std::u16string why;
  const bool missing = FactsOfPath(wanted).kind == PathKind::kMissing;
  if (!wanted.empty() && folder == base.folder && base.reason == IniBaseReason::kTemporaryFolder) {
    why = u"no other folder for the settings can be had; they are in " + PathText(wanted);
  } else if (!wanted.empty() && missing) {
    Status usable = MakeFolders(folder);
    if (usable.ok()) usable = TestWriting(folder);
    const fs::path temp = usable.ok() ? fs::path() : OwnTempFolder();
    if (temp.empty()) return wanted;
    displaced_ = true;
    path = temp / wanted.filename();
    why = PathText(folder) + u": " + usable.why + u"; the settings are in " + PathText(path);
  }
  if (why.empty()) return path;
  if (FactsOfPath(path).kind == PathKind::kFile) process.TellOnce(why);
  TellOfWrites(std::move(why));
  return path;
}

IniStore::~IniStore() {
  if (!wrote()) return;
  Clock& clock = CurrentClock();
  const int64_t now = clock.Seconds();
  const std::u16string text = FormatTime(clock.Local(now), kTimeStamp);
  const std::u16string name = StampName();
  // A stamp that cannot be written, or not at once, is missing.
  (void)WriteUserString(StampKey(), name, text, IfHeld::kFail);
  (void)WriteLines({{std::u16string(kStampSection), name, text},
                    {std::u16string(kStampSection), std::u16string(kStampValue), Int64Text(now)}});
}

// As the name of a key in the file; what a key cannot hold becomes "_".
std::u16string IniStore::StampName() const {
  std::u16string name = std::u16string(kStampText) + StampTag() + profile_path();
  for (char16_t& unit : name) {
    if (unit < u' ') unit = u'_';
  }
  return name;
}

void IniStore::CheckStamp() {
  const std::optional<std::u16string> stamp = FindStr(kStampSection, kStampValue);
  if (!stamp) return;
  const auto modified = ModificationTime(file());
  if (modified && *modified > Int64OfText(*stamp) + kTolerance) changed_outside_ = true;
  const std::u16string name = StampName();
  std::u16string here;
  (void)ReadUserString(StampKey(), name, &here);  // missing: as an empty one
  const std::u16string there = GetStr(kStampSection, name, {});
  if (!here.empty() && !there.empty() && here != there) changed_outside_ = true;
}

}  // namespace kerno
