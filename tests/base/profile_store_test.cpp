#include "base/profile_store.h"

#include <cmath>
#include <limits>

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
using test::ReadBytes;
using test::WriteBytes;

class ProfileStoreTest : public test::SettingsFixture {};

TEST(ProfileValues, HaveTheirTextForms) {
  EXPECT_EQ(RectText({1, -2, 3, 4}), u"1 -2 3 4");
  EXPECT_EQ(RectText({1, -2, 3, 4}, NumberForm::kPadded),
            u"000000001 -00000002 000000003 000000004");
  EXPECT_EQ(PointText({-2147483647, 7}, NumberForm::kPadded), u"-2147483647 000000007");
  EXPECT_EQ(Point3Text({0.1, -2, 1e30}), u"0.10000000000000000555 -2 1.0000000000000000199e+030");
  EXPECT_EQ(Point3Text({0.1, -2, 1e6}, NumberForm::kPadded), u"0.100000 -2.000000 1000000.000000");
  EXPECT_EQ(Int64Text(INT64_MIN), u"-9223372036854775808");
}

TEST(ProfileValues, ComeBackOutOfTheirText) {
  for (const double value : {0.1, -0.0, 1.0 / 3, 5e-324, 1.7976931348623157e308, 123456789.123}) {
    const double back = DoubleOfText(DoubleText(value));
    EXPECT_EQ(back, value);
    EXPECT_EQ(std::signbit(back), std::signbit(value));
  }
  EXPECT_EQ(Int64OfText(u" +12x"), 12);
  EXPECT_EQ(Int64OfText(u"99999999999999999999"), INT64_MAX);
  EXPECT_EQ(Int64OfText(u"-99999999999999999999"), INT64_MIN);
  EXPECT_EQ(Int64OfText(u"number"), 0);
  EXPECT_EQ(DoubleOfText(u"1e999"), std::numeric_limits<double>::infinity());
  EXPECT_EQ(DoubleOfText(u"1e-999"), 0);
  EXPECT_EQ(DoubleOfText(u"1,5"), 1);
  EXPECT_EQ(RectOfText(u"1  2 x 4"), (ProfileRect{1, 2, 0, 0}));
  EXPECT_EQ(RectOfText(RectText({-1, 2, -3, 4}, NumberForm::kPadded)), (ProfileRect{-1, 2, -3, 4}));
}

TEST_F(ProfileStoreTest, KeepsTypedValuesUnderSuffixes) {
  {
    IniStore store(u"Quenkit");
    EXPECT_TRUE(store.WriteRect(u"P", u"Position199902", {1, 2, 3, 4}).ok());
    EXPECT_TRUE(store.WriteDouble(u"P", u"d", 1.0 / 3).ok());
    EXPECT_TRUE(store.WriteInt64(u"P", u"i", -5000000000).ok());
    EXPECT_TRUE(store.WritePoint(u"P", u"p", {-1, 2}, NumberForm::kPadded).ok());
    EXPECT_TRUE(store.WritePoint3(u"P", u"q", {1, 0.5, -0.0}).ok());
    EXPECT_TRUE(store.WriteInt(u"P", u"plain", -7).ok());
  }
  const std::u16string text = IniText();
  for (const std::u16string_view line :
       {u"\r\nPosition199902_LTRB=1 2 3 4\r\n", u"\r\nd_Flt_=0.33333333333333331483\r\n",
        u"\r\ni_I64_=-5000000000\r\n", u"\r\np_L_XY=-00000001 000000002\r\n",
        u"\r\nq_P_3_=1 0.5 -0\r\n", u"\r\nplain=-7\r\n"}) {
    EXPECT_NE(text.find(line), text.npos) << Utf16ToUtf8(line);
  }
  IniStore store(u"Quenkit");
  EXPECT_EQ(store.GetRect(u"P", u"Position199902", {}), (ProfileRect{1, 2, 3, 4}));
  EXPECT_EQ(store.GetDouble(u"P", u"d", 0), 1.0 / 3);
  EXPECT_EQ(store.GetInt64(u"P", u"i", 0), -5000000000);
  EXPECT_EQ(store.GetPoint(u"P", u"p", {}), (ProfilePoint{-1, 2}));
  EXPECT_EQ(store.GetPoint3(u"P", u"q", {}).y, 0.5);
  EXPECT_EQ(store.GetRect(u"P", u"none", {5, 6, 7, 8}), (ProfileRect{5, 6, 7, 8}));
  EXPECT_EQ(store.GetDouble(u"P", u"none", 0.1), 0.1);
  EXPECT_EQ(store.GetInt(u"", u"plain", 3), 3);
  EXPECT_EQ(store.GetInt(u"P", u"", 3), 3);
  EXPECT_EQ(store.GetInt64(u"P", u"", 3), 3);
}

TEST_F(ProfileStoreTest, ConvertsAnEightBitFileOnce) {
  WriteIni("; \x93\xFA\x96\x7B\r\n\r\n[A]\r\n key = \x8C\xEA\r\nlast=1");
  { IniStore store(u"Quenkit"); }
  const std::u16string wanted = IniHeader() + u"; 日本\r\n\r\n[A]\r\n key = 語\r\nlast=1";
  EXPECT_EQ(IniHeader().size(), 72 * 2 + 2 + 19 + 2u);
  EXPECT_EQ(ReadBytes(Ini()), EncodeText(wanted, TextEncoding::kUtf16));
  clock_.seconds += 100;
  { IniStore store(u"Quenkit"); }
  EXPECT_EQ(ReadBytes(Ini()), EncodeText(wanted, TextEncoding::kUtf16));
  EXPECT_NE(test::OutputOf("file -b '" + Ini().string() + "'").find("UTF-16, little-endian"),
            std::string::npos);
  EXPECT_NE(test::OutputOf("iconv -f UTF-16 -t UTF-8 '" + Ini().string() + "'").find(" key = 語"),
            std::string::npos);
}

// The text with one kind of line end and none behind it: a system may write its own.
std::u16string Lines(std::u16string text) {
  std::erase(text, u'\r');
  while (text.ends_with(u'\n')) text.pop_back();
  return text;
}

TEST_F(ProfileStoreTest, LosesNothingOfOddFiles) {
  const std::string big_endian = "\xFE\xFF" + std::string(
                                                  "\0[\0A\0]\0\n\0k\0=\0"
                                                  "1",
                                                  14);
  const struct {
    const char* what;
    std::string bytes;
    std::u16string rest;  // of the text, behind the header
    bool copied;
  } kCases[] = {
      {"empty", "", u"", false},
      {"one byte", "k", u"k", false},
      {"UTF-8", "[A]\nk=\xE6\x97\xA5\n", u"[A]\nk=日\n", false},
      {"UTF-8 with a mark", "\xEF\xBB\xBF[A]\nk=\xC3\xA4", u"[A]\nk=ä", false},
      {"code page 932", "[A]\nk=\x93\xFA", u"[A]\nk=日", false},
      {"binary", std::string("\x81\xAD\0[A]\xFF\x81", 8), u"\u30FB\0[A]\uF8F3\u30FB", true},
  };
  for (const auto& c : kCases) {
    WriteIni(c.bytes);
    { IniStore store(u"Quenkit"); }
    const std::u16string text = IniText();
    if (std::string(c.what) != "binary") {
      EXPECT_EQ(text, IniHeader() + c.rest) << c.what;
    }
    EXPECT_EQ(text.substr(0, 70), IniHeader().substr(0, 70)) << c.what;
    fs::path copy = Ini();
    copy += ".orig";
    EXPECT_EQ(fs::exists(copy), c.copied) << c.what;
    if (c.copied) {
      EXPECT_EQ(ReadBytes(copy), c.bytes);
    }
    IniStore store(u"Quenkit");
    EXPECT_TRUE(store.WriteInt(u"Z", u"z", 1).ok()) << c.what;
    if (!c.copied) {
      EXPECT_NE(Lines(IniText()).find(Lines(text)), std::u16string::npos) << c.what;
    }
  }
  EXPECT_EQ(notices_.messages.size(), 1u);
  WriteIni(big_endian);
  IniStore store(u"Quenkit");
  EXPECT_EQ(store.GetInt(u"a", u"K", 0), 1);
  EXPECT_TRUE(store.WriteInt(u"A", u"k", 2).ok());
  EXPECT_EQ(ReadBytes(Ini()).substr(0, 2), "\xFE\xFF");
  EXPECT_EQ(Lines(IniText()), u"[A]\nk=2");
}

TEST_F(ProfileStoreTest, AFolderOrALockedPlaceIsAnsweredWithDefaults) {
  fs::create_directories(Ini());
  {
    IniStore store(u"Quenkit");
    EXPECT_EQ(store.GetInt(u"a", u"b", 5), 5);
    const Status status = store.WriteInt(u"a", u"b", 6);
    EXPECT_EQ(status.failure, Failure::kIsFolder);
    EXPECT_EQ(status.what, PathText(Ini()));
  }
  EXPECT_TRUE(fs::is_directory(Ini()));
}

TEST_F(ProfileStoreTest, AFileThatIsNeverReleasedIsReadAndNotWritten) {
  WriteIni("[A]\r\nk=1\r\n");
  { IniStore store(u"Quenkit"); }
  const std::string before = ReadBytes(Ini());
  Status status;
  auto holder = HeldFile::Open(Ini(), Deny::kAll, &status);
  ASSERT_TRUE(holder);
  IniStore store(u"Quenkit");
  EXPECT_EQ(clock_.sleeps, 100);
  EXPECT_EQ(store.GetInt(u"A", u"k", 0), test::kHoldsKeepReadersOut ? 0 : 1);
  EXPECT_EQ(store.WriteInt(u"A", u"k", 2).failure, Failure::kSharingViolation);
  EXPECT_EQ(clock_.sleeps, 200);
  const std::vector<std::u16string> waits = {u"FileWait OpenRead  " + PathText(Ini()), u"",
                                             u"FileWait OpenWrite " + PathText(Ini()), u""};
  EXPECT_EQ(notices_.waits, waits);
  holder.reset();
  EXPECT_EQ(ReadBytes(Ini()), before);
}

TEST_F(ProfileStoreTest, RefusesWhatWouldForgeLines) {
  WriteIni("[A]\r\nk=1\r\n");
  IniStore store(u"Quenkit");
  const std::u16string before = IniText();
  using std::u16string;
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
  EXPECT_EQ(store.GetInt(u"A", u"absent", 7), 7);
  EXPECT_EQ(store.GetInt(u"A", u"absent", 8), 8);
  EXPECT_EQ(store.GetStr(u"A", u"absent", u"x"), u"x");
  WriteIni("[A]\r\nk=2\r\nabsent=3\r\n");
  EXPECT_EQ(store.GetInt(u"a", u"K", 0), 1);  // the cache ignores case as the file does
  EXPECT_EQ(store.GetInt(u"A", u"absent", 7), 3);
  EXPECT_TRUE(store.WriteStr(u"A", u"k", u"text").ok());
  EXPECT_EQ(store.GetInt(u"A", u"K", 9), 0);  // text that is no number
  EXPECT_TRUE(store.WriteInt(u"A", u"k", 5).ok());
  EXPECT_EQ(store.GetStr(u"A", u"k", u""), u"5");

  WriteIni("[Debug\\2009_09]\r\nUseProfileCache=0\r\n[A]\r\nk=1\r\n");
  Restart();
  IniStore uncached(u"Quenkit");
  EXPECT_EQ(process_->use_cache, false);
  EXPECT_EQ(uncached.GetInt(u"A", u"k", 0), 1);
  WriteIni("[A]\r\nk=2\r\n");
  EXPECT_EQ(uncached.GetInt(u"A", u"k", 0), 2);
  EXPECT_EQ(IniStore(u"Quenkit").GetInt(u"A", u"k", 0), 2);
  EXPECT_EQ(process_->use_cache, false);  // settled for the whole process
}

TEST_F(ProfileStoreTest, CountersTellAbsentFromStored) {
  IniStore store(u"Quenkit");
  EXPECT_EQ(store.GetCounter(u"C"), 0);
  EXPECT_EQ(store.GetInt(u"C", u"Counter", -1), 0);  // set up
  EXPECT_TRUE(store.WriteCounter(u"C", -3).ok());
  EXPECT_EQ(IniStore(u"Quenkit").GetCounter(u"C"), -3);
  EXPECT_TRUE(store.WriteStr(u"C", u"Counter", u"4278255360").ok());  // FF00FF00 in 32 bits
  EXPECT_EQ(store.GetCounter(u"C"), 0);
  EXPECT_EQ(store.GetCounter(u""), 0);
}

TEST_F(ProfileStoreTest, FilePathEndsInASeparator) {
  const std::u16string separator(1, fs::path::preferred_separator);
  const std::pair<std::string, std::u16string> kCases[] = {{"", u"." + separator},
                                                           {"/a", u"/a" + separator},
                                                           {"/a/", u"/a/"},
                                                           {"C:\\x\\", u"C:\\x\\"},
                                                           {"rel", u"rel" + separator}};
  for (const auto& [stored, wanted] : kCases) {
    WriteIni("[S]\r\nFilePath=" + stored + "\r\n");
    EXPECT_EQ(IniStore(u"Quenkit").GetFilePath(u"S"), wanted);
    EXPECT_EQ(IniStore(u"Quenkit").GetFilePath(u"None"), u"." + separator);
  }
}

TEST_F(ProfileStoreTest, WindowPositions) {
  const ProfileRect place{110, 120, 310, 420};
  {
    IniStore store(u"Quenkit");
    WindowPlacement nothing = store.RestorePosition(0, 0);
    EXPECT_EQ(nothing.show, ShowState::kNormal);
    EXPECT_EQ(nothing.normal, ProfileRect{});
    EXPECT_TRUE(store.SavePosition({ShowState::kMaximised, false, place}).ok());
  }
  IniStore store(u"Quenkit");
  WindowPlacement restored = store.RestorePosition(10, 20);
  EXPECT_EQ(restored.show, ShowState::kMaximised);
  EXPECT_EQ(restored.normal, (ProfileRect{100, 100, 300, 400}));
  EXPECT_TRUE(store.SavePosition({ShowState::kMinimised, false, {1, 1, 2, 2}}).ok());
  restored = store.RestorePosition(0, 0);
  EXPECT_EQ(restored.normal, place);
  EXPECT_EQ(restored.show, ShowState::kRestore);
  EXPECT_FALSE(restored.restore_to_maximised);
  EXPECT_TRUE(store.WriteInt(u"Position\\MainFrame", u"Maximized", 1).ok());
  EXPECT_TRUE(store.RestorePosition(0, 0).restore_to_maximised);
  EXPECT_TRUE(store.SavePosition({ShowState::kNormal, false, place}).ok());
  EXPECT_EQ(store.RestorePosition(0, 0).show, ShowState::kNormal);
  EXPECT_NE(IniText().find(u"[Position\\MainFrame]"), std::u16string::npos);
  EXPECT_NE(IniText().find(u"Position199902_LTRB=110 120 310 420"), std::u16string::npos);
  EXPECT_TRUE(
      store.WriteRect(u"Position\\MainFrame", u"Position199902", {INT32_MIN, 0, 0, 0}).ok());
  EXPECT_EQ(store.RestorePosition(1, 0).normal.left, INT32_MAX);

  EXPECT_TRUE(store.SaveDialogRect(u"Upload", place, DialogState::kNormal).ok());
  EXPECT_TRUE(store.SaveDialogRect(u"Upload", {}, DialogState::kMinimised).ok());
  EXPECT_EQ(store.LoadDialogRect(u"Upload", {}), place);
  EXPECT_EQ(store.LoadDialogRect(u"Other", place), place);
}

TEST_F(ProfileStoreTest, StampsWhatItWroteAndSeesChangesOfOthers) {
  { IniStore reader(u"Quenkit"); }
  EXPECT_FALSE(fs::exists(Ini()));
  {
    IniStore store(u"Quenkit");
    EXPECT_TRUE(store.WriteInt(u"A", u"k", 1).ok());
  }
  const std::u16string stamped = IniText();
  EXPECT_NE(stamped.find(u"[ProfileINI]\r\nThisMTimeS__machine__someone_"), stamped.npos)
      << Utf16ToUtf8(stamped);
  EXPECT_NE(stamped.find(u"ThisMTimeV=" + Int64Text(clock_.seconds)), stamped.npos);
  {
    IniStore reader(u"Quenkit");
    EXPECT_FALSE(reader.changed_outside());
    EXPECT_EQ(reader.GetInt(u"A", u"k", 0), 1);
  }
  EXPECT_EQ(IniText(), stamped);  // reading alone does not stamp

  using std::chrono::seconds;
  const auto stamp_time = fs::last_write_time(Ini());
  fs::last_write_time(Ini(), stamp_time + seconds(4));
  EXPECT_FALSE(IniStore(u"Quenkit").changed_outside());
  fs::last_write_time(Ini(), stamp_time + seconds(8));
  EXPECT_TRUE(IniStore(u"Quenkit").changed_outside());
  fs::last_write_time(Ini(), stamp_time);

  // Another machine's copy of the file: its text of the time differs from the registry's.
  std::u16string other = IniText();
  const size_t year = other.find(u"=20", other.find(u"ThisMTimeS_"));
  other[year + 1] = u'1';
  WriteBytes(Ini(), EncodeText(other, TextEncoding::kUtf16));
  fs::last_write_time(Ini(), stamp_time);
  EXPECT_TRUE(IniStore(u"Quenkit").changed_outside());
}

TEST_F(ProfileStoreTest, TheStampsNameHasThirtyTwoCharacters) {
  system_.computer = u"a-very-long-name-of-a-computer-indeed";
  system_.config = folder_ / "with=equals";
  {
    IniStore store(u"Quenkit");
    EXPECT_TRUE(store.WriteInt(u"A", u"k", 1).ok());
  }
  const auto ini = folder_ / "with=equals/Quenkit_Setting/Quenkit.ini";
  const std::u16string text = DecodeText(ReadBytes(ini));
  const std::u16string name = u"ThisMTimeS__a-very-long-name-of-a-co_kerno_" + PathText(ini) + u"=";
  EXPECT_NE(text.find(name), text.npos) << Utf16ToUtf8(text);
  EXPECT_FALSE(IniStore(u"Quenkit").changed_outside());
}

TEST_F(ProfileStoreTest, LogsReadsWhenAsked) {
  WriteIni("[Debug]\r\nLog=1\r\nWrite=1\r\n[A]\r\nk=5\r\n");
  {
    IniStore store(u"Quenkit");
    store.GetInt(u"A", u"k", 0);
    store.GetStr(u"A", u"s", u"def");
    EXPECT_TRUE(store.WriteStr(u"A", u"w", u"v").ok());
  }
  const std::u16string log = DumpedText();
  for (const std::u16string_view line :
       {u"\tGetInt\tA\tk\t5\t", u"\tGetStr\tA\ts\tdef\t", u"\tWrite\tA\tw\tv\t"}) {
    EXPECT_NE(log.find(line), log.npos) << Utf16ToUtf8(log);
  }
}

TEST_F(ProfileStoreTest, RegistryModeKeepsTypes) {
  process_->application = Application{u"Maker\\Kerno", u"File"};
  ProfileStore store(u"Name");
  EXPECT_TRUE(store.in_registry());
  EXPECT_EQ(store.profile_path(), u"Name");
  EXPECT_TRUE(store.WriteInt(u"S", u"i", -2).ok());
  EXPECT_TRUE(store.WriteStr(u"S\\T", u"s", u"a \\ \"日\"").ok());
  EXPECT_TRUE(store.WriteDouble(u"S", u"d", 0.1).ok());
  EXPECT_FALSE(store.WriteStr(u"S", u"s", u"1\r\n[x]").ok());
  RegistryValue value;
  EXPECT_EQ(
      QueryRegistry(RegistryRoot::kCurrentUser, u"Software\\Maker\\Kerno\\Name\\S", u"i", &value),
      RegistryOutcome::kDone);
  EXPECT_EQ(value.type, RegistryType::kDword);
  EXPECT_EQ(value.number, 0xFFFFFFFEu);
  ProfileStore other(u"Name");
  EXPECT_EQ(other.GetInt(u"S", u"i", 0), -2);
  EXPECT_EQ(other.GetStr(u"S\\T", u"s", u""), u"a \\ \"日\"");
  EXPECT_EQ(other.GetDouble(u"S", u"d", 0), 0.1);
  EXPECT_EQ(other.GetInt(u"S", u"none", 4), 4);
  EXPECT_EQ(other.registry_error(),
            u"エントリが存在しない　　Software\\Maker\\Kerno\\Name\\S\\[none]");
  EXPECT_EQ(other.GetInt(u"S\\T", u"s", 4), 4);
  EXPECT_EQ(other.registry_error(),
            u"ＲＥＧ＿ＤＷＯＲＤでないSoftware\\Maker\\Kerno\\Name\\S\\T\\[s]");
  EXPECT_EQ(other.GetStr(u"S", u"i", u"x"), u"x");
  EXPECT_EQ(other.registry_error(),
            u"ＲＥＧ＿ＳＺでない　　　Software\\Maker\\Kerno\\Name\\S\\[i]");
  EXPECT_EQ(other.GetStr(u"None", u"k", u"x"), u"x");
  EXPECT_EQ(other.registry_error(),
            u"指定セクションを開けない"
            u"Software\\Maker\\Kerno\\Name\\None\\[k]");
  EXPECT_EQ(ProfileStore(u"").profile_path(), u"File");
}

TEST_F(ProfileStoreTest, ProgramSettingsTakeEffectAtTheNextRead) {
  ProfileSettings settings;
  EXPECT_EQ(settings.GetInt(u"Dec", u"SvgOut::Precision", 15), 15);
  WriteIni(
      "[Dec]\r\nSvgOut::Precision=7\r\n[Parts]"
      "\r\n\x89\xA1\x8F\x91\x83\x74\x83\x46\x83\x43\x83\x58\x96\xBC=Face\r\n");
  EXPECT_EQ(settings.GetInt(u"Dec", u"SvgOut::Precision", 15), 7);
  EXPECT_EQ(settings.GetStr(u"Parts", u"横書フェイス名", u""), u"Face");
  // Whatever was read is kept only as long as the file looks the same and is not of just now.
  for (const int age : {0, 10}) {
    for (int i = 0; i < 20; ++i) {
      const std::string digit = std::to_string(i % 10);
      WriteIni("[Dec]\r\nSvgOut::Precision=" + digit + "\r\n");
      fs::last_write_time(
          Ini(), fs::file_time_type::clock::now() - std::chrono::seconds(age == 0 ? 0 : age + i));
      for (int j = 0; j < 3; ++j) {
        EXPECT_EQ(settings.GetInt(u"Dec", u"SvgOut::Precision", 15), i % 10) << age;
        EXPECT_EQ(settings.GetStr(u"Dec", u"SvgOut::Precision", u""), Utf8ToUtf16(digit)) << age;
        EXPECT_EQ(settings.GetInt(u"Dec", u"none", j), j);
        EXPECT_EQ(settings.GetStr(u"Dec", u"none", u"0"), u"0");
      }
    }
  }
  fs::remove(Ini());
  EXPECT_EQ(settings.GetInt(u"Dec", u"SvgOut::Precision", 15), 15);
}

}  // namespace
}  // namespace kerno
