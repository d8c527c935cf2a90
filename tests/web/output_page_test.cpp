#include "web/output_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/text.h"
#include "support/file_holder.h"
#include "support/temporary_folder.h"
#include "web/output_run.h"

namespace kerno {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

TEST(OutputPage, TellsItsSourceBack) {
  const PageSource sources[] = {
      {u"text", u"DejaVu Sans", u"100"},
      {u"\"><meta name=\"kerno-face\" content=\"x", u"&quot;&amp;#39;", u"'<>'"},
      {u"永遠\n二行目\t\xD83D\xDE00", u"@ＭＳ 明朝", u"-100"},
  };
  for (const PageSource& source : sources) {
    EXPECT_EQ(ReadPageSource(BuildOutputPage({source, {}})), source) << Utf16ToUtf8(source.text);
  }
  EXPECT_FALSE(ReadPageSource("<!DOCTYPE html><title>another page</title>"));
}

TEST(OutputPage, ALongTextIsCutOnceAndForAll) {
  std::u16string text;
  for (int i = 0; i < 5000; ++i) text += u"\xD83D\xDE00";
  const auto once = ReadPageSource(BuildOutputPage({{text, u"f", u"1"}, {}}));
  ASSERT_TRUE(once);
  EXPECT_EQ(once->text.size(), 2 * 299 + 1);
  EXPECT_TRUE(once->text.ends_with(u"…"));
  EXPECT_EQ(ReadPageSource(BuildOutputPage({*once, {}})), once);
}

TEST(OutputPage, SizesAreReadable) {
  const std::pair<uint64_t, const char*> sizes[] = {
      {1, ">1 byte<"}, {1023, ">1023 bytes<"}, {1048575, ">1.0 MiB<"}, {UINT64_MAX, ">16.0 EiB<"}};
  for (const auto& [bytes, shown] : sizes) {
    EXPECT_THAT(BuildOutputPage({{}, {{"a.dxf", bytes}}}), HasSubstr(shown));
  }
}

TEST(OutputRun, NamesTellFaceHeightAndText) {
  const struct {
    const char16_t *name, *face, *height, *text;
  } rows[] = {
      {u"DejaVu Sans_100_Hello", u"DejaVu Sans", u"100", u"Hello"},
      {u"@IPA_Mincho_-24_a_1_b", u"@IPA_Mincho", u"-24", u"a_1_b"},
      {u"holiday", u"", u"", u"holiday"},
      {u"_100_x", u"", u"", u"_100_x"},
      {u"a_100", u"", u"", u"a_100"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(SourceOfName(row.name), (PageSource{row.text, row.face, row.height}))
        << Utf16ToUtf8(row.name);
  }
}

class OutputRunTest : public testing::Test {
 protected:
  void Make(std::string_view name, std::string_view bytes = "x") {
    test::WriteBytes(folder_ / name, bytes);
  }
  std::string Page(std::string_view name) { return test::ReadBytes(folder_ / name); }

  test::TemporaryFolder folder_;
};

TEST_F(OutputRunTest, ARunIsWhatSharesItsBaseName) {
  for (const char* name : {"a.v1.ipx", "a.v1.SVG", "a.v1.bmp", "a.v1.dxf", "a.v1.html", "a.v1.exe",
                           "a.v1", "a.v2.svg", "a.svg", "a.v1.x.svg", "b.svg"}) {
    Make(name);
  }
  std::filesystem::create_directory(folder_ / "a.v1.emf");
  std::vector<std::string> names;
  std::vector<PageFile> files;
  ASSERT_TRUE(FilesOfRun(folder_ / "a.v1", &files).ok());
  for (const PageFile& file : files) names.push_back(file.name.native());
  EXPECT_FALSE(FilesOfRun(folder_ / "none" / "a.v1", &files).ok()) << "a folder that is not there";
  EXPECT_THAT(names, ElementsAre("a.v1.SVG", "a.v1.bmp", "a.v1.dxf", "a.v1.ipx"));
  EXPECT_EQ(PageOfRun(folder_ / "a.v1"), folder_ / "a.v1.html");
}

TEST_F(OutputRunTest, APageIsWrittenAgainFromWhatItSays) {
  Make("f_1_t.svg");
  ASSERT_TRUE(WriteOutputPage(folder_ / "f_1_t", {u"the whole text", u"The Face", u"72"}).ok());
  Make("f_1_t.dxf");
  const test::FileHolder holder(folder_ / "f_1_t.html", test::HoldKind::kWholeFile, 200);
  ASSERT_TRUE(RefreshOutputPage(folder_ / "f_1_t").ok());
  EXPECT_THAT(Page("f_1_t.html"), HasSubstr("f_1_t.dxf"));
  EXPECT_THAT(Page("f_1_t.html"), HasSubstr("the whole text – The Face, height 72</title>"));
  EXPECT_TRUE(RefreshOutputPage(folder_ / "other").ok());
  EXPECT_FALSE(std::filesystem::exists(folder_ / "other.html"));
}

// The run of "gone" has a page and no files any more; the page of "a" is somebody else's.
TEST_F(OutputRunTest, AFolderGetsAPageForEachRunAndAPageOfSomebodyElseStays) {
  for (const char* name : {"f_1_one.svg", "f_1_one.dxf", "a.svg", "notes.rtf"}) Make(name);
  Make("a.html", "<title>mine</title>");
  ASSERT_TRUE(WriteOutputPage(folder_ / "gone", {u"gone", u"f", u"1"}).ok());
  std::vector<std::filesystem::path> written;
  const Status status = WriteFolderPages(folder_.path(), &written);
  EXPECT_FALSE(status.ok());
  EXPECT_THAT(Utf16ToUtf8(status.what), HasSubstr("a.html"));
  EXPECT_EQ(Page("a.html"), "<title>mine</title>");
  EXPECT_THAT(written, ElementsAre(folder_ / "f_1_one.html", folder_ / "gone.html"));
  EXPECT_THAT(Page("gone.html"), HasSubstr("There are no outputs here"));
}

}  // namespace
}  // namespace kerno
