// HTTP through the internet session of the system.
#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <utility>

#include "platform/http_session.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

using SteadyClock = std::chrono::steady_clock;

constexpr size_t kPiece = 32 * 1024;  // bytes sent between two reports of progress

class Internet {
 public:
  explicit Internet(HINTERNET handle = nullptr) : handle_(handle) {}
  ~Internet() {
    if (handle_ != nullptr) InternetCloseHandle(handle_);
  }
  Internet(const Internet&) = delete;
  Internet& operator=(const Internet&) = delete;
  HINTERNET get() const { return handle_; }
  bool valid() const { return handle_ != nullptr; }

 private:
  HINTERNET handle_;
};

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
    {ERROR_INTERNET_CONNECTION_RESET, HttpEnd::kBroken},
    {ERROR_INTERNET_CONNECTION_ABORTED, HttpEnd::kBroken},
    {ERROR_INTERNET_DISCONNECTED, HttpEnd::kUnavailable},
    {ERROR_HTTP_INVALID_SERVER_RESPONSE, HttpEnd::kNotHttp},
    {ERROR_HTTP_HEADER_NOT_FOUND, HttpEnd::kNotHttp},
};

// The words of the internet library for its own errors, else the system's.
std::string Words(DWORD error) {
  std::array<wchar_t, 512> buffer{};
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_FROM_HMODULE | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
      GetModuleHandleW(L"wininet.dll"), error, 0, buffer.data(), static_cast<DWORD>(buffer.size()),
      nullptr);
  if (length == 0) return ToUtf8(ToWide(SystemMessage(error)));
  std::wstring text(buffer.data(), length);
  while (!text.empty() && (text.back() == L' ' || text.back() == L'.')) text.pop_back();
  return ToUtf8(text);
}

// One request from its URL to the end of its answer.
class Request {
 public:
  Request(const HttpPost& post, const HttpProgress& progress) : post_(post), progress_(progress) {}

  HttpReply Run() {
    if (CrackUrl() && Connect() && Open() && Send()) Receive();
    return std::move(reply_);
  }

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
    auto value = static_cast<DWORD>(time.count());
    InternetSetOptionW(handle, option, &value, sizeof value);
  }

  bool Connect() {
    const std::wstring agent(post_.user_agent.begin(), post_.user_agent.end());
    session_.emplace(
        InternetOpenW(agent.c_str(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0));
    if (!session_->valid()) return Fail(HttpEnd::kUnavailable);
    SetMilliseconds(session_->get(), INTERNET_OPTION_CONNECT_TIMEOUT, post_.limits.connect);
    SetMilliseconds(session_->get(), INTERNET_OPTION_SEND_TIMEOUT, post_.limits.stall);
    SetMilliseconds(session_->get(), INTERNET_OPTION_RECEIVE_TIMEOUT, post_.limits.stall);
    DWORD once = 1;
    InternetSetOptionW(session_->get(), INTERNET_OPTION_CONNECT_RETRIES, &once, sizeof once);
    connection_.emplace(InternetConnectW(session_->get(), host_.c_str(), port_, nullptr, nullptr,
                                         INTERNET_SERVICE_HTTP, 0, 0));
    return connection_->valid() || Fail(HttpEnd::kConnectTimeout);
  }

  bool Open() {
    DWORD flags = INTERNET_FLAG_NO_AUTO_REDIRECT | INTERNET_FLAG_NO_CACHE_WRITE |
                  INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_COOKIES | INTERNET_FLAG_NO_UI |
                  INTERNET_FLAG_NO_AUTH;
    if (secure_) flags |= INTERNET_FLAG_SECURE;
    request_.emplace(HttpOpenRequestW(connection_->get(), L"POST", path_.c_str(), L"HTTP/1.1",
                                      nullptr, nullptr, flags, 0));
    if (!request_->valid()) return Fail(HttpEnd::kConnectTimeout);
    if (secure_ && post_.trust == CertificateTrust::kAnyAuthority) AcceptAnyAuthority();
    for (const std::string& header : post_.headers) {
      const std::wstring line = std::wstring(header.begin(), header.end()) + L"\r\n";
      if (!HttpAddRequestHeadersW(request_->get(), line.c_str(), static_cast<DWORD>(line.size()),
                                  HTTP_ADDREQ_FLAG_ADD)) {
        return Fail(HttpEnd::kOther);
      }
    }
    return true;
  }

  // Whoever signed the certificate; it must still be for the host and in its time.
  void AcceptAnyAuthority() {
    DWORD flags = 0;
    DWORD size = sizeof flags;
    InternetQueryOptionW(request_->get(), INTERNET_OPTION_SECURITY_FLAGS, &flags, &size);
    flags |= SECURITY_FLAG_IGNORE_UNKNOWN_CA | SECURITY_FLAG_IGNORE_REVOCATION;
    InternetSetOptionW(request_->get(), INTERNET_OPTION_SECURITY_FLAGS, &flags, sizeof flags);
  }

  bool Stopped(size_t sent) {
    if (!progress_ || progress_(static_cast<int64_t>(sent),
                                static_cast<int64_t>(post_.body.size())) == Transfer::kGoOn) {
      return false;
    }
    reply_.end = HttpEnd::kStopped;
    return true;
  }

  bool Send() {
    INTERNET_BUFFERSW buffers{};
    buffers.dwStructSize = sizeof buffers;
    buffers.dwBufferTotal = static_cast<DWORD>(post_.body.size());
    if (Stopped(0)) return false;
    if (!HttpSendRequestExW(request_->get(), &buffers, nullptr, 0, 0)) {
      return Fail(HttpEnd::kConnectTimeout);
    }
    for (size_t sent = 0; sent < post_.body.size();) {
      const auto length = static_cast<DWORD>(std::min(kPiece, post_.body.size() - sent));
      DWORD written = 0;
      if (!InternetWriteFile(request_->get(), post_.body.data() + sent, length, &written)) {
        return Fail(HttpEnd::kStalled);
      }
      sent += written;
      if (Stopped(sent)) return false;
    }
    reply_.body_sent = true;
    if (HttpEndRequestW(request_->get(), nullptr, 0, 0)) return true;
    Fail(HttpEnd::kStalled);
    // The library names a connection that was closed without a word as it names one that broke.
    if (reply_.end == HttpEnd::kBroken || reply_.end == HttpEnd::kOther) {
      reply_.end = HttpEnd::kNoAnswer;
    }
    return false;
  }

  std::wstring Header(DWORD which) {
    DWORD size = 0;
    HttpQueryInfoW(request_->get(), which, nullptr, &size, nullptr);
    std::wstring text(size / sizeof(wchar_t), L'\0');
    if (size == 0 || !HttpQueryInfoW(request_->get(), which, text.data(), &size, nullptr))
      return {};
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

  void Receive() {
    DWORD status = 0;
    DWORD size = sizeof status;
    if (!HttpQueryInfoW(request_->get(), HTTP_QUERY_STATUS_CODE | HTTP_QUERY_FLAG_NUMBER, &status,
                        &size, nullptr)) {
      Fail(HttpEnd::kStalled);
      if (reply_.end == HttpEnd::kOther) reply_.end = HttpEnd::kNotHttp;
      return;
    }
    reply_.end = HttpEnd::kAnswered;
    reply_.status = static_cast<int>(status);
    const std::wstring headers = Header(HTTP_QUERY_RAW_HEADERS_CRLF);
    reply_.status_line = ToUtf8(headers.substr(0, headers.find(L'\r')));
    ReadLocation();
    const auto last = SteadyClock::now() + post_.limits.answer;
    std::array<char, 4096> piece{};
    while (reply_.answer.size() <= post_.limits.answer_size) {
      DWORD got = 0;
      const bool late = SteadyClock::now() > last;
      if (late || !InternetReadFile(request_->get(), piece.data(), static_cast<DWORD>(piece.size()),
                                    &got)) {
        reply_.answer_cut = true;
        reply_.why = late ? "the answer took too long" : Words(GetLastError());
        break;
      }
      if (got == 0) break;
      reply_.answer.append(piece.data(), got);
      if (Stopped(post_.body.size())) return;
    }
    if (reply_.answer.size() > post_.limits.answer_size) {
      reply_.answer.resize(post_.limits.answer_size);
      reply_.answer_cut = true;
    }
  }

  const HttpPost& post_;
  const HttpProgress& progress_;
  HttpReply reply_;
  std::wstring url_;
  std::wstring host_;
  std::wstring path_;
  INTERNET_PORT port_ = 0;
  bool secure_ = false;
  std::optional<Internet> session_;
  std::optional<Internet> connection_;
  std::optional<Internet> request_;
};

class WindowsHttpSession final : public HttpSession {
 public:
  HttpReply Post(const HttpPost& post, const HttpProgress& progress) override {
    return Request(post, progress).Run();
  }
};

}  // namespace

HttpSession& SystemHttpSession() {
  static WindowsHttpSession session;
  return session;
}

}  // namespace kerno
