#include <gtest/gtest.h>

#include "platform/posix/registry_text.h"
#include "platform/posix/utf16_bytes.h"
#include "platform/registry.h"
#include "support/fake_system.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using enum RegistryOutcome;

constexpr auto kUser = RegistryRoot::kCurrentUser;

// As a registry editor exports it, with types that Kerno does not read.
constexpr std::u16string_view kExport =
    u"Windows Registry Editor Version 5.00\r\n"
    u"\r\n"
    u"[HKEY_CURRENT_USER\\Software\\Quenkit]\r\n"
    u"@=\"base \\\\ \\\"name\\\"\"\r\n"
    u"\"n\"=dword:fffffffe\r\n"
    u"\"e\"=hex(2):25,00,41,00,\\\r\n"
    u"  25,00,00,00\r\n"
    u"\"two lines\"=\"a\r\n[HKEY_CURRENT_USER\\\\b]\"\r\n"
    u"\r\n"
    u"[HKEY_CURRENT_USER\\Software\\Quenkit\\Below]\r\n"
    u"\"x\"=\"1\"\r\n"
    u"\r\n";

class RegistryTest : public testing::Test {
 protected:
  RegistryTest() { system_.config = folder_.path() / "config"; }

  void Install(std::u16string_view text) {
    std::filesystem::create_directories(system_.config);
    test::WriteBytes(File(), posix::BytesOfText(text, posix::ByteForm::kUtf16));
  }
  std::filesystem::path File() const { return system_.config / "registry.reg"; }
  std::u16string Text() const {
    posix::ByteForm form;
    return posix::TextOfBytes(test::ReadBytes(File()), &form);
  }

  test::TemporaryFolder folder_;
  test::FakeSystem system_;
  RegistryOutcome Query(std::u16string_view key, std::u16string_view name) {
    return QueryRegistry(kUser, key, name, &value_);
  }
  RegistryOutcome Set(std::u16string_view key, std::u16string_view name,
                      const RegistryValue& value) {
    return SetRegistry(kUser, key, name, value, &why_);
  }

  RegistryValue value_;
  Status why_;
};

TEST_F(RegistryTest, ReadsWhatEditorsExport) {
  Install(kExport);
  ASSERT_EQ(Query(u"software\\QUENKIT", u""), kDone);
  EXPECT_EQ(value_.type, RegistryType::kString);
  EXPECT_EQ(value_.text, u"base \\ \"name\"");
  ASSERT_EQ(Query(u"Software\\Quenkit", u"N"), kDone);
  EXPECT_EQ(value_.type, RegistryType::kDword);
  EXPECT_EQ(value_.number, 0xFFFFFFFEu);
  ASSERT_EQ(Query(u"Software\\Quenkit", u"e"), kDone);
  EXPECT_EQ(value_.type, RegistryType::kOther);
  ASSERT_EQ(Query(u"Software\\Quenkit", u"two lines"), kDone);
  EXPECT_EQ(value_.text, u"a\r\n[HKEY_CURRENT_USER\\b]");
  EXPECT_EQ(Query(u"b", u""), kNoKey);
  EXPECT_EQ(Query(u"Software", u"n"), kNoValue);
  EXPECT_EQ(Query(u"Soft", u"n"), kNoKey);
  EXPECT_EQ(QueryRegistry(RegistryRoot::kLocalMachine, u"Software\\Quenkit", u"n", &value_),
            kNoKey);
}

TEST_F(RegistryTest, ChangesOneLineAndKeepsTheRest) {
  Install(kExport);
  const RegistryValue text{RegistryType::kString, u"a \"b\" \\", 0};
  const RegistryValue number{RegistryType::kDword, {}, 10};
  std::u16string wanted(kExport);
  const auto replace = [&](std::u16string_view from, std::u16string_view to) {
    wanted.replace(wanted.find(from), from.size(), to);
    EXPECT_EQ(Text(), wanted);
  };
  EXPECT_EQ(Set(u"Software\\Quenkit", u"n", text), kDone);
  replace(u"\"n\"=dword:fffffffe", u"\"n\"=\"a \\\"b\\\" \\\\\"");
  EXPECT_EQ(Set(u"Software\\Quenkit", u"m", number), kDone);
  replace(u"b]\"\r\n", u"b]\"\r\n\"m\"=dword:0000000a\r\n");
  EXPECT_EQ(Set(u"Other", u"", number), kDone);
  wanted += u"\r\n[HKEY_CURRENT_USER\\Other]\r\n@=dword:0000000a\r\n";
  EXPECT_EQ(Text(), wanted);
  EXPECT_EQ(DeleteRegistryValue(kUser, u"Software\\Quenkit", u"m", &why_), kDone);
  replace(u"\"m\"=dword:0000000a\r\n", u"");
  EXPECT_EQ(DeleteRegistryValue(kUser, u"Software\\Quenkit", u"m", &why_), kNoValue);
  EXPECT_EQ(DeleteRegistryKey(kUser, u"Software\\Quenkit", &why_), kFailed);
  EXPECT_EQ(DeleteRegistryKey(kUser, u"Software\\Quenkit\\Below", &why_), kDone);
  EXPECT_EQ(Query(u"Software\\Quenkit\\Below", u"x"), kNoKey);
  EXPECT_EQ(Query(u"Other", u""), kDone);
}

TEST_F(RegistryTest, ANewFileIsAnExport) {
  const RegistryValue text{RegistryType::kString, u"日本", 0};
  EXPECT_EQ(Set(u"A\\B", u"k", text), kDone);
  EXPECT_EQ(Text(),
            u"Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\A\\B]\r\n"
            u"\"k\"=\"日本\"\r\n");
  EXPECT_NE(test::OutputOf("file -b '" + File().string() + "'").find("Windows Registry"),
            std::string::npos);
}

TEST_F(RegistryTest, LaterLinesWin) {
  Install(
      u"REGEDIT4\n[HKEY_CURRENT_USER\\a]\n\"k\"=\"1\"\n\"k\"=\"2\"\n[HKEY_CURRENT_USER\\a]\n"
      u"\"gone\"=\"x\"\n\"gone\"=-\n[HKEY_CURRENT_USER\\b\\c]\n\"k\"=\"1\"\n"
      u"[-HKEY_CURRENT_USER\\b]\n[HKEY_CURRENT_USER\\d]\n\"bad\"=dword:12345678900\n\"open=1");
  EXPECT_EQ(Query(u"a", u"k"), kDone);
  EXPECT_EQ(value_.text, u"2");
  EXPECT_EQ(Query(u"a", u"gone"), kNoValue);
  EXPECT_EQ(Query(u"b\\c", u"k"), kNoKey);
  EXPECT_EQ(Query(u"d", u"bad"), kDone);
  EXPECT_EQ(value_.type, RegistryType::kOther);
}

TEST_F(RegistryTest, AFileThatWasCutOffTakesNewValues) {
  for (const std::u16string_view end :
       {u"\"k\"=\"open \\", u"\"na", u"[HKEY_CURR", u"\"k\"=hex:00,\\"}) {
    const std::u16string cut =
        std::u16string(kExport.substr(0, 80)) + u"]\r\n" + std::u16string(end);
    Install(cut);
    const RegistryValue text{RegistryType::kString, u"=x", 0};
    for (const std::u16string_view name : {u"", u"n"}) {
      EXPECT_EQ(Set(u"New", name, text), kDone);
      EXPECT_EQ(Query(u"New", name), kDone);
      EXPECT_EQ(value_.text, u"=x");
    }
    EXPECT_EQ(Text().find(cut), 0u);
    EXPECT_EQ(Set(u"Software\\Quenkit", u"m", text), kDone);
    EXPECT_EQ(Query(u"Software\\Quenkit", u"m"), kDone);
    Install(cut);
    EXPECT_EQ(Set(u"Software\\Quenkit", u"m", text), kDone);
    EXPECT_EQ(Query(u"Software\\Quenkit", u"m"), kDone);
  }
}

// A string without an end meets one in what follows, unless something stands between them.
TEST_F(RegistryTest, ADamagedLineKeepsItsMeaningOrTheChangeIsRefused) {
  constexpr std::u16string_view kDamaged =
      u"REGEDIT4\r\n[HKEY_CURRENT_USER\\A]\r\n@=\"\r\n\"n\"=1\r\n[]\"\r\n\"n\"=2\r\n";
  Install(kDamaged);
  EXPECT_EQ(DeleteRegistryValue(kUser, u"A", u"n", &why_), kFailed);
  EXPECT_EQ(why_.what, File().u16string());
  EXPECT_EQ(Text(), kDamaged);
  EXPECT_EQ(Set(u"A", u"m", {RegistryType::kDword, {}, 3}), kDone);
  EXPECT_EQ(Set(u"B", u"n", {RegistryType::kString, u"x", 0}), kDone);
  EXPECT_EQ(Query(u"A", u"m"), kDone);
  ASSERT_EQ(Query(u"A", u""), kDone);
  EXPECT_EQ(value_.type, RegistryType::kOther);
  EXPECT_EQ(DeleteRegistryValue(kUser, u"A", u"m", &why_), kDone);
}

TEST_F(RegistryTest, AnotherFileIsNeitherReadNorHarmed) {
  Install(u"Dear diary\r\n[HKEY_CURRENT_USER\\a]\r\n\"k\"=\"1\"\r\n");
  const std::string before = test::ReadBytes(File());
  EXPECT_EQ(Query(u"a", u"k"), kNoKey);
  EXPECT_EQ(Set(u"a", u"k", {RegistryType::kDword, {}, 1}), kFailed);
  EXPECT_EQ(why_.why, u"it is no registry file");
  EXPECT_EQ(test::ReadBytes(File()), before);
  system_.config.clear();
  EXPECT_EQ(Set(u"a", u"k", {RegistryType::kDword, {}, 1}), kFailed);
  EXPECT_EQ(Query(u"a", u"k"), kNoKey);
}

}  // namespace
}  // namespace kerno
