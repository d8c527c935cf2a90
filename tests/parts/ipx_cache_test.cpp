#include "parts/ipx_cache.h"

#include <gtest/gtest.h>

#include "parts/ipx.h"
#include "support/fake_system.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

PartsA ALine() {
  PartsA model;
  model.parts.emplace_back().AddLine({0, 0}, {1, 1});
  return model;
}

class IpxCacheTest : public testing::Test {
 protected:
  const TemporaryFolder folder_;
  const test::RecordingNotices notices_;
  const fs::path cache_ = folder_ / "PartsA.tmp/1.2020180726";
};

TEST_F(IpxCacheTest, CopiesLiveAsLongAsTheProgram) {
  {
    IpxCache copies(folder_.path(), u"kerno");
    EXPECT_FALSE(fs::exists(folder_ / "PartsA.tmp"));
    copies.KeepCopy({}, folder_ / "out/a.b.svg");
    copies.KeepCopy(ALine(), folder_ / "out/a.b.dxf");
    EXPECT_TRUE(notices_.messages.empty() && notices_.steps.empty());
    PartsA read;
    EXPECT_TRUE(ReadIpxFile(cache_ / "a.b.ipx", &read).ok());
    EXPECT_EQ(ToText(read, u""), ToText(ALine(), u""));
  }
  EXPECT_TRUE(folder_.Names().empty());
}

TEST_F(IpxCacheTest, NeverCopiesOntoTheFileItself) {
  fs::create_directories(cache_);
  test::WriteBytes(cache_ / "a.ipx", "exported");
  std::error_code no_links;
  fs::create_symlink(cache_, folder_ / "link", no_links);
  {
    IpxCache copies(folder_.path(), u"kerno");
    copies.KeepCopy(ALine(), cache_ / "a.ipx");
    if (!no_links) copies.KeepCopy(ALine(), folder_ / "link/a.ipx");
    copies.KeepCopy(ALine(), folder_ / "PartsA.tmp/../PartsA.tmp/1.2020180726/a.ipx");
  }
  EXPECT_EQ(test::ReadBytes(cache_ / "a.ipx"), "exported");
}

TEST_F(IpxCacheTest, RemovesOnlyWhatItPutThere) {
  {
    IpxCache copies(folder_.path(), u"kerno");
    copies.KeepCopy({}, "mine.svg");
    copies.KeepCopy({}, "changed.svg");
    test::WriteBytes(cache_ / "changed.ipx", "by somebody else");
    test::WriteBytes(cache_ / "other.ipx", "of another process");
  }
  EXPECT_FALSE(fs::exists(cache_ / "mine.ipx"));
  EXPECT_TRUE(fs::exists(cache_ / "changed.ipx"));
  EXPECT_TRUE(fs::exists(cache_ / "other.ipx"));
}

TEST_F(IpxCacheTest, FailuresAreSilent) {
  PartsA unwritable;
  unwritable.parts.resize(1);
  unwritable.parts[0].name = u"a\r\nb";
  {
    IpxCache copies(folder_.path(), u"kerno");
    copies.KeepCopy(unwritable, "a.svg");
    copies.KeepCopy({}, fs::path(std::string(300, 'x')));
    test::FakeSystem system;
    system.private_folders = false;
    copies.KeepCopy({}, "b.svg");
  }
  EXPECT_TRUE(notices_.messages.empty());
  EXPECT_TRUE(folder_.Names().empty());
}

}  // namespace
}  // namespace kerno
