// Uploads to the example receiver, over HTTP and TLS.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <vector>

#include "base/text.h"
#include "support/child_process.h"
#include "support/fake_settings.h"
#include "support/fake_system.h"
#include "support/temporary_folder.h"
#include "web/uploader.h"

namespace kerno {
namespace {

using test::ChildProcess;
using testing::HasSubstr;

class ReceiverTest : public testing::Test {
 protected:
  void SetUp() override {
    setenv("no_proxy", "*", 1);
    system_.temporary = folder_.path();
  }

  // Starts the receiver and points the settings at it; `host` is the name that clients call it by.
  void Start(std::vector<std::string> options, const std::string& host = "127.0.0.1") {
    const std::string script = KERNO_TESTS "/../examples/receiver/receiver.py";
    std::vector<std::string> arguments = {KERNO_PYTHON,        script,   "--folder",
                                          received().native(), "--port", "0"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    receiver_ = std::make_unique<ChildProcess>(arguments);
    const std::string url = receiver_->ReadLine();
    const size_t scheme = url.find("://");
    ASSERT_NE(scheme, std::string::npos) << url;
    const size_t port = url.find(':', scheme + 3);
    Set(u"open_http", Utf8ToUtf16Lossy(url.substr(0, scheme)));
    Set(u"server", Utf8ToUtf16Lossy(host + url.substr(port, url.find('/', scheme + 3) - port)));
  }
  void Set(std::u16string_view key, std::u16string_view value) {
    settings_.texts[{u"UpFile", std::u16string(key)}] = value;
  }
  UploadResult Upload(std::string_view name, std::string_view bytes) {
    test::WriteBytes(folder_ / name, bytes);
    return Uploader(settings_, "/UpFile.ini", SystemHttpSession()).Upload(folder_ / name);
  }
  std::filesystem::path received() const { return folder_ / "received"; }
  std::vector<std::string> Received() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(received())) {
      names.push_back(entry.path().filename().native());
    }
    return names;
  }

  // A certificate that signs itself, for 127.0.0.1.
  std::vector<std::string> MakeCertificate() {
    const std::string certificate = folder_ / "certificate.pem", key = folder_ / "key.pem";
    const std::string command =
        "openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=kerno-test"
        " -addext subjectAltName=IP:127.0.0.1 -keyout '" +
        key + "' -out '" + certificate + "' 2>'" + folder_.path().native() + "/openssl.log'";
    EXPECT_EQ(std::system(command.c_str()), 0) << test::ReadBytes(folder_ / "openssl.log");
    return {"--certificate", certificate, "--key", key};
  }

  test::TemporaryFolder folder_;
  test::FakeSystem system_;
  FakeSettings settings_;
  std::unique_ptr<ChildProcess> receiver_;
};

TEST_F(ReceiverTest, EveryByteArrivesUnderAHarmlessName) {
  Start({});
  std::string all;
  for (int i = 0; i < 3 << 20; ++i) all.push_back(static_cast<char>(i * 31 + i / 256));
  const struct {
    const char *name, *kept;
    std::string bytes;
  } rows[] = {
      {"plain.svg", "plain.svg", "<svg/>"},
      {"plain.svg", "plain (2).svg", ""},
      {"all.bin", "all.bin", all},
      {"ends in a line.txt", "ends in a line.txt", "text\r\n"},
      {"ends in dashes.txt", "ends in dashes.txt", "text--"},
      {"looks like a body.txt", "looks like a body.txt", "\r\n-------UpFile__120000--\r\n"},
      {"@ＭＳ明朝_100_永遠.svg", "@ＭＳ明朝_100_永遠.svg", "x"},
      {"a\"b\r\nX: y.svg", "a_b__X_ y.svg", "quotes"},
      {"..\\..\\up.svg", "up.svg", "backslashes"},
      {"nul.svg", "_nul.svg", "device"},
  };
  for (const auto& row : rows) {
    const UploadResult result = Upload(row.name, row.bytes);
    EXPECT_TRUE(result.ok()) << row.name << ": " << Utf16ToUtf8(result.message);
    EXPECT_EQ(Utf16ToUtf8(result.first_line),
              "OK " + std::string(row.kept) + " " + std::to_string(row.bytes.size()));
    EXPECT_EQ(test::ReadBytes(received() / row.kept), row.bytes) << row.name;
  }
  EXPECT_EQ(Received().size(), std::size(rows));
}

TEST_F(ReceiverTest, WhatTheReceiverRefusesIsToldAndNotKept) {
  Start({"--max-size", "100K"});
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
  EXPECT_THAT(Received(), testing::ElementsAre("small.svg"));
}

TEST_F(ReceiverTest, ASelfMadeCertificateIsRefusedUnlessAllowed) {
  Start(MakeCertificate());
  const UploadResult refused = Upload("a.svg", "secret");
  EXPECT_EQ(refused.end, UploadEnd::kNotSent);
  EXPECT_FALSE(refused.sent);
  EXPECT_THAT(Utf16ToUtf8(refused.message), HasSubstr("certificate was not accepted"));
  EXPECT_THAT(Utf16ToUtf8(refused.message), HasSubstr("self_certificate"));
  EXPECT_TRUE(Received().empty());

  Set(u"self_certificate", u"1");
  const UploadResult sent = Upload("a.svg", "secret");
  EXPECT_TRUE(sent.ok()) << Utf16ToUtf8(sent.message);
  EXPECT_EQ(test::ReadBytes(received() / "a.svg"), "secret");
}

TEST_F(ReceiverTest, ACertificateForAnotherNameIsNeverAccepted) {
  Start(MakeCertificate(), "localhost");
  Set(u"self_certificate", u"1");
  const UploadResult refused = Upload("a.svg", "secret");
  EXPECT_EQ(refused.end, UploadEnd::kNotSent);
  EXPECT_THAT(Utf16ToUtf8(refused.message), HasSubstr("certificate was not accepted"));
  EXPECT_TRUE(Received().empty());
}

TEST_F(ReceiverTest, PlainHttpToATlsServerFailsAndTheOtherWayRound) {
  Start(MakeCertificate());
  Set(u"open_http", u"http");
  EXPECT_EQ(Upload("a.svg", "x").end, UploadEnd::kNotSent);
  receiver_.reset();
  Start({});
  Set(u"open_http", u"https");
  const UploadResult result = Upload("a.svg", "x");
  EXPECT_EQ(result.end, UploadEnd::kNotSent);
  EXPECT_THAT(Utf16ToUtf8(result.message), HasSubstr("no secure connection"));
}

}  // namespace
}  // namespace kerno
