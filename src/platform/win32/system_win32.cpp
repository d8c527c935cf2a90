#include <aclapi.h>
#include <lmcons.h>
#include <sddl.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/folder_path.h"
#include "platform/system.h"
#include "platform/win32/handle.h"
#include "platform/win32/long_path.h"
#include "platform/win32/special_folder.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kProgramFolder = L"kerno";

// Calls `fill`(buffer, capacity) with a growing buffer until the text fits; a result of 0 is a
// failure and gives an empty text.
template <class Fill>
std::wstring GrowingText(Fill&& fill) {
  std::wstring text(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = fill(text.data(), static_cast<DWORD>(text.size()));
    if (length < text.size()) {
      text.resize(length);
      return text;
    }
    text.resize(std::max<size_t>(2 * text.size(), length));
  }
}

bool SameName(const std::wstring& a, const std::wstring& b) {
  return CompareStringOrdinal(a.c_str(), static_cast<int>(a.size()), b.c_str(),
                              static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

bool LiesIn(const fs::path& folder, const fs::path& place) {
  if (folder.empty()) return false;
  auto at = place.begin();
  for (const fs::path& name : folder) {
    if (at == place.end() || !SameName(name.native(), at->native())) return false;
    ++at;
  }
  return true;
}

// The identity of the user who runs the program.
class CurrentUser {
 public:
  CurrentUser() {
    HANDLE token = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return;
    const Handle owned(token);
    user_ = Read(token, TokenUser);
    owner_ = Read(token, TokenOwner);
  }

  PSID sid() const { return Sid(user_); }

  // Whether what belongs to `owner` is the user's: what administrators make may belong to their
  // group.
  bool Owns(PSID owner) const {
    return (sid() != nullptr && EqualSid(owner, sid())) ||
           (Sid(owner_) != nullptr && EqualSid(owner, Sid(owner_)));
  }

 private:
  // A structure of the token that begins with a pointer to an identity; empty on failure.
  static std::vector<uint8_t> Read(HANDLE token, TOKEN_INFORMATION_CLASS which) {
    DWORD size = 0;
    GetTokenInformation(token, which, nullptr, 0, &size);
    std::vector<uint8_t> information(size);
    if (!GetTokenInformation(token, which, information.data(), size, &size)) return {};
    return information;
  }
  static PSID Sid(const std::vector<uint8_t>& information) {
    PSID sid = nullptr;
    if (information.size() >= sizeof sid) std::memcpy(&sid, information.data(), sizeof sid);
    return sid;
  }

  std::vector<uint8_t> user_;   // TOKEN_USER
  std::vector<uint8_t> owner_;  // TOKEN_OWNER
};

// What the system allocated, freed with its owner.
template <class T>
class LocalMemory {
 public:
  LocalMemory() = default;
  ~LocalMemory() { LocalFree(memory_); }
  LocalMemory(const LocalMemory&) = delete;
  LocalMemory& operator=(const LocalMemory&) = delete;
  T get() const { return memory_; }
  T* put() { return &memory_; }

 private:
  T memory_ = nullptr;
};

// Full rights for the user and the system, none for anybody else, nothing inherited.
bool PrivateDescriptor(PSID user, LocalMemory<PSECURITY_DESCRIPTOR>* descriptor) {
  LocalMemory<LPWSTR> name;
  if (user == nullptr || !ConvertSidToStringSidW(user, name.put())) return false;
  const std::wstring text = L"D:P(A;OICI;FA;;;SY)(A;OICI;FA;;;" + std::wstring(name.get()) + L")";
  return ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1,
                                                              descriptor->put(), nullptr) != 0;
}

class WindowsSystem final : public System {
 public:
  std::optional<std::u16string> Environment(std::u16string_view name) override {
    const std::wstring wide = ToWide(name);
    SetLastError(ERROR_SUCCESS);
    const std::wstring value = GrowingText([&](wchar_t* buffer, DWORD size) {
      return GetEnvironmentVariableW(wide.c_str(), buffer, size);
    });
    if (value.empty() && GetLastError() == ERROR_ENVVAR_NOT_FOUND) return std::nullopt;
    return FromWide(value);
  }

  fs::path ProgramPath() override {
    return GrowingText(
        [](wchar_t* buffer, DWORD size) { return GetModuleFileNameW(nullptr, buffer, size); });
  }

  std::u16string UserName() override {
    std::wstring name(UNLEN + 1, L'\0');
    auto size = static_cast<DWORD>(name.size());
    return GetUserNameW(name.data(), &size) ? FromWideBuffer(name.data(), name.size())
                                            : std::u16string();
  }

  std::u16string ComputerName() override {
    std::wstring name(MAX_COMPUTERNAME_LENGTH + 1, L'\0');
    auto size = static_cast<DWORD>(name.size());
    return GetComputerNameW(name.data(), &size) ? FromWideBuffer(name.data(), name.size())
                                                : std::u16string();
  }

  fs::path CurrentFolder() override {
    return WithoutSeparator(GrowingText(
        [](wchar_t* buffer, DWORD size) { return GetCurrentDirectoryW(size, buffer); }));
  }

  // A path in its short form is brought to its long form.
  fs::path TemporaryPath() override {
    const std::wstring folder =
        GrowingText([](wchar_t* buffer, DWORD size) { return GetTempPathW(size, buffer); });
    const std::wstring whole = GrowingText([&](wchar_t* buffer, DWORD size) {
      return GetLongPathNameW(folder.c_str(), buffer, size);
    });
    return WithoutSeparator(whole.empty() ? folder : whole);
  }

  fs::path ConfigFolder() override { return OwnFolder(SpecialFolderId::kAppData); }
  fs::path CacheFolder() override { return OwnFolder(SpecialFolderId::kLocalAppData); }

  fs::path SpecialFolder(SpecialFolderId id, MissingFolder missing) override {
    return SpecialFolderPath(static_cast<uint32_t>(id), missing);
  }

  bool IsSystemPlace(const fs::path& path) override {
    const fs::path place = FullPath(path);
    for (const uint32_t id :
         {static_cast<uint32_t>(SpecialFolderId::kWindows),
          static_cast<uint32_t>(SpecialFolderId::kProgramFiles), kProgramFilesX86}) {
      if (LiesIn(SpecialFolderPath(id, MissingFolder::kLeave), place)) return true;
    }
    return false;
  }

  Status MakePrivateFolder(const fs::path& folder) override;

  // The system's temporary folder is the user's own.
  bool IsOwnFolder(const fs::path& folder) override { return IsFolder(folder); }

 private:
  fs::path OwnFolder(SpecialFolderId id) {
    const fs::path base = SpecialFolder(id, MissingFolder::kMake);
    return base.empty() ? base : base / kProgramFolder;
  }
};

// A folder of that name that is there already: it must be the user's own, and becomes private with
// all that is in it.
Status TakeOverFolder(const fs::path& folder, const CurrentUser& user,
                      PSECURITY_DESCRIPTOR wanted) {
  Status foreign = Status::Error(Failure::kAccessDenied, SystemText(folder),
                                 u"it is not a folder of this user's own");
  std::wstring name = LongPath(folder).native();
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return SystemError(folder, GetLastError());
  constexpr DWORD kKind = FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT;
  if ((attributes & kKind) != FILE_ATTRIBUTE_DIRECTORY) return foreign;
  PSID owner = nullptr;
  LocalMemory<PSECURITY_DESCRIPTOR> present;
  DWORD error = GetNamedSecurityInfoW(name.c_str(), SE_FILE_OBJECT, OWNER_SECURITY_INFORMATION,
                                      &owner, nullptr, nullptr, nullptr, present.put());
  if (error != ERROR_SUCCESS) return SystemError(folder, error);
  if (!user.Owns(owner)) return foreign;
  PACL list = nullptr;
  BOOL has_list = FALSE;
  BOOL by_default = FALSE;
  if (!GetSecurityDescriptorDacl(wanted, &has_list, &list, &by_default)) {
    return SystemError(folder, GetLastError());
  }
  error = SetNamedSecurityInfoW(name.data(), SE_FILE_OBJECT,
                                DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION,
                                nullptr, nullptr, list, nullptr);
  if (error != ERROR_SUCCESS) return SystemError(folder, error);
  // The call above tells what lies in the folder; some systems add to the list what the folder
  // itself would inherit, which this one does not.
  return SetFileSecurityW(name.c_str(),
                          DACL_SECURITY_INFORMATION | PROTECTED_DACL_SECURITY_INFORMATION, wanted)
             ? Status::Ok()
             : SystemError(folder, GetLastError());
}

Status WindowsSystem::MakePrivateFolder(const fs::path& folder) {
  const CurrentUser user;
  LocalMemory<PSECURITY_DESCRIPTOR> descriptor;
  if (!PrivateDescriptor(user.sid(), &descriptor)) return SystemError(folder, GetLastError());
  SECURITY_ATTRIBUTES attributes = {sizeof attributes, descriptor.get(), FALSE};
  if (CreateDirectoryW(LongPath(folder).c_str(), &attributes)) return Status::Ok();
  const DWORD error = GetLastError();
  if (error != ERROR_ALREADY_EXISTS) return SystemError(folder, error);
  return TakeOverFolder(folder, user, descriptor.get());
}

WindowsSystem windows_system;

}  // namespace

System& RealSystem() {
  return windows_system;
}

}  // namespace kerno
