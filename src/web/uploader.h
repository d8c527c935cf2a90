// Posts one output file to a server script, as a form upload with the file under "file_img".
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

#include "base/settings.h"
#include "platform/http_session.h"
#include "web/upload_settings.h"

namespace kerno {

enum class UploadEnd {
  kAccepted,       // sent, and the server answered with a status below 400 that is no "moved"
  kNotAccepted,    // sent, and the server answered with another status, or its answer broke off
  kNotConfigured,  // no server is set
  kBadSettings,    // the settings name no place that can be reached
  kFileTrouble,    // the file cannot be read, or is no file
  kTooLarge,       // the file is larger than the settings allow
  kNotSent,        // no connection, or it ended before an answer
  kStopped,        // the user stopped it
};

struct UploadResult {
  UploadEnd end = UploadEnd::kNotSent;
  bool sent = false;  // the whole request went out and an answer began
  int status = 0;     // of the answer; 0 without one
  std::u16string status_line;
  std::u16string first_line;  // of the answer's body that is not blank, at most 200 characters
  std::u16string message;  // one line for the user, whatever the end; begins with what it is about

  bool ok() const { return end == UploadEnd::kAccepted; }
};

// What the request says about the program: its file's name, its version, and the system with its
// version, joined by blanks.
std::string UploadUserAgent();

// Sends files by the settings that `settings` answers, one request each, never repeated. `file` is
// the INI file that messages name.
class Uploader {
 public:
  Uploader(SettingsReader& settings, std::filesystem::path file, HttpSession& session);

  bool IsConfigured();

  // Progress goes to the notices, which may stop it; the current folder, the clock and the notices
  // are those of the process.
  UploadResult Upload(const std::filesystem::path& file);

  HttpLimits limits;  // answer times that tests shorten

 private:
  SettingsReader& settings_;
  std::filesystem::path settings_file_;
  HttpSession& session_;
};

}  // namespace kerno
