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

// Makes the folder where that is possible; a place that cannot be made is no message, the next one
// is tried.
bool CanUse(const fs::path& folder) {
  return MakeFolders(folder).ok() && CanWriteFolder(folder);
}

// Empty for a value that is missing.
std::u16string UserText(std::u16string_view key, std::u16string_view name) {
  std::u16string text;
  (void)ReadUserString(key, name, &text);
  return text;
}

IniBase FindIniBase(const std::u16string& registry_key) {
  const std::u16string full_base = UserText(registry_key, kIniFullBase);
  if (!full_base.empty()) return {TextPath(full_base), IniBaseReason::kOverride};
  const fs::path program = ProgramFolder();
  if (!program.empty()) {
    if (IsFolder(program / kFolderName)) {
      return {program / kFolderName, IniBaseReason::kBesideProgram};
    }
    const fs::path temp = program / "Temp" / kFolderName;
    if (!CurrentSystem().IsSystemPlace(program) && CanUse(temp)) {
      return {temp, IniBaseReason::kTempBesideProgram};
    }
  }
  const fs::path config = CurrentSystem().ConfigFolder();
  if (!config.empty() && CanUse(config / kFolderName)) {
    return {config / kFolderName, IniBaseReason::kConfigFolder};
  }
  return {TempFolder() / kFolderName, IniBaseReason::kTemporaryFolder};
}

// Shows the user what is in use; a registry that cannot be written shows nothing.
void WriteBack(std::u16string_view key, std::u16string_view name, std::u16string_view value) {
  if (UserText(key, name) != value) (void)WriteUserString(key, name, value);
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

// Test files of processes that ended between creating and deleting theirs.
void DeleteOldTestFiles(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    std::error_code ignored;
    if (!IsTestFile(PathText(at->path().filename())) || !at->is_regular_file(ignored)) continue;
    const auto written = fs::last_write_time(at->path(), ignored);
    if (ignored) continue;
    const auto since_epoch = fs::file_time_type::clock::to_sys(written).time_since_epoch();
    const int64_t seconds = std::chrono::duration_cast<std::chrono::seconds>(since_epoch).count();
    if (CurrentClock().Seconds() - seconds > kTenDays) fs::remove(at->path(), ignored);
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

const IniBase& SettingsProcess::Base() {
  if (base_) return *base_;
  base_ = FindIniBase(RegistryKey());
  WriteBack(std::u16string(kSoftware).append(kStoreName), kBaseNameInUse, BaseName());
  WriteBack(RegistryKey(), kIniFullBaseInUse, PathText(base_->folder));
  return *base_;
}

fs::path ResolveIniPath(std::u16string_view name) {
  std::u16string text(name);
  if (fs::path::preferred_separator == '/') {
    for (char16_t& unit : text) unit = unit == u'\\' ? u'/' : unit;
  }
  const bool has_folder = text.find_first_of(u"/\\") != text.npos;
  if (!EqualWithoutCase(Extension(text), u"ini")) text += u".ini";
  const fs::path path = TextPath(text);
  return has_folder ? path : SettingsProcess::Current().Base().folder / path;
}

bool CanWriteFolder(const fs::path& folder) {
  SettingsProcess& process = SettingsProcess::Current();
  if (!process.cleaned_test_files) {
    process.cleaned_test_files = true;
    DeleteOldTestFiles(folder);
  }
  for (int i = 0; i < kTestNames; ++i) {
    const fs::path file = folder / TextPath(TestFileName(i));
    const Status created = CreateNewFile(file, {});
    if (created.ok()) return RemoveFile(file).ok();
    if (created.failure != Failure::kSharingViolation) return false;  // the name was not taken
  }
  return false;
}

}  // namespace kerno
