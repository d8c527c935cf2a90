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

std::string Utf16Bytes(std::u16string_view text) {
  return EncodeText(text, TextEncoding::kUtf16).substr(2);
}

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

std::string Replaced(std::string bytes, const std::string& from, const std::string& to) {
  const size_t at = bytes.find(from);
  EXPECT_NE(at, std::string::npos);
  return bytes.replace(at, from.size(), to);
}

TEST(VersionReader, SaysWhatIsMissing) {
  const test::TemporaryFolder folder;
  const std::string image = ReadBytes(kSamples / "sample64.dll");
  const std::string translation = Utf16Bytes(u"Translation");
  std::string no_length = image;
  no_length[no_length.find(translation) - 4] = 0;  // the node's value length
  bool present = false;
  const auto block = FindVersionBlock(image, &present);
  ASSERT_TRUE(block);
  const std::string cut = image.substr(0, static_cast<size_t>(block->data() - image.data()) + 8);
  const struct {
    const char* what;
    std::string bytes;
    std::u16string_view first;
    std::u16string_view second;
  } kCases[] = {
      {"no program", "text", u"", u"::GetFileVersionInfoSize ... 0"},
      {"empty", "", u"", u"::GetFileVersionInfoSize ... 0"},
      {"cut within the block", cut, u"GetFileVersionInfo ..... 0",
       u"::GetFileVersionInfo ... false"},
      {"no translation", Replaced(image, translation, Utf16Bytes(u"Xranslation")),
       u"VerQueryValue(...\"\\VarFileInfo\\Translation\"...) ..... 0",
       u"::VerQueryValue ... false"},
      {"empty translation", no_length,
       u"VerQueryValue(...\"\\VarFileInfo\\Translation\"...)  Length Buffer ..... 0",
       u"::VerQueryValue   len = 0"},
  };
  for (const auto& c : kCases) {
    WriteBytes(folder / "f", c.bytes);
    for (const VersionTexts texts : {VersionTexts::kFirst, VersionTexts::kSecond}) {
      VersionReader reader(texts);
      EXPECT_FALSE(reader.Open(folder / "f")) << c.what;
      EXPECT_EQ(reader.last_error(), texts == VersionTexts::kFirst ? c.first : c.second) << c.what;
      EXPECT_EQ(reader.Get(u"FileVersion"), u"") << c.what;
    }
  }
  VersionReader first;
  const std::pair<fs::path, std::u16string_view> kFiles[] = {{"", u"FileNameIsEmpty"},
                                                             {folder / "missing", u"FileIsNothing"},
                                                             {kSamples / "sample32.dll", u""}};
  for (const auto& [file, error] : kFiles) {
    EXPECT_EQ(first.Open(file), error.empty());
    EXPECT_EQ(first.last_error(), error);
  }
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
      {{u"", 6, 2, 9200, u"Service Pack 1, v.721"}, u"6.2.1  Win 8  Build 9200"},
      {{u"", 6, 1, 7600, u"no digits"}, u"6.1.0  Win 7  Build 7600"},
      {{u"", 6, 3, 9600, u"7"}, u"6.3.2  Win 8.1  Build 9600"},
      {{u"", 6, 4, 1, u""}, u"6.4.0  Win 8.1 >  Build 1"},
      {{u"", 10, 0, 19045, u""}, u"7.0.0  Win ?  Build 19045"},
      {{u"", 6, 0, 6002, u"SP2"}, u"6.0.2  Vista SP2  Build 6002"},
      {{u"", 6, 0, 6003, u"SP3"}, u"6.0.3  Vista  Build 6003"},
      {{u"", 5, 1, 2600, u"Service Pack 9"}, u"5.1.4  Win XP  Build 2600"},
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
