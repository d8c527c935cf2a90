#include "base/settings_places.h"

#include <chrono>

#include "base/folders.h"
#include "base/notices.h"
#include "base/number_text.h"
#include "base/registry_access.h"
#include "base/text.h"
#include "base/time_text.h"
#include "platform/fold_case.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"
#include "platform/registry.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr std::u16string_view kSoftware = u"Software\\";
constexpr std::u16string_view kBaseNameInUse = u"RegKey_Base は";
constexpr std::u16string_view kIniFullBase = u"IniFullBase";
constexpr std::u16string_view kIniFullBaseInUse = u"IniFullBase は";
constexpr const char* kFolderName = "Quenkit_Setting";
constexpr std::u16string_view kTestFile = u"WriteTst.tmp";
constexpr std::u16string_view kTestFileEnd = u".tmp";
constexpr int kTestNames = 100;
constexpr int64_t kTenDays = 864000;  // seconds

SettingsProcess* current = nullptr;

// A look that fails is made again: what stands there is not missing because of one failure.
PathFacts LookAt(const fs::path& path) {
  const PathFacts facts = FactsOfPath(path);
  return facts.kind == PathKind::kUnknown ? FactsOfPath(path) : facts;
}

// What is in the way of a place that is nobody's mistake and not for good (a full disk, a disk that
// fails): the place stays the one.
bool IsPassing(const Status& status) {
  return status.failure != Failure::kAccessDenied && status.failure != Failure::kNotFound;
}

Status MakeAndTest(const fs::path& folder) {
  Status made = MakeFolders(folder);
  return made.ok() ? TestWriting(folder) : made;
}

bool HoldsSettings(const fs::path& folder) {
  return LookAt(folder / TextPath(std::u16string(kStoreName) + u".ini")).kind == PathKind::kFile;
}

// Shows the user what is in use; a registry that cannot be written shows nothing, and one that is
// held shows it next time.
void WriteBack(std::u16string_view key, std::u16string_view name, std::u16string_view value) {
  std::u16string shown;
  (void)ReadUserString(key, name, &shown);  // missing: as an empty one
  if (shown != value) (void)WriteUserString(key, name, value, IfHeld::kFail);
}

// "_HHMMSS_<serial>" and the ending of a test file, as TestFileName makes them.
bool IsTimedEnd(std::u16string_view rest) {
  constexpr size_t kTimed = 8;  // "_HHMMSS_"
  if (rest.size() <= kTimed + kTestFileEnd.size() || !rest.ends_with(kTestFileEnd)) return false;
  if (rest[0] != u'_' || rest[kTimed - 1] != u'_') return false;
  rest = rest.substr(1, rest.size() - 1 - kTestFileEnd.size());
  for (size_t i = 0; i < rest.size(); ++i) {
    if (i != kTimed - 2 && (rest[i] < u'0' || rest[i] > u'9')) return false;
  }
  return true;
}

bool IsTestFile(std::u16string_view name) {
  if (!name.starts_with(kTestFile)) return false;
  name.remove_prefix(kTestFile.size());
  return name.empty() || name == kTestFileEnd || IsTimedEnd(name);
}

std::u16string TestFileName(int attempt) {
  std::u16string name(kTestFile);
  if (attempt == 1) name.append(kTestFileEnd);
  if (attempt > 1) {
    std::string serial;
    AppendInteger(&serial, attempt);
    name += FormatTime(CurrentClock().Now(), u"_%H%M%S_");
    name.append(serial.begin(), serial.end()).append(kTestFileEnd);
  }
  return name;
}

// Of processes that ended between creating and deleting theirs. An empty one is such or is about to
// be deleted anyway; others may be somebody's who was unlucky with a name.
void DeleteTestFiles(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    std::error_code ignored;
    if (!IsTestFile(PathText(at->path().filename())) || !at->is_regular_file(ignored)) continue;
    const auto written = fs::last_write_time(at->path(), ignored);
    if (ignored) continue;
    const auto since_epoch = fs::file_time_type::clock::to_sys(written).time_since_epoch();
    const int64_t seconds = std::chrono::duration_cast<std::chrono::seconds>(since_epoch).count();
    const bool empty = at->file_size(ignored) == 0 && !ignored;
    if (empty || CurrentClock().Seconds() - seconds > kTenDays) fs::remove(at->path(), ignored);
  }
}

}  // namespace

SettingsProcess::SettingsProcess() : before_(current) {
  current = this;
}

SettingsProcess::~SettingsProcess() {
  current = before_;
}

SettingsProcess& SettingsProcess::Current() {
  if (!current) static SettingsProcess first;  // becomes the current one by itself
  return *current;
}

const std::u16string& SettingsProcess::BaseName() {
  if (base_name_) return *base_name_;
  const std::u16string key = std::u16string(kSoftware).append(kStoreName);
  const std::u16string other = UserText(key, u"");
  base_name_ = other.empty() ? std::u16string(kStoreName) : other;
  return *base_name_;
}

std::u16string SettingsProcess::RegistryKey() {
  return std::u16string(kSoftware).append(BaseName()).append(u"\\").append(kStoreName);
}

std::u16string SettingsProcess::UserText(std::u16string_view key, std::u16string_view name) {
  RegistryValue value;
  Status why;
  const auto outcome = QueryRegistry(RegistryRoot::kCurrentUser, key, name, &value, &why);
  if (outcome == RegistryOutcome::kFailed) registry_trouble_ = why;
  const bool is_text = value.type == RegistryType::kString;
  return outcome == RegistryOutcome::kDone && is_text ? value.text : std::u16string();
}

IniBase SettingsProcess::FindBase() {
  IniBase base;
  const auto choose = [&](const fs::path& folder, IniBaseReason reason) {
    base.folder = folder;
    base.reason = reason;
    return base;
  };
  const auto look_at = [&](const fs::path& folder) {
    const PathFacts facts = LookAt(folder);
    if (facts.kind == PathKind::kUnknown) base.trouble = facts.why;
    return facts.kind;
  };
  const std::u16string full_base = UserText(RegistryKey(), kIniFullBase);
  if (!full_base.empty()) return choose(TextPath(full_base), IniBaseReason::kOverride);
  const fs::path program = ProgramFolder();
  const fs::path beside = program / kFolderName;
  if (!program.empty() && look_at(beside) == PathKind::kFolder) {
    return choose(beside, IniBaseReason::kBesideProgram);
  }
  const fs::path config = CurrentSystem().ConfigFolder();
  const fs::path in_config = config / kFolderName;
  bool temp_is_read = false;
  const fs::path temp = program / "Temp" / kFolderName;
  if (!program.empty() && !CurrentSystem().IsSystemPlace(program)) {
    Status usable = MakeAndTest(temp);
    if (!usable.ok() && IsPassing(usable)) usable = MakeAndTest(temp);
    temp_is_read = !usable.ok() && HoldsSettings(temp);
    const bool stays = IsPassing(usable) && (temp_is_read || !HoldsSettings(in_config));
    if (usable.ok() || stays) return choose(temp, IniBaseReason::kTempBesideProgram);
  }
  if (!config.empty() && (!temp_is_read || HoldsSettings(in_config))) {
    const bool there = look_at(in_config) == PathKind::kFolder;
    const Status made = there ? Status::Ok() : MakeFolders(in_config);
    if (made.ok() || IsPassing(made)) return choose(in_config, IniBaseReason::kConfigFolder);
  }
  if (temp_is_read) return choose(temp, IniBaseReason::kTempBesideProgram);
  const fs::path own = OwnTempFolder();
  return choose(own.empty() ? own : own / kFolderName, IniBaseReason::kTemporaryFolder);
}

const IniBase& SettingsProcess::Base() {
  if (base_) return *base_;
  base_ = FindBase();
  if (!registry_trouble_.ok()) base_->trouble = registry_trouble_;
  if (!base_->trouble.ok()) return *base_;
  WriteBack(std::u16string(kSoftware).append(kStoreName), kBaseNameInUse, BaseName());
  WriteBack(RegistryKey(), kIniFullBaseInUse, PathText(base_->folder));
  return *base_;
}

Status SettingsProcess::TroubleOf(const fs::path& folder) const {
  return base_ && base_->folder == folder ? base_->trouble : Status::Ok();
}

void SettingsProcess::TellOnce(const std::u16string& message) {
  if (told_.insert(message).second) CurrentNotices().Trouble(message);
}

fs::path ResolveIniPath(std::u16string_view name) {
  std::u16string text(name);
  if (fs::path::preferred_separator == '/') {
    for (char16_t& unit : text) unit = unit == u'\\' ? u'/' : unit;
  }
  const bool has_folder = text.find_first_of(u"/\\") != text.npos;
  if (!EqualWithoutCase(Extension(text), u"ini")) text += u".ini";
  const fs::path path = TextPath(text);
  if (has_folder) return path;
  const fs::path& base = SettingsProcess::Current().Base().folder;
  return base.empty() ? base : base / path;
}

void RemoveLeftTestFiles(const fs::path& folder) {
  SettingsProcess& process = SettingsProcess::Current();
  if (process.cleaned_test_files) return;
  process.cleaned_test_files = true;
  DeleteTestFiles(folder);
}

Status TestWriting(const fs::path& folder) {
  RemoveLeftTestFiles(folder);
  Status status;
  for (int i = 0, tries = 0; i < kTestNames && tries < 2 * kTestNames; ++tries) {
    const fs::path file = folder / TextPath(TestFileName(i));
    status = CreateNewFile(file, {});
    if (status.ok()) {
      status = RemoveFile(file);
      return status.ok() ? status : RemoveFile(file);  // once more: one failure may pass
    }
    if (status.failure != Failure::kSharingViolation) return status;  // the name was not taken
    const PathFacts facts = FactsOfPath(file);
    if (facts.kind == PathKind::kFile && facts.size == 0) {
      if (Status removed = RemoveFile(file); !removed.ok()) return removed;
    } else {
      ++i;
    }
  }
  return status;
}

bool CanWriteFolder(const fs::path& folder) {
  return TestWriting(folder).ok();
}

}  // namespace kerno
