#include "app/dialog_presenter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "app/dialog_settings.h"
#include "support/recording_drawing_context.h"
#include "support/recording_view.h"
#include "support/settings_fixture.h"

namespace kerno {
namespace {

class DialogTest : public test::SettingsFixture {
 protected:
  void Open() {
    presenter = std::make_unique<DialogPresenter>(view, services);
    presenter->PreviewResized(200, 100);
    presenter->Open();
    presenter->FillFaces();
  }
  // The settings go through their file.
  void CloseAndOpenAgain() {
    EXPECT_TRUE(presenter->Close());
    EXPECT_TRUE(SaveDialogMemory(services.saved, services.memory).ok());
    Restart();
    services.memory = LoadDialogMemory();
    presenter.reset();
    view = {};
    Open();
  }
  const LogFont& LastFont() const { return services.context->created.back(); }

  const test::TemporaryFolder& folder = folder_;
  test::RecordingView view;
  test::FakeDialogServices services;
  std::unique_ptr<DialogPresenter> presenter;
};

TEST_F(DialogTest, LinesMayHaveAnyEnd) {
  for (const char16_t* text : {u"A\nB", u"A\r\nB", u"A\rB", u"A\u0085B", u"A\u2028B"}) {
    EXPECT_EQ(u"A\nB", LinesOf(text));
  }
  EXPECT_EQ(u"A\n\nB", LinesOf(u"A\n\rB"));
  EXPECT_EQ(u"AB", LinesOf(std::u16string_view(u"A\0B", 3)));
}

TEST_F(DialogTest, ThePreviewDrawsOneFigureOrTheParts) {
  Open();
  presenter->TextChanged(ControlId::kText, u"AB");
  presenter->Selected(ControlId::kSecondColor, 3);
  RecordingDrawingContext figure;
  presenter->PaintPreview(figure, 1);
  ASSERT_EQ(1u, figure.calls.size());
  EXPECT_EQ(2u, figure.calls[0].counts.size());
  EXPECT_EQ(FillMode::kAlternate, figure.calls[0].mode);
  EXPECT_EQ(NamedColors()[0].color, figure.calls[0].brush.color);
  EXPECT_EQ(FollowingColors(NamedColors()[0])[3].color, figure.calls[0].pen.color);

  presenter->Checked(ControlId::kPolyPolygon, false);
  RecordingDrawingContext parts;
  presenter->PaintPreview(parts, 1);
  ASSERT_EQ(2u, parts.calls.size());
  EXPECT_EQ(HlsColor(0, 128, 128), parts.calls[0].pen.color);
  EXPECT_EQ(HlsColor(30, 128, 128), parts.calls[1].pen.color);
}

TEST_F(DialogTest, SlowRebuildsWaitForAPauseAndOutputsDoNot) {
  services.folder = folder.path();
  Open();
  presenter->TextChanged(ControlId::kText, u"A");
  EXPECT_EQ(0, view.due_calls);
  clock_.tick_step = 100;
  presenter->TextChanged(ControlId::kText, u"AB");
  presenter->TextChanged(ControlId::kText, u"ABC");
  EXPECT_EQ(1, view.due_calls);
  EXPECT_EQ(2u, presenter->item_count());
  presenter->Due();
  EXPECT_EQ(3u, presenter->item_count());
  presenter->TextChanged(ControlId::kText, u"ABCD");
  presenter->Pressed(ControlId::kDxf);
  test::Settle(*presenter);
  EXPECT_EQ(4u, PartsView(services.exported).size());
}

TEST_F(DialogTest, TheStatusTellsWhatThePreviewCannotShow) {
  services.parts_to_read.parts.resize(1);
  services.parts_to_read.parts[0].AddLine({0, 0, 0}, {std::nan(""), 1, 0});
  test::WriteBytes(folder / "drawing.ipx", "anything");
  Open();
  presenter->Dropped({folder / "drawing.ipx"});
  (void)presenter->PreviewPicture(1, 0);
  EXPECT_THAT(Utf16ToUtf8(view.status), testing::HasSubstr("  ·  1 element not shown"));
  EXPECT_EQ(StatusKind::kWarning, view.status_kind);
  presenter->TextChanged(ControlId::kText, u"A");
  (void)presenter->PreviewPicture(1, 0);
  EXPECT_THAT(Utf16ToUtf8(view.status), testing::Not(testing::HasSubstr("not shown")));
}

TEST_F(DialogTest, WhatIsSetComesBackAtTheNextRun) {
  services.memory.window.normal = {5000, 5000, 5600, 5400};
  Open();
  EXPECT_EQ((WindowRect{660, 340, 1260, 740}), view.placed.normal) << "its screen is gone";
  presenter->TextChanged(ControlId::kText, u"AB\nC");
  presenter->TextChanged(ControlId::kFace, u"Other");
  presenter->TextChanged(ControlId::kHeightEdit, u"77");
  presenter->Checked(ControlId::kVertical, true);
  presenter->Checked(ControlId::kPolyPolygon, false);
  presenter->Selected(ControlId::kFirstColor, 3);
  presenter->Selected(ControlId::kSecondColor, 5);
  presenter->Chosen(MenuCommand::kLinesAndFaces);
  presenter->Chosen(MenuCommand::kPitchCell);
  presenter->Chosen(MenuCommand::kAciNearest);
  view.folder_answer = folder / "outputs";
  presenter->Chosen(MenuCommand::kChooseFolder);
  view.place = {.normal = {10, 20, 810, 620}, .show = WindowShow::kMaximised};
  CloseAndOpenAgain();
  EXPECT_EQ(u"AB\nC", view.text);
  EXPECT_EQ(u"@Other", view.format_face);
  EXPECT_EQ(u"77", view.texts[ControlId::kHeightEdit]);
  EXPECT_TRUE(view.checked[ControlId::kVertical]);
  EXPECT_FALSE(view.checked[ControlId::kPolyPolygon]);
  EXPECT_EQ(3u, view.colors[ControlId::kFirstColor].second);
  EXPECT_EQ(5u, view.colors[ControlId::kSecondColor].second);
  EXPECT_TRUE(view.menu[MenuCommand::kLinesAndFaces] && view.menu[MenuCommand::kPitchCell] &&
              view.menu[MenuCommand::kAciNearest]);
  EXPECT_EQ(folder / "outputs", presenter->outputs().folder());
  EXPECT_EQ((WindowPlace{{10, 20, 810, 620}, WindowShow::kMaximised}), view.placed);
  EXPECT_FALSE(PartsView(presenter->parts())[0].faces[0].items.empty());
  view.place = {.normal = {-32000, -32000, -31840, -31972}, .show = WindowShow::kMinimised};
  CloseAndOpenAgain();
  EXPECT_EQ((WindowPlace{{10, 20, 810, 620}, WindowShow::kMinimised}), view.placed);
}

TEST_F(DialogTest, SettingsThatMakeNoSenseAndTheWindowOfFormerVersions) {
  WriteIni(
      "[Dialog]\r\nElements=3\r\nVerticalPitch=-1\r\n"
      "[Position\\Dialog]\r\nKerno_LTRB=1 2 3 4\r\n");
  const DialogMemory memory = LoadDialogMemory();
  EXPECT_EQ(ContourElements::kLines, memory.elements);
  EXPECT_EQ(VerticalPitch::kClassic, memory.pitch);
  EXPECT_EQ((WindowPlace{{1, 2, 3, 4}}), memory.window);
}

TEST_F(DialogTest, WhatCannotBeKeptHoldsTheWindowOnce) {
  for (const char* kept : {"settings", "text"}) {
    presenter.reset();
    view.messages.clear();
    services.failing = kept;
    Open();
    EXPECT_FALSE(presenter->Close()) << kept;
    presenter->TextChanged(ControlId::kText, u"more");
    for (const bool goes : {false, true}) {
      EXPECT_EQ(goes, presenter->Close()) << kept;
      EXPECT_EQ(2u, view.messages.size()) << kept << ", told once for each change";
      EXPECT_TRUE(view.status.starts_with(u"Not saved.")) << kept;
    }
    presenter->TextChanged(ControlId::kText, u"and more");  // the session that was to end goes on
    EXPECT_FALSE(presenter->Close()) << kept;
    EXPECT_EQ(3u, view.messages.size()) << kept;
  }
}

TEST_F(DialogTest, DroppedFilesAreTextPartsFontsOrRefused) {
  services.folder = folder.path();
  Open();
  test::WriteBytes(folder / "utf8.txt", "A\r\n\xE3\x81\x82");
  test::WriteBytes(folder / "cp932.txt", "\x82\xA0\x82\xA2");
  test::WriteBytes(folder / "font.ttf", std::string("\0\1\0\0rest", 8));
  test::WriteBytes(folder / "drawing.IPX", "anything");
  test::WriteBytes(folder / "picture.png", std::string("\x89PNG\r\n\x1A\n\0\0", 10));
  presenter->Dropped({folder / "utf8.txt"});
  EXPECT_EQ(u"A\nあ", view.text);
  presenter->Dropped({folder / "cp932.txt"});
  EXPECT_EQ(u"あい", view.text);

  services.parts_to_read.parts.resize(3);
  presenter->Dropped({folder / "drawing.IPX"});
  EXPECT_EQ(1, view.progress_calls);
  EXPECT_TRUE(view.closed_progress);
  EXPECT_TRUE(view.status.starts_with(u"drawing.IPX  ·  3 parts"));
  presenter->Pressed(ControlId::kSvg);
  test::Settle(*presenter);
  EXPECT_EQ(3u, services.exported.parts.size());
  presenter->TextChanged(ControlId::kText, u"A");
  EXPECT_EQ(1u, PartsView(presenter->parts()).size()) << "typing shows the text again";

  presenter->Dropped({folder / "font.ttf"});
  EXPECT_EQ(u"Dropped", LastFont().face_name);
  EXPECT_EQ(1u, view.font_files.size());
  EXPECT_TRUE(view.messages.empty());
  presenter->Dropped({folder / "picture.png", folder / "missing.txt", folder.path()});
  EXPECT_EQ(3u, view.messages.size());
  EXPECT_EQ(u"あい", view.text);
}

}  // namespace
}  // namespace kerno
