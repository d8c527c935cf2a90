#include "web/uploader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <map>
#include <set>
#include <sstream>
#include <thread>
#include <vector>

#include "base/text.h"
#include "support/environment.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/fake_system.h"
#include "support/file_holder.h"
#include "support/places.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"
#include "web/upload_profile.h"

namespace kerno {
namespace {

using testing::HasSubstr;

constexpr int kMebibyte = 1 << 20;

// What differs between the systems: a device, a name of a file that needs care in a header, and how
// the system's HTTP takes an answer before the end of the body and one that is none.
#ifdef _WIN32
constexpr const char* kDevice = "NUL";
constexpr const char* kOddName = "a %b% 永.svg";
constexpr const char* kOddNameSent = "a %b% 永.svg";
const std::set<std::string> kSystemHeaders = {"Connection: Keep-Alive\r",
                                              "Cache-Control: no-cache\r", "Pragma: no-cache\r"};
constexpr bool kSendsOnAfterAnAnswer = true;
constexpr bool kReadsAnyHeaders = true;
constexpr bool kTakesAnyTextForHttp = true;  // Wine takes it for an answer of HTTP 0.9
#else
constexpr const char* kDevice = "/dev/zero";
constexpr const char* kOddName = "a \"b\" 永.svg";
constexpr const char* kOddNameSent = "a %22b%22 永.svg";
const std::set<std::string> kSystemHeaders;
constexpr bool kSendsOnAfterAnAnswer = false;
constexpr bool kReadsAnyHeaders = false;
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
  UploaderTest() {
    test::SetVariable("no_proxy", "*");
    test::SetVariable("http_proxy", "");
    system_.temporary = folder_ / "tmp";
    std::filesystem::create_directory(system_.temporary);
    Set(u"server", u"127.0.0.1");
    Set(u"open_http", u"http");
  }
  ~UploaderTest() override { Stop(); }

  void Set(std::u16string_view key, std::u16string_view value) {
    settings_.texts[{u"UpFile", std::u16string(key)}] = value;
  }
  std::filesystem::path Make(std::string_view name, std::string_view bytes) {
    const auto file = folder_.path() / TextPath(Utf8ToUtf16Lossy(name));
    test::WriteBytes(file, bytes);
    return file;
  }
  Uploader With(HttpSession& session) { return Uploader(settings_, kIni, session); }

  // Starts a script of Python, from the folder of the tests, that prints where it serves; that text
  // once it has come to `end`.
  std::string Start(const std::string& script, std::string_view end) {
    Stop();
    test::OutputOf(Here() + "(" KERNO_PYTHON " " KERNO_TESTS "/" + script +
                   " >told 2>log & echo $! >process)");
    std::string told;
    for (int i = 0; i < 1000 && !told.ends_with(end); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      told = test::ReadBytes(folder_ / "told");
    }
    EXPECT_TRUE(told.ends_with(end)) << told << test::ReadBytes(folder_ / "log");
    return told;
  }
  void Stop() const {
    if (!std::filesystem::exists(folder_ / "process")) return;
    test::OutputOf(Here() + "kill $(cat process) && rm process told");
  }
  std::string Here() const { return "cd " + folder_.path().string() + " && "; }

  // Uploads to one of the misbehaving servers. Only one that stands still meets short limits: a
  // busy machine may take longer over any step of the others.
  enum class Server { kAnswers, kStandsStill };
  UploadResult UploadTo(const std::string& server, const std::filesystem::path& file,
                        Server kind = Server::kAnswers) {
    Set(u"server", Utf8ToUtf16Lossy(Address(server)));
    Uploader uploader = With(SystemHttpSession());
    const auto patient = std::chrono::milliseconds(60'000);
    const bool waits = kind == Server::kStandsStill;
    uploader.limits.connect = patient;
    uploader.limits.stall = waits ? std::chrono::milliseconds(1000) : patient;
    uploader.limits.answer = waits ? std::chrono::milliseconds(1500) : patient;
    return uploader.Upload(file);
  }
  std::string Address(const std::string& server) {
    if (servers_.empty()) servers_ = "\n" + Start("web/misbehaving_server.py", "\n\n");
    const size_t at = servers_.find("\n" + server + " ") + server.size() + 2;
    return "127.0.0.1:" + servers_.substr(at, servers_.find('\n', at) - at);
  }

  // Starts the example receiver and points the settings at it; `host` is the name that clients call
  // it by.
  void StartReceiver(const std::string& options, const std::string& host = "127.0.0.1") {
    const std::string url =
        Start("../examples/receiver/receiver.py --folder received --port 0 " + options, "\n");
    const size_t scheme = url.find("://");
    const size_t port = url.find(':', scheme + 3);
    Set(u"open_http", Utf8ToUtf16Lossy(url.substr(0, scheme)));
    Set(u"server", Utf8ToUtf16Lossy(host + url.substr(port, url.find('/', scheme + 3) - port)));
  }
  UploadResult Upload(std::string_view name, std::string_view bytes) {
    return With(SystemHttpSession()).Upload(Make(name, bytes));
  }
  // What arrived, by name.
  std::map<std::string, std::string> Received() const {
    std::map<std::string, std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "received")) {
      files[Utf16ToUtf8(PathText(entry.path().filename()))] = test::ReadBytes(entry.path());
    }
    return files;
  }

  // Makes a certificate for `host` that signs itself; the options that let the receiver use it.
  std::string Certificate(const std::string& host) const {
    test::OutputOf(Here() + "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=" + host +
                   " -addext subjectAltName=DNS:" + host +
                   " -keyout key.pem -out certificate.pem 2>openssl.log");
    return "--certificate certificate.pem --key key.pem";
  }

  const std::filesystem::path kIni = "/home/someone/.config/kerno/UpFile.ini";
  test::TemporaryFolder folder_;
  test::FakeSystem system_;
  test::FakeClock clock_;
  FakeSettings settings_;
  test::RecordingNotices notices_;
  std::string servers_;  // of the misbehaving ones, a line "NAME PORT" each
};

TEST_F(UploaderTest, TheSizeRule) {
  const struct {
    const char16_t* text;
    int64_t mebibytes;
  } rows[] = {{u"0M", 1}, {u"32M", 32}, {u"33", 32},  {u"65546M", 10},
              {u"", 1},   {u"-1", 32},  {u"2.9M", 2}, {u"99999999999999", 32}};
  for (const auto& row : rows) {
    EXPECT_EQ(UploadLimit(row.text), row.mebibytes * kMebibyte) << Utf16ToUtf8(row.text);
  }
  const auto file = Make("big.svg", "");
  Set(u"up_max_file_size", u"2M");
  RecordingSession session;
  std::filesystem::resize_file(file, 2 * kMebibyte);
  EXPECT_TRUE(With(session).Upload(file).ok());
  std::filesystem::resize_file(file, 2 * kMebibyte + 1);
  const UploadResult result = With(session).Upload(file);
  EXPECT_EQ(result.end, UploadEnd::kTooLarge);
  EXPECT_EQ(session.posts, 1);
}

TEST_F(UploaderTest, SettingsNameTheTarget) {
  const struct {
    const char16_t *scheme, *server, *path;
    const char* url;  // empty: refused
  } rows[] = {
      {u"https", u"up.example.org", u"/a/b.php", "https://up.example.org/a/b.php"},
      {u"http", u"up.example.org:80", u"b.php?to=1&x=%41",
       "http://up.example.org/b.php?to=1&x=%41"},
      {u"ftp", u"[::1]:8080", u"/b c#d", "http://[::1]:8080/b%20c%23d"},
      {u"http", u"[::1]", u"/永\r\nX: y", "http://[::1]/%E6%B0%B8%0D%0AX:%20y"},
      {u"http", u" spaced.example.org ", u"", "http://spaced.example.org/"},
      {u"https", u"https://up.example.org", u"/b", ""},
      {u"https", u"up.example.org:65536", u"/b", ""},
      {u"https", u"user@up.example.org", u"/b", ""},
      {u"https", u"例.jp", u"/b", ""},
      {u"https", u"a\r\nb", u"/b", ""},
  };
  const auto file = Make("a.svg", "x");
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

TEST_F(UploaderTest, DefaultsAreSecureAndNameNoServer) {
  settings_.texts.clear();
  const auto file = Make("a.svg", "x");
  RecordingSession session;
  EXPECT_FALSE(With(session).IsConfigured());
  Set(u"server", u"  ");
  EXPECT_EQ(With(session).Upload(file).end, UploadEnd::kNotConfigured);
  Set(u"server", u"up.example.org");
  EXPECT_TRUE(With(session).IsConfigured());
  EXPECT_TRUE(With(session).Upload(file).ok());
  EXPECT_EQ(session.last.url, "https://up.example.org/Quenkit/upload/share/upload.php");
  EXPECT_EQ(session.last.trust, CertificateTrust::kKnownAuthority);
  Set(u"self_certificate", u"1");
  EXPECT_TRUE(With(session).Upload(file).ok());
  EXPECT_EQ(session.last.trust, CertificateTrust::kAnyAuthority);
}

// The file to send is missing, which is told only when the settings were read.
TEST_F(UploaderTest, SettingsThatAnotherProcessHoldsAreWaitedForWhereTheyCannotBeRead) {
  const auto ini = Make("UpFile.ini", "[UpFile]\r\nserver=127.0.0.1\r\n");
  test::FileHolder holder(ini, test::HoldKind::kWholeFile);
  UploadResult result = UploadFile(folder_ / "missing.svg", ini);
  EXPECT_EQ(clock_.sleeps, test::kHoldsKeepReadersOut ? 100 : 0);
  EXPECT_NE(result.end, UploadEnd::kNotConfigured) << Utf16ToUtf8(result.message);
  clock_.sleeps = 0;
  clock_.on_sleep = [&] {
    if (clock_.sleeps == 3) holder.Release();
  };
  result = UploadFile(folder_ / "missing.svg", ini);
  EXPECT_EQ(clock_.sleeps, test::kHoldsKeepReadersOut ? 3 : 0);
  EXPECT_EQ(result.end, UploadEnd::kFileTrouble) << Utf16ToUtf8(result.message);
}

TEST_F(UploaderTest, WhatIsNoFileIsNotSent) {
  RecordingSession session;
  std::filesystem::create_directory(folder_ / "folder");
  for (const auto& [path, why] : {std::pair{folder_ / "folder", "a folder"},
                                  std::pair{std::filesystem::path(kDevice), "a device"}}) {
    const UploadResult result = With(session).Upload(path);
    EXPECT_EQ(result.end, UploadEnd::kFileTrouble) << path;
    EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr(why)) << path;
  }
  EXPECT_EQ(session.posts, 0);
}

TEST_F(UploaderTest, TheBytesOnTheWire) {
  Set(u"php_fn", u"/up.php");
  const std::string content("a\0b\r\n--\xFF", 8);
  const UploadResult result = UploadTo("takes it", Make(kOddName, content));
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
  const std::string request = test::ReadBytes(folder_ / "request");
  const size_t end = request.find("\r\n\r\n");
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(request.substr(end + 4), body);
  std::istringstream text(request.substr(0, end + 2));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  EXPECT_EQ(lines.front(), "POST /up.php HTTP/1.1\r");
  std::erase_if(lines, [](const std::string& line) { return kSystemHeaders.contains(line); });
  EXPECT_THAT(lines, testing::UnorderedElementsAre(
                         "POST /up.php HTTP/1.1\r", "Host: " + Address("takes it") + "\r",
                         "User-Agent: " + UploadUserAgent() + "\r", "Accept: */*\r",
                         "Content-Type: multipart/form-data; boundary=-----UpFile__090000\r",
                         "Content-Length: " + std::to_string(body.size()) + "\r"));
}

TEST_F(UploaderTest, TheInspectionCopyIsTheBody) {
  settings_.texts[{u"Preference_202206", u"Debug"}] = u"1";
  RecordingSession session;
  EXPECT_TRUE(With(session).Upload(Make("永.svg", "content")).ok());
  EXPECT_EQ(test::ReadBytes(system_.temporary / TextPath(u"Quenkit.tmp/20261121/永.svg.txt")),
            session.body);
  settings_.texts.erase({u"Preference_202206", u"Debug"});
  EXPECT_TRUE(With(session).Upload(Make("other.svg", "content")).ok());
  EXPECT_FALSE(std::filesystem::exists(system_.temporary / "Quenkit.tmp/20261121/other.svg.txt"));
}

TEST_F(UploaderTest, ProgressIsToldAndStopsTheTransfer) {
  notices_.stop_at = 1;
  const UploadResult result = UploadTo("never reads", Make("a.svg", std::string(9 << 20, 'x')));
  EXPECT_EQ(result.end, UploadEnd::kStopped);
  EXPECT_FALSE(result.sent);
  ASSERT_FALSE(notices_.steps.empty());
  EXPECT_EQ(notices_.steps.back().text, u"Uploading a.svg");
  EXPECT_GT(notices_.steps.back().total, 9 << 20);
}

TEST_F(UploaderTest, ServersMisbehave) {
  constexpr auto kAccepted = UploadEnd::kAccepted;
  constexpr auto kNotAccepted = UploadEnd::kNotAccepted;
  constexpr auto kNotSent = UploadEnd::kNotSent;
  constexpr auto kStill = Server::kStandsStill;
  const struct {
    const char* server;
    UploadEnd end;
    const char* message;
    bool sent;
    Server kind = Server::kAnswers;
  } rows[] = {
      {"never reads", kNotSent, "stood still", false, kStill},
      {"never answers", kNotSent, "did not answer in time", false, kStill},
      {"endless status line", kNotSent, "did not answer in time", false, kStill},
      {"dripping answer", kAccepted, "HTTP/1.1 200 OK: first", true, kStill},
      {"resets", kNotSent, "", false},
      {"closes after the request", kNotSent, "without an answer", false},
      {"308", kNotAccepted, "http://example.org/, not followed", true},
      {"303", kAccepted, "/thanks, not followed", true},
      {"413 before the body", kNotAccepted, "HTTP/1.1 413 Too Large: too large",
       kSendsOnAfterAnAnswer},
      {"500", kNotAccepted, "not accepted: HTTP/1.0 500 Oops: <b>no</b>", true},
      {"megabyte of headers", kReadsAnyHeaders ? kAccepted : kNotSent, "", kReadsAnyHeaders},
      {"no HTTP", kNotSent, "not a web server", false},
      {"terminal escapes", kAccepted, "HTTP/1.1 200  ]0;x :  [2J gnp", true},
      {"nobody", kNotSent, "no connection", false},
  };
  const auto file = Make("a.svg", std::string(9 << 20, 'x'));
  std::string connections;
  for (const auto& row : rows) {
    const std::string name = row.server;
    if (kTakesAnyTextForHttp && name == "no HTTP") continue;
    const auto start = std::chrono::steady_clock::now();
    const UploadResult result = UploadTo(name, file, row.kind);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30)) << name;
    const std::string message = Utf16ToUtf8(result.message);
    EXPECT_EQ(result.end, row.end) << name << ": " << message;
    EXPECT_THAT(message, HasSubstr(row.message)) << name;
    EXPECT_THAT(message, HasSubstr("a.svg to http://127.0.0.1")) << name;
    EXPECT_EQ(result.sent, row.sent) << name << ": " << message;
    EXPECT_EQ(message.find_first_of("\r\n\x1B"), std::string::npos) << name;
    if (name != "nobody") connections += name + "\n";
  }
  EXPECT_EQ(test::ReadBytes(folder_ / "connections"), connections) << "one each, never repeated";
  Set(u"server", u"no-such-host.invalid");
  const UploadResult result = With(SystemHttpSession()).Upload(file);
  EXPECT_EQ(result.end, kNotSent);
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("http://no-such-host.invalid"));
}

TEST_F(UploaderTest, EveryByteArrivesUnderAHarmlessName) {
  StartReceiver("");
  std::string all;
  for (int i = 0; i < 3 << 20; ++i) all.push_back(static_cast<char>(i * 31 + i / 256));
  const struct {
    const char *name, *kept;
    std::string bytes;
    bool posix = false;  // no name for a file of Windows
  } rows[] = {
      {"plain.svg", "plain.svg", ""},
      {"all.bin", "all.bin", all},
      {"a\"b\r\nX: y.svg", "a_b__X_ y.svg", "quotes", true},
      {"..\\..\\up.svg", "up.svg", "backslashes", true},
  };
  std::map<std::string, std::string> kept;
  for (const auto& row : rows) {
    if (row.posix && std::filesystem::path::preferred_separator != '/') continue;
    const UploadResult result = Upload(row.name, row.bytes);
    EXPECT_TRUE(result.ok()) << row.name << ": " << Utf16ToUtf8(result.message);
    EXPECT_EQ(Utf16ToUtf8(result.first_line),
              "OK " + std::string(row.kept) + " " + std::to_string(row.bytes.size()));
    kept[row.kept] = row.bytes;
  }
  EXPECT_TRUE(Received() == kept);
  StartReceiver("--max-size 100K");
  EXPECT_TRUE(Upload("a.svg", std::string(100 << 10, 'x')).ok());
  EXPECT_EQ(Upload("large.svg", std::string((100 << 10) + 1, 'x')).status, 413);
  EXPECT_FALSE(Received().contains("large.svg"));
}

// What each certificate is worth, without and with "self_certificate".
TEST_F(UploaderTest, CertificatesAreRefusedUnlessAllowedAndForTheNameAlways) {
  const std::string expired = KERNO_TESTS "/data/certificates/expired.pem";
  const struct {
    const char* what;
    std::string options;
    bool allowed;
  } rows[] = {{"self-made", Certificate("localhost"), true},
              {"expired", "--certificate " + expired + " --key " + expired, true},
              {"of another name", "", false}};
  for (const auto& row : rows) {
    StartReceiver(row.options.empty() ? Certificate("other.example.org") : row.options,
                  "localhost");
    Set(u"self_certificate", u"");
    const UploadResult refused = Upload("a.svg", "secret");
    EXPECT_EQ(refused.end, UploadEnd::kNotSent) << row.what;
    EXPECT_THAT(Utf16ToUtf8(refused.message), HasSubstr("self_certificate\" set to 1"));
    EXPECT_TRUE(Received().empty()) << row.what;

    Set(u"self_certificate", u"1");
    const UploadResult allowed = Upload("a.svg", "secret");
    EXPECT_EQ(allowed.ok(), row.allowed) << row.what << Utf16ToUtf8(allowed.message);
    EXPECT_EQ(Received().size(), row.allowed ? 1u : 0u) << row.what;
    std::filesystem::remove(folder_ / "received/a.svg");
    // What is set already is no advice.
    EXPECT_THAT(Utf16ToUtf8(allowed.message), testing::Not(HasSubstr("set to 1")));
  }
}

}  // namespace
}  // namespace kerno
