// Settings in the INI file change what the parts model does. Some are read once per process, so
// each case runs in a process of its own.
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "base/profile_settings.h"
#include "base/text.h"
#include "parts/parts.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

class SettingsEffect : public test::SettingsFixture {
 protected:
  // What `measure` finds in a process that starts with this INI text.
  int InProcess(std::string_view ini, const std::function<int()>& measure) {
    WriteIni(ini);
    const pid_t id = fork();
    if (id == 0) {
      Restart();
      InstallProfileSettings();
      _exit(measure());
    }
    int status = 0;
    waitpid(id, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    return WEXITSTATUS(status);
  }
};

TEST_F(SettingsEffect, MaxSearchLimitsWhatIsFound) {
  const auto vertices = [] {
    P3A pool;
    for (int i = 0; i < 150; ++i) pool.FindOrAddPoint({static_cast<double>(i), 0, 0});
    pool.FindOrAddPoint({5, 0, 0});
    return static_cast<int>(pool.size());
  };
  EXPECT_EQ(InProcess("", vertices), 150);
  EXPECT_EQ(InProcess("[Parts]\r\nP3A::Search__MaxSearch=10\r\n", vertices), 151);
  EXPECT_EQ(InProcess("[Parts]\r\nP3A::Search__MaxSearch=-1\r\n", vertices), 150);
}

TEST_F(SettingsEffect, UseMergeDecidesTheOrder) {
  const auto first_x = [] {
    Parts small, large;
    small.AddLine({1, 0, 0}, {2, 0, 0});
    for (int i = 10; i < 20; ++i) large.AddLine({static_cast<double>(i), 0, 0}, {0, 5, 5});
    small += large;
    return static_cast<int>(small.vertices[0].x);
  };
  EXPECT_EQ(InProcess("", first_x), 10);
  EXPECT_EQ(InProcess("[Debug\\Parts]\r\noprator+=...UseMerge=0\r\n", first_x), 1);
}

TEST_F(SettingsEffect, FaceNamesComeFromTheFile) {
  const auto ends_in_x = [] {
    return DefaultFaceName(WritingDirection::kHorizontal) == u"顔X" &&
                   DefaultFaceName(WritingDirection::kVertical) == u"@顔X"
               ? 1
               : 0;
  };
  EXPECT_EQ(InProcess("", ends_in_x), 0);
  EXPECT_EQ(InProcess("[Parts]\r\n" + Utf16ToUtf8(u"横書フェイス名=顔X\r\n縦書フェイス名=@顔X\r\n"),
                      ends_in_x),
            1);
}

TEST_F(SettingsEffect, CopiesAreLoggedOnlyWhenAsked) {
  const auto copy = [] {
    PartsA model;
    model.parts.resize(3);
    const PartsA first = model;
    model = first;
    return static_cast<int>(model.parts.size());
  };
  EXPECT_EQ(InProcess("", copy), 3);
  EXPECT_FALSE(fs::exists(folder_ / "tmp/DbgDump"));
  EXPECT_EQ(InProcess("[Debug\\Parts]\r\nCopyLog=1\r\n", copy), 3);
  std::u16string log;
  for (const auto& entry : fs::directory_iterator(folder_ / "tmp/DbgDump")) {
    log += DecodeText(test::ReadBytes(entry.path()));
  }
  EXPECT_NE(log.find(u"\tPartsA(const PartsA&)\t3\r\n"), log.npos) << Utf16ToUtf8(log);
  EXPECT_NE(log.find(u"\tPartsA::operator=\t3\r\n"), log.npos) << Utf16ToUtf8(log);
}

}  // namespace
}  // namespace kerno
