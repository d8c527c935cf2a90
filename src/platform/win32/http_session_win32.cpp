// HTTP through the internet session of the system. Its calls block: a thread of its own makes them,
// while the caller's thread tells of the progress, keeps the limits and, to end a request early,
// closes its handles under it. A call that does not come back even then is left behind with all
// that it uses.
#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "platform/http_session.h"
#include "platform/win32/http_exchange.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

// The socket errors that come through (winsock2.h).
constexpr DWORD kNetUnreachable = 10051;   // WSAENETUNREACH
constexpr DWORD kAborted = 10053;          // WSAECONNABORTED
constexpr DWORD kReset = 10054;            // WSAECONNRESET
constexpr DWORD kRefused = 10061;          // WSAECONNREFUSED
constexpr DWORD kHostUnreachable = 10065;  // WSAEHOSTUNREACH
constexpr DWORD kHostNotFound = 11001;     // WSAHOST_NOT_FOUND

constexpr std::chrono::milliseconds kWatchStep{50};
constexpr std::chrono::milliseconds kFarewell{500};  // for a call whose handle was closed

struct Ending {
  DWORD error;
  HttpEnd end;
};

constexpr Ending kEndings[] = {
    {ERROR_INTERNET_INVALID_URL, HttpEnd::kBadUrl},
    {ERROR_INTERNET_UNRECOGNIZED_SCHEME, HttpEnd::kBadUrl},
    {ERROR_INTERNET_NAME_NOT_RESOLVED, HttpEnd::kUnknownHost},
    {ERROR_INTERNET_CANNOT_CONNECT, HttpEnd::kRefused},
    {ERROR_INTERNET_INVALID_CA, HttpEnd::kUntrusted},
    {ERROR_INTERNET_SEC_CERT_CN_INVALID, HttpEnd::kUntrusted},
    {ERROR_INTERNET_SEC_CERT_DATE_INVALID, HttpEnd::kUntrusted},
    {ERROR_INTERNET_SEC_CERT_REVOKED, HttpEnd::kUntrusted},
    {ERROR_INTERNET_SEC_INVALID_CERT, HttpEnd::kUntrusted},
    {ERROR_INTERNET_SEC_CERT_ERRORS, HttpEnd::kUntrusted},
    {ERROR_INTERNET_SECURITY_CHANNEL_ERROR, HttpEnd::kTlsFailed},
    {ERROR_INTERNET_CLIENT_AUTH_CERT_NEEDED, HttpEnd::kTlsFailed},
    {ERROR_INTERNET_CONNECTION_RESET, HttpEnd::kBroken},
    {ERROR_INTERNET_CONNECTION_ABORTED, HttpEnd::kBroken},
    {ERROR_INTERNET_DISCONNECTED, HttpEnd::kUnavailable},
    {kReset, HttpEnd::kBroken},
    {kAborted, HttpEnd::kBroken},
    {kRefused, HttpEnd::kRefused},
    {kHostUnreachable, HttpEnd::kRefused},
    {kNetUnreachable, HttpEnd::kRefused},
    {kHostNotFound, HttpEnd::kUnknownHost},
    {ERROR_HTTP_INVALID_SERVER_RESPONSE, HttpEnd::kNotHttp},
    {ERROR_HTTP_HEADER_NOT_FOUND, HttpEnd::kNotHttp},
};

std::string Words(DWORD error) {
  return ToUtf8(ToWide(SystemMessage(error, L"wininet.dll")));
}

// The calls of one request, from its URL to the end of its answer.
class Request {
 public:
  explicit Request(const HttpPost& post)
      : post_(post), body_size_(post.body.size()), exchange_(post.body) {
    post_.body = {};
  }

  void Run() {
    if (CrackUrl() && Connect() && Open() && Send()) Receive();
    exchange_.Publish(reply_);
    exchange_.Enter(HttpPhase::kEnded);
  }

  HttpExchange& exchange() { return exchange_; }
  size_t body_size() const { return body_size_; }

 private:
  // Ends the request with the reason that the system gave; `timeout` is what its time-out means.
  bool Fail(HttpEnd timeout) {
    const DWORD error = GetLastError();
    reply_.end = error == ERROR_INTERNET_TIMEOUT ? timeout : HttpEnd::kOther;
    for (const Ending& ending : kEndings) {
      if (ending.error == error) reply_.end = ending.end;
    }
    reply_.why = Words(error);
    return false;
  }

  bool CrackUrl() {
    url_.assign(post_.url.begin(), post_.url.end());
    URL_COMPONENTSW parts{};
    parts.dwStructSize = sizeof parts;
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = 1;
    if (!InternetCrackUrlW(url_.c_str(), static_cast<DWORD>(url_.size()), 0, &parts) ||
        (parts.nScheme != INTERNET_SCHEME_HTTP && parts.nScheme != INTERNET_SCHEME_HTTPS) ||
        parts.dwHostNameLength == 0) {
      reply_.end = HttpEnd::kBadUrl;
      reply_.why = "the address cannot be read";
      return false;
    }
    secure_ = parts.nScheme == INTERNET_SCHEME_HTTPS;
    port_ = parts.nPort;
    host_.assign(parts.lpszHostName, parts.dwHostNameLength);
    if (parts.dwUrlPathLength > 0) path_.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
    if (parts.dwExtraInfoLength > 0) path_.append(parts.lpszExtraInfo, parts.dwExtraInfoLength);
    if (path_.empty()) path_ = L"/";
    return true;
  }

  static void SetMilliseconds(HINTERNET handle, DWORD option, std::chrono::milliseconds time) {
    auto value = static_cast<DWORD>(std::clamp<int64_t>(time.count(), 1, INT32_MAX));
    InternetSetOptionW(handle, option, &value, sizeof value);
  }

  bool Connect() {
    const std::wstring agent(post_.user_agent.begin(), post_.user_agent.end());
    if (!exchange_.Keep(
            InternetOpenW(agent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0))) {
      return Fail(HttpEnd::kUnavailable);
    }
    const HINTERNET session = exchange_.last();
    SetMilliseconds(session, INTERNET_OPTION_CONNECT_TIMEOUT, post_.limits.connect);
    SetMilliseconds(session, INTERNET_OPTION_SEND_TIMEOUT, post_.limits.stall);
    SetMilliseconds(session, INTERNET_OPTION_RECEIVE_TIMEOUT, post_.limits.stall);
    DWORD once = 1;
    InternetSetOptionW(session, INTERNET_OPTION_CONNECT_RETRIES, &once, sizeof once);
    return exchange_.Keep(InternetConnectW(session, host_.c_str(), port_, nullptr, nullptr,
                                           INTERNET_SERVICE_HTTP, 0, 0)) ||
           Fail(HttpEnd::kConnectTimeout);
  }

  bool Open() {
    DWORD flags = INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_CACHE_WRITE |
                  INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI |
                  INTERNET_FLAG_NO_AUTH;
    if (secure_) flags |= INTERNET_FLAG_SECURE;
    if (!exchange_.Keep(HttpOpenRequestW(exchange_.last(), L"POST", path_.c_str(), L"HTTP/1.1",
                                         nullptr, nullptr, flags, 0))) {
      return Fail(HttpEnd::kConnectTimeout);
    }
    request_ = exchange_.last();
    if (secure_ && post_.trust == CertificateTrust::kAnyAuthority) AcceptAnyAuthority();
    std::vector<std::string> headers = post_.headers;
    headers.insert(headers.begin(), "Accept: */*");
    for (const std::string& header : headers) {
      const std::wstring line = std::wstring(header.begin(), header.end()) + L"\r\n";
      if (!HttpAddRequestHeadersW(request_, line.c_str(), static_cast<DWORD>(line.size()),
                                  HTTP_ADDREQ_FLAG_ADD)) {
        return Fail(HttpEnd::kOther);
      }
    }
    return true;
  }

  // Whoever signed the certificate, and whenever: dates that anybody can write tell nothing. It
  // must still be for the host.
  void AcceptAnyAuthority() {
    DWORD flags = 0;
    DWORD size = sizeof flags;
    InternetQueryOptionW(request_, INTERNET_OPTION_SECURITY_FLAGS, &flags, &size);
    flags |= SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_CERT_DATE_INVALID |
             SECURITY_FLAG_IGNORE_REVOCATION;
    InternetSetOptionW(request_, INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof flags);
  }

  bool Send() {
    INTERNET_BUFFERSW buffers{};
    buffers.dwStructSize = sizeof buffers;
    buffers.dwBufferTotal = static_cast<DWORD>(body_size_);
    if (!HttpSendRequestExW(request_, &buffers, nullptr, 0, 0)) {
      return Fail(HttpEnd::kConnectTimeout);
    }
    exchange_.Enter(HttpPhase::kSending);
    HttpExchange::Piece piece{};
    while (const size_t length = exchange_.NextPiece(&piece)) {
      DWORD written = 0;
      if (!InternetWriteFile(request_, piece.data(), static_cast<DWORD>(length), &written)) {
        Fail(HttpEnd::kStalled);
        // A server that wants no more may have answered already.
        return HttpEndRequestW(request_, nullptr, 0, 0) && ReadStatus();
      }
      exchange_.Sent(written);
    }
    reply_.body_sent = true;
    exchange_.Enter(HttpPhase::kAnswering);
    if (HttpEndRequestW(request_, nullptr, 0, 0) && ReadStatus()) return true;
    Fail(HttpEnd::kStalled);
    // The library names a connection that was closed without a word as it names one that broke, or
    // not at all.
    if (reply_.end == HttpEnd::kBroken || reply_.end == HttpEnd::kOther) {
      reply_.end = HttpEnd::kNoAnswer;
    }
    return false;
  }

  // False without the status of a final answer.
  bool ReadStatus() {
    DWORD status = 0;
    DWORD size = sizeof status;
    const bool read = HttpQueryInfoW(request_, HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER,
                                     &status, &size, nullptr) != 0;
    const std::wstring headers = Header(HTTP_QUERY_RAW_HEADERS_CRLF);
    if (!read || status < 200 || headers.empty()) return false;
    reply_.end = HttpEnd::kAnswered;
    reply_.why.clear();
    reply_.status = static_cast<int>(status);
    reply_.status_line = ToUtf8(headers.substr(0, headers.find(L'\r')));
    return true;
  }

  std::wstring Header(DWORD which) {
    DWORD size = 0;
    HttpQueryInfoW(request_, which, nullptr, &size, nullptr);
    std::wstring text(size / sizeof(wchar_t), L'\0');
    if (size == 0 || !HttpQueryInfoW(request_, which, text.data(), &size, nullptr)) return {};
    text.resize(size / sizeof(wchar_t));
    return text;
  }

  void ReadLocation() {
    const std::wstring target = Header(HTTP_QUERY_LOCATION);
    if (target.empty()) return;
    std::wstring whole(url_.size() + target.size() + 64, L'\0');
    auto size = static_cast<DWORD>(whole.size());
    const bool combined =
        InternetCombineUrlW(url_.c_str(), target.c_str(), whole.data(), &size, ICU_NO_ENCODE) != 0;
    whole.resize(combined ? size : 0);
    reply_.location = ToUtf8(combined ? whole : target);
  }

  // The length that the answer says it has; nothing where it says none.
  std::optional<size_t> PromisedSize() {
    const std::wstring text = Header(HTTP_QUERY_CONTENT_LENGTH);
    size_t size = 0;
    for (const wchar_t c : text) {
      if (c < L'0' || c > L'9' || size > SIZE_MAX / 16) return std::nullopt;
      size = size * 10 + static_cast<size_t>(c - L'0');
    }
    return text.empty() ? std::nullopt : std::optional(size);
  }

  void Receive() {
    ReadLocation();
    exchange_.Publish(reply_);
    const std::optional<size_t> promised = PromisedSize();
    std::array<char, 4096> piece{};
    while (reply_.answer.size() <= post_.limits.answer_size) {
      // Asking first: the reading waits until the buffer is full.
      DWORD there = 0;
      DWORD got = 0;
      if (!InternetQueryDataAvailable(request_, &there, 0, 0) ||
          !InternetReadFile(request_, piece.data(),
                            std::min(there, static_cast<DWORD>(piece.size())), &got)) {
        const DWORD error = GetLastError();
        reply_.why = Words(error);
        reply_.broke_off = error != ERROR_INTERNET_TIMEOUT && !exchange_.IsClosed();
        break;
      }
      if (got == 0) {
        // A connection that closes early ends an answer as its last byte does.
        reply_.broke_off = promised && reply_.answer.size() < *promised && !exchange_.IsClosed();
        if (reply_.broke_off) reply_.why = "it is shorter than it says";
        break;
      }
      reply_.answer.append(piece.data(), got);
      exchange_.Publish(reply_);
    }
    if (reply_.answer.size() > post_.limits.answer_size) {
      reply_.answer.resize(post_.limits.answer_size);
    }
  }

  HttpPost post_;  // without the body
  size_t body_size_;
  HttpExchange exchange_;
  HttpReply reply_;
  std::wstring url_;
  std::wstring host_;
  std::wstring path_;
  INTERNET_PORT port_ = 0;
  bool secure_ = false;
  HINTERNET request_ = nullptr;
};

// The limit that is passed; kAnswered when none is. The system keeps the limit of a sending that
// stands still itself, so that an early answer can still be read; the watch only backs it up.
HttpEnd PassedLimit(const HttpExchange::State& state, const HttpLimits& limits) {
  const HttpExchange::Time::time_point now = HttpExchange::Time::now();
  const auto still = now - state.moved;
  switch (state.phase) {
    case HttpPhase::kConnecting:
      return still > limits.connect ? HttpEnd::kConnectTimeout : HttpEnd::kAnswered;
    case HttpPhase::kSending:
      return still > 3 * limits.stall ? HttpEnd::kStalled : HttpEnd::kAnswered;
    case HttpPhase::kAnswering:
      return still > limits.stall || now - state.all_sent > limits.answer ? HttpEnd::kStalled
                                                                          : HttpEnd::kAnswered;
    case HttpPhase::kEnded:
      break;
  }
  return HttpEnd::kAnswered;
}

class WindowsHttpSession final : public HttpSession {
 public:
  HttpReply Post(const HttpPost& post, const HttpProgress& progress) override {
    const auto request = std::make_shared<Request>(post);
    std::thread([request] { request->Run(); }).detach();
    HttpExchange& exchange = request->exchange();
    const auto total = static_cast<int64_t>(post.body.size());
    HttpEnd ended_by = HttpEnd::kAnswered;
    HttpExchange::State state = exchange.Wait(kWatchStep);
    while (state.phase != HttpPhase::kEnded && ended_by == HttpEnd::kAnswered) {
      const bool stop =
          progress && progress(static_cast<int64_t>(state.sent), total) == Transfer::kStop;
      ended_by = stop ? HttpEnd::kStopped : PassedLimit(state, post.limits);
      if (ended_by == HttpEnd::kAnswered) state = exchange.Wait(kWatchStep);
    }
    if (ended_by == HttpEnd::kAnswered) return exchange.TakeReply();
    exchange.Close();
    return Ended(ended_by, request.get());
  }

 private:
  // An answer that began is an answer all the same, unless the caller wants none.
  static HttpReply Ended(HttpEnd by, Request* request) {
    const HttpExchange::State state = request->exchange().Wait(kFarewell);
    HttpReply reply = request->exchange().TakeReply();
    reply.body_sent = state.sent == request->body_size();
    if (by == HttpEnd::kStopped || reply.status == 0) {
      reply.end = by;
      reply.why.clear();
    }
    return reply;
  }
};

}  // namespace

HttpSession& SystemHttpSession() {
  static WindowsHttpSession session;
  return session;
}

}  // namespace kerno
