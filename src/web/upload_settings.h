// Where uploads go, and how large they may be.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/settings.h"
#include "platform/status.h"

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

// The largest file that is sent, in bytes. The number at the start of the text counts MiB, raised
// to 1 and cut to 32; whatever follows it is ignored. Classic: the number is first taken modulo
// 65536, as settings in the field are read.
int64_t UploadLimit(std::u16string_view up_max_file_size);

// The parts of a place on the web.
struct UploadTarget {
  bool secure = true;
  std::string host;  // a name, an IPv4 address, or an IPv6 address in brackets
  uint16_t port = 0;
  std::string path;  // begins with "/", percent-encoded

  std::string Url() const;  // the port left out where it is the scheme's own
};

// The target that the settings name. When they cannot be read as one, the failure says which key is
// wrong and how, and *target is no place.
Status FormUploadTarget(const UploadSettings& settings, UploadTarget* target);

}  // namespace kerno
