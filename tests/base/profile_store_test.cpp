#include "base/profile_store.h"

#include <cmath>

#include "base/ini_preparation.h"
#include "base/profile_settings.h"
#include "base/text.h"
#include "platform/held_file.h"
#include "platform/registry.h"
#include "support/places.h"
#include "support/run.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using std::u16string;
using test::ReadBytes;
using test::WriteBytes;

// The text with one kind of line end and none at its end: a system may write its own.
u16string Lines(u16string text) {
  std::erase(text, u'\r');
  while (text.ends_with(u'\n')) text.pop_back();
  return text;
}

class ProfileStoreTest : public test::SettingsFixture {};

TEST(ProfileValues, ComeBackOutOfTheirTextForms) {
  EXPECT_EQ(Point3Text({0.1, -2, 1e6}, NumberForm::kPadded), u"0.100000 -2.000000 1000000.000000");
  for (const double value : {0.1, -0.0, 1.0 / 3, 5e-324, 1.7976931348623157e308, 123456789.123}) {
    const double back = DoubleOfText(DoubleText(value));
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
  const std::pair<u16string, int64_t> kIntegers[] = {
      {u" +12x", 12}, {u"99999999999999999999", INT64_MAX}, {u"-99999999999999999999", INT64_MIN}};
  for (const auto& [text, value] : kIntegers) EXPECT_EQ(Int64OfText(text), value);
  EXPECT_EQ(RectOfText(u"1  2 x 4"), (ProfileRect{1, 2, 0, 0}));
}

TEST_F(ProfileStoreTest, EachKindOfValueIsOneLineAndComesBack) {
  const ProfileRect place{110, 120, 310, 420};
  {
    IniStore store(u"Quenkit");
    for (const Status& written :
         {store.WriteDouble(u"P", u"d", 1.0 / 3), store.WriteInt64(u"P", u"i", -5000000000),
          store.WritePoint(u"P", u"p", {-1, 2}, NumberForm::kPadded),
          store.WritePoint3(u"P", u"q", {1, 0.5, -0.0}), store.WriteInt(u"P", u"plain", -7),
          store.WriteStr(u"P", u"FilePath", u"C:\\x"), store.WriteCounter(u"P", -3),
          store.SaveDialogRect(u"Upload", place, DialogState::kNormal),
          store.SaveDialogRect(u"Upload", {}, DialogState::kMinimised),
          store.SavePosition({ShowState::kMaximised, false, place}),
          store.SavePosition({ShowState::kMinimised, false, {1, 1, 2, 2}})}) {
      EXPECT_TRUE(written.ok());
    }
    EXPECT_EQ(store.GetCounter(u"New"), 0);
  }
  u16string text = Lines(IniText());
  EXPECT_EQ(text.substr(0, text.find(u"[ProfileINI]")),
            Lines(IniHeader()) +
                u"\n[P]\nd_Flt_=0.33333333333333331483\ni_I64_=-5000000000\n"
                u"p_L_XY=-00000001 000000002\nq_P_3_=1 0.5 -0\nplain=-7\nFilePath=C:\\x\n"
                u"Counter=-3\n[Position\\Dialog]\nUpload_LTRB=110 120 310 420\n"
                u"[Position\\MainFrame]\nIconic=1\nMaximized=0\n"
                u"Position199902_LTRB=110 120 310 420\n[New]\nCounter=0\n");
  IniStore store(u"Quenkit");
  EXPECT_EQ(store.GetDouble(u"P", u"d", 0), 1.0 / 3);
  EXPECT_EQ(store.GetInt64(u"P", u"i", 0), -5000000000);
  EXPECT_EQ(store.GetPoint(u"P", u"p", {}), (ProfilePoint{-1, 2}));
  EXPECT_EQ(store.GetPoint3(u"P", u"q", {}).y, 0.5);
  EXPECT_EQ(store.GetCounter(u"P"), -3);
  EXPECT_TRUE(store.WriteStr(u"P", u"Counter", u"4278255360").ok());  // FF00FF00 in 32 bits
  EXPECT_EQ(store.GetCounter(u"P"), 0);
  EXPECT_EQ(store.LoadDialogRect(u"Upload", {}), place);

  EXPECT_TRUE(store.WriteStr(u"P", u"FilePath", u"/a").ok());
  EXPECT_EQ(store.GetFilePath(u"P"), u"/a" + u16string(1, fs::path::preferred_separator));
}

TEST_F(ProfileStoreTest, TheMainWindowComesBackAsItWas) {
  IniStore store(u"Quenkit");
  using enum ShowState;
  const struct {
    int iconic, maximized;
    ShowState show;
    bool restores_to_maximised;
  } kCases[] = {{0, 1, kMaximised, false}, {1, 1, kRestore, true}};
  EXPECT_TRUE(store.SavePosition({kNormal, false, {INT32_MIN, 20, 30, 40}}).ok());
  for (const auto& c : kCases) {
    EXPECT_TRUE(store.WriteInt(u"Position\\MainFrame", u"Iconic", c.iconic).ok());
    EXPECT_TRUE(store.WriteInt(u"Position\\MainFrame", u"Maximized", c.maximized).ok());
    const WindowPlacement restored = store.RestorePosition(1, 20);
    EXPECT_EQ(restored.show, c.show);
    EXPECT_EQ(restored.restore_to_maximised, c.restores_to_maximised);
    EXPECT_EQ(restored.normal, (ProfileRect{INT32_MAX, 0, 29, 20}));
  }
}

TEST_F(ProfileStoreTest, ConvertsFilesOnceAndLosesNothing) {
  const std::pair<std::string, u16string> kCases[] = {
      {"", u""},
      {"[A]\nk=\xE6\x97\xA5\n", u"[A]\nk=日\n"},
      {"\xEF\xBB\xBF[A]\nk=\xC3\xA4", u"[A]\nk=ä"},
      {"; \x93\xFA\r\n[A]\r\nk=\x8C\xEA", u"; 日\r\n[A]\r\nk=語"}};
  for (const auto& [bytes, rest] : kCases) {
    WriteIni(bytes);
    { IniStore store(u"Quenkit"); }
    const u16string text = IniText();
    EXPECT_EQ(ReadBytes(Ini()), EncodeText(IniHeader() + rest, TextEncoding::kUtf16)) << bytes;
    EXPECT_EQ(test::OutputOf("iconv -f UTF-16 -t UTF-8 '" + Ini().string() + "'"),
              Utf16ToUtf8(text));
    clock_.seconds += 100;
    IniStore store(u"Quenkit");
    EXPECT_EQ(IniText(), text) << bytes;
    EXPECT_TRUE(store.WriteInt(u"Z", u"z", 1).ok()) << bytes;
    EXPECT_EQ(Lines(IniText()).find(Lines(text)), 0u) << bytes;
  }
  const std::string binary("\x81\xAD\0[A]\xFF\x81", 8);
  WriteIni(binary);
  { IniStore store(u"Quenkit"); }
  EXPECT_TRUE(IniText().starts_with(IniHeader()));
  EXPECT_EQ(ReadBytes(Ini().string() + ".orig"), binary);
  EXPECT_EQ(notices_.messages.size(), 1u);
}

TEST_F(ProfileStoreTest, AFolderOrAHeldFileIsNotWritten) {
  fs::create_directories(Ini());
  {
    IniStore store(u"Quenkit");
    EXPECT_EQ(store.GetInt(u"a", u"b", 5), 5);
    const Status status = store.WriteInt(u"a", u"b", 6);
    EXPECT_EQ(status.failure, Failure::kIsFolder);
    EXPECT_EQ(status.what, PathText(Ini()));
  }
  fs::remove(Ini());
  WriteIni("[A]\r\nk=1\r\n");
  { IniStore store(u"Quenkit"); }
  Status status;
  const auto holder = HeldFile::Open(Ini(), Deny::kAll, &status);
  IniStore store(u"Quenkit");
  EXPECT_EQ(store.GetInt(u"A", u"k", 0), test::kHoldsKeepReadersOut ? 0 : 1);
  EXPECT_EQ(store.WriteInt(u"A", u"k", 2).failure, Failure::kSharingViolation);
  EXPECT_EQ(clock_.sleeps, 100);  // for all that is done, not for each
}

TEST_F(ProfileStoreTest, RefusesWhatWouldForgeLines) {
  WriteIni("[A]\r\nk=1\r\n");
  IniStore store(u"Quenkit");
  const u16string before = IniText();
  const u16string nul(1, u'\0');
  const struct {
    u16string section, key, value;
  } kCases[] = {{u"A", u"k", u"1\r\n[B]"}, {u"A", u"k\nx", u"1"}, {u"A\r", u"k", u"1"},
                {u"A", u"k", nul},         {u"A", nul, u"1"},     {u"A", u"[k", u"1"},
                {u"A", u" ;k", u"1"},      {u"A", u"  ", u"1"},   {u" ", u"k", u"1"},
                {u"", u"k", u"1"},         {u"A", u"", u"1"}};
  for (const auto& c : kCases) {
    const Status status = store.WriteStr(c.section, c.key, c.value);
    EXPECT_FALSE(status.ok()) << Utf16ToUtf8(c.key);
    EXPECT_FALSE(status.why.empty());
  }
  EXPECT_EQ(IniText(), before);
  // Odd, but lines of their own: brackets in a section, blanks and quotes around a value.
  for (const u16string& value :
       {u16string(u" a "), u16string(u"'a'"), u16string(u"\"a\""), u16string(u"\""), u16string(u""),
        u16string(u"a;b]=c\tü日\xD842"), u16string(20000, u'x')}) {
    EXPECT_TRUE(store.WriteStr(u"a]b", u"c]", value).ok());
    EXPECT_EQ(store.GetStr(u"a]b", u"c]", u"-"), value.substr(0, 10000));
    EXPECT_EQ(IniStore(u"Quenkit").GetStr(u"a]b", u"c]", u"-"), value.substr(0, 10000));
  }
}

TEST_F(ProfileStoreTest, CachesWhatItReadButNoDefaults) {
  WriteIni("[A]\r\nk=1\r\n");
  IniStore store(u"Quenkit");
  EXPECT_EQ(store.GetInt(u"A", u"k", 0), 1);
  EXPECT_EQ(store.GetInt(u"A", u"absent", 8), 8);
  WriteIni("[A]\r\nk=2\r\nabsent=3\r\n");
  EXPECT_EQ(store.GetInt(u"a", u"K", 0), 1);  // the cache ignores case as the file does
  EXPECT_EQ(store.GetInt(u"A", u"absent", 7), 3);

  WriteIni("[Debug\\2009_09]\r\nUseProfileCache=0\r\n[A]\r\nk=1\r\n");
  Restart();
  IniStore uncached(u"Quenkit");
  EXPECT_EQ(uncached.GetInt(u"A", u"k", 0), 1);
  WriteIni("[A]\r\nk=2\r\n");
  EXPECT_EQ(uncached.GetInt(u"A", u"k", 0), 2);
}

TEST_F(ProfileStoreTest, StampsWhatItWroteAndSeesChangesOfOthers) {
  system_.computer = u"a-very-long-name-of-a-computer-indeed";
  system_.config = folder_ / "with=equals";
  const fs::path ini = folder_ / "with=equals/Quenkit_Setting/Quenkit.ini";
  const auto text = [&] { return DecodeText(ReadBytes(ini)); };
  EXPECT_TRUE(IniStore(u"Quenkit").WriteInt(u"A", u"k", 1).ok());
  const u16string stamped = text();
  const u16string tag = u"_a-very-long-name-of-a-co_kerno_";  // 32 units
  EXPECT_NE(stamped.find(u"[ProfileINI]\r\nThisMTimeS_" + tag + PathText(ini) + u"="),
            stamped.npos);
  EXPECT_NE(stamped.find(u"ThisMTimeV=" + Int64Text(clock_.seconds)), stamped.npos);
  EXPECT_EQ(IniStore(u"Quenkit").GetInt(u"A", u"k", 0), 1);
  EXPECT_EQ(text(), stamped);  // reading alone does not stamp

  const auto stamp_time = fs::last_write_time(ini);
  const auto changed = [&](int seconds_later) {
    fs::last_write_time(ini, stamp_time + std::chrono::seconds(seconds_later));
    return IniStore(u"Quenkit").changed_outside();
  };
  EXPECT_FALSE(changed(4));
  EXPECT_TRUE(changed(8));
  // Another machine's copy of the file: its text of the time differs from the registry's.
  u16string other = stamped;
  other[other.find(u"=20", other.find(u"ThisMTimeS_")) + 1] = u'1';
  WriteBytes(ini, EncodeText(other, TextEncoding::kUtf16));
  EXPECT_TRUE(changed(0));
  other.resize(other.find(u"ThisMTimeV"));  // without a stamp nothing is compared
  WriteBytes(ini, EncodeText(other, TextEncoding::kUtf16));
  EXPECT_FALSE(changed(8));
}

TEST_F(ProfileStoreTest, RegistryModeKeepsTypes) {
  process_->application = Application{u"Maker\\Kerno", u"File"};
  ProfileStore store(u"Name");
  EXPECT_TRUE(store.WriteInt(u"S", u"i", -2).ok());
  EXPECT_TRUE(store.WriteStr(u"S\\T", u"s", u"a \\ \"日\"").ok());
  RegistryValue value;
  EXPECT_EQ(
      QueryRegistry(RegistryRoot::kCurrentUser, u"Software\\Maker\\Kerno\\Name\\S", u"i", &value),
      RegistryOutcome::kDone);
  EXPECT_EQ(value.type, RegistryType::kDword);
  EXPECT_EQ(value.number, 0xFFFFFFFEu);
  ProfileStore other(u"Name");
  EXPECT_EQ(other.GetInt(u"S", u"i", 0), -2);
  EXPECT_EQ(other.GetStr(u"S\\T", u"s", u""), u"a \\ \"日\"");
  EXPECT_EQ(other.GetInt(u"S\\T", u"s", 4), 4);  // of the other type
  EXPECT_EQ(other.registry_error(),
            u"ＲＥＧ＿ＤＷＯＲＤでない"
            u"Software\\Maker\\Kerno\\Name\\S\\T\\[s]");
  EXPECT_TRUE(other.Remove(u"S", u"i").ok());
  EXPECT_EQ(other.GetInt(u"S", u"i", 9), 9);
  EXPECT_EQ(ProfileStore(u"").profile_path(), u"File");
}

// Whatever was read is kept only as long as the file looks the same and is not of just now.
TEST_F(ProfileStoreTest, ProgramSettingsTakeEffectAtTheNextRead) {
  ProfileSettings settings;
  EXPECT_EQ(settings.GetInt(u"Dec", u"Digits", 15), 15);
  for (int i = 0; i < 40; ++i) {
    WriteIni("[Dec]\r\nDigits=" + std::to_string(i % 10) + "\r\n");
    const auto age = std::chrono::seconds(i < 20 ? 0 : i);
    fs::last_write_time(Ini(), fs::file_time_type::clock::now() - age);
    for (int j = 0; j < 3; ++j) {
      EXPECT_EQ(settings.GetInt(u"Dec", u"Digits", 15), i % 10) << i;
      EXPECT_EQ(settings.GetInt(u"Dec", u"none", j), j);
    }
  }
  fs::remove(Ini());
  EXPECT_EQ(settings.GetInt(u"Dec", u"Digits", 15), 15);
}

}  // namespace
}  // namespace kerno
