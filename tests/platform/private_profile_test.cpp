#include "platform/private_profile.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

constexpr size_t kAll = std::string::npos;

std::u16string Wide(const std::string& text) {
  return {text.begin(), text.end()};
}

TEST(PrivateProfile, AnswersEveryRecordedRead) {
  const test::TemporaryFolder folder;
  const auto ini = folder / "recorded.ini";
  std::istringstream reads(test::OutputOfPython(
      "platform/profile_reads.py " KERNO_TEST_DATA "/private-profile-reads.json " + ini.string()));
  int count = 0;
  for (std::string section, key, text, number; std::getline(reads, section, '|'); ++count) {
    std::getline(reads, key, '|');
    std::getline(reads, text, '|');
    std::getline(reads, number);
    const auto value = ReadProfileString(ini, Wide(section), Wide(key), kAll);
    EXPECT_EQ(value.value_or(u"<def>"), Wide(text)) << section << '/' << key;
    const int32_t integer = value && !value->empty() ? ParseProfileInt(*value) : -77;
    EXPECT_EQ(integer, std::stoi(number)) << section << '/' << key;
  }
  EXPECT_EQ(count, 22);
}

TEST(PrivateProfile, OddFilesGiveDefinedAnswers) {
  const test::TemporaryFolder folder;
  const auto ini = folder / "f.ini";
  for (const std::string& bytes : {std::string("\xFF\xFE["), std::string(3, '\0')}) {
    test::WriteBytes(ini, bytes);
    EXPECT_TRUE(WriteProfile(ini, {{u"s", u"k", u"v"}}).ok());
    EXPECT_EQ(ReadProfileString(ini, u"s", u"k", kAll), u"v") << bytes;
  }
  EXPECT_FALSE(ReadProfileString(folder.path(), u"s", u"k", kAll));
  EXPECT_EQ(WriteProfile(folder.path(), {{u"s", u"k", u"v"}}).failure, Failure::kIsFolder);
  test::WriteBytes(ini, "[s]\nk=" + std::string(20000, 'x'));
  EXPECT_EQ(ReadProfileString(ini, u"s", u"k", 10000)->size(), 10000u);
  EXPECT_TRUE(WriteProfile(ini, {{u"s", u"a", u"1"}}).ok());
  EXPECT_EQ(ReadProfileString(ini, u"s", u"k", kAll)->size(), 20000u);
}

TEST(PrivateProfile, AKeyWithAnEqualsSignIsReadAsItWasWritten) {
  const test::TemporaryFolder folder;
  const auto ini = folder / "f.ini";
  const auto read = [&](std::u16string_view key) {
    return ReadProfileString(ini, u"s", key, kAll).value_or(u"<none>");
  };
  EXPECT_TRUE(WriteProfile(ini, {{u"s", u"k", u"1"}, {u"s", u"o+=...m=n", u"1"}}).ok());
  const auto size = std::filesystem::file_size(ini);
  EXPECT_TRUE(WriteProfile(ini, {{u"s", u"O+=...M=N", u"2"}}).ok());
  EXPECT_EQ(std::filesystem::file_size(ini), size);  // in its place
  EXPECT_EQ(read(u"o+=...m=n"), u"2");
  EXPECT_EQ(read(u"o+=...m"), u"n=2");
  EXPECT_TRUE(WriteProfile(ini, {{u"s", u"o+=...m=n", u"\" a=b \""}}).ok());
  EXPECT_EQ(read(u"o+=...m=n"), u" a=b ");
  EXPECT_TRUE(WriteProfile(ini, {{u"s", u"o+=...m=n", std::nullopt}}).ok());
  EXPECT_EQ(read(u"o+"), u"<none>");
  // Where it cannot be written, nothing is lost for it.
  const bool written = WriteProfile(ini, {{u"s", u"k=x", u"2"}}).ok();
  EXPECT_EQ(read(u"k"), u"1");
  EXPECT_EQ(read(u"k=x"), written ? u"2" : u"<none>");
}

}  // namespace
}  // namespace kerno
