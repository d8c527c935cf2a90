// The standard library knows no network paths: it takes "\\server\share" for a folder "server" in
// the root of the current drive.
#include "platform/folder_path.h"
#include "platform/win32/handle.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

bool IsSeparator(wchar_t unit) {
  return unit == L'\\' || unit == L'/';
}
bool StartsWithTwoSeparators(std::wstring_view text) {
  return text.size() >= 2 && IsSeparator(text[0]) && IsSeparator(text[1]);
}
bool StartsWithDrive(std::wstring_view text) {
  return text.size() >= 2 && text[1] == L':';
}

// Where the name that begins at `at` ends, the separators after it included.
size_t EndOfName(std::wstring_view text, size_t at) {
  while (at < text.size() && !IsSeparator(text[at])) ++at;
  while (at < text.size() && IsSeparator(text[at])) ++at;
  return at;
}

size_t EndOfServerAndShare(std::wstring_view text, size_t at) {
  return EndOfName(text, EndOfName(text, at));
}

// The length of what nobody can make, the separators after it included.
size_t RootLength(std::wstring_view text) {
  if (StartsWithDrive(text))
    return text.size() > 2 && IsSeparator(text[2]) ? EndOfName(text, 2) : 2;
  if (!StartsWithTwoSeparators(text)) return !text.empty() && IsSeparator(text[0]) ? 1 : 0;
  const bool prefix =
      text.size() >= 4 && (text[2] == L'?' || text[2] == L'.') && IsSeparator(text[3]);
  if (!prefix) return EndOfServerAndShare(text, 2);
  const std::wstring_view rest = text.substr(4);
  const bool network = rest.size() >= 4 && IsSeparator(rest[3]) &&
                       CompareStringOrdinal(rest.data(), 3, L"UNC", 3, TRUE) == CSTR_EQUAL;
  return network ? EndOfServerAndShare(text, 8) : EndOfName(text, 4);
}

}  // namespace

bool IsWholePath(const fs::path& path) {
  const std::wstring& text = path.native();
  return StartsWithTwoSeparators(text) ||
         (StartsWithDrive(text) && text.size() > 2 && IsSeparator(text[2]));
}

fs::path WholePath(const fs::path& path) {
  return FullPath(path);
}

std::optional<fs::path> CurrentDrive() {
  return FullPath(L"\\");
}

std::vector<fs::path> FolderLevels(const fs::path& path) {
  const std::wstring& text = path.native();
  std::vector<fs::path> levels;
  for (size_t at = RootLength(text); at < text.size();) {
    size_t end = at;
    while (end < text.size() && !IsSeparator(text[end])) ++end;
    levels.emplace_back(text.substr(0, end));
    at = EndOfName(text, at);
  }
  return levels;
}

bool PathExists(const fs::path& path) {
  return GetFileAttributesW(LongPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool IsFolder(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(LongPath(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

PathFacts FactsOfPath(const fs::path& path) {
  PathFacts facts;
  const Handle file(CreateFileW(LongPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  if (!file.valid()) {
    facts.why = SystemError(path, GetLastError());
    const bool missing = facts.why.failure == Failure::kNotFound;
    facts.kind = missing ? PathKind::kMissing : PathKind::kUnknown;
    return facts;
  }
  BY_HANDLE_FILE_INFORMATION information{};
  if (GetFileType(file.get()) != FILE_TYPE_DISK ||
      !GetFileInformationByHandle(file.get(), &information)) {
    facts.kind = PathKind::kOther;
    return facts;
  }
  const bool folder = (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  facts.kind = folder ? PathKind::kFolder : PathKind::kFile;
  if (!folder) facts.size = uint64_t{information.nFileSizeHigh} << 32 | information.nFileSizeLow;
  return facts;
}

Status ListFolder(const fs::path& folder, const std::function<void(const fs::path&)>& take) {
  WIN32_FIND_DATAW found{};
  const HANDLE search = FindFirstFileW(LongPath(folder / L"*").c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) {
    const DWORD error = GetLastError();
    if (!folder.empty() && !IsFolder(folder)) {
      return Status::Error(Failure::kNotFound, SystemText(folder),
                           PathExists(folder) ? u"it is not a folder" : u"there is no such folder");
    }
    // A root may hold nothing at all, not even "." and "..".
    return error == ERROR_FILE_NOT_FOUND ? Status::Ok() : SystemError(folder, error);
  }
  do {
    const std::wstring_view name = found.cFileName;
    if (name != L"." && name != L"..") take(folder / name);
  } while (FindNextFileW(search, &found));
  const DWORD error = GetLastError();
  FindClose(search);
  return error == ERROR_NO_MORE_FILES ? Status::Ok() : SystemError(folder, error);
}

Status RemoveFile(const fs::path& file) {
  if (DeleteFileW(LongPath(file).c_str())) return Status::Ok();
  const DWORD error = GetLastError();
  const bool gone = error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
  return gone ? Status::Ok() : SystemError(file, error);
}

std::string PathBytes(const fs::path& path) {
  return ToUtf8(path.native());
}

fs::path PathToOpen(const fs::path& path) {
  return LongPath(path);
}

Status MakeFolder(const fs::path& path) {
  if (CreateDirectoryW(LongPath(path).c_str(), nullptr)) return Status::Ok();
  const DWORD error = GetLastError();
  return IsFolder(path) ? Status::Ok() : SystemError(path, error);
}

std::u16string ErrorText(const std::error_code& error) {
  if (error.category() == std::system_category()) {
    return SystemMessage(static_cast<uint32_t>(error.value()));
  }
  const std::string message = error.message();  // of the C library, in English
  return {message.begin(), message.end()};
}

}  // namespace kerno
