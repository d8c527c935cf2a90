#include <gtest/gtest.h>

#include "platform/posix/ini_text.h"
#include "platform/posix/utf16_bytes.h"
#include "platform/private_profile.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using posix::ByteForm;
using posix::BytesOfText;

constexpr size_t kAll = std::string::npos;

TEST(IniText, EditsOneLineAndTouchesNothingElse) {
  const std::u16string before =
      u"; a comment [A]\r\n\r\n[ a ]\r\n  Key = old ; no comment\r\nkey=second\r\nnot a pair\r\n"
      u"\r\n; before b\r\n[b]\r\nx=1\r\n[A]\r\nKey=late";
  std::u16string text = before;
  posix::SetIniValue(&text, u"A", u"kEY", u"new");
  std::u16string wanted = before;
  wanted.replace(wanted.find(u" old ; no comment"), 17, u"new");
  EXPECT_EQ(text, wanted);

  posix::SetIniValue(&text, u"a", u"other", u"1");
  wanted.insert(wanted.find(u"[b]"), u"other=1\r\n");
  EXPECT_EQ(text, wanted);

  posix::SetIniValue(&text, u"new", u"k", u"v");
  wanted += u"\r\n[new]\r\nk=v\r\n";
  EXPECT_EQ(text, wanted);

  posix::RemoveIniValue(&text, u"a", u"key");
  wanted.erase(wanted.find(u"  Key =new"), 12);
  EXPECT_EQ(text, wanted);
  posix::RemoveIniValue(&text, u"none", u"key");
  EXPECT_EQ(text, wanted);
}

TEST(IniText, KeepsTheLineEndsOfTheText) {
  const struct {
    std::u16string before;
    std::u16string after;
  } kCases[] = {
      {u"", u"[s]\r\nk=v\r\n"},
      {u"[s]", u"[s]\r\nk=v\r\n"},
      {u"[s]\na=1\n\n[t]\n", u"[s]\na=1\nk=v\n\n[t]\n"},
      {u"[s]\ra=1", u"[s]\ra=1\rk=v\r"},
      {u"[t]\nx=1", u"[t]\nx=1\n[s]\nk=v\n"},
      {u"[s\r\nk=1\r\n", u"[s\r\nk=1\r\n[s]\r\nk=v\r\n"},  // no section without its bracket
  };
  for (const auto& c : kCases) {
    std::u16string text = c.before;
    posix::SetIniValue(&text, u"s", u"k", u"v");
    EXPECT_EQ(text, c.after);
    EXPECT_EQ(posix::FindIniValue(text, u"S", u" K "), u"v");
  }
}

TEST(IniText, ComparesNamesWithoutCaseInOtherScriptsToo) {
  std::u16string text = u"[Größe Ｗ]\r\nÄrger Жизнь=1\r\n";
  EXPECT_EQ(posix::FindIniValue(text, u"GRÖßE ｗ", u"äRGER жИЗНЬ"), u"1");
  EXPECT_FALSE(posix::FindIniValue(text, u"Größe", u"Ärger Жизнь"));
  EXPECT_EQ(posix::FindIniValue(u"[s]\r\n x = y = 1 \r\n", u"s", u"x = y"), u"1");
}

TEST(IniText, KeepsTheFormOfTheFile) {
  const test::TemporaryFolder folder;
  const auto ini = folder / "f.ini";
  const std::u16string text = u"[日]\r\nk=本\r\n";
  const std::u16string edited = u"[日]\r\nk=語\r\n";
  for (const ByteForm form :
       {ByteForm::kUtf16, ByteForm::kUtf16BigEndian, ByteForm::kCodePage932}) {
    test::WriteBytes(ini, BytesOfText(text, form));
    EXPECT_TRUE(WriteProfile(ini, {{u"日", u"k", u"語"}}).ok());
    EXPECT_EQ(test::ReadBytes(ini), BytesOfText(edited, form));
    EXPECT_EQ(ReadProfileString(ini, u"日", u"K", kAll), u"語");
  }
  // What the 8-bit form cannot hold makes the file UTF-16, and so do bytes that are no text.
  EXPECT_TRUE(WriteProfile(ini, {{u"日", u"k", u"\u0E01"}}).ok());
  EXPECT_EQ(test::ReadBytes(ini), BytesOfText(u"[日]\r\nk=\u0E01\r\n", ByteForm::kUtf16));
  EXPECT_TRUE(WriteProfile(folder / "new.ini", {{u"s", u"k", u"v"}}).ok());
  EXPECT_EQ(test::ReadBytes(folder / "new.ini"), BytesOfText(u"[s]\r\nk=v\r\n", ByteForm::kUtf16));
}

}  // namespace
}  // namespace kerno
