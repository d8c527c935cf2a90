#include <cstring>
#include <utility>
#include <vector>

#include "platform/registry.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

HKEY RootOf(RegistryRoot root) {
  return root == RegistryRoot::kCurrentUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

// A key that is closed with its owner.
class Key {
 public:
  Key() = default;
  ~Key() {
    if (key_ != nullptr) RegCloseKey(key_);
  }
  Key(const Key&) = delete;
  Key& operator=(const Key&) = delete;
  HKEY get() const { return key_; }
  HKEY* put() { return &key_; }

 private:
  HKEY key_ = nullptr;
};

bool IsMissing(LSTATUS error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

RegistryOutcome Failed(std::u16string_view key, LSTATUS error, Status* why) {
  *why = SystemError(ToWide(key), static_cast<uint32_t>(error));
  return RegistryOutcome::kFailed;
}

// The text of a string value up to its first NUL; it may have none, or remains of another
// after it.
std::u16string TextOf(const std::vector<uint8_t>& data) {
  std::u16string text(data.size() / sizeof(char16_t), u'\0');
  std::memcpy(text.data(), data.data(), text.size() * sizeof(char16_t));
  return text.substr(0, text.find(u'\0'));
}

// The text with the environment's variables ("%NAME%") put in.
std::u16string Expanded(const std::u16string& text) {
  const std::wstring wide = ToWide(text);
  std::wstring expanded(ExpandEnvironmentStringsW(wide.c_str(), nullptr, 0), L'\0');
  const DWORD size =
      ExpandEnvironmentStringsW(wide.c_str(), expanded.data(), static_cast<DWORD>(expanded.size()));
  return size != 0 && size <= expanded.size() ? FromWideBuffer(expanded.data(), size) : text;
}

// The value's type and bytes; its size is asked first.
LSTATUS ReadValue(HKEY key, const std::wstring& name, DWORD* type, std::vector<uint8_t>* data) {
  DWORD size = 0;
  LSTATUS error = RegQueryValueExW(key, name.c_str(), nullptr, type, nullptr, &size);
  while (error == ERROR_SUCCESS) {
    data->resize(size);
    error = RegQueryValueExW(key, name.c_str(), nullptr, type, data->data(), &size);
    if (error == ERROR_MORE_DATA) {  // it grew meanwhile
      error = ERROR_SUCCESS;
      continue;
    }
    data->resize(size);
    break;
  }
  return error;
}

}  // namespace

// The system keeps it itself.
std::filesystem::path RegistryFile() {
  return {};
}

RegistryOutcome QueryRegistry(RegistryRoot root, std::u16string_view key, std::u16string_view name,
                              RegistryValue* value, Status* why) {
  Key opened;
  const LSTATUS error =
      RegOpenKeyExW(RootOf(root), ToWide(key).c_str(), 0, KEY_QUERY_VALUE, opened.put());
  if (error != ERROR_SUCCESS && !IsMissing(error) && why) return Failed(key, error, why);
  if (error != ERROR_SUCCESS) return RegistryOutcome::kNoKey;
  DWORD type = 0;
  std::vector<uint8_t> data;
  if (ReadValue(opened.get(), ToWide(name), &type, &data) != ERROR_SUCCESS) {
    return RegistryOutcome::kNoValue;
  }
  *value = {};
  if (type == REG_SZ) {
    value->type = RegistryType::kString;
    value->text = TextOf(data);
  } else if (type == REG_EXPAND_SZ) {
    value->type = RegistryType::kExpandableString;
    value->text = Expanded(TextOf(data));
  } else if (type == REG_DWORD && data.size() == sizeof value->number) {
    value->type = RegistryType::kDword;
    std::memcpy(&value->number, data.data(), sizeof value->number);
  }
  return RegistryOutcome::kDone;
}

RegistryOutcome SetRegistry(RegistryRoot root, std::u16string_view key, std::u16string_view name,
                            const RegistryValue& value, Status* why) {
  *why = Status::Ok();
  if (value.type != RegistryType::kString && value.type != RegistryType::kDword) {
    return Failed(key, ERROR_INVALID_PARAMETER, why);
  }
  Key opened;
  LSTATUS error = RegCreateKeyExW(RootOf(root), ToWide(key).c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                  nullptr, opened.put(), nullptr);
  if (error != ERROR_SUCCESS) return Failed(key, error, why);
  const std::wstring text = ToWide(value.text);
  const bool string = value.type == RegistryType::kString;
  // A string's length is in bytes and counts the NUL at its end.
  const auto* data = string ? reinterpret_cast<const BYTE*>(text.c_str())
                            : reinterpret_cast<const BYTE*>(&value.number);
  const size_t size = string ? (text.size() + 1) * sizeof(wchar_t) : sizeof value.number;
  error = RegSetValueExW(opened.get(), ToWide(name).c_str(), 0, string ? REG_SZ : REG_DWORD, data,
                         static_cast<DWORD>(size));
  return error == ERROR_SUCCESS ? RegistryOutcome::kDone : Failed(key, error, why);
}

RegistryOutcome DeleteRegistryValue(RegistryRoot root, std::u16string_view key,
                                    std::u16string_view name, Status* why) {
  *why = Status::Ok();
  Key opened;
  LSTATUS error = RegOpenKeyExW(RootOf(root), ToWide(key).c_str(), 0, KEY_SET_VALUE, opened.put());
  if (IsMissing(error)) return RegistryOutcome::kNoKey;
  if (error != ERROR_SUCCESS) return Failed(key, error, why);
  error = RegDeleteValueW(opened.get(), ToWide(name).c_str());
  if (IsMissing(error)) return RegistryOutcome::kNoValue;
  return error == ERROR_SUCCESS ? RegistryOutcome::kDone : Failed(key, error, why);
}

RegistryOutcome DeleteRegistryKey(RegistryRoot root, std::u16string_view key, Status* why) {
  *why = Status::Ok();
  const LSTATUS error = RegDeleteKeyW(RootOf(root), ToWide(key).c_str());
  if (IsMissing(error)) return RegistryOutcome::kNoKey;
  return error == ERROR_SUCCESS ? RegistryOutcome::kDone : Failed(key, error, why);
}

}  // namespace kerno
