#include "web/uploader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "base/text.h"
#include "support/environment.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/fake_system.h"
#include "support/file_holder.h"
#include "support/loopback_server.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"
#include "web/upload_profile.h"

namespace kerno {
namespace {

using test::Connection;
using test::LoopbackServer;
using testing::HasSubstr;

constexpr int64_t kMebibyte = 1 << 20;
constexpr std::string_view kAccepting = "HTTP/1.1 200 OK\r\nContent-Length: 7\r\n\r\nTaken.\n";

// What differs between the systems: a device, a name of a file that needs care in a header, and how
// the system's HTTP takes an answer before the end of the body and one that is none.
#ifdef _WIN32
constexpr const char* kDevice = "NUL";
constexpr const char16_t* kOddName = u"a %b% 永.svg";
constexpr const char* kOddNameSent = "a %b% 永.svg";
const std::set<std::string> kSystemHeaders = {"Connection: Keep-Alive", "Cache-Control: no-cache",
                                              "Pragma: no-cache"};
constexpr bool kSendsOnAfterAnAnswer = true;
constexpr bool kTakesAnyTextForHttp = true;  // Wine takes it for an answer of HTTP 0.9
#else
constexpr const char* kDevice = "/dev/zero";
constexpr const char16_t* kOddName = u"a \"b\" 永.svg";
constexpr const char* kOddNameSent = "a %22b%22 永.svg";
const std::set<std::string> kSystemHeaders;
constexpr bool kSendsOnAfterAnAnswer = false;
constexpr bool kTakesAnyTextForHttp = false;
#endif

// A session that tells what it was asked and answers 200.
class RecordingSession final : public HttpSession {
 public:
  HttpReply Post(const HttpPost& post, const HttpProgress&) override {
    ++posts;
    last = post;
    body = post.body;
    HttpReply reply;
    reply.end = HttpEnd::kAnswered;
    reply.body_sent = true;
    reply.status = 200;
    reply.status_line = "HTTP/1.1 200 OK";
    return reply;
  }
  int posts = 0;
  HttpPost last;
  std::string body;
};

class UploaderTest : public testing::Test {
 protected:
  void SetUp() override {
    test::SetVariable("no_proxy", "*");
    system_.temporary = folder_ / "tmp";
    std::filesystem::create_directory(system_.temporary);
    Set(u"server", u"127.0.0.1");
    Set(u"open_http", u"http");
  }
  void Set(std::u16string_view key, std::u16string_view value) {
    settings_.texts[{u"UpFile", std::u16string(key)}] = value;
  }
  std::filesystem::path Make(std::u16string_view name, std::string_view bytes) {
    const auto file = folder_.path() / TextPath(name);
    test::WriteBytes(file, bytes);
    return file;
  }
  Uploader With(HttpSession& session) { return Uploader(settings_, kIni, session); }

  // Uploads to a server. Only one that stands still meets short limits: a busy machine may take
  // longer over any step of the others.
  enum class Server { kAnswers, kStandsStill };
  UploadResult UploadTo(const LoopbackServer& server, const std::filesystem::path& file,
                        Server kind = Server::kAnswers) {
    Set(u"server", Utf8ToUtf16Lossy(server.Address()));
    Uploader uploader = With(SystemHttpSession());
    const auto patient = std::chrono::milliseconds(60'000);
    const bool waits = kind == Server::kStandsStill;
    uploader.limits.connect = patient;
    uploader.limits.stall = waits ? std::chrono::milliseconds(1000) : patient;
    uploader.limits.answer = waits ? std::chrono::milliseconds(1500) : patient;
    return uploader.Upload(file);
  }

  const std::filesystem::path kIni = "/home/someone/.config/kerno/UpFile.ini";
  test::TemporaryFolder folder_;
  test::FakeSystem system_;
  test::FakeClock clock_;
  test::RecordingNotices notices_;
  FakeSettings settings_;
};

TEST_F(UploaderTest, TheSizeRule) {
  const struct {
    const char16_t* text;
    int64_t mebibytes;
  } rows[] = {{u"10M", 10}, {u"0M", 1},     {u"1M", 1},      {u"32M", 32},  {u"33", 32},
              {u"100", 32}, {u"65537M", 1}, {u"65546M", 10}, {u"65536", 1}, {u"M", 1},
              {u"", 1},     {u" 7 M", 7},   {u"-1", 32},     {u"2.9M", 2},  {u"99999999999999", 32},
              {u"１０M", 1}};
  for (const auto& row : rows) {
    EXPECT_EQ(UploadLimit(row.text), row.mebibytes * kMebibyte) << Utf16ToUtf8(row.text);
  }
}

TEST_F(UploaderTest, AFileOfTheLimitIsSentAndOneByteMoreIsNot) {
  const struct {
    const char16_t* limit;
    int64_t mebibytes;
  } rows[] = {{u"0M", 1}, {u"10M", 10}, {u"100M", 32}, {u"65537M", 1}};
  const auto file = Make(u"big.svg", "");
  for (const auto& row : rows) {
    Set(u"up_max_file_size", row.limit);
    RecordingSession session;
    std::filesystem::resize_file(file, static_cast<uintmax_t>(row.mebibytes * kMebibyte));
    EXPECT_TRUE(With(session).Upload(file).ok());
    EXPECT_EQ(session.posts, 1);
    std::filesystem::resize_file(file, static_cast<uintmax_t>(row.mebibytes * kMebibyte + 1));
    const UploadResult result = With(session).Upload(file);
    EXPECT_EQ(result.end, UploadEnd::kTooLarge);
    EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr(std::to_string(row.mebibytes * kMebibyte)));
    EXPECT_EQ(session.posts, 1) << Utf16ToUtf8(row.limit);
  }
}

TEST_F(UploaderTest, SettingsNameTheTarget) {
  const struct {
    const char16_t *scheme, *server, *path;
    const char* url;  // empty: refused
  } rows[] = {
      {u"https", u"up.example.org", u"/a/b.php", "https://up.example.org/a/b.php"},
      {u"HTTPS", u"up.example.org:443", u"/b", "https://up.example.org/b"},
      {u"https", u"up.example.org:80", u"/b", "https://up.example.org:80/b"},
      {u"http", u"up.example.org:80", u"b.php?to=1&x=%41",
       "http://up.example.org/b.php?to=1&x=%41"},
      {u"", u"localhost:8080", u"/b", "http://localhost:8080/b"},
      {u"ftp", u"[::1]:8080", u"/b c#d", "http://[::1]:8080/b%20c%23d"},
      {u"http", u"[::1]", u"/永\r\nX: y", "http://[::1]/%E6%B0%B8%0D%0AX:%20y"},
      {u"http", u" spaced.example.org ", u"", "http://spaced.example.org/"},
      {u"https", u"https://up.example.org", u"/b", ""},
      {u"https", u"up.example.org/here", u"/b", ""},
      {u"https", u"up.example.org:0", u"/b", ""},
      {u"https", u"up.example.org:65536", u"/b", ""},
      {u"https", u"up.example.org:", u"/b", ""},
      {u"https", u":8080", u"/b", ""},
      {u"https", u"user@up.example.org", u"/b", ""},
      {u"https", u"a b", u"/b", ""},
      {u"https", u"例.jp", u"/b", ""},
      {u"https", u"a\r\nb", u"/b", ""},
      {u"https", u"[::1", u"/b", ""},
  };
  const auto file = Make(u"a.svg", "x");
  for (const auto& row : rows) {
    Set(u"open_http", row.scheme);
    Set(u"server", row.server);
    Set(u"php_fn", row.path);
    RecordingSession session;
    const UploadResult result = With(session).Upload(file);
    EXPECT_EQ(session.last.url, row.url) << Utf16ToUtf8(row.server);
    if (*row.url) continue;
    EXPECT_EQ(result.end, UploadEnd::kBadSettings) << Utf16ToUtf8(row.server);
    EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("UpFile.ini: [UpFile]: "));
  }
}

TEST_F(UploaderTest, WithoutServerNothingIsSentAndTheMessageNamesTheSetting) {
  settings_.texts.clear();
  RecordingSession session;
  EXPECT_FALSE(With(session).IsConfigured());
  Set(u"server", u"  ");
  const UploadResult result = With(session).Upload(Make(u"a.svg", "x"));
  EXPECT_EQ(result.end, UploadEnd::kNotConfigured);
  EXPECT_EQ(session.posts, 0);
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr(Utf16ToUtf8(PathText(kIni))));
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("section [UpFile] the key \"server\""));
}

// The file to send is missing, which is told only when the settings were read.
TEST_F(UploaderTest, SettingsThatAnotherProcessHoldsAreWaitedFor) {
  const auto ini = Make(u"UpFile.ini", "[UpFile]\r\nserver=127.0.0.1\r\n");
  test::FileHolder holder(ini, test::HoldKind::kWholeFile);
  UploadResult result = UploadFile(folder_ / "missing.svg", ini);
  EXPECT_EQ(clock_.sleeps, 100);
  EXPECT_NE(result.end, UploadEnd::kNotConfigured) << Utf16ToUtf8(result.message);
  clock_.sleeps = 0;
  clock_.on_sleep = [&] {
    if (clock_.sleeps == 3) holder.Release();
  };
  result = UploadFile(folder_ / "missing.svg", ini);
  EXPECT_EQ(clock_.sleeps, 3);
  EXPECT_EQ(result.end, UploadEnd::kFileTrouble) << Utf16ToUtf8(result.message);
}

TEST_F(UploaderTest, DefaultsAreSecureAndStrict) {
  settings_.texts.clear();
  Set(u"server", u"up.example.org");
  RecordingSession session;
  EXPECT_TRUE(With(session).IsConfigured());
  EXPECT_TRUE(With(session).Upload(Make(u"a.svg", "x")).ok());
  EXPECT_EQ(session.last.url, "https://up.example.org/Quenkit/upload/share/upload.php");
  EXPECT_EQ(session.last.trust, CertificateTrust::kKnownAuthority);
  Set(u"self_certificate", u"1");
  EXPECT_TRUE(With(session).Upload(folder_ / "a.svg").ok());
  EXPECT_EQ(session.last.trust, CertificateTrust::kAnyAuthority);
}

TEST_F(UploaderTest, WhatIsNoFileIsNotSent) {
  RecordingSession session;
  std::filesystem::create_directory(folder_ / "folder");
  for (const auto& [path, why] : {std::pair{folder_ / "missing.svg", "no such file"},
                                  std::pair{folder_ / "folder", "a folder"},
                                  std::pair{std::filesystem::path(kDevice), "a device"}}) {
    const UploadResult result = With(session).Upload(path);
    EXPECT_EQ(result.end, UploadEnd::kFileTrouble) << path;
    EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr(Utf16ToUtf8(PathText(path)))) << path;
    EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr(why)) << path;
  }
  EXPECT_EQ(session.posts, 0);
}

TEST_F(UploaderTest, TheBytesOnTheWire) {
  std::string request;
  LoopbackServer server([&](Connection& connection) {
    connection.ReadRequest();
    request = connection.received;
    connection.Send(kAccepting);
  });
  Set(u"php_fn", u"/up.php");
  const std::string content("a\0b\r\n--\xFF", 8);
  const UploadResult result = UploadTo(server, Make(kOddName, content));
  server.Stop();
  EXPECT_EQ(Utf16ToUtf8(result.status_line), "HTTP/1.1 200 OK");
  EXPECT_EQ(Utf16ToUtf8(result.first_line), "Taken.");
  EXPECT_TRUE(result.sent);
  ASSERT_FALSE(notices_.steps.empty());
  EXPECT_EQ(notices_.steps.back().done, notices_.steps.back().total);
  const std::string body =
      "-------UpFile__090000\r\n"
      "Content-Disposition: form-data; name=\"file_img\"; filename=\"" +
      std::string(kOddNameSent) +
      "\"\r\n"
      "Content-Type: application/octet-stream\r\n"
      "\r\n" +
      content + "-------UpFile__090000--\r\n";
  const size_t end = request.find("\r\n\r\n");
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(request.substr(end + 4), body);
  std::vector<std::string> lines;
  for (size_t at = 0; at < end;) {
    const size_t line_end = request.find("\r\n", at);
    lines.push_back(request.substr(at, line_end - at));
    at = line_end + 2;
  }
  EXPECT_EQ(lines.front(), "POST /up.php HTTP/1.1");
  std::erase_if(lines, [](const std::string& line) { return kSystemHeaders.contains(line); });
  EXPECT_THAT(lines, testing::UnorderedElementsAre(
                         "POST /up.php HTTP/1.1", "Host: " + server.Address(),
                         "User-Agent: " + UploadUserAgent(), "Accept: */*",
                         "Content-Type: multipart/form-data; boundary=-----UpFile__090000",
                         "Content-Length: " + std::to_string(body.size())));
}

TEST_F(UploaderTest, TheInspectionCopyIsTheBody) {
  settings_.texts[{u"Preference_202206", u"Debug"}] = u"1";
  RecordingSession session;
  EXPECT_TRUE(With(session).Upload(Make(u"永.svg", "content")).ok());
  EXPECT_EQ(test::ReadBytes(system_.temporary / TextPath(u"Quenkit.tmp/20261121/永.svg.txt")),
            session.body);
  EXPECT_THAT(session.body, HasSubstr("content--"));
  settings_.texts.erase({u"Preference_202206", u"Debug"});
  EXPECT_TRUE(With(session).Upload(Make(u"other.svg", "content")).ok());
  EXPECT_FALSE(std::filesystem::exists(system_.temporary / "Quenkit.tmp/20261121/other.svg.txt"));
}

TEST_F(UploaderTest, ProgressIsToldAndStopsTheTransfer) {
  LoopbackServer server([](Connection& connection) {
    connection.ReadHeaders();
    connection.Ignore();
  });
  notices_.stop_at = 1;
  const UploadResult result = UploadTo(server, Make(u"a.svg", std::string(9 << 20, 'x')));
  EXPECT_EQ(result.end, UploadEnd::kStopped);
  EXPECT_FALSE(result.sent);
  ASSERT_FALSE(notices_.steps.empty());
  EXPECT_EQ(notices_.steps.back().text, u"Uploading a.svg");
  EXPECT_GT(notices_.steps.back().total, 9 << 20);
}

struct Misbehaviour {
  const char* name;
  std::function<void(Connection&)> server;
  UploadEnd end;
  const char* message;
  bool sent;
  bool stands_still = false;
};

std::vector<Misbehaviour> Misbehaviours() {
  const auto answer = [](const std::string& text) {
    return [text](Connection& connection) {
      connection.ReadRequest();
      connection.Send(text);
    };
  };
  return {
      {"never reads", [](Connection& c) { c.Ignore(); }, UploadEnd::kNotSent, "stood still", false,
       true},
      {"reads all, never answers", [](Connection& c) { c.Hang(); }, UploadEnd::kNotSent,
       "did not answer in time", false, true},
      {"a status line that never ends",
       [](Connection& c) {
         c.ReadRequest();
         c.Send("HTTP/1.1 200 ");
         c.Drip('x');
       },
       UploadEnd::kNotSent, "did not answer in time", false, true},
      {"an answer that drips",
       [](Connection& c) {
         c.ReadRequest();
         c.Send("HTTP/1.1 200 OK\r\n\r\nfirst\n");
         c.Drip('x');
       },
       UploadEnd::kAccepted, "HTTP/1.1 200 OK: first", true, true},
      {"resets at once", [](Connection& c) { c.Reset(); }, UploadEnd::kNotSent, "", false},
      {"resets in the middle",
       [](Connection& c) {
         c.ReadUntil([](std::string_view text) { return text.size() > 100'000; });
         c.Reset();
       },
       UploadEnd::kNotSent, "broke", false},
      {"closes after the request", [](Connection& c) { c.ReadRequest(); }, UploadEnd::kNotSent,
       "without an answer", false},
      {"301",
       answer("HTTP/1.1 301 Moved Permanently\r\nLocation: /else.php\r\nContent-Length: 0\r\n\r\n"),
       UploadEnd::kNotAccepted, "301 Moved Permanently; it points to http://127.0.0.1", true},
      {"308",
       answer("HTTP/1.1 308 Permanent Redirect\r\nLocation: http://example.org/\r\nContent-Length: "
              "0\r\n\r\n"),
       UploadEnd::kNotAccepted, "http://example.org/, not followed", true},
      {"303 after taking the form",
       answer("HTTP/1.1 303 See Other\r\nLocation: /thanks\r\nContent-Length: 0\r\n\r\n"),
       UploadEnd::kAccepted, "/thanks, not followed", true},
      {"413 before the body is read",
       [](Connection& c) {
         c.ReadHeaders();
         c.Send(
             "HTTP/1.1 413 Too Large\r\nContent-Length: 9\r\nConnection: close\r\n\r\ntoo large");
         c.Hang();
       },
       UploadEnd::kNotAccepted, "HTTP/1.1 413 Too Large: too large", kSendsOnAfterAnAnswer, true},
      {"500", answer("HTTP/1.0 500 Oops\r\n\r\n\r\n  \r\n<b>no</b>\r\nmore"),
       UploadEnd::kNotAccepted, "not accepted: HTTP/1.0 500 Oops: <b>no</b>", true},
      {"401 is not answered by a second try",
       answer("HTTP/1.1 401 Who\r\nWWW-Authenticate: Basic realm=x\r\nContent-Length: 0\r\n\r\n"),
       UploadEnd::kNotAccepted, "401 Who", true},
      {"the answer is shorter than told",
       answer("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\nshort\n"), UploadEnd::kAccepted,
       "200 OK: short", true},
      {"a megabyte of answer", answer("HTTP/1.1 200 OK\r\n\r\n" + std::string(1 << 20, 'y')),
       UploadEnd::kAccepted, "yyyy…", true},
      {"a megabyte of headers",
       answer("HTTP/1.1 200 OK\r\nX: " + std::string(1 << 20, 'y') + "\r\n\r\n"),
       UploadEnd::kAccepted, "sent: HTTP/1.1 200 OK", true},
      {"no HTTP", answer("220 mail.example.org ready\r\n"), UploadEnd::kNotSent, "not a web server",
       false},
      {"terminal escapes", answer("HTTP/1.1 200 \x1B]0;x\x07\r\n\r\n\x1B[2J\xE2\x80\xAEgnp\n"),
       UploadEnd::kAccepted, "HTTP/1.1 200  ]0;x :  [2J gnp", true},
      {"continue first",
       answer("HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n"),
       UploadEnd::kAccepted, "sent: HTTP/1.1 200 OK", true},
  };
}

TEST_F(UploaderTest, ServersMisbehave) {
  const auto file = Make(u"a.svg", std::string(9 << 20, 'x'));
  for (const Misbehaviour& row : Misbehaviours()) {
    if (kTakesAnyTextForHttp && std::string_view(row.name) == "no HTTP") continue;
    LoopbackServer server(row.server);
    const auto start = std::chrono::steady_clock::now();
    const UploadResult result =
        UploadTo(server, file, row.stands_still ? Server::kStandsStill : Server::kAnswers);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30)) << row.name;
    server.Stop();
    const std::string message = Utf16ToUtf8(result.message);
    EXPECT_EQ(result.end, row.end) << row.name << ": " << message;
    EXPECT_THAT(message, HasSubstr(row.message)) << row.name;
    EXPECT_THAT(message, HasSubstr("a.svg to http://127.0.0.1")) << row.name;
    EXPECT_EQ(result.sent, row.sent) << row.name << ": " << message;
    EXPECT_EQ(server.connections(), 1) << row.name;
    EXPECT_EQ(message.find_first_of("\r\n\x1B"), std::string::npos) << row.name;
  }
}

TEST_F(UploaderTest, NobodyListens) {
  const auto file = Make(u"a.svg", "x");
  int port = 0;
  {
    port = LoopbackServer([](Connection&) {}).port();
  }
  Set(u"server", Utf8ToUtf16Lossy("127.0.0.1:" + std::to_string(port)));
  UploadResult result = With(SystemHttpSession()).Upload(file);
  EXPECT_EQ(result.end, UploadEnd::kNotSent);
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("no connection"));
  Set(u"server", u"no-such-host.invalid");
  result = With(SystemHttpSession()).Upload(file);
  EXPECT_EQ(result.end, UploadEnd::kNotSent);
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("http://no-such-host.invalid"));
}

}  // namespace
}  // namespace kerno
