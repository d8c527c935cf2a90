#include "setup/installed_files.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "base/text.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

using FileNames = std::set<fs::path>;

// Where files of the version before wait until the new ones stand.
constexpr const char* kSetAside = "kerno-setup.old";

// Who looks at new files (search, a virus scanner) holds them for a moment.
constexpr int kTries = 5;
constexpr auto kPause = std::chrono::milliseconds(100);

SetupResult NotWritable(const fs::path& path, const std::error_code& error) {
  return {SetupOutcome::kNotWritable,
          Status::Error(Failure::kAccessDenied, PathText(path), ErrorText(error))};
}

// Names that lead out of the folder are no files of it.
bool IsWithin(const fs::path& name) {
  return !name.empty() && name.is_relative() && !name.has_root_path() &&
         std::ranges::none_of(name, [](const fs::path& part) { return part == ".."; });
}

// The files of the list; nothing without a list that can be read.
std::optional<FileNames> ReadList(const fs::path& folder) {
  std::string bytes;
  if (!PeekFile(folder / kFileList, &bytes).ok()) return std::nullopt;
  FileNames names;
  for (size_t begin = 0; begin < bytes.size();) {
    const size_t end = std::min(bytes.find('\n', begin), bytes.size());
    const fs::path name =
        TextPath(Utf8ToUtf16Lossy(std::string_view(bytes).substr(begin, end - begin)));
    if (IsWithin(name)) names.insert(name);
    begin = end + 1;
  }
  return names;
}

// All files below a folder, by their paths from it on.
std::error_code ListFiles(const fs::path& folder, FileNames* names) {
  std::error_code error;
  for (fs::recursive_directory_iterator at(folder, error), end; !error && at != end;
       at.increment(error)) {
    if (at->is_directory(error)) continue;
    names->insert(at->path().lexically_relative(folder));
  }
  return error;
}

bool Stands(const fs::path& path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() != fs::file_type::not_found;
}

std::error_code MoveFile(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::create_directories(to.parent_path(), error);
  for (int tried = 1; !error; ++tried) {
    fs::rename(from, to, error);
    if (!error || tried == kTries) return error;
    std::this_thread::sleep_for(kPause);
    error.clear();
  }
  return error;
}

// Moves of files that are taken back unless they are kept.
class Moves {
 public:
  Moves() = default;
  Moves(const Moves&) = delete;
  Moves& operator=(const Moves&) = delete;
  ~Moves() {
    for (auto move = made_.rbegin(); move != made_.rend(); ++move) {
      (void)MoveFile(move->to, move->from);  // nothing is left to be done where this fails
    }
  }

  std::error_code Make(const fs::path& from, const fs::path& to) {
    const std::error_code error = MoveFile(from, to);
    if (!error) made_.push_back({from, to});
    return error;
  }
  void Keep() { made_.clear(); }

 private:
  struct Move {
    fs::path from;
    fs::path to;
  };
  std::vector<Move> made_;
};

bool HoldSameBytes(const fs::path& one, const fs::path& other) {
  std::string first;
  std::string second;
  return PeekFile(one, &first).ok() && PeekFile(other, &second).ok() && first == second;
}

SetupResult CheckProgram(const fs::path& program) {
  if (program.extension() != ".exe" || !Stands(program)) return {};
  Status status;
  if (HeldFile::Open(program, Deny::kAll, &status)) return {};
  const bool is_held = status.failure == Failure::kSharingViolation;
  return {is_held ? SetupOutcome::kInUse : SetupOutcome::kNotWritable, status};
}

// An installer that was stopped left files aside: they go back where their places are empty.
void Recover(const fs::path& folder) {
  const fs::path aside = folder / kSetAside;
  FileNames names;
  if (!Stands(aside) || ListFiles(aside, &names)) return;
  for (const fs::path& name : names) {
    if (!Stands(folder / name)) (void)MoveFile(aside / name, folder / name);
  }
  std::error_code ignored;
  fs::remove_all(aside, ignored);
}

SetupResult FindForeignFile(const fs::path& staged, const FileNames& names, const fs::path& folder,
                            const FileNames& before) {
  for (const fs::path& name : names) {
    const fs::path place = folder / name;
    if (name == kFileList || before.contains(name) || !Stands(place)) continue;
    if (HoldSameBytes(staged / name, place)) continue;
    return {SetupOutcome::kForeignFile,
            Status::Error(Failure::kOther, PathText(place), u"it was not installed")};
  }
  return {};
}

// Sets aside what stands in the places of all files and moves the new ones there.
SetupResult Exchange(const fs::path& staged, const FileNames& names, const fs::path& folder,
                     const FileNames& before) {
  const fs::path aside = folder / kSetAside;
  FileNames leaving = before;
  leaving.insert(names.begin(), names.end());
  leaving.insert(kFileList);
  Moves moves;
  for (const fs::path& name : leaving) {
    if (!Stands(folder / name)) continue;
    const std::error_code error = moves.Make(folder / name, aside / name);
    if (error) return NotWritable(folder / name, error);
  }
  for (const fs::path& name : names) {
    const std::error_code error = moves.Make(staged / name, folder / name);
    if (error) return NotWritable(folder / name, error);
  }
  moves.Keep();
  return {};
}

SetupResult Place(const fs::path& staged, const fs::path& folder) {
  FileNames names;
  const std::error_code error = ListFiles(staged, &names);
  if (error) return NotWritable(staged, error);
  Recover(folder);
  if (SetupResult result = CheckPrograms(folder); !result.ok()) return result;
  const FileNames before = ReadList(folder).value_or(FileNames());
  if (SetupResult result = FindForeignFile(staged, names, folder, before); !result.ok()) {
    return result;
  }
  SetupResult result = Exchange(staged, names, folder, before);
  std::error_code ignored;
  fs::remove_all(folder / kSetAside, ignored);
  for (const fs::path& name : before) RemoveEmptyFolders(folder, name);
  for (const fs::path& name : names) RemoveEmptyFolders(folder, name);
  return result;
}

}  // namespace

void RemoveEmptyFolders(const fs::path& folder, fs::path relative) {
  std::error_code error;
  while (relative.has_parent_path()) {
    relative = relative.parent_path();
    if (fs::is_directory(folder / relative, error)) fs::remove(folder / relative, error);
  }
  if (fs::is_directory(folder, error)) fs::remove(folder, error);
}

SetupResult CheckPrograms(const fs::path& folder) {
  for (const fs::path& name : ReadList(folder).value_or(FileNames())) {
    if (name == kUninstaller) continue;
    if (SetupResult result = CheckProgram(folder / name); !result.ok()) return result;
  }
  return {};
}

SetupResult PlaceFiles(const fs::path& staged, const fs::path& folder) {
  SetupResult result = Place(staged, folder);
  std::error_code ignored;
  fs::remove_all(staged, ignored);
  if (fs::is_directory(folder, ignored)) fs::remove(folder, ignored);  // where it stayed empty
  return result;
}

SetupResult RemoveFiles(const fs::path& folder) {
  const std::optional<FileNames> names = ReadList(folder);
  if (!names) {
    return {SetupOutcome::kNotInstalled,
            Status::Error(Failure::kNotFound, PathText(folder), u"Kerno is not installed there")};
  }
  if (SetupResult result = CheckPrograms(folder); !result.ok()) return result;
  SetupResult result;
  for (const fs::path& name : *names) {
    std::error_code error;
    if (name == kUninstaller || fs::remove(folder / name, error) || !error) continue;
    if (result.ok()) result = NotWritable(folder / name, error);
  }
  std::error_code error;
  if (result.ok()) {
    fs::remove(folder / kUninstaller, error);  // stays where it runs from there
    fs::remove(folder / kFileList, error);
    if (error) result = NotWritable(folder / kFileList, error);
  }
  for (const fs::path& name : *names) RemoveEmptyFolders(folder, name);
  RemoveEmptyFolders(folder, {});
  return result;
}

}  // namespace kerno
