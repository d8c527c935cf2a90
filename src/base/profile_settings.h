// The program's settings out of its INI file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "base/profile_store.h"
#include "base/settings.h"

namespace kerno {

// Reads from the INI-only store "Quenkit". A change of the file takes effect at the next read: what
// was read is kept only while the file's size and time stay what they were, and not at all while
// "Debug"/"Log" or "Debug\2009_09"/"UseProfileCache" ask for every read. Any thread may read.
class ProfileSettings final : public SettingsReader {
 public:
  int32_t GetInt(std::u16string_view section, std::u16string_view key,
                 int32_t default_value) override;
  std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                        std::u16string_view default_value) override;

 private:
  // How the file looked; equal for two that hold the same, once the time is not that of just now.
  struct Look {
    std::filesystem::file_time_type time;
    std::uintmax_t size = 0;
    bool operator==(const Look&) const = default;
  };
  using Name = std::pair<std::u16string, std::u16string>;

  static Look LookAt(const std::filesystem::path& file);

  // The store to read from, newly opened when the file has changed or might have.
  IniStore& Store();

  std::recursive_mutex mutex_;  // what is told while a file is read may read a setting
  std::unique_ptr<IniStore> store_;
  std::filesystem::path file_;
  Look look_;
  bool settled_ = false;  // no later change can look the same
  // What a settled store answered; nothing for what the file does not hold.
  std::map<Name, std::optional<int32_t>> numbers_;
  std::map<Name, std::optional<std::u16string>> texts_;
};

// Says what the program is and makes these settings the process's. For the start of a program.
void InstallProfileSettings();

}  // namespace kerno
