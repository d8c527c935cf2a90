#include "platform/win32/system_error.h"

#include <array>

#include "platform/no_memory.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

struct Reason {
  uint32_t error;
  Failure failure;
  const char16_t* why;
};

constexpr uint32_t kDiskQuotaExceeded = 1295;  // ERROR_DISK_QUOTA_EXCEEDED

constexpr Reason kReasons[] = {
    {ERROR_FILE_NOT_FOUND, Failure::kNotFound, u"there is no such file or folder"},
    {ERROR_PATH_NOT_FOUND, Failure::kNotFound, u"its folder does not exist"},
    {ERROR_INVALID_DRIVE, Failure::kNotFound, u"there is no such drive"},
    {ERROR_BAD_NETPATH, Failure::kNotFound, u"the network path was not found"},
    {ERROR_BAD_NET_NAME, Failure::kNotFound, u"the network name was not found"},
    {ERROR_INVALID_NAME, Failure::kNotFound, u"the name holds characters that no file can have"},
    {ERROR_BAD_PATHNAME, Failure::kNotFound, u"the name is not valid"},
    {ERROR_FILENAME_EXCED_RANGE, Failure::kNotFound, u"the name is too long"},
    {ERROR_NOT_READY, Failure::kNotFound, u"the drive is not ready"},
    {ERROR_ACCESS_DENIED, Failure::kAccessDenied, u"no permission"},
    {ERROR_WRITE_PROTECT, Failure::kAccessDenied, u"the place can only be read"},
    {ERROR_PRIVILEGE_NOT_HELD, Failure::kAccessDenied, u"no permission"},
    {ERROR_SHARING_VIOLATION, Failure::kSharingViolation, u"another process holds the file"},
    {ERROR_LOCK_VIOLATION, Failure::kSharingViolation, u"another process holds the file"},
    {ERROR_USER_MAPPED_FILE, Failure::kSharingViolation, u"another process holds the file"},
    {ERROR_DELETE_PENDING, Failure::kSharingViolation, u"another process holds the file"},
    {ERROR_DISK_FULL, Failure::kNoSpace, u"the disk is full"},
    {ERROR_HANDLE_DISK_FULL, Failure::kNoSpace, u"the disk is full"},
    {kDiskQuotaExceeded, Failure::kNoSpace, u"the quota of the disk is used up"},
    {ERROR_FILE_TOO_LARGE, Failure::kNoSpace, u"the file would be larger than is allowed"},
    {ERROR_NOT_ENOUGH_MEMORY, Failure::kOther, kNoMemoryReason},
    {ERROR_OUTOFMEMORY, Failure::kOther, kNoMemoryReason},
    {ERROR_COMMITMENT_LIMIT, Failure::kOther, kNoMemoryReason},
    {ERROR_NO_DATA, Failure::kOther, u"the reader of the pipe has gone"},
    {ERROR_BROKEN_PIPE, Failure::kOther, u"the reader of the pipe has gone"},
};

}  // namespace

std::u16string SystemText(const std::filesystem::path& path) {
  return FromWide(path.native());
}

std::u16string SystemMessage(uint32_t error, const wchar_t* library) {
  std::array<wchar_t, 512> buffer{};
  DWORD where = FORMAT_MESSAGE_FROM_SYSTEM;
  if (library != nullptr) where |= static_cast<DWORD>(FORMAT_MESSAGE_FROM_HMODULE);
  const DWORD length =
      FormatMessageW(where | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                     library != nullptr ? GetModuleHandleW(library) : nullptr, error, 0,
                     buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
  std::u16string text(buffer.data(), buffer.data() + length);
  while (!text.empty() && (text.back() == u' ' || text.back() == u'.')) text.pop_back();
  if (!text.empty()) return text;
  return u"error " + FromWide(std::to_wstring(error)) + u" of the system";
}

Status SystemError(const std::filesystem::path& what, uint32_t error) {
  for (const Reason& reason : kReasons) {
    if (reason.error == error) return Status::Error(reason.failure, SystemText(what), reason.why);
  }
  return Status::Error(Failure::kOther, SystemText(what), SystemMessage(error));
}

}  // namespace kerno
