// The system's own private-profile functions, which cache and write in their own way.
#include <algorithm>
#include <string>

#include "platform/held_file.h"
#include "platform/private_profile.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr size_t kLongestValue = 65535;  // units; the functions know no longer ones

// What a missing value is told by: no value holds it.
constexpr const wchar_t* kMissing = L"\x1Bmissing\x1B";

// A name without a folder would be looked for in the system's folder.
std::wstring WholePath(const fs::path& file) {
  std::error_code error;
  const fs::path whole = fs::absolute(file, error);
  return LongPath(error ? file : whole).native();
}

}  // namespace

std::optional<std::u16string> ReadProfileString(const fs::path& file, std::u16string_view section,
                                                std::u16string_view key, size_t most) {
  most = std::min(most, kLongestValue);
  std::wstring value(std::max(most, std::wstring_view(kMissing).size()) + 1, L'\0');
  const DWORD length =
      GetPrivateProfileStringW(ToWide(section).c_str(), ToWide(key).c_str(), kMissing, value.data(),
                               static_cast<DWORD>(value.size()), WholePath(file).c_str());
  value.resize(length);
  if (value == kMissing) return std::nullopt;
  return FromWide(std::wstring_view(value).substr(0, most));
}

// The functions write one line at a time: a failure leaves those before it written.
Status WriteProfile(const fs::path& file, const std::vector<ProfileEdit>& edits) {
  std::error_code error;
  if (fs::is_directory(file, error)) {
    return Status::Error(Failure::kIsFolder, SystemText(file), u"it is a folder");
  }
  if (!fs::exists(file, error)) {
    // Without the mark a new file would hold 8-bit text.
    Status created = CreateNewFile(file, "\xFF\xFE");
    if (!created.ok() && created.failure != Failure::kSharingViolation) return created;
  }
  const std::wstring path = WholePath(file);
  for (const ProfileEdit& edit : edits) {
    const std::wstring value = edit.value ? ToWide(*edit.value) : std::wstring();
    if (!WritePrivateProfileStringW(ToWide(edit.section).c_str(), ToWide(edit.key).c_str(),
                                    edit.value ? value.c_str() : nullptr, path.c_str())) {
      return SystemError(file, GetLastError());
    }
  }
  return Status::Ok();
}

}  // namespace kerno
