#include "base/settings.h"

namespace kerno {
namespace {

class Defaults final : public SettingsReader {
 public:
  int32_t GetInt(std::u16string_view, std::u16string_view, int32_t default_value) override {
    return default_value;
  }
  std::u16string GetStr(std::u16string_view, std::u16string_view,
                        std::u16string_view default_value) override {
    return std::u16string(default_value);
  }
};

Defaults defaults;
SettingsReader* current = &defaults;

}  // namespace

SettingsReader& DefaultSettings() {
  return defaults;
}

SettingsReader& CurrentSettings() {
  return *current;
}

SettingsReader* ReplaceSettings(SettingsReader* settings) {
  SettingsReader* before = current;
  current = settings ? settings : &defaults;
  return before;
}

}  // namespace kerno
