// Settings that several processes write at the same time, or that a writer leaves by being killed.
#include <unistd.h>

#include <cstdlib>

#include "base/profile_store.h"
#include "base/registry_access.h"
#include "base/text.h"
#include "support/child_process.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

using test::ChildProcess;

class SettingsProcessesTest : public test::SettingsFixture {};

TEST_F(SettingsProcessesTest, WritersOfDifferentKeysLoseNeither) {
  constexpr int kKeys = 30;
  const auto writer = [](const std::u16string& prefix) {
    ReplaceClock(nullptr);
    for (int i = 0; i < kKeys; ++i) {
      IniStore store(u"Quenkit");
      if (!store.WriteInt(u"S", prefix + Int64Text(i), i).ok()) return 1;
      if (!WriteUserDword(u"Software\\Test", prefix + Int64Text(i), i).ok()) return 2;
    }
    return 0;
  };
  ChildProcess first([&] { return writer(u"a"); });
  ChildProcess second([&] { return writer(u"b"); });
  EXPECT_EQ(first.Wait(), 0);
  EXPECT_EQ(second.Wait(), 0);
  IniStore store(u"Quenkit");
  for (const std::u16string prefix : {u"a", u"b"}) {
    for (int i = 0; i < kKeys; ++i) {
      EXPECT_EQ(store.GetInt(u"S", prefix + Int64Text(i), -1), i) << Utf16ToUtf8(prefix) << i;
      int32_t value = -1;
      EXPECT_TRUE(ReadUserDword(u"Software\\Test", prefix + Int64Text(i), &value).ok());
      EXPECT_EQ(value, i);
    }
  }
}

// The writer replaces a long value by another; whenever it is killed the file is one of the two.
TEST_F(SettingsProcessesTest, AKilledWriterLeavesAWholeFile) {
  constexpr int kRounds = 500;
  const std::u16string values[] = {std::u16string(3000, u'a'), std::u16string(3000, u'b')};
  EXPECT_TRUE(IniStore(u"Quenkit").WriteStr(u"S", u"k", values[0]).ok());
  const std::u16string text = IniText();
  std::u16string other = text;
  other.replace(text.find(values[0]), values[0].size(), values[1]);
  int changed = 0;
  for (int round = 0; round < kRounds; ++round) {
    ChildProcess writer([&]() -> int {
      ReplaceClock(nullptr);
      for (int i = round;; ++i) {
        ProfileStore store(u"Quenkit");
        static_cast<void>(store.WriteStr(u"S", u"k", values[i % 2]));
      }
    });
    usleep(static_cast<useconds_t>(500 + 37 * (round % 100)));
    writer.Signal(SIGKILL);
    EXPECT_EQ(writer.Wait(), -SIGKILL);
    const std::u16string left = IniText();
    ASSERT_TRUE(left == text || left == other) << round;
    changed += left == other ? 1 : 0;
  }
  EXPECT_GT(changed, 0);
  EXPECT_LT(changed, kRounds);
}

}  // namespace
}  // namespace kerno
