// One HTTP POST: sent once, never repeated, no redirect followed.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// Which server certificates are good enough. Either way the certificate must be for the host.
enum class CertificateTrust {
  kKnownAuthority,  // signed by an authority that the system knows
  kAnyAuthority,    // signed by anybody, the server itself included, for whatever dates
};

struct HttpLimits {
  // From the look-up of the host's name to the end of the TLS handshake.
  std::chrono::milliseconds connect{15'000};
  // Without a byte in either direction, waiting for the answer included.
  std::chrono::milliseconds stall{30'000};
  // From the last byte of the request to the last of the answer.
  std::chrono::milliseconds answer{120'000};
  // Bytes of the answer that are read; the rest is left unread.
  size_t answer_size = 64 * 1024;
};

struct HttpPost {
  std::string url;  // "http://" or "https://", ASCII, percent-encoded
  std::string user_agent;
  std::vector<std::string> headers;  // "Name: value"
  std::string_view body;             // stays where it is until Post returns
  CertificateTrust trust = CertificateTrust::kKnownAuthority;
  HttpLimits limits;
};

// How a request ended.
enum class HttpEnd {
  kAnswered,        // an answer came, all of its headers at least
  kUnavailable,     // this machine lacks what HTTP needs
  kBadUrl,          // the URL cannot be read
  kUnknownHost,     // no address for the host's name
  kRefused,         // no connection to the address
  kConnectTimeout,  // HttpLimits::connect is over
  kUntrusted,       // the server's certificate was not accepted
  kTlsFailed,       // no secure connection for another reason
  kStalled,         // HttpLimits::stall or HttpLimits::answer is over, without an answer
  kBroken,          // the connection broke before an answer, or within its headers
  kNoAnswer,        // the server closed the connection without an answer
  kNotHttp,         // what the server answered is not HTTP
  kStopped,         // the caller stopped it
  kOther,
};

struct HttpReply {
  HttpEnd end = HttpEnd::kOther;
  std::string why;          // the library's or system's words; for kAnswered of what cut the answer
  bool body_sent = false;   // every byte of the body was handed to the connection
  bool broke_off = false;   // the answer is shorter than it says, or its chunks are damaged; one
                            // that a limit cut is not
  int status = 0;           // of the final answer, 0 without one
  std::string status_line;  // as received, without the line end
  std::string location;     // where a redirect points to, absolute
  std::string answer;       // the first HttpLimits::answer_size bytes
};

enum class Transfer { kGoOn, kStop };

// Told of the bytes of the body that are sent, at least ten times a second, and asked whether to go
// on. Runs on the caller's thread.
using HttpProgress = std::function<Transfer(int64_t sent, int64_t total)>;

class HttpSession {
 public:
  virtual ~HttpSession() = default;

  // Begins in the background what the first Post would have to do before it connects, so that the
  // caller can read a file meanwhile. What it answers is to be kept until after the Post; its
  // destruction waits for the end.
  virtual std::shared_ptr<void> Prepare() { return nullptr; }

  virtual HttpReply Post(const HttpPost& post, const HttpProgress& progress) = 0;
};

// The system's HTTP. Costs nothing until its first Post.
HttpSession& SystemHttpSession();

}  // namespace kerno
