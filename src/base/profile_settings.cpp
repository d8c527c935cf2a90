#include "base/profile_settings.h"

#include "base/profile_store.h"
#include "base/settings_places.h"

namespace kerno {

int32_t ProfileSettings::GetInt(std::u16string_view section, std::u16string_view key,
                                int32_t default_value) {
  return IniStore(kStoreName).GetInt(section, key, default_value);
}

std::u16string ProfileSettings::GetStr(std::u16string_view section, std::u16string_view key,
                                       std::u16string_view default_value) {
  return IniStore(kStoreName).GetStr(section, key, default_value);
}

void InstallProfileSettings() {
  static ProfileSettings settings;
  SettingsProcess::Current().application = Application{u"", u"Quenkit.ini"};
  ReplaceSettings(&settings);
}

}  // namespace kerno
