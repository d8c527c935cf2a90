// The system itself keeps others out of an open file. A file that is open cannot be replaced,
// though: ChangeFile lets it go for the instant of the replacement, and a mutex named after the
// file keeps the other processes of this program out meanwhile. A foreign program that opens the
// file in that instant makes the replacement fail as a sharing violation.
#include <algorithm>
#include <string>
#include <utility>

#include "platform/file_replacement.h"
#include "platform/held_file.h"
#include "platform/win32/handle.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kLongestRead = 1 << 26;

class WindowsHeldFile final : public HeldFile {
 public:
  WindowsHeldFile(fs::path path, Handle file) : path_(std::move(path)), file_(std::move(file)) {}

  Status Read(std::string* bytes, size_t most) override {
    bytes->clear();
    LARGE_INTEGER size{};
    if (GetFileType(file_.get()) != FILE_TYPE_DISK) return Status::Ok();
    if (!GetFileSizeEx(file_.get(), &size) ||
        !SetFilePointerEx(file_.get(), LARGE_INTEGER{}, nullptr, FILE_BEGIN)) {
      return SystemError(path_, GetLastError());
    }
    bytes->resize(std::min(static_cast<size_t>(size.QuadPart), most));
    size_t have = 0;
    while (have < bytes->size()) {
      const auto wanted = static_cast<DWORD>(std::min<size_t>(bytes->size() - have, kLongestRead));
      DWORD got = 0;
      if (!ReadFile(file_.get(), bytes->data() + have, wanted, &got, nullptr)) {
        const DWORD error = GetLastError();
        bytes->clear();
        return SystemError(path_, error);
      }
      if (got == 0) break;
      have += got;
    }
    bytes->resize(have);
    return Status::Ok();
  }

 private:
  fs::path path_;
  Handle file_;
};

// Owned while it lives, when nobody else owned it.
class FileMutex {
 public:
  explicit FileMutex(const fs::path& path)
      : mutex_(CreateMutexW(nullptr, FALSE, Name(path).c_str())) {
    const DWORD answer = mutex_.valid() ? WaitForSingleObject(mutex_.get(), 0) : WAIT_FAILED;
    owned_ = answer == WAIT_OBJECT_0 || answer == WAIT_ABANDONED;
  }
  ~FileMutex() {
    if (owned_) ReleaseMutex(mutex_.get());
  }
  FileMutex(const FileMutex&) = delete;
  FileMutex& operator=(const FileMutex&) = delete;

  bool owned() const { return owned_; }

 private:
  // Names of mutexes hold no backslash and have a limited length.
  static std::wstring Name(const fs::path& path) {
    std::wstring whole = FullPath(path).native();
    CharUpperBuffW(whole.data(), static_cast<DWORD>(whole.size()));
    uint64_t hash = 14695981039346656037u;  // FNV-1a
    for (const wchar_t unit : whole) hash = (hash ^ unit) * 1099511628211u;
    return L"Local\\kerno-file-" + std::to_wstring(hash);
  }

  Handle mutex_;
  bool owned_ = false;
};

Status HeldByAnother(const fs::path& path) {
  return SystemError(path, ERROR_SHARING_VIOLATION);
}

Status ExistsAlready(const fs::path& path) {
  return Status::Error(Failure::kSharingViolation, SystemText(path), u"it exists already");
}

}  // namespace

std::unique_ptr<HeldFile> HeldFile::Open(const fs::path& path, Deny deny, Status* status) {
  *status = Status::Ok();
  if (path.native().find(L'\0') != std::wstring::npos) {
    *status = SystemError(path, ERROR_FILE_NOT_FOUND);
    return nullptr;
  }
  const fs::path place = LongPath(path);
  const DWORD attributes = GetFileAttributesW(place.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
    *status = Status::Error(Failure::kIsFolder, SystemText(path), u"it is a folder");
    return nullptr;
  }
  const DWORD access = deny == Deny::kAll ? GENERIC_READ | GENERIC_WRITE : GENERIC_READ;
  const DWORD share = deny == Deny::kAll ? 0 : FILE_SHARE_READ;
  Handle file(CreateFileW(place.c_str(), access, share, nullptr, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) {
    *status = SystemError(path, GetLastError());
    return nullptr;
  }
  return std::make_unique<WindowsHeldFile>(path, std::move(file));
}

Status PeekFile(const fs::path& path, std::string* bytes, size_t most) {
  bytes->clear();
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  Handle file(CreateFileW(LongPath(path).c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING,
                          FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file.valid()) return SystemError(path, GetLastError());
  return WindowsHeldFile(path, std::move(file)).Read(bytes, most);
}

Status CreateNewFile(const fs::path& path, std::string_view bytes) {
  const fs::path place = LongPath(path);
  if (GetFileAttributesW(place.c_str()) != INVALID_FILE_ATTRIBUTES) return ExistsAlready(path);
  const fs::path fresh =
      place.parent_path() / (L".kerno-new-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                             std::to_wstring(GetCurrentThreadId()) + L".tmp");
  if (Status written = ReplaceFile(fresh, bytes); !written.ok()) {
    written.what = SystemText(path);
    return written;
  }
  if (MoveFileExW(fresh.c_str(), place.c_str(), MOVEFILE_WRITE_THROUGH)) return Status::Ok();
  const DWORD error = GetLastError();
  DeleteFileW(fresh.c_str());
  const bool exists = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
  return exists ? ExistsAlready(path) : SystemError(path, error);
}

Status ChangeFile(const fs::path& path, IfMissing if_missing,
                  const std::function<std::optional<std::string>(std::string_view)>& change) {
  const FileMutex mutex(path);
  if (!mutex.owned()) return HeldByAnother(path);
  Status status;
  auto file = HeldFile::Open(path, Deny::kAll, &status);
  if (!file) {
    if (status.failure != Failure::kNotFound || if_missing == IfMissing::kFail) return status;
    const std::optional<std::string> fresh = change({});
    return fresh ? CreateNewFile(path, *fresh) : Status::Ok();
  }
  std::string bytes;
  if (status = file->Read(&bytes, std::string::npos); !status.ok()) return status;
  const std::optional<std::string> changed = change(bytes);
  if (!changed) return Status::Ok();
  file.reset();
  return ReplaceFile(path, *changed);
}

Status AppendToFile(const fs::path& path, std::string_view start, std::string_view bytes) {
  const Handle file(CreateFileW(LongPath(path).c_str(), FILE_APPEND_DATA | FILE_READ_ATTRIBUTES,
                                FILE_SHARE_READ, nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                                nullptr));
  LARGE_INTEGER size{};
  if (!file.valid() || !GetFileSizeEx(file.get(), &size)) {
    return SystemError(path, GetLastError());
  }
  std::string all(size.QuadPart == 0 ? start : std::string_view());
  all += bytes;
  DWORD written = 0;
  if (!WriteFile(file.get(), all.data(), static_cast<DWORD>(all.size()), &written, nullptr)) {
    return SystemError(path, GetLastError());
  }
  return written == all.size() ? Status::Ok() : SystemError(path, ERROR_WRITE_FAULT);
}

}  // namespace kerno
