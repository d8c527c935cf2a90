// Where uploads go, and how large they may be.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/settings.h"

namespace kerno {

inline constexpr std::u16string_view kUploadSection = u"UpFile";
inline constexpr std::u16string_view kUploadServerKey = u"server";

// The uploader's settings, as its INI file has them: section [UpFile], except where noted.
struct UploadSettings {
  std::u16string server;  // no upload without one
  std::u16string php_fn = u"/Quenkit/upload/share/upload.php";
  std::u16string open_http = u"https";
  std::u16string self_certificate;  // not empty: any authority will do
  std::u16string up_max_file_size = u"10M";
  std::u16string drop_up;  // kept for the receiving side; unused
  std::u16string debug;    // [Preference_202206] Debug; not empty: the body is also kept as a file
};

UploadSettings ReadUploadSettings(SettingsReader& reader);

// The largest file that is sent, in bytes. The number at the start of the text is taken modulo
// 65536 (this is meant), raised to 1, cut to 32, and counts MiB; whatever follows it is ignored.
int64_t UploadLimit(std::u16string_view up_max_file_size);

// The parts of a place on the web.
struct UploadTarget {
  bool secure = true;
  std::string host;  // a name, an IPv4 address, or an IPv6 address in brackets
  uint16_t port = 0;
  std::string path;  // begins with "/", percent-encoded

  std::string Url() const;  // the port left out where it is the scheme's own
};

// The target that the settings name. Nothing when they cannot be read as one; *why then says which
// key is wrong and how.
std::optional<UploadTarget> FormUploadTarget(const UploadSettings& settings, std::u16string* why);

}  // namespace kerno
