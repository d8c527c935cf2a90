// The bytes of a replacement go to a file of a private name in the target's folder, which is marked
// for deletion from the start: when the process ends early, however it ends, the system removes it.
// At the end the mark is taken back and the file is renamed over the target.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "platform/file_replacement.h"
#include "platform/folder_path.h"
#include "platform/unnamed_file.h"
#include "platform/win32/handle.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kNameTries = 100;
constexpr size_t kLongestName = 255;  // units
constexpr DWORD kLongestWrite = 1 << 26;

// 0, or the error of the write that failed.
DWORD WriteAll(HANDLE file, std::string_view bytes) {
  while (!bytes.empty()) {
    const auto length = static_cast<DWORD>(std::min<size_t>(bytes.size(), kLongestWrite));
    DWORD written = 0;
    if (!WriteFile(file, bytes.data(), length, &written, nullptr)) return GetLastError();
    if (written == 0) return ERROR_WRITE_FAULT;
    bytes.remove_prefix(written);
  }
  return ERROR_SUCCESS;
}

// A device or a pipe, whose name must stay.
class WrittenThrough final : public FileReplacement {
 public:
  WrittenThrough(fs::path target, Handle file)
      : target_(std::move(target)), file_(std::move(file)) {}

  Status Write(std::string_view bytes) override {
    const DWORD error = WriteAll(file_.get(), bytes);
    return error ? SystemError(target_, error) : Status::Ok();
  }

  // What has no disk behind it cannot be flushed to one.
  Status Commit() override {
    return file_.Close() ? Status::Ok() : SystemError(target_, GetLastError());
  }

 private:
  fs::path target_;
  Handle file_;
};

bool MarkForDeletion(HANDLE file, bool marked) {
  FILE_DISPOSITION_INFO disposition = {static_cast<BOOLEAN>(marked)};
  return SetFileInformationByHandle(file, FileDispositionInfo, &disposition, sizeof disposition) !=
         0;
}

// What a new file takes over from the one that it replaces: who may use it, and the attributes.
struct TakenOver {
  std::vector<uint8_t> access;  // a security descriptor with the access list; empty without one
  DWORD attributes = 0;         // those that describe the file's use; 0 for a new file
};

constexpr DWORD kKeptAttributes = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                                  FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NOT_CONTENT_INDEXED;

// The access list of a file that has one of its own; what a file only inherits, the new file
// inherits likewise.
std::vector<uint8_t> OwnAccess(const fs::path& file) {
  DWORD size = 0;
  GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  std::vector<uint8_t> access(size);
  SECURITY_DESCRIPTOR_CONTROL control = 0;
  DWORD revision = 0;
  if (size == 0 ||
      !GetFileSecurityW(file.c_str(), DACL_SECURITY_INFORMATION, access.data(), size, &size) ||
      !GetSecurityDescriptorControl(access.data(), &control, &revision) ||
      (control & SE_DACL_PROTECTED) == 0) {
    return {};
  }
  return access;
}

class RegularFile final : public FileReplacement {
 public:
  RegularFile(fs::path target, fs::path place)
      : target_(std::move(target)), place_(std::move(place)) {
    const DWORD attributes = GetFileAttributesW(place_.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    kept_.attributes = attributes & kKeptAttributes;
    kept_.access = OwnAccess(place_);
  }

  ~RegularFile() override {
    // Marked since it was opened: closing removes it. Without the mark it goes by its name.
    file_.Close();
    if (!name_.empty() && !marked_) DeleteFileW(name_.c_str());
  }

  Status Open() {
    for (int i = 0; i < kNameTries; ++i) {
      name_ = place_.parent_path() / PrivateName();
      file_ = Handle(CreateFileW(name_.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                                 CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
      if (file_.valid()) {
        marked_ = MarkForDeletion(file_.get(), true);
        return Status::Ok();
      }
      const DWORD error = GetLastError();
      name_.clear();
      if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS) return FolderError(error);
    }
    return FolderError(ERROR_FILE_EXISTS);
  }

  Status Write(std::string_view bytes) override {
    const DWORD error = WriteAll(file_.get(), bytes);
    return error ? SystemError(target_, error) : Status::Ok();
  }

  bool CanRewrite() const override { return true; }

  Status Rewrite(uint64_t at, std::string_view bytes) override {
    LARGE_INTEGER to;
    to.QuadPart = static_cast<LONGLONG>(at);
    if (!SetFilePointerEx(file_.get(), to, nullptr, FILE_BEGIN)) {
      return SystemError(target_, GetLastError());
    }
    Status written = Write(bytes);
    if (!written.ok()) return written;
    to.QuadPart = 0;
    return SetFilePointerEx(file_.get(), to, nullptr, FILE_END)
               ? Status::Ok()
               : SystemError(target_, GetLastError());
  }

  Status Commit() override {
    if (!FlushFileBuffers(file_.get())) return SystemError(target_, GetLastError());
    if (marked_ && !MarkForDeletion(file_.get(), false)) {
      return SystemError(target_, GetLastError());
    }
    marked_ = false;
    if (!file_.Close()) return SystemError(target_, GetLastError());
    if (!kept_.access.empty() &&
        !SetFileSecurityW(name_.c_str(), DACL_SECURITY_INFORMATION, kept_.access.data())) {
      return SystemError(target_, GetLastError());
    }
    if (kept_.attributes != 0) SetFileAttributesW(name_.c_str(), kept_.attributes);
    if (!MoveFileExW(name_.c_str(), place_.c_str(),
                     MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
      return ReplaceError(GetLastError());
    }
    name_.clear();
    return Status::Ok();
  }

 private:
  static std::wstring PrivateName() {
    static std::atomic<unsigned> counter = 0;
    return L".kerno-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++counter) +
           L".tmp";
  }

  Status FolderError(DWORD error) const {
    Status status = SystemError(target_, error);
    if (status.failure == Failure::kNotFound) status.why = WhyNoFolder(status.why);
    if (status.failure == Failure::kAccessDenied && error == ERROR_ACCESS_DENIED) {
      status.why = u"no permission to write in its folder";
    }
    return status;
  }

  std::u16string WhyNoFolder(const std::u16string& why) const {
    for (const fs::path& level : FolderLevels(target_.parent_path())) {
      if (PathExists(level) && !IsFolder(level)) return u"a part of the path is not a folder";
    }
    return why;
  }

  // The system denies access to the name of a file that is open elsewhere.
  Status ReplaceError(DWORD error) const {
    if (error == ERROR_ACCESS_DENIED) {
      const Handle probe(CreateFileW(place_.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0,
                                     nullptr, OPEN_EXISTING, 0, nullptr));
      // One that can be had now was let go since.
      if (probe.valid() || GetLastError() == ERROR_SHARING_VIOLATION) {
        error = ERROR_SHARING_VIOLATION;
      }
    }
    return SystemError(target_, error);
  }

  fs::path target_;
  fs::path place_;
  TakenOver kept_;
  Handle file_;
  fs::path name_;        // the private name while it exists
  bool marked_ = false;  // for deletion
};

// The file behind a symbolic link; the path itself when it is none or leads nowhere.
fs::path BehindLinks(const fs::path& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return path;
  }
  const Handle file(CreateFileW(path.c_str(), 0,
                                FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  std::wstring name(0x8000, L'\0');
  const DWORD length = file.valid() ? GetFinalPathNameByHandleW(file.get(), name.data(),
                                                                static_cast<DWORD>(name.size()), 0)
                                    : 0;
  if (length == 0 || length >= name.size()) return path;
  name.resize(length);
  return name;
}

Status PathError(const fs::path& target, const char16_t* why) {
  return Status::Error(Failure::kNotFound, SystemText(target), why);
}

// Whether a name that reads as a file's, with an extension, stands for a device (COM1.svg): what is
// written would be gone.
bool HidesDevice(const fs::path& target) {
  constexpr std::wstring_view kDevices = L"\\\\.\\";
  return target.has_extension() && !target.native().starts_with(kDevices) &&
         FullPath(target).native().starts_with(kDevices);
}

// Opens what the name stands for when it is a device (CON, NUL, LPT1, \\.\...) or a pipe; null when
// it is neither.
std::unique_ptr<FileReplacement> OpenDevice(const fs::path& target) {
  Handle file(CreateFileW(target.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                          nullptr, OPEN_EXISTING, 0, nullptr));
  if (!file.valid()) return nullptr;
  const DWORD kind = GetFileType(file.get());
  if (kind != FILE_TYPE_CHAR && kind != FILE_TYPE_PIPE) return nullptr;
  return std::make_unique<WrittenThrough>(target, std::move(file));
}

}  // namespace

std::unique_ptr<FileReplacement> FileReplacement::Create(const fs::path& target, Status* status) {
  *status = Status::Ok();
  if (target.empty() || target.native().find(L'\0') != std::wstring::npos) {
    *status = PathError(target, target.empty() ? u"the file has no name" : u"the name holds a NUL");
    return nullptr;
  }
  if (!target.has_filename()) {
    *status =
        Status::Error(Failure::kIsFolder, SystemText(target), u"this names a folder, not a file");
    return nullptr;
  }
  const fs::path place = LongPath(target);
  const DWORD attributes = GetFileAttributesW(place.c_str());
  if (target.filename().native().size() > kLongestName) {
    *status = PathError(target, u"the name is too long");
    return nullptr;
  }
  if (HidesDevice(target)) {
    *status = PathError(target, u"the name stands for a device of the system");
    return nullptr;
  }
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
    if (auto device = OpenDevice(target)) return device;
  } else {
    *status = Status::Error(Failure::kIsFolder, SystemText(target), u"it is a folder");
    return nullptr;
  }
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    *status =
        Status::Error(Failure::kAccessDenied, SystemText(target), u"it is protected from writing");
    return nullptr;
  }
  auto replacement = std::make_unique<RegularFile>(target, BehindLinks(place));
  *status = replacement->Open();
  if (!status->ok()) return nullptr;
  return replacement;
}

// Windows deletes no file that is open under its name and is to be opened again.
std::unique_ptr<UnnamedFile> UnnamedFile::Create(const std::filesystem::path& /*folder*/,
                                                 const std::filesystem::path& /*shown*/,
                                                 Status* status) {
  *status = Status::Ok();
  return nullptr;
}

}  // namespace kerno
