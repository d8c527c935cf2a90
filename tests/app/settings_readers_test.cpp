// Every setting that "kerno settings list" shows has a reader: the program's own log of reads tells
// which were asked for.
#include <set>

#include "app/dialog_settings.h"
#include "base/copy_log.h"
#include "base/dump_log.h"
#include "base/profile_settings.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "base/throttle.h"
#include "export/svg_numbers.h"
#include "outline/draw_outline.h"
#include "support/fake_device_context.h"
#include "support/recording_drawing_context.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

class SettingsReadersTest : public test::SettingsFixture {};

TEST_F(SettingsReadersTest, EveryKnownSettingIsRead) {
  WriteIni("[Debug]\r\nLog=1\r\nWrite=1\r\n[Debug\\2009_09]\r\nUseProfileCache=0\r\n");
  InstallProfileSettings();
  ForgetPartsSettings();
  ResetSvgPrecision();
  (void)LoadDialogMemory();
  (void)SvgPrecision();
  P3A pool;
  for (int i = 0; i < 102; ++i) pool.FindOrAddPoint({static_cast<double>(i), 0, 0});
  (void)DefaultFaceName(WritingDirection::kHorizontal);
  (void)DefaultFaceName(WritingDirection::kVertical);
  (void)MessageThrottle().Due();
  LogModelCopy(u"test", 1);
  const RunDump dump(u"test");
  RecordingDrawingContext context;
  (void)DrawOutline(context, {});
  EXPECT_TRUE(IniStore(kStoreName).WriteInt(u"Test", u"k", 1).ok());

  const std::u16string log = DumpedText();
  std::set<std::u16string> rows;
  for (const Setting& row : KnownSettings()) {
    const SettingText text = Describe(row);
    if (log.find(u"\t" + text.section + u"\t" + text.key + u"\t") == log.npos) {
      rows.insert(text.section + u"/" + text.key);
    }
  }
  // That the first was read shows in that there is a log; the others are read before it.
  EXPECT_TRUE(rows.erase(u"Debug/Log"));
  EXPECT_EQ(rows.erase(u"Debug/Write"), log.find(u"\tWrite\tTest\tk\t1\t") != log.npos ? 1u : 9u);
  EXPECT_EQ(rows.erase(u"Debug\\2009_09/UseProfileCache"), process_->use_cache == false ? 1u : 9u);
  for (const std::u16string& row : rows) ADD_FAILURE() << "nobody reads " << Utf16ToUtf8(row);
  ReplaceSettings(nullptr);
}

}  // namespace
}  // namespace kerno
