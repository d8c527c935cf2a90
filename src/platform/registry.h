// The registry: keys that form a tree, each with named, typed values.
//
// Key paths have "\" between their names and no root. Names are compared without case. The value
// with the empty name is the key's default value.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

enum class RegistryRoot {
  kCurrentUser,   // HKEY_CURRENT_USER
  kLocalMachine,  // HKEY_LOCAL_MACHINE
};

enum class RegistryType {
  kString,            // REG_SZ
  kExpandableString,  // REG_EXPAND_SZ: read with the variables of the environment put in
  kDword,             // REG_DWORD
  kOther,             // anything else; it can be kept but not read
};

struct RegistryValue {
  RegistryType type = RegistryType::kOther;
  std::u16string text;
  uint32_t number = 0;
};

enum class RegistryOutcome {
  kDone,
  kNoKey,    // the key does not exist or cannot be opened
  kNoValue,  // the key has no such value
  kFailed,   // the registry cannot be read, or the change not be made; the reason is in *why
};

// The file that the registry is kept in; empty where the system keeps it, or where there is no
// place.
std::filesystem::path RegistryFile();

// Each call opens the registry and closes it again; what changes it never waits: *why is a
// kSharingViolation when another process holds it. Reading asks for no hold.
RegistryOutcome QueryRegistry(RegistryRoot root, std::u16string_view key, std::u16string_view name,
                              RegistryValue* value, Status* why = nullptr);
RegistryOutcome SetRegistry(RegistryRoot root, std::u16string_view key, std::u16string_view name,
                            const RegistryValue& value, Status* why);
RegistryOutcome DeleteRegistryValue(RegistryRoot root, std::u16string_view key,
                                    std::u16string_view name, Status* why);

// Deletes a key with its values; fails while it has keys below it.
RegistryOutcome DeleteRegistryKey(RegistryRoot root, std::u16string_view key, Status* why);

}  // namespace kerno
