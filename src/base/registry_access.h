// The current user's registry, read and written value by value; failures are kept as message texts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kerno {

// Key paths have "\" between their names and no root. Nothing is held open between calls.
class RegistryAccess {
 public:
  // Nothing when the key or the value is missing or the value is of another type.
  std::optional<int32_t> ReadDword(std::u16string_view key, std::u16string_view name);
  std::optional<std::u16string> ReadString(std::u16string_view key, std::u16string_view name);

  // False when it could not be done. Waits while another process holds the registry.
  bool WriteDword(std::u16string_view key, std::u16string_view name, int32_t value);
  bool WriteString(std::u16string_view key, std::u16string_view name, std::u16string_view value);
  bool DeleteValue(std::u16string_view key, std::u16string_view name);
  bool DeleteKey(std::u16string_view key);

  // What the last call that failed could not do: a prefix of fixed width, the key path, "\[", the
  // value's name and "]". Empty when none has failed.
  const std::u16string& last_error() const { return last_error_; }

 private:
  void Record(std::u16string_view what, std::u16string_view key, std::u16string_view name);

  std::u16string last_error_;
};

}  // namespace kerno
