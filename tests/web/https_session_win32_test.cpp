// The internet session of Windows against TLS servers on loopback, run by the system beside it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "platform/http_session.h"
#include "support/environment.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

// Answers one POST over TLS with the length of its body, then ends; its port is its first line.
constexpr const char* kServer = R"(
import os, socket, ssl
def more(peer):
    data = peer.recv(65536)
    if not data:
        raise OSError('closed')
    return data
context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
context.load_cert_chain('certificate.pem', 'key.pem')
listener = socket.create_server(('127.0.0.1', 0))
listener.settimeout(20)
with open('port.part', 'w') as port:
    port.write(str(listener.getsockname()[1]) + '\n')
os.rename('port.part', 'port')
try:
    peer, _ = listener.accept()
    peer.settimeout(20)
    peer = context.wrap_socket(peer, server_side=True)
    data = b''
    while b'\r\n\r\n' not in data:
        data += more(peer)
    head, body = data.split(b'\r\n\r\n', 1)
    size = int(head.lower().split(b'content-length:')[1].split(b'\r\n')[0])
    while len(body) < size:
        body += more(peer)
    text = b'%d bytes' % len(body)
    peer.sendall(b'HTTP/1.1 200 OK\r\nContent-Length: %d\r\n\r\n%s' % (len(text), text))
    peer.close()
except (OSError, ssl.SSLError):
    pass
)";

struct Row {
  const char* name;
  const char* host;  // that the certificate is for
  CertificateTrust trust;
  HttpEnd end;
};

class HttpsSession : public testing::TestWithParam<Row> {};

TEST_P(HttpsSession, AcceptsAStrangersCertificateOnlyWhenToldAndOnlyForTheHost) {
  const Row& row = GetParam();
  test::SetVariable("http_proxy", "");
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "server.py", kServer);
  const std::string place = "cd " + folder.path().string() + " && ";
  test::OutputOf(place + "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=" + row.host +
                 " -addext subjectAltName=DNS:" + row.host +
                 " -keyout key.pem -out certificate.pem 2>openssl.log");
  test::OutputOf(place + "(" KERNO_PYTHON " server.py >server.log 2>&1 &)");
  std::string port;
  for (int i = 0; i < 500 && port.empty(); ++i) {
    port = test::ReadBytes(folder / "port");
    if (port.empty()) test::OutputOf("sleep 0.02");
  }
  ASSERT_FALSE(port.empty()) << test::ReadBytes(folder / "server.log");
  port.pop_back();

  const std::string body(100'000, 'x');
  HttpPost post;
  post.url = "https://localhost:" + port + "/up";
  post.user_agent = "test";
  post.body = body;
  post.trust = row.trust;
  const HttpReply reply = SystemHttpSession().Post(post, {});
  EXPECT_EQ(reply.end, row.end) << reply.why;
  if (row.end != HttpEnd::kAnswered) {
    EXPECT_FALSE(reply.body_sent);
    return;
  }
  EXPECT_EQ(reply.status, 200);
  EXPECT_EQ(reply.answer, "100000 bytes");
}

INSTANTIATE_TEST_SUITE_P(Certificates, HttpsSession,
                         testing::Values(Row{"strict", "localhost",
                                             CertificateTrust::kKnownAuthority,
                                             HttpEnd::kUntrusted},
                                         Row{"lenient", "localhost",
                                             CertificateTrust::kAnyAuthority, HttpEnd::kAnswered},
                                         Row{"another_host", "other.example.org",
                                             CertificateTrust::kAnyAuthority, HttpEnd::kUntrusted}),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
}  // namespace kerno
