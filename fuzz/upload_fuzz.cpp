// Settings of the upload, from an INI file's bytes to the address, and the body of the request: an
// independent reader of addresses finds host, port and path again, and the body holds the file.
#include <curl/curl.h>

#include <string>

#include "platform/posix/ini_text.h"
#include "platform/posix/utf16_bytes.h"
#include "platform/private_profile.h"
#include "readers.h"
#include "web/multipart.h"
#include "web/upload_settings.h"

namespace kerno {
namespace {

using fuzz::Require;

class TextSettings final : public SettingsReader {
 public:
  explicit TextSettings(std::u16string text) : text_(std::move(text)) {}
  int32_t GetInt(std::u16string_view section, std::u16string_view key, int32_t otherwise) override {
    const auto value = posix::FindIniValue(text_, section, key);
    return value ? ParseProfileInt(*value) : otherwise;
  }
  std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                        std::u16string_view otherwise) override {
    return std::u16string(posix::FindIniValue(text_, section, key).value_or(otherwise));
  }

 private:
  std::u16string text_;
};

std::string PartOf(CURLU* address, CURLUPart part) {
  char* text = nullptr;
  Require(curl_url_get(address, part, &text, CURLU_DEFAULT_PORT) == CURLUE_OK);
  const std::string copy = text;
  curl_free(text);
  return copy;
}

void CheckTarget(const UploadTarget& target) {
  const std::string url = target.Url();
  for (const char c : url) Require(c > ' ' && c < 0x7F && c != '"' && c != '<' && c != '#');
  CURLU* const address = curl_url();
  const CURLUcode read = curl_url_set(address, CURLUPART_URL, url.c_str(), CURLU_PATH_AS_IS);
  // Numbers that look like an address and are none, and the like, are the reader's own to refuse.
  if (read == CURLUE_OK) {
    Require(PartOf(address, CURLUPART_SCHEME) == (target.secure ? "https" : "http"));
    Require(PartOf(address, CURLUPART_PORT) == std::to_string(target.port));
    const std::string path = target.path.substr(0, target.path.find('?'));
    Require(PartOf(address, CURLUPART_PATH) == path);
    char* user = nullptr;
    Require(curl_url_get(address, CURLUPART_USER, &user, 0) == CURLUE_NO_USER);
  } else {
    Require(read == CURLUE_BAD_HOSTNAME || read == CURLUE_BAD_IPV6 || read == CURLUE_NO_HOST);
  }
  curl_url_cleanup(address);
}

// Reads a body as the receiving script does: the boundary is its first line.
void CheckBody(std::u16string_view name, std::string_view file, const LocalTime& now) {
  const auto boundary = ChooseBoundary(now, file);
  Require(boundary.has_value());
  const std::string body = MultipartHead(*boundary, "file_img", HeaderFileName(name)) +
                           std::string(file) + MultipartTail(*boundary);
  const std::string mark = body.substr(0, body.find("\r\n"));
  Require(mark == "--" + *boundary);
  const size_t start = body.find("\r\n\r\n") + 4;
  const size_t end = body.find(mark, start);
  Require(body.substr(start, end - start) == file && body.substr(end) == mark + "--\r\n");
  const std::string head = body.substr(0, start);
  Require(std::count(head.begin(), head.end(), '"') == 4);
  Require(std::count(head.begin(), head.end(), '\n') == 4);
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace kerno;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  posix::ByteForm form;
  TextSettings reader(posix::TextOfBytes(bytes, &form));
  const UploadSettings settings = ReadUploadSettings(reader);
  const int64_t limit = UploadLimit(settings.up_max_file_size);
  fuzz::Require(limit >= 1 << 20 && limit <= 32 << 20 && limit % (1 << 20) == 0);
  UploadTarget target;
  if (FormUploadTarget(settings, &target).ok()) CheckTarget(target);
  LocalTime now = {2024, 5, 6, 7, 8, 9};
  if (size > 2) now = {2024, 5, 6, data[0] % 24, data[1] % 60, data[2] % 61};
  CheckBody(settings.drop_up + settings.server, bytes, now);
  return 0;
}
