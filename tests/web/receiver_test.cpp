// Uploads to the example receiver, over HTTP and TLS.
#include <gmock/gmock.h>

#include <map>

#include "web/upload_fixture.h"

namespace kerno {
namespace {

using test::OutputOf;
using testing::HasSubstr;

class ReceiverTest : public test::UploadFixture {
 protected:
  // Points the settings at the receiver; `host` is the name that clients call it by.
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
    OutputOf(Here() + "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=" + host +
             " -addext subjectAltName=DNS:" + host +
             " -keyout key.pem -out certificate.pem 2>openssl.log");
    return "--certificate certificate.pem --key key.pem";
  }
};

TEST_F(ReceiverTest, EveryByteArrivesUnderAHarmlessName) {
  StartReceiver("");
  std::string all;
  for (int i = 0; i < 3 << 20; ++i) all.push_back(static_cast<char>(i * 31 + i / 256));
  const struct {
    const char *name, *kept;
    std::string bytes;
    bool posix = false;  // no name for a file of Windows
  } rows[] = {
      {"plain.svg", "plain.svg", "<svg/>"},
      {"plain.svg", "plain (2).svg", ""},
      {"all.bin", "all.bin", all},
      {"ends in a line.txt", "ends in a line.txt", "text\r\n"},
      {"ends in dashes.txt", "ends in dashes.txt", "text--"},
      {"looks like a body.txt", "looks like a body.txt", "\r\n-------UpFile__120000--\r\n"},
      {"@ＭＳ明朝_100_永遠.svg", "@ＭＳ明朝_100_永遠.svg", "x"},
      {"a\"b\r\nX: y.svg", "a_b__X_ y.svg", "quotes", true},
      {"..\\..\\up.svg", "up.svg", "backslashes", true},
      {"nul.svg", "_nul.svg", "device", true},
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
}

TEST_F(ReceiverTest, WhatTheReceiverRefusesIsToldAndNotKept) {
  StartReceiver("--max-size 100K");
  EXPECT_TRUE(Upload("small.svg", std::string(100 << 10, 'x')).ok());
  const UploadResult large = Upload("large.svg", std::string(2 << 20, 'x'));
  EXPECT_EQ(large.end, UploadEnd::kNotAccepted) << Utf16ToUtf8(large.message);
  EXPECT_EQ(large.status, 413);
  const UploadResult over = Upload("over.svg", std::string((100 << 10) + 1, 'x'));
  EXPECT_EQ(over.status, 413);
  Set(u"php_fn", u"/elsewhere.php");
  const UploadResult elsewhere = Upload("small.svg", "x");
  EXPECT_EQ(elsewhere.status, 404);
  EXPECT_THAT(Utf16ToUtf8(elsewhere.message), HasSubstr("there is no receiving script here"));
  EXPECT_THAT(Received(), testing::ElementsAre(testing::Key("small.svg")));
}

// What each certificate is worth, without and with "self_certificate".
TEST_F(ReceiverTest, CertificatesAreRefusedUnlessAllowedAndForTheNameAlways) {
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
    EXPECT_FALSE(refused.sent) << row.what;
    EXPECT_THAT(Utf16ToUtf8(refused.message), HasSubstr("certificate was not accepted"));
    EXPECT_THAT(Utf16ToUtf8(refused.message), HasSubstr("self_certificate\" set to 1"));
    EXPECT_TRUE(Received().empty()) << row.what;

    Set(u"self_certificate", u"1");
    const UploadResult allowed = Upload("a.svg", "secret");
    EXPECT_EQ(allowed.ok(), row.allowed) << row.what << Utf16ToUtf8(allowed.message);
    if (row.allowed) {
      EXPECT_THAT(Received(), testing::ElementsAre(testing::Pair("a.svg", "secret")));
      std::filesystem::remove(folder_ / "received/a.svg");
      continue;
    }
    EXPECT_TRUE(Received().empty());
    // What is set already is no advice.
    EXPECT_THAT(Utf16ToUtf8(allowed.message), testing::Not(HasSubstr("set to 1")));
    EXPECT_THAT(Utf16ToUtf8(allowed.message), HasSubstr("for the server's name"));
  }
}

TEST_F(ReceiverTest, PlainHttpToATlsServerFailsAndTheOtherWayRound) {
  StartReceiver(Certificate("localhost"), "localhost");
  Set(u"open_http", u"http");
  EXPECT_EQ(Upload("a.svg", "x").end, UploadEnd::kNotSent);
  StartReceiver("");
  Set(u"open_http", u"https");
  const UploadResult result = Upload("a.svg", "x");
  EXPECT_EQ(result.end, UploadEnd::kNotSent);
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("no secure connection"));
}

}  // namespace
}  // namespace kerno
