// The rules of the Cut page, with a view that records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

#include "app/arithmetic.h"
#include "app/cut_store.h"
#include "base/text.h"
#include "support/recording_cut_view.h"
#include "support/temporary_folder.h"

namespace kerno::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using enum ControlId;

class CutPresenterTest : public testing::Test {
 protected:
  CutPresenterTest() {
    services.folder = folder.path();
    services.memory.was_used = true;
    services.memory.form = {{"--face", u"DejaVu Sans"}};
  }
  void Open(std::u16string_view text = u"Ho") {
    page = std::make_unique<CutPresenter>(view, services);
    page->patience = 60000;
    page->Open();
    page->PreviewResized(400, 300, 1);
    page->FillFaces();
    page->TakeText(text);
  }
  void Choose(ControlId list, std::string_view word) {
    const auto rows = ChoicesOf(list);
    for (size_t i = 0; i < rows.size(); ++i) {
      if (rows[i].word == word) return page->Selected(list, i);
    }
    FAIL() << word;
  }
  double Width() { return page->drawing()->ink.Width(); }
  double Height() { return page->drawing()->ink.Height(); }
  std::string StatusText() { return Utf16ToUtf8(view.status); }
  // Waits for what runs beside the page.
  void Settle(std::string_view begin) {
    for (int i = 0; i == 0 || (i < 2000 && !StatusText().starts_with(begin)); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
      page->Awake();
    }
    EXPECT_THAT(StatusText(), testing::StartsWith(std::string(begin)));
  }

  TemporaryFolder folder;
  RecordingCutView view;
  FakeCutServices services;
  std::unique_ptr<CutPresenter> page;
};

TEST_F(CutPresenterTest, SizesAreWhatIsTyped) {
  Open(u"HE");
  const struct {
    const char* by;
    const char16_t *width, *height;
    double expected_width, expected_height;  // 0: whatever follows
  } rows[] = {{"cap-height", u"", u"20*2", 0, 40},  {"height", u"", u"1in", 0, 25.4},
              {"width", u"(100+20)/2", u"", 60, 0}, {"stretch", u"30", u"12,5", 30, 12.5},
              {"box", u"1000", u"7mm", 0, 7},       {"box", u"5cm", u"1000", 50, 0}};
  for (const auto& row : rows) {
    Choose(kSizeBy, row.by);
    page->TextChanged(kSizeWidth, row.width);
    page->TextChanged(kSizeHeight, row.height);
    EXPECT_TRUE(view.faults.empty()) << row.by;
    const bool by_width = row.expected_width > 0;
    EXPECT_NEAR(by_width ? row.expected_width : Width(), Width(), 1e-9) << row.by;
    EXPECT_NEAR(row.expected_height > 0 ? row.expected_height : Height(), Height(), 1e-9);
  }
}

TEST_F(CutPresenterTest, WhatCannotBeReadIsMarkedAndTheDrawingStays) {
  Open();
  const double before = Height();
  for (const char16_t* bad : {u"", u"abc", u"2**3", u"1/0", u"-3", u"0", u"1e9", u"20mmm", u"("}) {
    page->TextChanged(kSizeHeight, bad);
    EXPECT_EQ(1u, view.faults.count(kSizeHeight)) << Utf16ToUtf8(bad);
    EXPECT_EQ(StatusKind::kFailure, view.status_kind);
    EXPECT_EQ(before, Height());
    EXPECT_EQ(u"", view.texts[kTrueSize]) << "it is that of another height";
    page->Pressed(kSave);
    EXPECT_TRUE(view.save_questions.empty()) << "nothing wrong is written";
  }
  page->TextChanged(kSizeHeight, u"２０ＭＭ");  // as an input method may write it
  EXPECT_TRUE(view.faults.empty());
  page->TextChanged(kSizeHeight, u"20*");
  EXPECT_THAT(Utf16ToUtf8(view.faults[kSizeHeight]), HasSubstr("\"20*\" is not"));
  page->TextChanged(kSizeHeight, u"20");
  page->TextChanged(kSlant, u"89");
  page->TextChanged(kOffset, u"x");
  EXPECT_EQ(1u, view.faults.size()) << "the first that stands in the way";
  page->TextChanged(kSlant, u"0");
  page->TextChanged(kOffset, u"0");
  EXPECT_TRUE(view.faults.empty());
  EXPECT_EQ(StatusKind::kNormal, view.status_kind) << StatusText();
}

TEST_F(CutPresenterTest, AnotherUnitLeavesTheDrawingAsItIs) {
  Open();
  const double before = Height();
  Choose(kSizeUnit, "in");
  EXPECT_EQ(u"0.7874", view.texts[kSizeHeight]);
  EXPECT_NEAR(before, Height() * 25.4, 0.01) << "within the tolerance";
  EXPECT_THAT(Utf16ToUtf8(view.texts[kTrueSize]), HasSubstr(" in"));
  Choose(kSizeUnit, "pt");
  EXPECT_NEAR(before, Height(), 0.01);
  EXPECT_THAT(Utf16ToUtf8(view.texts[kTrueSize]), HasSubstr(" mm"));
  Choose(kSizeUnit, "mm");
  EXPECT_TRUE(page->form().Texts().given.contains("--cap-height"));
  EXPECT_FALSE(page->form().Texts().given.contains("--tolerance")) << "as it was typed";
  page->Checked(kSheets, true);
  Choose(kSizeUnit, "in");
  EXPECT_EQ(u"23.62205x15.74803", view.texts[kSheetSize]);
}

TEST_F(CutPresenterTest, FilesAreNamedByTheTextAndNothingIsReplacedUnasked) {
  Open(u"Öffnungs/zeiten\nMo 9–17");
  view.save_answer = folder / "plate";
  page->Pressed(kSave);
  ASSERT_EQ(1u, view.save_questions.size());
  EXPECT_EQ(u"Öffnungs_zeiten.dxf", view.save_questions[0].name);
  EXPECT_EQ(folder.path(), view.save_questions[0].folder);
  Settle("Wrote plate.dxf");
  ASSERT_EQ(3u, view.links.size());
  for (const StatusLink& link : view.links) page->LinkFollowed(link.number);
  EXPECT_THAT(services.opened, ElementsAre(folder / "plate.dxf", folder.path() / ""));
  EXPECT_EQ(PathText(folder / "plate.dxf"), view.copied);
  page->Pressed(kSave);
  EXPECT_EQ(1u, view.questions.size()) << "the question of the dialog was about another name";
  EXPECT_THAT(folder.Names(), ElementsAre("plate.dxf"));
  EXPECT_EQ(u"Öffnungs/zeiten\nMo 9–17", (void(page->Keep()), services.memory.recent_texts[0]));
}

TEST_F(CutPresenterTest, AHeldFileIsTriedAgainAndFailuresAreTold) {
  Open(u"H☃\U000F0000");  // warnings stay beside what was done
  view.save_answer = folder / "a.svg";
  const Status held =
      Status::Error(Failure::kSharingViolation, u"a.svg", u"another program holds it");
  services.failures = {held, held};
  view.answers = {0, 0};
  page->Pressed(kSave);
  EXPECT_TRUE(page->IsWriting());
  Settle("Wrote a.svg");
  EXPECT_EQ(2u, view.questions.size());
  EXPECT_THAT(StatusText(), HasSubstr("U+F0000"));
  EXPECT_EQ(StatusKind::kWarning, view.status_kind);
  services.failures = {held};
  page->Pressed(kSave);
  Settle("a.svg: another program holds it");
  EXPECT_EQ(3u, view.questions.size()) << "no is asked once";
  services.failures = {Status::Error(Failure::kNoSpace, u"a.svg", u"the disk is full")};
  page->Pressed(kSave);
  Settle("a.svg: the disk is full");
  EXPECT_EQ(StatusKind::kFailure, view.status_kind);
}

TEST_F(CutPresenterTest, RowsOfAListAreSeenAndWrittenAsTheyAreSeen) {
  Open();
  WriteBytes(folder / "guests.csv", "name,width\nAnn,30\nBob,x\nCid,50\n");
  page->Dropped({folder / "guests.csv"});
  EXPECT_EQ(u"{name}\n{width}", view.text);
  page->TextChanged(kCutText, u"{name}");
  Choose(kSizeBy, "width");
  page->TextChanged(kSizeWidth, u"{width}");
  EXPECT_NEAR(30, Width(), 1e-9);
  page->Pressed(kSeriesForward);
  EXPECT_EQ(1u, view.faults.size()) << "the row's own width is none";
  page->TextChanged(kSeriesRow, u"3");
  EXPECT_TRUE(view.faults.empty());
  EXPECT_NEAR(50, Width(), 1e-9);
  page->TextChanged(kSeriesNames, u"{row}-{name}");
  view.folder_answer = folder / "out";
  page->Pressed(kSeriesWrite);
  Settle("Wrote 2 files of 3 rows");
  EXPECT_THAT(StatusText(), HasSubstr("row 2: "));
  view.save_answer = folder / "one.dxf";
  page->Pressed(kSave);
  Settle("Wrote one.dxf");
  EXPECT_EQ(ReadBytes(folder / "one.dxf"), ReadBytes(folder / "out" / "3-Cid.dxf"));
  page->Pressed(kSeriesWrite);
  for (int i = 0; i < 2000 && view.questions.empty(); ++i) Settle("");
  EXPECT_THAT(Utf16ToUtf8(view.questions.at(0)), HasSubstr("2 of the files are there already"));
  Settle("");
  WriteBytes(folder / "out" / "1-Ann.dxf", "mine");
  std::filesystem::remove(folder / "out" / "3-Cid.dxf");
  view.answers = {std::nullopt, 1, 0};
  page->Pressed(kSeriesWrite);
  Settle("Wrote 1 files of 3 rows");
  EXPECT_THAT(StatusText(), HasSubstr("1 row keeps its files"));
  EXPECT_EQ("mine", ReadBytes(folder / "out" / "1-Ann.dxf"));
  EXPECT_EQ(ReadBytes(folder / "one.dxf"), ReadBytes(folder / "out" / "3-Cid.dxf"));
  page->Pressed(kSeriesWrite);
  Settle("Wrote 2 files of 3 rows");
  EXPECT_NE("mine", ReadBytes(folder / "out" / "1-Ann.dxf"));
}

// A file is written when the test lets it, and stopped where it asks.
TEST_F(CutPresenterTest, WhatIsWrittenBesideThePageCanBeCancelledAndDraggedLater) {
  Open();
  page->drag_patience = 0;
  std::promise<void> gate;
  services.gate = gate.get_future().share();
  EXPECT_EQ("", page->FileToDrag());
  EXPECT_EQ("", page->FileToDrag()) << "the same file is not written twice";
  EXPECT_THAT(StatusText(), testing::StartsWith("Writing the file to drag"));
  page->Pressed(kCopySvg);
  EXPECT_EQ("", view.svg) << "the window goes on";
  gate.set_value();
  Settle("Copied as SVG");
  EXPECT_THAT(view.svg, HasSubstr("<svg"));
  EXPECT_EQ(folder / "Ho.dxf", page->FileToDrag());
  EXPECT_EQ(2, services.writes);
  WriteBytes(folder / "old.dxf", "old");
  view.save_answer = folder / "old.dxf";
  std::promise<void> second;
  services.gate = second.get_future().share();
  page->Pressed(kSave);
  page->Cancelled();
  second.set_value();
  Settle(Utf16ToUtf8(PathText(folder / "old.dxf")) + ": stopped by the user");
  EXPECT_EQ("old", ReadBytes(folder / "old.dxf"));
  page->drag_patience = 60000;
  EXPECT_EQ(folder / "Ho.dxf", page->FileToDrag()) << "what is next is not cancelled";
}

TEST_F(CutPresenterTest, SettingsByANameComeBack) {
  Open();
  page->TextChanged(kOffset, u"0.1");
  Choose(kCurves, "lines");
  view.name_answer = u"Vinyl\t\\ 1";
  page->Picked(kPresets, 0);  // keep
  page->Picked(kPresets, 3);  // the standard ones
  EXPECT_EQ(u"0", view.texts[kOffset]);
  EXPECT_TRUE(page->Keep().ok());
  services.memory.recent_texts = {u"a\nb\\n\t"};
  const CutMemory read = ReadStored(StoredText(services.memory));
  EXPECT_EQ(services.memory.recent_texts, read.recent_texts);
  CutMemory other = read;
  other.presets.push_back({u"Other", {}});
  EXPECT_EQ(2u, Merged(other, read, read).presets.size()) << "of another window";
  EXPECT_EQ(1u, Merged(other, other, read).presets.size()) << "removed here";
  services.memory = read;
  Open();
  page->Picked(kPresets, 0);
  EXPECT_EQ(u"0.1", view.texts[kOffset]);
  EXPECT_EQ(u"lines", page->form().Text(kCurves));
}

TEST_F(CutPresenterTest, TheWindowGoesOnWhileALongTextIsDrawn) {
  Open();
  page->patience = 0;
  const std::u16string first(3000, u'W'), second = u"I";
  page->TextChanged(kCutText, first);
  page->TextChanged(kCutText, second);
  EXPECT_EQ("Drawing...", StatusText());
  page->Pressed(kSave);
  EXPECT_TRUE(view.save_questions.empty());
  page->TextChanged(kSlant, u"x");
  page->Pressed(kSave);
  EXPECT_EQ("\"x\" is not a number", StatusText()) << "nothing is on its way";
  page->TextChanged(kSlant, u"0");
  for (int i = 0; i < 2000 && !StatusText().ends_with("to cut"); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    page->Awake();
    if (StatusText().starts_with("Still")) page->TextChanged(kCutText, second + u" ");
  }
  EXPECT_EQ(1u, page->drawing()->facts.closed) << "the newest text alone";
}

// An hour of work, did nothing stop it: the newest text comes at once, and so does the end.
TEST_F(CutPresenterTest, ADrawingThatNobodyWantsIsStopped) {
  Open(u"I");
  page->patience = 0;
  page->TextChanged(kLetterSpacing, u"-19");
  std::u16string endless;
  for (int i = 0; i < 40000; ++i) endless += u"gB&"[i % 3];
  page->TextChanged(kCutText, endless);
  page->TextChanged(kCutText, u"O");
  for (int i = 0; i < 12000 && StatusText() == "Drawing..."; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    page->Awake();
  }
  EXPECT_EQ(2u, page->drawing()->facts.closed);
  page->TextChanged(kCutText, endless);
  page.reset();
}

TEST_F(CutPresenterTest, TheSampleOfTheFirstStartIsNobodysText) {
  services.memory = {};
  Open(u"");
  EXPECT_FALSE(view.text.empty());
  EXPECT_NE(nullptr, page->drawing());
  EXPECT_EQ(u"", page->text());
  page->TextChanged(kCutText, view.text + u"!");
  EXPECT_EQ(view.text + u"!", page->text());
}

TEST_F(CutPresenterTest, FacesAreFoundAndDrawLive) {
  Open();
  const auto before = page->drawing()->faces[0].family;
  page->TextChanged(kFaceSearch, u"ipa 明朝");
  ASSERT_FALSE(view.faces.empty());
  page->Selected(kFaceList, 0);
  EXPECT_NE(before, page->drawing()->faces[0].family);
  page->FavouriteToggled(0);
  page->TextChanged(kFaceSearch, u"");
  EXPECT_TRUE(view.faces[0].favourite);
  page->TextChanged(kFaceSearch, u"no face is called so");
  EXPECT_TRUE(view.faces.empty());
  WriteBytes(folder / "bad.ttf", std::string("\0\1\0\0 no font", 12));
  page->Dropped({folder / "bad.ttf"});
  EXPECT_EQ(StatusKind::kFailure, view.status_kind);
}

}  // namespace
}  // namespace kerno::test
