#include "platform/posix/curl_library.h"

#include <dlfcn.h>

#include <optional>

namespace kerno {
namespace {

constexpr const char* kFile = "libcurl.so.4";

class Loader {
 public:
  explicit Loader(void* library) : library_(library) {}

  template <class Function>
  void Find(const char* name, Function* function) {
    *function = reinterpret_cast<Function>(dlsym(library_, name));
    if (!*function) complete_ = false;
  }
  bool complete() const { return complete_; }

 private:
  void* library_;
  bool complete_ = true;
};

bool FindFunctions(void* library, CurlLibrary* curl) {
  Loader loader(library);
  loader.Find("curl_global_init", &curl->global_init);
  loader.Find("curl_easy_init", &curl->easy_init);
  loader.Find("curl_easy_setopt", &curl->easy_setopt);
  loader.Find("curl_easy_getinfo", &curl->easy_getinfo);
  loader.Find("curl_easy_strerror", &curl->easy_strerror);
  loader.Find("curl_easy_cleanup", &curl->easy_cleanup);
  loader.Find("curl_multi_init", &curl->multi_init);
  loader.Find("curl_multi_add_handle", &curl->multi_add_handle);
  loader.Find("curl_multi_perform", &curl->multi_perform);
  loader.Find("curl_multi_poll", &curl->multi_poll);
  loader.Find("curl_multi_info_read", &curl->multi_info_read);
  loader.Find("curl_multi_remove_handle", &curl->multi_remove_handle);
  loader.Find("curl_multi_cleanup", &curl->multi_cleanup);
  loader.Find("curl_slist_append", &curl->slist_append);
  loader.Find("curl_slist_free_all", &curl->slist_free_all);
  return loader.complete();
}

struct Loaded {
  std::optional<CurlLibrary> curl;
  std::string why;
};

Loaded Load() {
  Loaded loaded;
  void* const library = dlopen(kFile, RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    const char* const reason = dlerror();
    loaded.why = reason ? reason : kFile;
    return loaded;
  }
  CurlLibrary curl{};
  if (!FindFunctions(library, &curl)) {
    loaded.why = std::string(kFile) + " is too old";
  } else if (const CURLcode code = curl.global_init(CURL_GLOBAL_DEFAULT); code != CURLE_OK) {
    loaded.why = curl.easy_strerror(code);
  } else {
    loaded.curl = curl;
  }
  return loaded;
}

}  // namespace

const CurlLibrary* LoadCurl(std::string* why) {
  static const Loaded loaded = Load();
  *why = loaded.why;
  return loaded.curl ? &*loaded.curl : nullptr;
}

}  // namespace kerno
