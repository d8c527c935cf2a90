// A machine with nothing on it for tests of settings: its own folders, clock and start of the
// process.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "base/settings_places.h"
#include "base/text_file.h"
#include "support/fake_clock.h"
#include "support/fake_system.h"
#include "support/private_registry.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno::test {

class SettingsFixture : public testing::Test {
 protected:
  SettingsFixture() {
    system_.program = folder_ / "bin/kerno";
    system_.system_place = folder_ / "bin";
    system_.config = folder_ / "config";
    system_.temporary = folder_ / "tmp";
    system_.current = folder_.path();
    std::filesystem::create_directories(folder_ / "bin");
    std::filesystem::create_directories(folder_ / "tmp");
    process_.emplace();
    // The clock starts at the real time: files get their times from the system.
    ReplaceClock(nullptr);
    clock_.seconds = CurrentClock().Seconds();
    ReplaceClock(&clock_);
  }

  // As a new start of the program.
  void Restart() {
    process_.reset();
    process_.emplace();
  }

  std::filesystem::path Ini() const { return folder_ / "config/Quenkit_Setting/Quenkit.ini"; }

  void WriteIni(std::string_view bytes) {
    std::filesystem::create_directories(Ini().parent_path());
    WriteBytes(Ini(), bytes);
  }
  std::u16string IniText() const { return DecodeText(ReadBytes(Ini())); }

  // Every log's text, one after the other.
  std::u16string DumpedText() const {
    std::u16string text;
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "tmp/DbgDump")) {
      text += DecodeText(ReadBytes(entry.path()));
    }
    return text;
  }

  PrivateRegistry registry_;
  TemporaryFolder folder_;
  FakeSystem system_;
  FakeClock clock_;
  RecordingNotices notices_;
  std::optional<SettingsProcess> process_;
};

}  // namespace kerno::test
