// Settings, files and a server for tests of uploads.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <string_view>
#include <thread>

#include "base/text.h"
#include "support/environment.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/fake_system.h"
#include "support/run.h"
#include "support/temporary_folder.h"
#include "web/uploader.h"

namespace kerno::test {

class UploadFixture : public testing::Test {
 protected:
  UploadFixture() {
    SetVariable("no_proxy", "*");
    SetVariable("http_proxy", "");
    system_.temporary = folder_ / "tmp";
    std::filesystem::create_directory(system_.temporary);
    Set(u"server", u"127.0.0.1");
    Set(u"open_http", u"http");
  }
  ~UploadFixture() override { Stop(); }

  void Set(std::u16string_view key, std::u16string_view value) {
    settings_.texts[{u"UpFile", std::u16string(key)}] = value;
  }
  std::filesystem::path Make(std::string_view name, std::string_view bytes) {
    const auto file = folder_.path() / TextPath(Utf8ToUtf16Lossy(name));
    WriteBytes(file, bytes);
    return file;
  }
  Uploader With(HttpSession& session) { return Uploader(settings_, kIni, session); }

  // Starts a script of Python, from the folder of the tests, that prints where it serves; that text
  // once it has come to `end`.
  std::string Start(const std::string& script, std::string_view end) {
    Stop();
    OutputOf(Here() + "(" KERNO_PYTHON " " KERNO_TESTS "/" + script +
             " >told 2>log & echo $! >process)");
    std::string told;
    for (int i = 0; i < 1000 && !told.ends_with(end); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      told = ReadBytes(folder_ / "told");
    }
    EXPECT_TRUE(told.ends_with(end)) << told << ReadBytes(folder_ / "log");
    return told;
  }
  void Stop() const {
    if (!std::filesystem::exists(folder_ / "process")) return;
    OutputOf(Here() + "kill $(cat process) && rm process told");
  }
  std::string Here() const { return "cd " + folder_.path().string() + " && "; }

  const std::filesystem::path kIni = "/home/someone/.config/kerno/UpFile.ini";
  TemporaryFolder folder_;
  FakeSystem system_;
  FakeClock clock_;
  FakeSettings settings_;
};

}  // namespace kerno::test
