// The uploader as the program uses it: with its own INI file and the system's HTTP.
//
// The file is read again each time, so that a change takes effect at the next use.
#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include "base/settings.h"
#include "web/uploader.h"

namespace kerno {

// The uploader's INI file, "UpFile.ini": on a system with drives in "\Temp\Quenkit\_Setting\" of
// the current folder's drive, elsewhere in the user's configuration folder. It is never written.
std::filesystem::path UploadSettingsFile();

class UploadProfile final : public SettingsReader {
 public:
  explicit UploadProfile(std::filesystem::path file) : file_(std::move(file)) {}
  int32_t GetInt(std::u16string_view section, std::u16string_view key,
                 int32_t default_value) override;
  std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                        std::u16string_view default_value) override;

 private:
  std::filesystem::path file_;
};

// Whether a server is set, so that an upload may be offered.
bool UploadIsConfigured();

// Sends one file by the settings in an INI file, which is waited for while another process holds
// it; progress goes to the process's notices, which may stop it.
UploadResult UploadFile(const std::filesystem::path& file,
                        const std::filesystem::path& settings = UploadSettingsFile());

}  // namespace kerno
