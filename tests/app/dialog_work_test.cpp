// What the window says of its work, and what it does while outputs are written beside it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <future>

#include "app/captions.h"
#include "app/dialog_presenter.h"
#include "base/file_wait.h"
#include "support/file_holder.h"
#include "support/recording_view.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using testing::HasSubstr;
using testing::Not;

// Writes for as long as the test wants, or files that others hold.
class WorkServices final : public test::FakeDialogServices {
 public:
  std::promise<void> go_on;
  std::shared_future<void> gate;  // none: writes at once
  bool writes_bytes = false;
  int progressed = 0;

  Status Write(const Format& format, const PartsA& parts, const OutputOptions& options,
               const std::filesystem::path& file) override {
    if (gate.valid()) gate.wait();
    if (CurrentNotices().Progress(u"writing", ++progressed, 2) == Continue::kNo) {
      return Status::Error(Failure::kOther, PathText(file), u"stopped by the user");
    }
    if (writes_bytes) return ReplaceWhenFree(file, "new");
    return FakeDialogServices::Write(format, parts, options, file);
  }
};

class DialogWork : public testing::Test {
 protected:
  DialogWork() {
    services.folder = folder.path();
    services.memory.face = u"Plain";
    open_folder_on_first_save = false;
    Open();
  }
  ~DialogWork() override { SetLanguage(Language::kEnglish); }
  void Open() {
    presenter.reset();
    presenter = std::make_unique<DialogPresenter>(view, services);
    presenter->Open();
  }
  void Type(std::u16string_view text) { presenter->TextChanged(ControlId::kText, text); }
  void Press(ControlId button) {
    presenter->Pressed(button);
    test::Settle(*presenter);
  }
  std::string Status() const { return Utf16ToUtf8(view.status); }
  bool Warns() const { return view.status_kind == StatusKind::kWarning; }

  test::TemporaryFolder folder;
  test::RecordingView view;
  WorkServices services;
  std::unique_ptr<DialogPresenter> presenter;
};

TEST_F(DialogWork, TheLanguageFollowsTheSystemUntilItIsChosen) {
  services.locale = u"ja_JP.UTF-8";
  Open();
  Type(u"AB");
  EXPECT_THAT(Status(), HasSubstr("2 文字"));
  presenter->Chosen(MenuCommand::kLanguageGerman);
  EXPECT_THAT(Status(), HasSubstr("2 Zeichen"));
  EXPECT_EQ(u"Schwarz", view.colors[ControlId::kFirstColor].first[0].name);
  EXPECT_EQ(u"Farbton 90°", view.colors[ControlId::kSecondColor].first[1].name);
  EXPECT_TRUE(view.menu[MenuCommand::kLanguageGerman]);
  EXPECT_FALSE(view.menu[MenuCommand::kLanguageSystem]);
  presenter->SaveNow();
  services.memory = services.saved;
  Open();
  EXPECT_EQ(Language::kGerman, CurrentLanguage());
}

TEST_F(DialogWork, WhatIsWrittenKeepsTheWarningsOfTheDrawing) {
  const struct {
    const char16_t *text, *height;
    const char* warning;  // null: none
  } cases[] = {
      {u"AB", u"100", nullptr},
      {u"AB", u"20", nullptr},
      {u"AB", u"19", "bent to whole units"},
      {u"AB", u"-19", "bent to whole units"},
      {u"AZ", u"100", "no outline of this size for Z"},
      {u"سلام", u"100", "Arabic text: is set from left to right, its letters are not joined"}};
  for (const auto& c : cases) {
    Type(c.text);
    presenter->TextChanged(ControlId::kHeightEdit, c.height);
    presenter->Chosen(MenuCommand::kDefaultFolder);
    Open();  // another run, so that nothing is replaced
    Type(c.text);
    presenter->TextChanged(ControlId::kHeightEdit, c.height);
    Press(ControlId::kDxf);
    EXPECT_THAT(Status(), HasSubstr("Wrote "));
    EXPECT_EQ(c.warning != nullptr, Warns()) << Status();
    EXPECT_THAT(Status(), HasSubstr(c.warning ? c.warning : ""));
  }
}

TEST_F(DialogWork, WhateverIsNoNumberIsMarkedInBothFields) {
  for (const auto& [text, read] : {std::pair(u"1.9", "1"), std::pair(u"", "0"),
                                   std::pair(u"12mm", "12"), std::pair(u"１２", "0")}) {
    presenter->TextChanged(ControlId::kHeightList, text);
    for (const ControlId field : {ControlId::kHeightList, ControlId::kHeightEdit}) {
      EXPECT_THAT(Utf16ToUtf8(view.faults[field]), HasSubstr(std::string("read as ") + read + "."));
    }
  }
  presenter->TextChanged(ControlId::kHeightEdit, u" -12 ");
  EXPECT_EQ(u"", view.faults[ControlId::kHeightList]);
}

TEST_F(DialogWork, ASecondSignIsToldOfAndCanBeSavedBeside) {
  Type(u"AB");
  Press(ControlId::kDxf);
  Press(ControlId::kDxf);
  EXPECT_FALSE(Warns()) << "the same text again";
  Type(u"CD");
  Press(ControlId::kDxf);
  EXPECT_THAT(Status(), HasSubstr("it replaces that of another text"));
  EXPECT_TRUE(Warns());
  Press(ControlId::kIpx);
  EXPECT_FALSE(Warns()) << "the first of its kind";

  view.save_answer = folder / "elsewhere.SVG";
  presenter->Chosen(MenuCommand::kSaveCopy);
  test::Settle(*presenter);
  EXPECT_EQ(u"Plain_100_CD.dxf", view.asked.name);
  EXPECT_EQ("svg .SVG", services.log.back());
  EXPECT_THAT(Status(), HasSubstr("Wrote elsewhere.SVG in "));
  view.save_answer = folder / "elsewhere.xyz";
  presenter->Chosen(MenuCommand::kSaveCopy);
  EXPECT_EQ(folder.path(), view.asked.folder) << "where the last copy went";
  EXPECT_THAT(Utf16ToUtf8(view.messages.at(0)), HasSubstr("no format has this extension"));
}

TEST_F(DialogWork, TypingGoesOnWhileTheTextOfThePressIsWritten) {
  services.gate = services.go_on.get_future();
  Type(u"AB");
  presenter->Pressed(ControlId::kDxf);
  presenter->Pressed(ControlId::kSvg);
  Type(u"ABC");
  presenter->Due();
  EXPECT_EQ(3u, presenter->item_count());
  EXPECT_EQ(1, view.progress_calls);
  EXPECT_FALSE(presenter->Close());
  presenter->SaveNow();
  EXPECT_EQ(u"ABC", services.saved_text);
  EXPECT_FALSE(view.closed);
  services.go_on.set_value();
  test::Settle(*presenter);
  EXPECT_EQ(2u, PartsView(services.exported).size());
  const std::vector<std::string> last(services.log.end() - 5, services.log.end());
  EXPECT_THAT(last,
              testing::ElementsAre("dxf .dxf", "emf .emf", "svg .svg", "emf .emf", "page .html"));
  EXPECT_TRUE(view.closed_progress);
  EXPECT_TRUE(view.closed) << "now that all is written";
}

TEST_F(DialogWork, CancellingEndsThePieceUnderWay) {
  services.gate = services.go_on.get_future();
  view.work_answer = Continue::kNo;
  presenter->Pressed(ControlId::kDib);
  presenter->Due();
  services.go_on.set_value();
  test::Settle(*presenter);
  EXPECT_THAT(Status(), HasSubstr(".bmp: stopped by the user"));
  view.work_answer = Continue::kYes;
  Press(ControlId::kDib);
  EXPECT_THAT(Status(), HasSubstr("Wrote .bmp"));
}

TEST_F(DialogWork, AFileThatIsHeldIsToldOfAtOnceAndTriedAgain) {
  services.writes_bytes = true;
  Type(u"A");
  const std::filesystem::path file = folder / "Plain_100_A.bmp";
  test::WriteBytes(file, "old");
  auto holder = std::make_unique<test::FileHolder>(file, test::HoldKind::kWholeFile);
  view.again_answers = 2;
  Press(ControlId::kDib);
  ASSERT_EQ(4u, view.messages.size()) << "asked twice, cancelled, and what came of it";
  EXPECT_THAT(Utf16ToUtf8(view.messages[0]), HasSubstr(".bmp: another program holds this file."));
  EXPECT_EQ(StatusKind::kFailure, view.status_kind);
  holder.reset();
  EXPECT_EQ("old", test::ReadBytes(file));
  holder = std::make_unique<test::FileHolder>(file, test::HoldKind::kWholeFile);
  view.on_ask = [&] { holder.reset(); };
  view.again_answers = 1;
  Press(ControlId::kDib);
  EXPECT_THAT(Status(), HasSubstr("Wrote .bmp"));
  EXPECT_EQ("new", test::ReadBytes(file));
}

TEST_F(DialogWork, EndingInTheMidstOfAQuestionStopsTheWork) {
  services.writes_bytes = true;
  const std::filesystem::path file = folder / "Plain_100_.bmp";
  test::WriteBytes(file, "old");
  auto holder = std::make_unique<test::FileHolder>(file, test::HoldKind::kWholeFile);
  presenter->Pressed(ControlId::kDib);
  presenter->Pressed(ControlId::kSvg);
  presenter.reset();  // comes back, whatever the work waits for
  holder.reset();
  EXPECT_EQ("old", test::ReadBytes(file));
  EXPECT_FALSE(std::filesystem::exists(folder / "Plain_100_.svg"));
}

TEST_F(DialogWork, OtherThreadsTellThroughTheWindowsOwn) {
  std::thread([] {
    CurrentNotices().Message(u"told elsewhere");
    CurrentNotices().ShowWait(u"waits elsewhere");
    EXPECT_EQ(Continue::kYes, CurrentNotices().Progress(u"goes on elsewhere", 1, 2));
  }).join();
  EXPECT_TRUE(view.messages.empty());
  EXPECT_EQ(0, view.progress_calls);
  EXPECT_THAT(Status(), Not(HasSubstr("elsewhere")));
  presenter->Awake();
  EXPECT_THAT(view.messages, testing::ElementsAre(u"told elsewhere"));
}

TEST_F(DialogWork, TheLastMomentIsSilent) {
  services.failing = "text";
  presenter->SaveNow();
  EXPECT_TRUE(view.messages.empty());
  for (const MenuCommand command : {MenuCommand::kUndo, MenuCommand::kSelectAll}) {
    presenter->Chosen(command);
  }
  EXPECT_THAT(view.edits, testing::ElementsAre(MenuCommand::kUndo, MenuCommand::kSelectAll));
}

}  // namespace
}  // namespace kerno
