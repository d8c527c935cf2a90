#include "parts/ipx_cache.h"

#include <gtest/gtest.h>

#include "parts/ipx.h"
#include "parts/ipx_models.h"
#include "support/fake_settings.h"
#include "support/fake_system.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

TEST(IpxCache, VersionNumber) {
  EXPECT_EQ(IpxVersionNumber(kIpxVersion), 1.2020180726);
  EXPECT_EQ(IpxVersionNumber(u"1,5-3/2 1:0\t9"), 1.532109);
  EXPECT_EQ(IpxVersionNumber(u"Ver.1"), 0);
  EXPECT_EQ(IpxVersionNumber(u""), 0);
}

TEST(IpxCache, CopiesLiveAsLongAsTheProgram) {
  const TemporaryFolder folder;
  const test::RecordingNotices notices;
  const fs::path cache = folder / "PartsA.tmp/1.2020180726";
  {
    IpxCache copies(folder.path(), u"kerno");
    EXPECT_FALSE(fs::exists(folder / "PartsA.tmp"));
    copies.KeepCopy(test::EveryKind(), folder / "out/a.b.svg");
    copies.KeepCopy(test::EveryKind(), folder / "out/a.b.dxf");
    copies.KeepCopy(test::EveryKind(), folder / "out/c.ipx");
    EXPECT_TRUE(fs::exists(cache / "c.ipx"));
    PartsA read;
    EXPECT_TRUE(ReadIpxFile(cache / "a.b.ipx", &read).ok());
    EXPECT_EQ(ToText(read, u""), ToText(test::EveryKind(), u""));
  }
  EXPECT_TRUE(folder.Names().empty());
  // Only the reading above showed anything.
  EXPECT_TRUE(notices.messages.empty());
  EXPECT_EQ(notices.steps.front().text, u"読み込み中．．．");
}

TEST(IpxCache, NeverCopiesOntoTheFileItself) {
  const TemporaryFolder folder;
  const fs::path cache = folder / "PartsA.tmp/1.2020180726";
  fs::create_directories(cache);
  test::WriteBytes(cache / "a.ipx", "exported");
  std::error_code no_links;
  fs::create_symlink(cache, folder / "link", no_links);
  {
    IpxCache copies(folder.path(), u"kerno");
    copies.KeepCopy(test::EveryKind(), cache / "a.ipx");
    if (!no_links) copies.KeepCopy(test::EveryKind(), folder / "link/a.ipx");
    copies.KeepCopy(test::EveryKind(), folder / "PartsA.tmp/../PartsA.tmp/1.2020180726/a.ipx");
  }
  EXPECT_EQ(test::ReadBytes(cache / "a.ipx"), "exported");
}

TEST(IpxCache, RemovesOnlyWhatItPutThere) {
  const TemporaryFolder folder;
  const fs::path cache = folder / "PartsA.tmp/1.2020180726";
  {
    IpxCache copies(folder.path(), u"kerno");
    copies.KeepCopy({}, "mine.svg");
    copies.KeepCopy({}, "changed.svg");
    test::WriteBytes(cache / "changed.ipx", "by somebody else");
    test::WriteBytes(cache / "other.ipx", "of another process");
  }
  EXPECT_FALSE(fs::exists(cache / "mine.ipx"));
  EXPECT_TRUE(fs::exists(cache / "changed.ipx"));
  EXPECT_TRUE(fs::exists(cache / "other.ipx"));
  fs::remove(cache / "changed.ipx");
  fs::remove(cache / "other.ipx");
  {
    IpxCache copies(folder.path(), u"kerno");
    copies.KeepCopy({}, "mine.svg");
  }
  EXPECT_TRUE(fs::is_empty(cache));  // the folder is not this object's
}

TEST(IpxCache, FailuresAreSilent) {
  const TemporaryFolder folder;
  const test::RecordingNotices notices;
  PartsA unwritable;
  unwritable.parts.resize(1);
  unwritable.parts[0].name = u"a\"b";
  {
    IpxCache copies(folder.path(), u"kerno");
    copies.KeepCopy(unwritable, "a.svg");
    copies.KeepCopy({}, fs::path(std::string(300, 'x')));
    test::FakeSystem system;
    system.private_folders = false;
    copies.KeepCopy({}, "b.svg");
  }
  EXPECT_TRUE(notices.messages.empty());
  EXPECT_TRUE(folder.Names().empty());
}

TEST(IpxCache, ConvertedModelsWhenTheSettingAsksForThem) {
  const TemporaryFolder folder;
  FakeSettings settings;
  const fs::path cache = folder / "PartsA.tmp/1.2020180726";
  {
    IpxCache copies(folder.path(), u"kerno");
    EXPECT_EQ(copies.PathOfConverted("a.stl"), std::nullopt);
    settings.ints[{u"PartsAry\\Convert3D", u"UseCacheIPX"}] = 1;
    EXPECT_EQ(copies.PathOfConverted("x/y.IPX"), fs::path("x/y.IPX"));
    EXPECT_FALSE(fs::exists(cache));
    EXPECT_EQ(copies.PathOfConverted("x/a.stl"), cache / "a.stl.ipx");
    EXPECT_EQ(copies.PathOfConverted("C:\\x\\a.stl"), cache / "a.stl.ipx");
    EXPECT_TRUE(fs::exists(cache));
  }
  EXPECT_FALSE(fs::exists(folder / "PartsA.tmp"));
}

}  // namespace
}  // namespace kerno
