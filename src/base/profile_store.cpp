#include "base/profile_store.h"

#include "base/dump_log.h"
#include "base/file_wait.h"
#include "base/folders.h"
#include "base/ini_preparation.h"
#include "base/number_text.h"
#include "base/registry_access.h"
#include "base/settings_places.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "base/text_file.h"
#include "base/time_text.h"
#include "platform/fold_case.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLongestValue = 10000;
constexpr std::u16string_view kDumpName = u"ProfileStore";

Status Refusal(std::u16string_view section, std::u16string_view key, std::u16string_view why) {
  return Status::Error(Failure::kOther, std::u16string(section).append(u"/").append(key),
                       std::u16string(why));
}

bool IsBlankName(std::u16string_view name) {
  return name.find_first_not_of(u" \t\v\f") == name.npos;
}

bool HasLineBreak(std::u16string_view text) {
  return text.find_first_of(std::u16string_view(u"\r\n\0", 3)) != text.npos;
}

// A value that the reader would trim or unquote is written within quotes.
std::u16string Protected(std::u16string_view value) {
  if (value.empty()) return {};
  const auto blank = [](char16_t unit) { return unit == u' ' || (unit >= u'\t' && unit <= u'\r'); };
  const bool trimmed = blank(value.front()) || blank(value.back());
  return trimmed || Unquote(value).size() != value.size() ? QuoteText(value, u'"')
                                                          : std::u16string(value);
}

// The INI file of a store without a name in a process without an application: beside the program,
// or in the configuration folder when that is no place for it.
fs::path FileOfProgram() {
  System& system = CurrentSystem();
  const fs::path program = system.ProgramPath();
  fs::path name = program.filename();
  name.replace_extension(".ini");
  const fs::path beside = program.parent_path();
  if (!beside.empty() && !system.IsSystemPlace(beside) && CanWriteFolder(beside)) {
    return beside / name;
  }
  const fs::path config = system.ConfigFolder();
  const fs::path folder = config.empty() ? OwnTempFolder() : config;
  return folder.empty() ? folder : folder / name;
}

}  // namespace

size_t ProfileStore::NameHash::operator()(const NameView& name) const {
  uint64_t hash = 0xCBF29CE484222325;  // FNV-1a
  for (const std::u16string_view part : {name.section, name.key}) {
    for (const char16_t unit : part) hash = (hash ^ FoldCase(unit)) * 0x100000001B3;
    hash = (hash ^ 0xFFFF) * 0x100000001B3;
  }
  return static_cast<size_t>(hash);
}

bool ProfileStore::NameEqual::Equal(const NameView& a, const NameView& b) {
  return EqualWithoutCase(a.key, b.key) && EqualWithoutCase(a.section, b.section);
}

ProfileStore::ProfileStore(std::u16string_view name) {
  SettingsProcess& process = SettingsProcess::Current();
  const std::optional<Application>& application = process.application;
  in_registry_ = application && !application->registry_key.empty();
  if (in_registry_) {
    profile_path_ = name.empty() ? application->profile_file : std::u16string(name);
  } else {
    OpenFile(!name.empty() ? ResolveIniPath(name)
             : application ? ResolveIniPath(application->profile_file)
                           : FileOfProgram());
  }
  ReadSwitches(!name.empty());
  if (name.empty()) {
    const std::u16string own = u"Env__" + Int64Text(++process.unnamed_stores);
    DumpText(kDumpName, u"Ｎｕｌｌのため " + QuoteText(own, u'"') + u" を使用");
  }
}

void ProfileStore::OpenFile(const fs::path& path) {
  file_ = path;
  profile_path_ = PathText(path);
  SettingsProcess& process = SettingsProcess::Current();
  not_written_ = process.TroubleOf(path.parent_path());
  if (path.empty() && not_written_.ok()) {
    not_written_ = Status::Error(Failure::kNotFound, u"settings",
                                 u"there is no folder of the user's own to keep them in");
    return;
  }
  if (!not_written_.ok()) {
    reading_ = not_written_;
    process.TellOnce(not_written_.what + u": " + not_written_.why + u"; settings may be missing");
  }
  Status converted;
  NoteReading(PrepareIniFile(file_, &converted));
  if (converted.ok()) return;
  const std::u16string of = converted.what == profile_path_ ? u"" : converted.what + u": ";
  process.TellOnce(profile_path_ + u": it is read, but not made UTF-16: " + of + converted.why);
}

void ProfileStore::NoteReading(const Status& read) {
  if (read.ok()) return;
  if (reading_.ok()) reading_ = read;
  SettingsProcess::Current().TellOnce(read.what + u": " + read.why);
}

void ProfileStore::ReadSwitches(bool named) {
  SettingsProcess& process = SettingsProcess::Current();
  if (process.use_cache) {
    use_cache_ = *process.use_cache;
  } else {
    use_cache_ = Get(kUseProfileCache, *this);
    if (named) process.use_cache = use_cache_;
    if (!use_cache_) cache_.clear();
  }
  logs_writes_ = Get(kLogWrites, *this);
  logs_reads_ = Get(kLogReads, *this);
}

fs::path ProfileStore::file() const {
  return file_;
}

std::u16string ProfileStore::RegistryKey(std::u16string_view section) const {
  std::u16string key = u"Software\\";
  key += SettingsProcess::Current().application->registry_key;
  return key.append(u"\\").append(profile_path_).append(u"\\").append(section);
}

const ProfileStore::Cached* ProfileStore::FindCached(std::u16string_view section,
                                                     std::u16string_view key) const {
  const auto found = cache_.find(NameView{section, key});
  return found == cache_.end() ? nullptr : &found->second;
}

ProfileStore::Cached& ProfileStore::CacheEntry(std::u16string_view section,
                                               std::u16string_view key) {
  return cache_[Name{std::u16string(section), std::u16string(key)}];
}

std::optional<int32_t> ProfileStore::ReadInt(std::u16string_view section, std::u16string_view key) {
  if (in_registry_) {
    int32_t value = 0;
    const Status read = ReadUserDword(RegistryKey(section), key, &value);
    return FromRegistry(read, section, key).ok() ? std::optional(value) : std::nullopt;
  }
  const auto text = ReadFromFile(section, key);
  if (!text || text->empty()) return std::nullopt;  // an empty value is no number: the default
  return ParseProfileInt(*text);
}

std::optional<std::u16string> ProfileStore::ReadStr(std::u16string_view section,
                                                    std::u16string_view key) {
  if (in_registry_) {
    std::u16string value;
    const Status read = ReadUserString(RegistryKey(section), key, &value);
    return FromRegistry(read, section, key).ok() ? std::optional(value) : std::nullopt;
  }
  return ReadFromFile(section, key);
}

std::optional<std::u16string> ProfileStore::ReadFromFile(std::u16string_view section,
                                                         std::u16string_view key) {
  Status read;
  auto text = ReadProfileString(file_, section, key, kLongestValue, &read);
  NoteReading(read);
  return text;
}

std::optional<int32_t> ProfileStore::LookUpInt(std::u16string_view section, std::u16string_view key,
                                               std::u16string_view if_missing) {
  if (section.empty() || key.empty()) return std::nullopt;
  if (use_cache_) {
    const Cached* cached = FindCached(section, key);
    if (cached && cached->number) return cached->number;
  }
  const std::optional<int32_t> value = ReadInt(section, key);
  if (value && use_cache_) CacheEntry(section, key).number = value;
  if (logs_reads_) Log(u"GetInt", section, key, value ? Int64Text(*value) : if_missing);
  return value;
}

std::optional<std::u16string> ProfileStore::LookUpStr(std::u16string_view section,
                                                      std::u16string_view key,
                                                      std::u16string_view if_missing) {
  if (section.empty() || key.empty()) return std::nullopt;
  if (use_cache_) {
    const Cached* cached = FindCached(section, key);
    if (cached && cached->text) return cached->text;
  }
  std::optional<std::u16string> value = ReadStr(section, key);
  if (value && use_cache_) CacheEntry(section, key).text = value;
  if (logs_reads_) Log(u"GetStr", section, key, value ? *value : if_missing);
  return value;
}

std::optional<int32_t> ProfileStore::FindInt(std::u16string_view section, std::u16string_view key) {
  return LookUpInt(section, key, {});
}

std::optional<std::u16string> ProfileStore::FindStr(std::u16string_view section,
                                                    std::u16string_view key) {
  return LookUpStr(section, key, {});
}

int32_t ProfileStore::GetInt(std::u16string_view section, std::u16string_view key,
                             int32_t default_value) {
  return LookUpInt(section, key, Int64Text(default_value)).value_or(default_value);
}

std::u16string ProfileStore::GetStr(std::u16string_view section, std::u16string_view key,
                                    std::u16string_view default_value) {
  std::optional<std::u16string> value = LookUpStr(section, key, default_value);
  return value ? *std::move(value) : std::u16string(default_value);
}

Status ProfileStore::FromRegistry(const Status& status, std::u16string_view section,
                                  std::u16string_view key) {
  if (status.ok()) return Status::Ok();
  registry_error_ = status.why;
  return Refusal(section, key, status.why);
}

Status ProfileStore::CheckNames(std::u16string_view section, std::u16string_view key,
                                std::u16string_view value) const {
  if (IsBlankName(section) || IsBlankName(key)) {
    return Refusal(section, key, u"a setting needs a section and a key");
  }
  if (HasLineBreak(section) || HasLineBreak(key) || HasLineBreak(value)) {
    return Refusal(section, key, u"a line break or a NUL cannot be kept in a setting");
  }
  if (in_registry_) return Status::Ok();
  const char16_t first = key[key.find_first_not_of(u" \t\v\f")];
  if (first == u'[' || first == u';') {
    return Refusal(section, key, u"a key begins with neither \"[\" nor \";\"");
  }
  return Status::Ok();
}

Status ProfileStore::WriteLines(const std::vector<ProfileEdit>& edits) {
  if (!not_written_.ok()) return not_written_;
  SettingsProcess& process = SettingsProcess::Current();
  const auto write = [&]() -> Status {
    const PathKind kind = FactsOfPath(file_).kind;
    if (kind == PathKind::kOther) {  // a device or a pipe, which a file would take the place of
      return Status::Error(Failure::kOther, profile_path_, u"is no file");
    }
    if (kind == PathKind::kMissing) {
      Status created = CreateNewFile(file_, EncodeText(IniHeader(), TextEncoding::kUtf16));
      if (!created.ok() && created.failure != Failure::kSharingViolation) return created;
    }
    return WriteProfile(file_, edits);
  };
  Status written = WaitForFile(file_, FileWait::kWrite, write, WaitOut::kHolder, &process.patience);
  if (written.ok() && !told_of_writes_.empty()) process.TellOnce(told_of_writes_);
  return written;
}

Status ProfileStore::WriteLine(std::u16string_view section, std::u16string_view key,
                               std::optional<std::u16string> value) {
  if (logs_writes_) Log(value ? u"Write" : u"Remove", section, key, value.value_or(u""));
  if (value) value = Protected(*value);
  Status status = WriteLines({{std::u16string(section), std::u16string(key), std::move(value)}});
  if (status.ok()) wrote_ = true;
  return status;
}

Status ProfileStore::WriteInt(std::u16string_view section, std::u16string_view key, int32_t value) {
  if (Status refused = CheckNames(section, key, {}); !refused.ok()) return refused;
  Status status = in_registry_
                      ? FromRegistry(WriteUserDword(RegistryKey(section), key, value), section, key)
                      : WriteLine(section, key, Int64Text(value));
  if (status.ok() && use_cache_) {
    Cached& cached = CacheEntry(section, key);
    cached.number = value;
    cached.text.reset();
  }
  return status;
}

Status ProfileStore::WriteStr(std::u16string_view section, std::u16string_view key,
                              std::u16string_view value) {
  if (Status refused = CheckNames(section, key, value); !refused.ok()) return refused;
  Status status =
      in_registry_ ? FromRegistry(WriteUserString(RegistryKey(section), key, value), section, key)
                   : WriteLine(section, key, std::u16string(value));
  if (status.ok() && use_cache_) {
    Cached& cached = CacheEntry(section, key);
    cached.number.reset();
    cached.text = in_registry_ ? value : value.substr(0, kLongestValue);
  }
  return status;
}

Status ProfileStore::Remove(std::u16string_view section, std::u16string_view key) {
  if (Status refused = CheckNames(section, key, {}); !refused.ok()) return refused;
  cache_.erase(Name{std::u16string(section), std::u16string(key)});
  if (!in_registry_) {
    const bool missing = not_written_.ok() && FactsOfPath(file_).kind == PathKind::kMissing;
    return missing ? Status::Ok() : WriteLine(section, key, std::nullopt);
  }
  return FromRegistry(DeleteUserValue(RegistryKey(section), key), section, key);
}

void ProfileStore::Log(std::u16string_view operation, std::u16string_view section,
                       std::u16string_view key, std::u16string_view value) const {
  std::u16string line(operation);
  for (const std::u16string_view part : {section, key, value}) line.append(u"\t").append(part);
  line.append(u"\t").append(FormatTime(CurrentClock().Now(), kTimeStamp));
  DumpText(kDumpName, line);
}

}  // namespace kerno
