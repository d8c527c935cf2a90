// Answers of a server, byte for byte, through the system's HTTP: what counts as accepted is a whole
// answer by the rules of HTTP/1.1, read here by a second reader, and what is shown is one line.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "base/text.h"
#include "platform/http_session.h"
#include "readers.h"
#include "web/shown_text.h"

namespace kerno {
namespace {

using fuzz::Require;

constexpr std::string_view kBody = "body";

// A server that takes one request and answers with these bytes.
class Server {
 public:
  Server() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    Require(bind(listener_, any, size) == 0 && listen(listener_, 8) == 0);
    Require(getsockname(listener_, any, &size) == 0);
    url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
  }
  const std::string& url() const { return url_; }

  void Answer(std::string_view answer) const {
    const int peer = accept(listener_, nullptr, nullptr);
    std::string request(4096, '\0');
    size_t got = 0;
    for (ssize_t more = 1; more > 0 && !request.substr(0, got).ends_with(kBody);) {
      more = recv(peer, request.data() + got, request.size() - got, 0);
      got += more > 0 ? static_cast<size_t>(more) : 0;
    }
    for (ssize_t sent = 1; sent > 0 && !answer.empty();) {
      sent = send(peer, answer.data(), answer.size(), MSG_NOSIGNAL);
      answer.remove_prefix(sent > 0 ? static_cast<size_t>(sent) : 0);
    }
    shutdown(peer, SHUT_WR);
    while (recv(peer, request.data(), request.size(), 0) > 0) continue;
    close(peer);
  }

 private:
  int listener_;
  std::string url_;
};

std::string_view TakeLine(std::string_view* text) {
  const size_t end = text->find('\n');
  Require(end != text->npos);
  std::string_view line = text->substr(0, end);
  text->remove_prefix(end + 1);
  while (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Takes the headers up to those of the answer of this status line, and ends where they do not;
// *length is what one plain header of that name says, below 0 where there is none.
void TakeHeaders(std::string_view* text, std::string_view final_line, int64_t* length) {
  std::string status;
  do {
    *length = -1;
    status = std::string(TakeLine(text));
    for (std::string_view line = TakeLine(text); !line.empty(); line = TakeLine(text)) {
      const std::string low = Utf16ToUtf8(AsciiLower(Utf8ToUtf16Lossy(line)));
      constexpr std::string_view kName = "content-length: ";
      if (!low.starts_with(kName)) {
        if (low.starts_with("transfer") || low.starts_with("content")) *length = -2;
        continue;
      }
      const std::string digits = low.substr(kName.size());
      const bool plain = *length == -1 && digits.size() < 9 && !digits.empty() &&
                         digits.find_first_not_of("0123456789") == digits.npos;
      *length = plain ? std::atoll(digits.c_str()) : -2;
    }
  } while (status != final_line);
}

void Run(std::string_view answer) {
  static const Server server;
  HttpPost post;
  post.url = server.url();
  post.user_agent = "fuzz";
  post.body = kBody;
  std::thread thread([&] { server.Answer(answer); });
  const HttpReply reply = SystemHttpSession().Post(post, nullptr);
  thread.join();
  Require(reply.answer.size() <= post.limits.answer_size);
  for (const std::u16string& line :
       {ShownText(reply.status_line, 200), FirstShownLine(reply.answer, 200)}) {
    for (const char16_t c : line) Require(c >= u' ' && c != 0x7F && c != 0x2028);
  }
  if (reply.end != HttpEnd::kAnswered) return;
  Require(reply.status >= 200 && reply.body_sent);
  int64_t length = -1;
  TakeHeaders(&answer, reply.status_line, &length);
  const bool bodiless = reply.status == 204 || reply.status == 304;
  const bool is_short = length >= 0 && answer.size() < static_cast<size_t>(length);
  Require(reply.broke_off || bodiless || !is_short);
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("no_proxy", "*", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kerno::Run({reinterpret_cast<const char*>(data), size});
  return 0;
}
