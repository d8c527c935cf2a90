#include "base/dump_log.h"

#include <chrono>
#include <fstream>
#include <mutex>

#include "base/file_wait.h"
#include "base/folders.h"
#include "base/notices.h"
#include "base/profile_store.h"
#include "base/settings_places.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "base/text_file.h"
#include "base/time_text.h"
#include "platform/file_replacement.h"
#include "platform/held_file.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int64_t kTenDays = 864000;  // seconds
constexpr std::string_view kRunFileStart = "Created by ";
constexpr std::string_view kUtf16Mark = "\xFF\xFE";

struct DumpProcess {
  std::recursive_mutex lock;
  fs::path prepared;  // the folder that was made and cleaned
  fs::path cleaned_for_run;
  fs::path unopened;  // the file whose failure was reported last
  int users = 0;
  fs::path run_file;  // of this run; empty while the switch is off
};

DumpProcess& Process() {
  static DumpProcess process;
  return process;
}

bool IsDigits(std::u16string_view text) {
  return text.find_first_not_of(u"0123456789") == text.npos;
}

// "..._MMDD_HH.txt"
bool IsHourlyName(std::u16string_view name) {
  constexpr std::u16string_view kShape = u"_MMDD_HH.txt";
  if (name.size() <= kShape.size()) return false;
  const std::u16string_view end = name.substr(name.size() - kShape.size());
  return end[0] == u'_' && IsDigits(end.substr(1, 4)) && end[5] == u'_' &&
         IsDigits(end.substr(6, 2)) && end.substr(8) == u".txt";
}

// By name and by content: other people's files may lie in the folder too.
bool IsOwnFile(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::string start(kRunFileStart.size(), '\0');
  in.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<size_t>(in.gcount()));
  if (IsHourlyName(PathText(file.filename()))) return start.starts_with(kUtf16Mark);
  return file.extension() == ".txt" && start == kRunFileStart;
}

void DeleteOldFiles(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator at(folder, error), end; !error && at != end; at.increment(error)) {
    std::error_code ignored;
    if (!fs::is_regular_file(at->symlink_status(ignored))) continue;
    const auto written = fs::last_write_time(at->path(), ignored);
    if (ignored) continue;
    const auto since_epoch = fs::file_time_type::clock::to_sys(written).time_since_epoch();
    const int64_t seconds = std::chrono::duration_cast<std::chrono::seconds>(since_epoch).count();
    if (CurrentClock().Seconds() - seconds <= kTenDays || !IsOwnFile(at->path())) continue;
    fs::remove(at->path(), ignored);
  }
}

// Empty when the user has no folder of his own for it.
fs::path DumpFolder() {
  const fs::path temp = OwnTempFolder();
  return temp.empty() ? temp : temp / "DbgDump";
}

Status NoDumpFolder() {
  return Status::Error(Failure::kNotFound, u"DbgDump",
                       u"there is no folder of the user's own for it");
}

// The caller's name as a part of a file name.
std::u16string FileNamePart(std::u16string_view name) {
  std::u16string part(name);
  for (char16_t& unit : part) {
    if (unit < u' ' || unit == u'/' || unit == u'\\' || unit == u':') unit = u'_';
  }
  return part;
}

// What a new file begins with: who wrote it, and where.
std::u16string LogHeader() {
  std::u16string header;
  for (const std::u16string& line :
       {CurrentSystem().UserName(), PathText(TempFolder()), PathText(CurrentFolder()),
        PathText(CurrentSystem().ProgramPath())}) {
    header.append(line).append(u"\r\n");
  }
  return header;
}

std::string WithoutMark(const std::string& bytes) {
  return bytes.substr(kUtf16Mark.size());
}

}  // namespace

bool DumpText(std::u16string_view name, std::u16string_view text) {
  DumpProcess& process = Process();
  const std::lock_guard lock(process.lock);
  const fs::path folder = DumpFolder();
  if (process.prepared != folder && !folder.empty()) {
    CreateFolderPath(folder);
    DeleteOldFiles(folder);
    process.prepared = folder;
  }
  const LocalTime now = CurrentClock().Now();
  const fs::path file =
      folder / TextPath(FileNamePart(name) + FormatTime(now, u"_%m%d_%H") + u".txt");
  const std::u16string entry =
      FormatTime(now, u"\t\t%Y/%m/%d %H:%M:%S\t").append(text).append(u"\r\n");
  const std::string start = EncodeText(LogHeader(), TextEncoding::kUtf16);
  const std::string bytes = WithoutMark(EncodeText(entry, TextEncoding::kUtf16));
  const WaitOut what = process.unopened == file ? WaitOut::kHolder : WaitOut::kAnyFailure;
  const Status status =
      folder.empty()
          ? NoDumpFolder()
          : WaitForFile(
                file, FileWait::kNothing, [&] { return AppendToFile(file, start, bytes); }, what);
  if (status.ok()) return true;
  if (process.unopened != file) {
    process.unopened = file;
    CurrentNotices().Message(u"Can't open ab  " + PathText(file) + u": " + status.why);
  }
  return false;
}

namespace {

// Empty when there is no place for it.
fs::path BeginRunFile() {
  const fs::path folder = DumpFolder();
  if (folder.empty()) return folder;
  DumpProcess& process = Process();
  const std::u16string title = PathText(CurrentSystem().ProgramPath().stem()) + u".txt";
  fs::path file = TextPath(u"DbgDump" + title);
  if (CreateFolderPath(folder)) {
    file = folder / TextPath(title);
    if (process.cleaned_for_run != folder) DeleteOldFiles(folder);
    process.cleaned_for_run = folder;
  }
  return file;
}

std::string RunFileHeader() {
  const LocalTime now = CurrentClock().Now();
  return std::string(kRunFileStart) + ToShiftJis(PathText(CurrentSystem().ProgramPath())) +
         ToShiftJis(FormatTime(now, u"\t%m/%d/%Y  %H:%M:%S\n"));
}

}  // namespace

DumpUser::DumpUser(std::u16string_view name) : name_(name) {
  DumpProcess& process = Process();
  const std::lock_guard lock(process.lock);
  ++process.users;
  if (SettingsProcess::Current().dump_begun) return;
  SettingsProcess::Current().dump_begun = true;
  process.run_file.clear();
  ProfileStore store(u"");
  if (!Get(kRunDump, store)) return;
  const fs::path file = BeginRunFile();
  const Status written = file.empty() ? NoDumpFolder() : ReplaceWhenFree(file, RunFileHeader());
  if (!written.ok()) {
    CurrentNotices().Message(written.what + u": " + written.why);
    return;
  }
  process.run_file = file;
  // The path is a convenience; a store that cannot be written keeps the old one.
  static_cast<void>(store.WriteStr(u"Debug", u"DbgFile", PathText(file)));
}

DumpUser::~DumpUser() {
  DumpProcess& process = Process();
  const std::lock_guard lock(process.lock);
  --process.users;
}

void DumpUser::Write(std::u16string_view line) {
  DumpProcess& process = Process();
  const std::lock_guard lock(process.lock);
  if (process.run_file.empty()) return;
  const std::string bytes = ToShiftJis(name_ + u"\t" + std::u16string(line) + u"\n");
  static_cast<void>(WaitForFile(process.run_file, FileWait::kNothing,
                                [&] { return AppendToFile(process.run_file, {}, bytes); }));
}

RunDump::RunDump(std::u16string_view program) {
  // Without the question first, every run would note that it opened a store without a name.
  if (Get(kRunDump)) user_.emplace(program);
}

int DumpUser::Count() {
  const std::lock_guard lock(Process().lock);
  return Process().users;
}

}  // namespace kerno
