// The rules that both windows keep, by keys, clicks and what is seen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include "app/system_services.h"
#include "support/recording_cut_view.h"
#include "support/recording_view.h"
#include "support/temporary_folder.h"
#include "view_driver.h"

namespace kerno::test {
namespace {

using testing::HasSubstr;
using enum ControlId;

class ViewTest : public testing::Test {
 protected:
  ViewTest() {
    services.folder = folder.path();
    services.memory.face = u"Plain";
    cut_services.folder = folder.path();
    cut_services.memory.form = {{"--face", u"DejaVu Sans"}};
    open_folder_on_first_save = false;
  }
  void Show(DialogServices& used) {
    view.reset();
    view = std::make_unique<ViewDriver>(used, cut_services);
  }
  size_t Contours() { return view->presenter().item_count(); }
  void Write(ControlId button) {
    view->Click(button);
    while (view->presenter().IsWriting()) view->Wait();
  }
  std::string TakeMessage() { return Utf16ToUtf8(view->TakeMessage()); }

  TemporaryFolder folder;
  // Waits for what is made between events and beside the window.
  template <class Question>
  void WaitFor(Question question, const char* what) {
    for (int i = 0; i < 1000 && !question(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      view->cut_presenter().Due();
      view->cut_presenter().Awake();
    }
    EXPECT_TRUE(question()) << what;
  }
  double CutWidth() {
    const CutDrawing* drawing = view->cut_presenter().drawing();
    return drawing ? drawing->ink.Width() : 0;
  }

  FakeDialogServices services;
  FakeCutServices cut_services;
  std::unique_ptr<ViewDriver> view;
};

// Goes on until it is cancelled.
class SlowServices final : public FakeDialogServices {
 public:
  int steps = 0;

  Status Write(const Format&, const PartsA&, const OutputOptions&,
               const std::filesystem::path& file) override {
    for (; steps < 400; ++steps) {
      if (CurrentNotices().Progress(u"Writing", steps, 400) == Continue::kNo) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return Status::Error(Failure::kOther, PathText(file), u"cancelled");
  }
};

TEST_F(ViewTest, LooksAreNothingToUndoAndLeaveTheSelection) {
  Show(services);
  view->Type(kText, u"AB");
  EXPECT_EQ(2u, Contours());
  view->SelectInText(1, 2);
  view->TypeOver(kFace, u"DejaVu Serif");
  view->Select(kFirstColor, 6);
  EXPECT_EQ(u"Red", view->TextOf(kSecondColor)) << "the second list follows";
  const ShownText looks = view->LooksOf(kText);
  EXPECT_EQ(u"DejaVu Serif", looks.face);
  EXPECT_EQ(RgbColor(255, 0, 0), looks.ink);
  EXPECT_EQ(std::pair(1, 2), view->SelectionInText());
  view->UndoInText();
  EXPECT_EQ(u"", view->TextOf(kText));
  EXPECT_EQ(0u, Contours());
  view->Click(kVertical);
  EXPECT_EQ(u"@DejaVu Serif", services.context->created.back().face_name);
}

TEST_F(ViewTest, PastedLinesAndDroppedFilesArriveAsLines) {
  services.saved_text = u"D\n";
  Show(services);
  view->Copy(u"A\r\nB\rC\u00A0");
  view->Click(kPaste);
  EXPECT_EQ(4u, Contours()) << "at the end of the text, where the keyboard is";
  Write(kDxf);
  EXPECT_THAT(services.rtf, HasSubstr("D\\par\r\nA\\par\r\nB\\par\r\nC\\u160"));
  WriteBytes(folder / "a.txt", "AB\nC");
  view->DropOnText(folder / "a.txt");
  EXPECT_EQ(3u, Contours());
  view->UndoInText();
  EXPECT_EQ(4u, Contours());
}

TEST_F(ViewTest, HeightsStayInStepAndEnterPressesNothing) {
  Show(services);
  view->TypeOver(kHeightEdit, u"-12");
  EXPECT_EQ(u"-12", view->TextOf(kHeightList));
  view->Press(kHeightEdit, UserKey::kUp);
  EXPECT_EQ(u"-11", view->TextOf(kHeightList));
  EXPECT_EQ(u"-11", view->TextOf(kHeightEdit));
  view->Select(kHeightList, 12);
  EXPECT_EQ(u"100", view->TextOf(kHeightEdit));
  view->TypeOver(kHeightList, u"77");
  EXPECT_EQ(u"77", view->TextOf(kHeightEdit));
  for (const ControlId field : {kHeightEdit, kHeightList, kFace}) {
    view->Press(field, UserKey::kEnter);
    view->Press(field, UserKey::kEscape);
  }
  EXPECT_TRUE(services.log.empty());
  EXPECT_TRUE(view->IsShown(kText));
}

TEST_F(ViewTest, ColoursAreThereForTheFigureAloneAndLegible) {
  Show(services);
  for (const bool on : {true, false, true}) {
    EXPECT_EQ(on, view->IsEnabled(kFirstColor) && view->IsEnabled(kSecondColor));
    view->Click(kPolyPolygon);
  }
  services.failing = "dxf";
  Write(kDxf);
  for (const std::string& told : {TakeMessage(), Utf16ToUtf8(view->TextOf(kStatus))}) {
    EXPECT_THAT(told, HasSubstr(".dxf: the disk is full"));
  }
  view->Click(kPolyPolygon);
  view->SetDarkColors(true);
  const ShownText status = view->LooksOf(kStatus);
  EXPECT_TRUE(Contrasts(status.ink, status.paper));
  for (int row = 0; row < static_cast<int>(NamedColors().size()); ++row) {
    view->Select(kFirstColor, row);
    const ShownText text = view->LooksOf(kText);
    EXPECT_TRUE(Contrasts(text.ink, text.paper)) << row;
  }
  view->SetDarkColors(false);
}

TEST_F(ViewTest, KeysMoveThePreview) {
  Show(services);
  view->Type(kText, u"A");
  const PreviewModel& model = view->presenter().preview();
  const Affine whole = model.fit();
  view->Press(kPreview, UserKey::kPlus);
  EXPECT_DOUBLE_EQ(PreviewModel::kWheelFactor, PixelsPerUnit(model.fit()) / PixelsPerUnit(whole));
  const P2 at = model.fit().to;
  view->Press(kPreview, UserKey::kUp);
  EXPECT_LT(at.y, model.fit().to.y);
  view->Press(kPreview, UserKey::kMinus);
  EXPECT_FALSE(model.shows_all());
  view->Press(kPreview, UserKey::kZero);
  EXPECT_TRUE(model.shows_all());
}

TEST_F(ViewTest, CaptionsFollowTheLanguageAtOnce) {
  Show(services);
  const struct {
    MenuCommand language;
    const char16_t *paste, *quit, *height;
  } cases[] = {{MenuCommand::kLanguageJapanese, u"貼り付け", u"終了", u"高さ(&H)"},
               {MenuCommand::kLanguageGerman, u"Einfügen", u"Beenden", u"&Höhe"},
               {MenuCommand::kLanguageEnglish, u"Paste", u"Quit", u"&Height"}};
  for (const auto& c : cases) {
    view->presenter().Chosen(c.language);
    EXPECT_EQ(c.paste, view->TextOf(kPaste));
    EXPECT_EQ(c.quit, view->TextOf(kQuit));
    EXPECT_EQ(c.height, view->TextOf(kHeightLabel));
  }
}

TEST_F(ViewTest, LongOutputsAreCancelled) {
  SlowServices slow;
  slow.folder = folder.path();
  Show(slow);
  view->Click(kDxf);
  bool was_shown = false;
  while (view->presenter().IsWriting()) {
    view->Wait();
    if (!was_shown) view->Type(kText, u"A");
    was_shown = view->CancelProgress() || was_shown;
  }
  EXPECT_TRUE(was_shown);
  EXPECT_LT(slow.steps, 300);
  EXPECT_LT(10u, Contours()) << "typing went on";
  EXPECT_THAT(TakeMessage(), HasSubstr("cancelled"));
  EXPECT_FALSE(view->CancelProgress());
}

TEST_F(ViewTest, WhatCannotBeKeptHoldsTheWindowOnce) {
  services.failing = "settings";
  Show(services);
  EXPECT_FALSE(view->Close());
  EXPECT_THAT(TakeMessage(), HasSubstr("the disk is full"));
  EXPECT_THAT(Utf16ToUtf8(view->TextOf(kStatus)), testing::StartsWith("Not saved."));
  EXPECT_TRUE(view->Close());
  EXPECT_EQ("", TakeMessage());
}

TEST_F(ViewTest, TheWindowComesBackAsItWas) {
  constexpr WindowRect kPlace = {40, 50, 840, 750};
  Show(services);
  view->Place(kPlace);
  const struct {
    void (ViewDriver::*change)();
    WindowShow show;
  } runs[] = {{&ViewDriver::Maximise, WindowShow::kMaximised},
              {nullptr, WindowShow::kMaximised},
              {&ViewDriver::Minimise, WindowShow::kMinimised}};
  for (const auto& [change, show] : runs) {
    if (change) (*view.*change)();
    EXPECT_TRUE(view->Close());
    EXPECT_EQ((WindowPlace{kPlace, show}), services.saved.window);
    services.memory = services.saved;
    Show(services);
  }
  EXPECT_TRUE(view->Close());
  EXPECT_EQ((WindowPlace{kPlace, WindowShow::kNormal}), services.saved.window);
}

TEST_F(ViewTest, TheCutPageShowsAndWritesWhatItsControlsSay) {
  services.saved_text = u"H";
  Show(services);
  view->Click(kModeCut);
  EXPECT_EQ(u"H", view->TextOf(kCutText)) << "both ways of working have the same text";
  EXPECT_TRUE(view->IsShown(kSave) && !view->IsShown(kDxf));
  view->TypeOver(kSizeHeight, u"20");
  WaitFor([&] { return CutWidth() > 0; }, "a drawing");
  const double width = CutWidth();
  view->TypeOver(kSizeHeight, u"20*2");
  WaitFor([&] { return std::abs(CutWidth() - 2 * width) < 1e-9; }, "sums are taken");
  view->TypeOver(kSizeHeight, u"20*x");
  WaitFor([&] { return !view->FaultOf(kSizeHeight).empty(); }, "what cannot be read is marked");
  EXPECT_NEAR(width, CutWidth(), 1e-9) << "that of \"20\", the last that could be read";
  view->TypeOver(kSizeHeight, u"20");
  WaitFor([&] { return view->FaultOf(kSizeHeight).empty(); }, "mended");
  view->Press(kFaceList, UserKey::kDown);
  WaitFor([&] { return CutWidth() > 0 && std::abs(CutWidth() - width) > 1e-3; }, "the next face");
  view->AnswerSave(folder / "sign.dxf");
  view->Click(kSave);
  WaitFor([&] { return std::filesystem::exists(folder / "sign.dxf"); }, "a file");
  view->Type(kCutText, u"o");
  view->Click(kModeClassic);
  EXPECT_EQ(u"Ho", view->TextOf(kText));
  EXPECT_TRUE(view->Close());
  EXPECT_EQ(u"Ho", services.saved_text);
}

TEST_F(ViewTest, NothingTypedBreaksIt) {
  SystemServices real;
  Show(real);
  const auto contours = [&] {  // now, however slow the machine is
    const size_t parts = PartsView(view->presenter().parts()).size();
    EXPECT_EQ(parts, Contours());
    return parts;
  };
  for (const char16_t* letters : {u"", u"   ", u"\t", u"Ab"}) {
    view->TypeOver(kText, letters);
    for (const char16_t* number : {u"0", u"-1000", u"10000", u"-999999999999", u"x", u"100"}) {
      view->TypeOver(kHeightEdit, number);
      contours();
      EXPECT_NE(u"", view->TextOf(kStatus)) << Utf16ToUtf8(number);
    }
  }
  for (const char16_t* face : {u"", u"@", u"@@", u"No such face", u"@No such face"}) {
    view->TypeOver(kFace, face);
    contours();
  }
  view->TypeOver(kFace, u"DejaVu Sans");
  EXPECT_EQ(4u, contours()) << "and it still works";
}

}  // namespace
}  // namespace kerno::test
