// Settings in the INI file change what the parts model does. Some are read once per process, so
// each case runs in a process of its own.
#include "base/profile_settings.h"
#include "base/text.h"
#include "parts/parts.h"
#include "support/child_process.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

class SettingsEffect : public test::SettingsFixture {
 protected:
  // What `measure` finds in a process that starts with this INI text.
  int InProcess(std::string_view ini, const std::function<int()>& measure) {
    WriteIni(ini);
    return test::InChild([&] {
      Restart();
      InstallProfileSettings();
      return measure();
    });
  }
};

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
  const std::u16string log = DumpedText();
  EXPECT_NE(log.find(u"\tPartsA(const PartsA&)\t3\r\n"), log.npos) << Utf16ToUtf8(log);
  EXPECT_NE(log.find(u"\tPartsA::operator=\t3\r\n"), log.npos) << Utf16ToUtf8(log);
}

}  // namespace
}  // namespace kerno
