#include "base/version_info.h"

#include <gtest/gtest.h>

#include <map>

#include "base/text_file.h"
#include "base/version_resource.h"
#include "platform/system.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::ReadBytes;
using test::WriteBytes;

const fs::path kSamples = KERNO_TEST_DATA "/version";

TEST(VersionReader, ReadsImagesOfBothSizes) {
  const test::TemporaryFolder folder;
  for (const char* name : {"sample32.dll", "sample64.dll"}) {
    VersionReader reader;
    ASSERT_TRUE(reader.Open(kSamples / name)) << name;
    EXPECT_EQ(reader.prefix(), u"\\StringFileInfo\\041104B0\\");
    for (const auto& [key, text] :
         std::map<std::u16string_view, std::u16string_view>{{u"FileDescription", u"図形"},
                                                            {u"LegalCopyright", u"© nobody"},
                                                            {u"PrivateBuild", u""},
                                                            {u"ProductName", u""},
                                                            {u"productversion", u"5.6.7.8"}}) {
      EXPECT_EQ(reader.Get(key), text);
    }
    // Another reader takes the same block out of the file.
    const std::string block = (folder / "block").string();
    test::OutputOf("wrestool -x --raw -t 16 -o '" + block + "' '" + (kSamples / name).string() +
                   "'");
    bool present = false;
    const std::string image = ReadBytes(kSamples / name);
    EXPECT_EQ(FindVersionBlock(image, &present), ReadBytes(block));
  }
}

TEST(VersionReader, SaysWhatIsMissing) {
  const test::TemporaryFolder folder;
  const std::string image = ReadBytes(kSamples / "sample64.dll");
  const size_t translation = image.find(EncodeText(u"Translation", TextEncoding::kUtf16).substr(2));
  std::string unnamed = image;
  unnamed[translation] = 'X';
  std::string no_length = image;
  no_length[translation - 4] = 0;  // the node's value length
  bool present = false;
  const auto block = FindVersionBlock(image, &present);
  ASSERT_TRUE(block);
  const std::string cut = image.substr(0, static_cast<size_t>(block->data() - image.data()) + 8);
  const std::pair<std::string, std::u16string_view> kCases[] = {
      {"text", u"::GetFileVersionInfoSize ... 0"},
      {"", u"::GetFileVersionInfoSize ... 0"},
      {cut, u"::GetFileVersionInfo ... false"},
      {unnamed, u"::VerQueryValue ... false"},
      {no_length, u"::VerQueryValue   len = 0"}};
  VersionReader reader(VersionTexts::kSecond);
  for (const auto& [bytes, error] : kCases) {
    WriteBytes(folder / "f", bytes);
    EXPECT_FALSE(reader.Open(folder / "f")) << bytes.size();
    EXPECT_EQ(reader.last_error(), error) << bytes.size();
    EXPECT_EQ(reader.Get(u"FileVersion"), u"");
  }
  EXPECT_FALSE(reader.Open(folder / "missing"));
  EXPECT_TRUE(reader.Open(kSamples / "sample32.dll"));
  EXPECT_EQ(reader.last_error(), u"");
}

TEST(VersionReader, TheRunningProgramHasStrings) {
  VersionReader reader;
  ASSERT_TRUE(reader.Open(CurrentSystem().ProgramPath()));
  EXPECT_FALSE(reader.Get(u"FileVersion").empty());
  EXPECT_EQ(ReadAboutTexts().version,
            reader.Get(u"FileDescription") + u"   Version " + reader.Get(u"FileVersion"));
}

TEST(SystemVersion, NamesWhatItKnows) {
  const struct {
    SystemFacts facts;
    std::u16string_view text;
  } kCases[] = {
      {{u"", 6, 1, 7601, u"Service Pack 1"}, u"6.1.1  Win 7 SP1  Build 7601"},
      {{u"", 10, 0, 19045, u""}, u"7.0.0  Win ?  Build 19045"},
      {{u"", 5, 2, 3790, u"Service Pack 2"}, u"5.2.0  Win XP >  Build 3790"},
      {{u"", 4, 0, 1381, u""}, u"0.0.0  Build 1381"},
      {{u"Some Linux", 6, 1, 1, u""}, u"Some Linux"},
  };
  for (const auto& c : kCases) EXPECT_EQ(DescribeSystem(c.facts), c.text);
  const SystemFacts many{u"", 5, 1, 0, u"x65538y"};  // cut to 16 bits: 2
  EXPECT_EQ(PackedSystemVersion(many), 0x050102u);
}

}  // namespace
}  // namespace kerno
