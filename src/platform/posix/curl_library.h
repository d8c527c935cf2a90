// libcurl, loaded at its first use.
//
// It brings some thirty libraries along. Linked in the ordinary way they would be loaded at every
// start of the program, for a service that most runs never call on.
#pragma once

#include <curl/curl.h>

#include <string>

namespace kerno {

struct CurlLibrary {
  decltype(&curl_global_init) global_init;
  decltype(&curl_easy_init) easy_init;
  decltype(&curl_easy_setopt) easy_setopt;
  decltype(&curl_easy_getinfo) easy_getinfo;
  decltype(&curl_easy_strerror) easy_strerror;
  decltype(&curl_easy_cleanup) easy_cleanup;
  decltype(&curl_multi_init) multi_init;
  decltype(&curl_multi_add_handle) multi_add_handle;
  decltype(&curl_multi_perform) multi_perform;
  decltype(&curl_multi_poll) multi_poll;
  decltype(&curl_multi_info_read) multi_info_read;
  decltype(&curl_multi_remove_handle) multi_remove_handle;
  decltype(&curl_multi_cleanup) multi_cleanup;
  decltype(&curl_slist_append) slist_append;
  decltype(&curl_slist_free_all) slist_free_all;
};

// Loaded once and kept; any thread may call it. Null with the reason in *why when the machine does
// not have it.
const CurlLibrary* LoadCurl(std::string* why);

}  // namespace kerno
