// The program's settings out of its INI file.
#pragma once

#include "base/settings.h"

namespace kerno {

// Reads from the INI-only store "Quenkit". Each read opens the file anew, so that a change takes
// effect at the next read; what is read in a loop is kept by its reader.
class ProfileSettings final : public SettingsReader {
 public:
  int32_t GetInt(std::u16string_view section, std::u16string_view key,
                 int32_t default_value) override;
  std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                        std::u16string_view default_value) override;
};

// Says what the program is and makes these settings the process's. For the start of a program.
void InstallProfileSettings();

}  // namespace kerno
