// What the other rooms need of the settings: reading one value by section and key.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kerno {

class SettingsReader {
 public:
  virtual ~SettingsReader() = default;

  // The value, or the default where it is missing. Reading never fails.
  virtual int32_t GetInt(std::u16string_view section, std::u16string_view key,
                         int32_t default_value) = 0;
  virtual std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                                std::u16string_view default_value) = 0;
};

// Answers every default.
SettingsReader& DefaultSettings();

// The process's settings; one that answers every default until a program sets its own.
// ReplaceSettings returns the one before; null restores the defaults. The caller keeps ownership.
SettingsReader& CurrentSettings();
SettingsReader* ReplaceSettings(SettingsReader* settings);

}  // namespace kerno
