#include "base/profile_settings.h"

#include <chrono>

#include "base/settings_places.h"
#include "base/text.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// File systems stamp by a clock that moves in steps; a time this old can no longer be given to a
// second change.
constexpr std::chrono::milliseconds kSteps(100);

}  // namespace

ProfileSettings::Look ProfileSettings::LookAt(const fs::path& file) {
  std::error_code error;
  Look look;
  look.time = fs::last_write_time(file, error);
  if (error) return {};  // a missing file
  look.size = fs::file_size(file, error);
  return look;
}

IniStore& ProfileSettings::Store() {
  if (store_ && settled_ && LookAt(file_) == look_) return *store_;
  store_.reset();
  numbers_.clear();
  texts_.clear();
  // The look is taken before anything is read, so that a change in between is met as one.
  const Look before = file_.empty() ? Look{} : LookAt(file_);
  const bool knew_file = !file_.empty();
  store_ = std::make_unique<IniStore>(kStoreName);
  file_ = TextPath(store_->profile_path());
  look_ = LookAt(file_);
  const bool aged = look_ == Look{} || fs::file_time_type::clock::now() - look_.time > kSteps;
  settled_ = knew_file && look_ == before && aged && !store_->reads_are_watched();
  return *store_;
}

int32_t ProfileSettings::GetInt(std::u16string_view section, std::u16string_view key,
                                int32_t default_value) {
  const std::lock_guard lock(mutex_);
  IniStore& store = Store();
  if (!settled_) return store.GetInt(section, key, default_value);
  const auto [entry, is_new] = numbers_.try_emplace(Name(section, key));
  if (is_new) entry->second = store.FindInt(section, key);
  return entry->second.value_or(default_value);
}

std::u16string ProfileSettings::GetStr(std::u16string_view section, std::u16string_view key,
                                       std::u16string_view default_value) {
  const std::lock_guard lock(mutex_);
  IniStore& store = Store();
  if (!settled_) return store.GetStr(section, key, default_value);
  const auto [entry, is_new] = texts_.try_emplace(Name(section, key));
  if (is_new) entry->second = store.FindStr(section, key);
  return entry->second.value_or(std::u16string(default_value));
}

void InstallProfileSettings() {
  static ProfileSettings settings;
  SettingsProcess::Current().application = Application{u"", u"Quenkit.ini"};
  ReplaceSettings(&settings);
}

}  // namespace kerno
