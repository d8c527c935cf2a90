// Every setting that the program knows, in one place. docs/settings.md is checked against it.
#pragma once

#include <span>
#include <string_view>

namespace kerno {

enum class SettingType { kInteger, kText, kRectangle };

// The name of a type as the user reads it: "integer", "text", "rectangle".
std::string_view SettingTypeName(SettingType type);

struct Setting {
  std::u16string_view section;
  std::u16string_view key;  // as it stands in the file, type suffix included
  SettingType type;
  std::u16string_view default_value;  // as text; empty where there is none
  std::string_view meaning;           // one line
};

std::span<const Setting> KnownSettings();

// The row of a setting, names compared without case; null for one that the program does not know.
const Setting* FindSetting(std::u16string_view section, std::u16string_view key);

}  // namespace kerno
