#include <algorithm>
#include <climits>
#include <future>
#include <memory>
#include <string>
#include <system_error>

#include "platform/http_session.h"
#include "platform/posix/curl_library.h"

namespace kerno {
namespace {

using Time = std::chrono::steady_clock;

constexpr int kPollMilliseconds = 50;
constexpr size_t kMostHeaderBytes = 256 * 1024;
constexpr long kSendBuffer = 128 * 1024;

// What libcurl's callbacks fill.
struct Receiver {
  HttpReply reply;
  size_t most_answer = 0;
  size_t header_bytes = 0;
  bool headers_ended = false;  // those of the last answer
  size_t received = 0;
};

// libcurl takes lines for a status of 200 that tell none.
bool IsStatusLine(std::string_view line, int status) {
  constexpr std::string_view kForm = "HTTP/1.1";
  return line.starts_with(kForm.substr(0, kForm.size() - 1)) && line.size() > kForm.size() &&
         line.substr(kForm.size()).starts_with(" " + std::to_string(status));
}

size_t TakeHeader(char* data, size_t, size_t size, void* context) {
  auto* receiver = static_cast<Receiver*>(context);
  receiver->header_bytes += size;
  receiver->received += size;
  std::string_view line(data, size);
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) line.remove_suffix(1);
  // Each answer begins with such a line; the last one stays. One among the headers is none of them.
  HttpReply& reply = receiver->reply;
  if ((reply.status_line.empty() || receiver->headers_ended) && line.starts_with("HTTP/")) {
    reply.status_line = line;
    receiver->headers_ended = false;
  }
  receiver->headers_ended |= line.empty();
  return receiver->header_bytes <= kMostHeaderBytes ? size : 0;
}

size_t TakeAnswer(char* data, size_t, size_t size, void* context) {
  auto* receiver = static_cast<Receiver*>(context);
  std::string& answer = receiver->reply.answer;
  receiver->received += size;
  const size_t taken = std::min(size, receiver->most_answer - answer.size());
  answer.append(data, taken);
  return taken;  // fewer than `size` ends the transfer
}

HttpEnd EndOf(CURLcode code) {
  switch (code) {
    case CURLE_OK:
      return HttpEnd::kAnswered;
    case CURLE_URL_MALFORMAT:
      return HttpEnd::kBadUrl;
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
      return HttpEnd::kUnknownHost;
    case CURLE_COULDNT_CONNECT:
      return HttpEnd::kRefused;
    case CURLE_OPERATION_TIMEDOUT:  // the only limit that libcurl itself keeps
      return HttpEnd::kConnectTimeout;
    case CURLE_PEER_FAILED_VERIFICATION:
    case CURLE_SSL_ISSUER_ERROR:
    case CURLE_SSL_INVALIDCERTSTATUS:
      return HttpEnd::kUntrusted;
    case CURLE_SSL_CONNECT_ERROR:
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CIPHER:
    case CURLE_USE_SSL_FAILED:
      return HttpEnd::kTlsFailed;
    case CURLE_SEND_ERROR:
    case CURLE_RECV_ERROR:
    case CURLE_PARTIAL_FILE:
      return HttpEnd::kBroken;
    case CURLE_GOT_NOTHING:
      return HttpEnd::kNoAnswer;
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_BAD_CONTENT_ENCODING:
      return HttpEnd::kNotHttp;
    default:
      return HttpEnd::kOther;
  }
}

// One request from its set-up to its reply.
class Request {
 public:
  Request(const CurlLibrary& curl, const HttpPost& post)
      : curl_(curl), post_(post), easy_(curl.easy_init()), multi_(curl.multi_init()) {
    receiver_.most_answer = post.limits.answer_size;
  }
  ~Request() {
    if (added_) curl_.multi_remove_handle(multi_, easy_);
    curl_.multi_cleanup(multi_);
    curl_.easy_cleanup(easy_);
    curl_.slist_free_all(headers_);
  }
  Request(const Request&) = delete;
  Request& operator=(const Request&) = delete;

  HttpReply Run(const HttpProgress& progress) {
    HttpReply& reply = receiver_.reply;
    if (!SetUp()) {
      reply.end = HttpEnd::kUnavailable;
      reply.why = set_up_ == CURLE_OK ? "out of memory" : curl_.easy_strerror(set_up_);
      return reply;
    }
    const bool finished = Drive(progress);
    if (finished) TakeResult();
    long status = 0;
    curl_.easy_getinfo(easy_, CURLINFO_RESPONSE_CODE, &status);
    reply.status = static_cast<int>(status);
    reply.body_sent = BodySent() >= BodySize();
    if (const char* url = nullptr;
        curl_.easy_getinfo(easy_, CURLINFO_REDIRECT_URL, &url) == CURLE_OK && url) {
      reply.location = url;
    }
    SettleCutAnswer();
    return reply;
  }

 private:
  int64_t BodySize() const { return static_cast<int64_t>(post_.body.size()); }

  int64_t BodySent() const {
    curl_off_t sent = 0;
    curl_.easy_getinfo(easy_, CURLINFO_SIZE_UPLOAD_T, &sent);
    return sent;
  }

  template <class Value>
  void Set(CURLoption option, Value value) {
    if (set_up_ == CURLE_OK) set_up_ = curl_.easy_setopt(easy_, option, value);
  }

  bool AddHeader(const std::string& header) {
    curl_slist* const longer = curl_.slist_append(headers_, header.c_str());
    if (longer) headers_ = longer;
    return longer;
  }

  bool SetUp() {
    if (!easy_ || !multi_) return false;
    for (const std::string& header : post_.headers) {
      if (!AddHeader(header)) return false;
    }
    // The body goes out at once, without asking leave first: one call, one try.
    if (!AddHeader("Expect:")) return false;
    Set(CURLOPT_ERRORBUFFER, error_);
    Set(CURLOPT_URL, post_.url.c_str());
    Set(CURLOPT_PROTOCOLS_STR, "http,https");
    Set(CURLOPT_PATH_AS_IS, 1L);
    Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(CURLOPT_HTTPHEADER, headers_);
    Set(CURLOPT_USERAGENT, post_.user_agent.c_str());
    Set(CURLOPT_POST, 1L);
    Set(CURLOPT_POSTFIELDS, post_.body.data());
    Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(BodySize()));
    Set(CURLOPT_UPLOAD_BUFFERSIZE, kSendBuffer);
    Set(CURLOPT_FOLLOWLOCATION, 0L);
    Set(CURLOPT_FRESH_CONNECT, 1L);
    Set(CURLOPT_FORBID_REUSE, 1L);
    Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    Set(CURLOPT_SSL_VERIFYPEER, post_.trust == CertificateTrust::kKnownAuthority ? 1L : 0L);
    Set(CURLOPT_SSL_VERIFYHOST, 2L);
    Set(CURLOPT_CONNECTTIMEOUT_MS,
        static_cast<long>(std::clamp<int64_t>(post_.limits.connect.count(), 1, INT_MAX)));
    Set(CURLOPT_HEADERFUNCTION, &TakeHeader);
    Set(CURLOPT_HEADERDATA, &receiver_);
    Set(CURLOPT_WRITEFUNCTION, &TakeAnswer);
    Set(CURLOPT_WRITEDATA, &receiver_);
    added_ = set_up_ == CURLE_OK && curl_.multi_add_handle(multi_, easy_) == CURLM_OK;
    return added_;
  }

  // True when libcurl came to an end, false when a limit or the caller ended the request.
  bool Drive(const HttpProgress& progress) {
    for (;;) {
      int running = 0;
      if (curl_.multi_perform(multi_, &running) != CURLM_OK) return true;
      if (running == 0) return true;
      if (progress && progress(std::min(BodySent(), BodySize()), BodySize()) == Transfer::kStop) {
        receiver_.reply.end = HttpEnd::kStopped;
        return false;
      }
      if (OverLimits()) {
        receiver_.reply.end = HttpEnd::kStalled;
        return false;
      }
      if (curl_.multi_poll(multi_, nullptr, 0, kPollMilliseconds, nullptr) != CURLM_OK) return true;
    }
  }

  bool OverLimits() {
    const Time::time_point now = Time::now();
    curl_off_t connected = 0;
    curl_.easy_getinfo(easy_, CURLINFO_PRETRANSFER_TIME_T, &connected);
    const int64_t moved = BodySent() + static_cast<int64_t>(receiver_.received);
    if (connected == 0 || moved != moved_ || !was_connected_) last_change_ = now;
    was_connected_ = connected != 0;
    moved_ = moved;
    if (BodySent() < BodySize()) all_sent_ = now;
    return was_connected_ &&
           (now - last_change_ > post_.limits.stall || now - all_sent_ > post_.limits.answer);
  }

  void TakeResult() {
    HttpReply& reply = receiver_.reply;
    int left = 0;
    while (const CURLMsg* message = curl_.multi_info_read(multi_, &left)) {
      if (message->msg != CURLMSG_DONE) continue;
      const CURLcode code = message->data.result;
      reply.end = EndOf(code);
      if (code != CURLE_OK) reply.why = error_[0] ? error_ : curl_.easy_strerror(code);
    }
  }

  // An answer whose end was not waited for, or not wanted, is an answer all the same; one that
  // broke off says so. libcurl takes headers without an end for an answer.
  void SettleCutAnswer() {
    HttpReply& reply = receiver_.reply;
    if (reply.end == HttpEnd::kStopped) return;
    const bool final_status = reply.status >= 200;
    if (reply.end == HttpEnd::kAnswered && !final_status) reply.end = HttpEnd::kNoAnswer;
    if (!final_status) return;
    if (!IsStatusLine(reply.status_line, reply.status)) {
      reply.end = HttpEnd::kNotHttp;
      if (reply.why.empty()) reply.why = "its status cannot be read";
      return;
    }
    if (!receiver_.headers_ended) {
      if (reply.end == HttpEnd::kStalled) return;
      if (receiver_.header_bytes > kMostHeaderBytes) reply.why = "the headers do not end";
      if (reply.end == HttpEnd::kAnswered) reply.why = "within the headers";
      reply.end = HttpEnd::kBroken;
      return;
    }
    const bool limited =
        reply.end == HttpEnd::kStalled || reply.answer.size() >= receiver_.most_answer;
    reply.broke_off = reply.end != HttpEnd::kAnswered && !limited;
    reply.end = HttpEnd::kAnswered;
  }

  const CurlLibrary& curl_;
  const HttpPost& post_;
  CURL* easy_;
  CURLM* multi_;
  curl_slist* headers_ = nullptr;
  bool added_ = false;
  CURLcode set_up_ = CURLE_OK;
  char error_[CURL_ERROR_SIZE] = "";
  Receiver receiver_;
  Time::time_point last_change_ = Time::now();
  Time::time_point all_sent_ = last_change_;
  int64_t moved_ = 0;
  bool was_connected_ = false;
};

class CurlSession final : public HttpSession {
 public:
  std::shared_ptr<void> Prepare() override {
    try {
      return std::make_shared<std::future<void>>(std::async(std::launch::async, [] {
        std::string ignored;
        LoadCurl(&ignored);
      }));
    } catch (const std::system_error&) {
      return nullptr;  // without a second thread, Post loads it
    }
  }

  HttpReply Post(const HttpPost& post, const HttpProgress& progress) override {
    HttpReply reply;
    const CurlLibrary* const curl = LoadCurl(&reply.why);
    if (!curl) {
      reply.end = HttpEnd::kUnavailable;
      return reply;
    }
    return Request(*curl, post).Run(progress);
  }
};

}  // namespace

HttpSession& SystemHttpSession() {
  static CurlSession session;
  return session;
}

}  // namespace kerno
