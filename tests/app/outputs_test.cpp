#include "app/outputs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "app/dialog_presenter.h"
#include "app/output_name.h"
#include "app/rtf_writer.h"
#include "support/recording_view.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using testing::ElementsAre;

class OutputsTest : public testing::Test {
 protected:
  OutputsTest() {
    services.folder = folder / "made" / "on demand";
    services.memory.face = u"Plain";
    open_folder_on_first_save = true;
    presenter = std::make_unique<DialogPresenter>(view, services);
    presenter->Open();
    presenter->TextChanged(ControlId::kText, u"AB");
  }
  std::vector<std::string> Press(ControlId button) {
    services.log.clear();
    presenter->Pressed(button);
    test::Settle(*presenter);
    return services.log;
  }

  test::TemporaryFolder folder;
  test::RecordingView view;
  test::FakeDialogServices services;
  std::unique_ptr<DialogPresenter> presenter;
};

TEST_F(OutputsTest, EachButtonWritesWhatFollowsToo) {
  EXPECT_THAT(Press(ControlId::kDxf), ElementsAre("rtf .rtf", "dxf .dxf", "emf .emf"));
  EXPECT_THAT(Press(ControlId::kSvg), ElementsAre("svg .svg", "emf .emf", "page .html"));
  const int refreshed = services.refreshed_pages;
  EXPECT_THAT(Press(ControlId::kIpx), ElementsAre("ipx .ipx", "ipl .ipl"));
  EXPECT_EQ(refreshed + 1, services.refreshed_pages) << "the page lists the new files";
  EXPECT_THAT(Press(ControlId::kDib), ElementsAre("bmp .bmp"));
  EXPECT_THAT(Press(ControlId::kEmf), ElementsAre("emf .emf"));
  EXPECT_THAT(Press(ControlId::kIpl), ElementsAre("ipl .ipl"));
  EXPECT_THAT(Press(ControlId::kOk), ElementsAre());
  EXPECT_THAT(Press(ControlId::kUpload), ElementsAre("page .html", "upload .dxf"));
  EXPECT_EQ(7u, services.sent.size()) << "each file of the run once";
  EXPECT_TRUE(view.messages.empty());
}

TEST_F(OutputsTest, ARunKeepsTheBaseNameOfItsFirstOutput) {
  EXPECT_TRUE(presenter->outputs().base_path().empty());
  Press(ControlId::kIpx);
  EXPECT_EQ(services.folder / "Plain_100_AB.rtf", presenter->outputs().base_path());
  EXPECT_THAT(services.rtf, testing::HasSubstr("\\fs24 AB}"));
  presenter->TextChanged(ControlId::kText, u"CD");
  EXPECT_THAT(Press(ControlId::kDxf), ElementsAre("dxf .dxf", "emf .emf"));
  EXPECT_EQ(services.folder / "Plain_100_AB.rtf", presenter->outputs().base_path());
  EXPECT_THAT(services.opened_folders, ElementsAre(services.folder));

  view.folder_answer = folder / "elsewhere";
  presenter->Chosen(MenuCommand::kChooseFolder);
  Press(ControlId::kDxf);
  EXPECT_EQ(folder / "elsewhere" / "Plain_100_CD.rtf", presenter->outputs().base_path());
  EXPECT_EQ(1u, services.opened_folders.size());
}

TEST_F(OutputsTest, WithoutABasePathNothingIsWritten) {
  test::WriteBytes(folder / "made", "a file where the folder should be");
  EXPECT_THAT(Press(ControlId::kDxf), ElementsAre());
  EXPECT_TRUE(presenter->outputs().base_path().empty());
  ASSERT_EQ(1u, view.messages.size());
  std::filesystem::remove(folder / "made");
  services.failing = "rtf";
  EXPECT_THAT(Press(ControlId::kDxf), ElementsAre("rtf .rtf"));
  EXPECT_EQ(2u, view.messages.size());
  EXPECT_TRUE(services.opened_folders.empty());
  services.failing.clear();
  EXPECT_EQ(3u, Press(ControlId::kDxf).size()) << "the next press tries again";
}

TEST(OutputName, IsValidAndHarmlessEverywhere) {
  const std::u16string forty_cats = [] {
    std::u16string text;
    for (int i = 0; i < 150; ++i) text += u"\U0001F408";
    return text;
  }();
  const struct {
    std::u16string face, height, text, name;
  } cases[] = {
      {u"Plain", u"100", u"Hello", u"Plain_100_Hello"},
      {u"F", u"1", u"a/b\\c:d*e?f\"g<h>i|j", u"F_1_a_b_c_d_e_f_g_h_i_j"},
      {u"F", u"1", u"line\r\nline\tx\x7F", u"F_1_line__line_x_"},
      {u"F", u"1", u"x. . .", u"F_1_x"},
      {u"", u"", u"", u"__"},
      {u"..", u"1", u"x", u"_._1_x"},
      {u"-rf", u"1", u"x", u"_rf_1_x"},
      {u"con.x", u"1", u"x", u"_con.x_1_x"},
      {u"  Com1 .x", u"1", u"", u"_Com1 .x_1_"},
      {u"F", u"1", u"a\u202Eb\xD800z\u2028", u"F_1_a_b_z_"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Utf16ToUtf8(c.name), Utf16ToUtf8(OutputBaseName(c.face, c.height, c.text)));
  }
  const std::u16string cut = OutputBaseName(u"F", u"1", forty_cats);
  EXPECT_LE(Utf16ToUtf8(cut).size() + kLongestSuffix, kLongestName);
  EXPECT_TRUE(cut.ends_with(u"\U0001F408")) << "cut between characters";
  EXPECT_EQ(104u, OutputBaseName(u"F", u"1", std::u16string(150, u'x')).size());
  EXPECT_EQ("/t/a.b.dxf", OutputPath("/t/a.b.rtf", u"dxf"));
  EXPECT_EQ("/t/a.b.svg", OutputPath("/t/a.b.rtf", u".svg"));
}

std::string ReadByUnrtf(const std::string& rtf) {
  const test::TemporaryFolder folder;
  test::WriteBytes(folder / "a.rtf", rtf);
  return test::OutputOfPython("app/read_rtf.py '" + (folder / "a.rtf").string() + "'");
}

TEST(RtfWriter, AnIndependentReaderGivesTheTextBack) {
  for (const char16_t* text :
       {u"plain", u"{braces} and \\back\\slashes", u"two\nlines\n\nand more", u"日本語 ～ 表 ―",
        u"Ünïcödé \u2603 100 % <&>", u"digits after \u3042123 and \u00E9? \U0001F408 \U00020B9F"}) {
    EXPECT_EQ(Utf16ToUtf8(text), ReadByUnrtf(RtfDocument(text, {.face = u"ＭＳ 明朝"})));
  }
}

TEST(RtfWriter, ExactBytes) {
  EXPECT_EQ(
      "{\\rtf1\\ansi\\ansicpg932\\uc1\\deff0{\\fonttbl{\\f0\\fnil\\fcharset128 "
      "@F\\u26126\\'3f_;}}\r\n"
      "{\\colortbl ;\\red1\\green2\\blue3;}\r\n"
      "\\pard\\cf1\\f0\\fs24 a\\tab b\\par\r\n\\par\r\n\\u-10179\\'3f\\u-9208\\'3f}\r\n",
      RtfDocument(u"a\tb\r\n\r\U0001F408", {.face = u"@F明;", .color = RgbColor(1, 2, 3)}));
}

}  // namespace
}  // namespace kerno
