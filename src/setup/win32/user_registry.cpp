#include "setup/win32/user_registry.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "platform/registry.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"
#include "setup/search_path.h"

namespace kerno {
namespace {

constexpr const wchar_t* kEnvironment = L"Environment";
constexpr const wchar_t* kPath = L"Path";
constexpr UINT kMostMilliseconds = 5000;  // for each window that is told

constexpr std::u16string_view kBaseKey = u"Software\\Quenkit";
constexpr std::u16string_view kStoreKey = u"Software\\Quenkit\\Quenkit";
constexpr std::u16string_view kTimesKey = u"Software\\Quenkit\\Quenkit\\ProfileINI";

class Key {
 public:
  Key(const wchar_t* name, REGSAM rights) {
    error_ =
        RegCreateKeyExW(HKEY_CURRENT_USER, name, 0, nullptr, 0, rights, nullptr, &key_, nullptr);
  }
  ~Key() {
    if (error_ == ERROR_SUCCESS) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY get() const { return key_; }
  LSTATUS error() const { return error_; }

 private:
  HKEY key_ = nullptr;
  LSTATUS error_ = ERROR_SUCCESS;
};

struct PathValue {
  DWORD type = REG_EXPAND_SZ;  // where there is none yet
  bool exists = false;
  std::u16string text;
};

SetupResult PathLeft(std::u16string why) {
  return {SetupOutcome::kPathLeft, Status::Error(Failure::kOther, u"PATH", std::move(why))};
}

SetupResult PathLeft(LSTATUS error) {
  return PathLeft(SystemMessage(static_cast<uint32_t>(error)));
}

LSTATUS ReadBytes(HKEY key, DWORD* type, std::vector<BYTE>* bytes) {
  DWORD size = 0;
  LSTATUS error = RegQueryValueExW(key, kPath, nullptr, type, nullptr, &size);
  if (error != ERROR_SUCCESS) return error;
  bytes->resize(size);
  error = RegQueryValueExW(key, kPath, nullptr, type, bytes->data(), &size);
  bytes->resize(size);
  return error;
}

// Whole or not at all: a value that is no text, or has more after its end, is left alone.
SetupResult ReadPath(HKEY key, PathValue* value) {
  std::vector<BYTE> bytes;
  const LSTATUS error = ReadBytes(key, &value->type, &bytes);
  if (error == ERROR_FILE_NOT_FOUND) {
    *value = {};
    return {};
  }
  if (error != ERROR_SUCCESS) return PathLeft(error);
  const bool is_text = value->type == REG_SZ || value->type == REG_EXPAND_SZ;
  if (!is_text || bytes.size() % sizeof(char16_t) != 0) return PathLeft(u"the value is no text");
  value->exists = true;
  value->text.resize(bytes.size() / sizeof(char16_t));
  if (!bytes.empty()) std::memcpy(value->text.data(), bytes.data(), bytes.size());
  while (value->text.ends_with(u'\0')) value->text.pop_back();
  if (value->text.find(u'\0') != value->text.npos) return PathLeft(u"a NUL is within the value");
  return {};
}

LSTATUS WriteText(HKEY key, DWORD type, const std::u16string& text) {
  const size_t size = (text.size() + 1) * sizeof(char16_t);  // with the NUL at its end
  return RegSetValueExW(key, kPath, 0, type, reinterpret_cast<const BYTE*>(text.c_str()),
                        static_cast<DWORD>(size));
}

void TellPrograms() {
  DWORD_PTR answer = 0;
  SendMessageTimeoutW(HWND_BROADCAST, WM_SETTINGCHANGE, 0, reinterpret_cast<LPARAM>(kEnvironment),
                      SMTO_ABORTIFHUNG, kMostMilliseconds, &answer);
}

// An empty path is no value at all: so it was before the first folder came.
SetupResult ChangePath(HKEY key, const PathValue& before, const std::u16string& text) {
  const LSTATUS error =
      text.empty() ? RegDeleteValueW(key, kPath) : WriteText(key, before.type, text);
  if (error != ERROR_SUCCESS) return PathLeft(error);
  PathValue now;
  if (SetupResult result = ReadPath(key, &now); !result.ok() || now.text != text) {
    (void)WriteText(key, before.type, before.text);
    return PathLeft(u"the value did not become what was written");
  }
  TellPrograms();
  return {};
}

// RegDeleteKeyW takes the key's values with it.
void RemoveKeyIfEmpty(std::u16string_view name) {
  DWORD keys = 0;
  DWORD values = 0;
  {
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, ToWide(name).c_str(), 0, KEY_READ, &key) !=
        ERROR_SUCCESS) {
      return;
    }
    const LSTATUS error = RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, nullptr, nullptr,
                                           &values, nullptr, nullptr, nullptr, nullptr);
    RegCloseKey(key);
    if (error != ERROR_SUCCESS) return;
  }
  if (keys == 0 && values == 0) RegDeleteKeyW(HKEY_CURRENT_USER, ToWide(name).c_str());
}

}  // namespace

SetupResult AddToUserPath(const std::filesystem::path& folder) {
  const Key key(kEnvironment, KEY_QUERY_VALUE | KEY_SET_VALUE);
  if (key.error() != ERROR_SUCCESS) return PathLeft(key.error());
  PathValue value;
  if (SetupResult result = ReadPath(key.get(), &value); !result.ok()) return result;
  const std::u16string entry = SystemText(folder);
  if (HasFolder(value.text, entry)) {
    return {SetupOutcome::kAlreadyThere, Status::Error(Failure::kOther, u"PATH", u"it is there")};
  }
  const std::optional<std::u16string> longer = WithFolder(value.text, entry);
  if (!longer) return PathLeft(u"there is no room for the folder, or its name cannot stand there");
  return ChangePath(key.get(), value, *longer);
}

SetupResult RemoveFromUserPath(const std::filesystem::path& folder) {
  const Key key(kEnvironment, KEY_QUERY_VALUE | KEY_SET_VALUE);
  if (key.error() != ERROR_SUCCESS) return PathLeft(key.error());
  PathValue value;
  if (SetupResult result = ReadPath(key.get(), &value); !result.ok()) return result;
  const std::u16string shorter = WithoutFolder(value.text, SystemText(folder));
  return shorter == value.text ? SetupResult() : ChangePath(key.get(), value, shorter);
}

SetupResult RemoveNotes() {
  Status why;
  for (const auto& [key, name] :
       {std::pair{kBaseKey, u"RegKey_Base は"}, std::pair{kStoreKey, u"IniFullBase は"}}) {
    if (DeleteRegistryValue(RegistryRoot::kCurrentUser, key, name, &why) ==
        RegistryOutcome::kFailed) {
      return {SetupOutcome::kNotWritable, why};
    }
  }
  if (DeleteRegistryKey(RegistryRoot::kCurrentUser, kTimesKey, &why) == RegistryOutcome::kFailed) {
    return {SetupOutcome::kNotWritable, why};
  }
  RemoveKeyIfEmpty(kStoreKey);
  RemoveKeyIfEmpty(kBaseKey);
  return {};
}

}  // namespace kerno
