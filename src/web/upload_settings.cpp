#include "web/upload_settings.h"

#include <algorithm>
#include <optional>

#include "base/text.h"

namespace kerno {
namespace {

constexpr int64_t kMebibyte = 1 << 20;
constexpr uint16_t kHttpPort = 80;
constexpr uint16_t kHttpsPort = 443;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

bool IsLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Letters, digits, hyphens and points, or an address in brackets.
bool IsHost(std::string_view host) {
  if (host.starts_with('[')) {
    return host.size() > 3 && host.ends_with(']') &&
           std::all_of(host.begin() + 1, host.end() - 1,
                       [](char c) { return IsDigit(c) || IsLetter(c) || c == ':' || c == '.'; });
  }
  return !host.empty() && std::all_of(host.begin(), host.end(), [](char c) {
    return IsDigit(c) || IsLetter(c) || c == '-' || c == '.' || c == '_';
  });
}

std::optional<uint16_t> PortNumber(std::string_view text) {
  uint32_t port = 0;
  if (text.empty() || text.size() > 5 || !std::all_of(text.begin(), text.end(), IsDigit)) {
    return std::nullopt;
  }
  for (const char c : text) port = port * 10 + static_cast<uint32_t>(c - '0');
  if (port < 1 || port > 65535) return std::nullopt;
  return static_cast<uint16_t>(port);
}

// The path as it goes on the request line: what cannot stand there as %XX, an escape as it is.
std::string EncodedPath(std::u16string_view path) {
  constexpr std::string_view kHex = "0123456789ABCDEF";
  constexpr std::string_view kAlso = "-._~/?:@!$&'()*+,;=%";
  std::string out = path.starts_with(u'/') ? "" : "/";
  for (const char c : Utf16ToUtf8(path)) {
    const auto byte = static_cast<unsigned char>(c);
    if (IsDigit(c) || IsLetter(c) || kAlso.find(c) != std::string_view::npos) {
      out.push_back(c);
    } else {
      out.push_back('%');
      out.push_back(kHex[byte >> 4]);
      out.push_back(kHex[byte & 15]);
    }
  }
  return out;
}

std::u16string_view Trim(std::u16string_view text) {
  constexpr std::u16string_view kBlanks = u" \t";
  const size_t first = text.find_first_not_of(kBlanks);
  if (first == std::u16string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace

UploadSettings ReadUploadSettings(SettingsReader& reader) {
  UploadSettings settings;
  struct Row {
    std::u16string_view section, key;
    std::u16string* value;  // holds the default
  };
  const Row rows[] = {
      {kUploadSection, kUploadServerKey, &settings.server},
      {kUploadSection, u"php_fn", &settings.php_fn},
      {kUploadSection, u"open_http", &settings.open_http},
      {kUploadSection, u"self_certificate", &settings.self_certificate},
      {kUploadSection, u"up_max_file_size", &settings.up_max_file_size},
      {kUploadSection, u"drop_up", &settings.drop_up},
      {u"Preference_202206", u"Debug", &settings.debug},
  };
  for (const Row& row : rows) {
    *row.value = Trim(reader.GetStr(row.section, row.key, *row.value));
  }
  return settings;
}

int64_t UploadLimit(std::u16string_view up_max_file_size) {
  std::u16string_view text = Trim(up_max_file_size);
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  uint16_t number = 0;  // wraps round as the modulus does
  for (const char16_t c : text) {
    if (c < u'0' || c > u'9') break;
    number = static_cast<uint16_t>(number * 10u + (c - u'0'));
  }
  if (negative) number = static_cast<uint16_t>(-number);
  return std::clamp<int64_t>(number, 1, 32) * kMebibyte;
}

std::string UploadTarget::Url() const {
  std::string url = (secure ? "https://" : "http://") + host;
  if (port != (secure ? kHttpsPort : kHttpPort)) url += ":" + std::to_string(port);
  return url + path;
}

Status FormUploadTarget(const UploadSettings& settings, UploadTarget* target) {
  const auto wrong = [&](std::u16string_view how) {
    return Status::Error(Failure::kOther, u"[" + std::u16string(kUploadSection) + u"]",
                         u"\"server\" (" + settings.server + u") " + std::u16string(how));
  };
  target->secure = AsciiLower(settings.open_http) == u"https";
  target->port = target->secure ? kHttpsPort : kHttpPort;
  target->host = Utf16ToUtf8(settings.server);
  const size_t colon = target->host.rfind(':');
  const size_t bracket = target->host.rfind(']');
  if (colon != std::string::npos && (bracket == std::string::npos || colon > bracket)) {
    const auto port = PortNumber(std::string_view(target->host).substr(colon + 1));
    if (!port) return wrong(u"has a port that is not a number of 1 to 65535");
    target->port = *port;
    target->host.resize(colon);
  }
  if (!IsHost(target->host)) {
    return wrong(
        u"is not a host name; it has the form name or name:port, in ASCII letters, without "
        u"\"http://\" and without a path");
  }
  target->path = EncodedPath(settings.php_fn);
  return Status::Ok();
}

}  // namespace kerno
