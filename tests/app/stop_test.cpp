// Drawings and files that are given up: at every piece, for a question that counts them, never by
// the clock.
#include "base/stop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>

#include "app/cut_texts.h"
#include "base/parallel.h"
#include "base/text.h"
#include "export/drawing_formats.h"
#include "support/temporary_folder.h"

namespace kerno::test {
namespace {

// Asks to stop from one question on; counts those before and after it.
struct Stopper {
  size_t from = std::numeric_limits<size_t>::max();
  std::atomic<size_t> asked = 0;
  StopQuestion Question() {
    return [this] { return ++asked >= from; };
  }
};

CutJob Tangle() {
  CutJob job;
  job.face.family = u"DejaVu Sans";
  for (int i = 0; i < 4; ++i) job.text += u"gB&";
  job.letter_spacing = -8;
  job.offset = 0.1;
  return job;
}

void ExpectSame(const CutDrawing& wanted, const CutDrawing& made) {
  EXPECT_EQ(wanted.facts.length, made.facts.length);
  EXPECT_EQ(wanted.facts.arcs, made.facts.arcs);
  EXPECT_EQ(wanted.drawing.shapes, made.drawing.shapes);
}

// Where a drawing is stopped, and how often it is asked after that: no stage goes on for long.
TEST(Stop, ADrawingEndsAtAnyPieceAndTheWorkshopIsGoodForTheNextOne) {
  const struct {
    const char* what;
    WeldScope weld;
    CurveForm curves;
  } rows[] = {{"welded arcs", WeldScope::kText, CurveForm::kArcs},
              {"letters by themselves", WeldScope::kGlyph, CurveForm::kLines}};
  for (const auto& row : rows) {
    CutJob job = Tangle();
    job.weld = row.weld;
    job.curves = row.curves;
    CutDrawing wanted;
    ASSERT_TRUE(MakeCut(job, &wanted).ok());
    Stopper all;
    CutDrawing made;
    ASSERT_TRUE(
        RunStoppable(all.Question(), u"", [&] { return CutWorkshop().Make(job, &made); }).ok());
    ExpectSame(wanted, made);
    ASSERT_GT(all.asked, 200u) << row.what;
    constexpr size_t kTries = 5;
    for (size_t i = 0; i <= kTries; ++i) {
      CutWorkshop workshop;
      Stopper stopper{.from = 1 + i * (all.asked * 9 / 10) / kTries};
      made.facts = {};
      const Status status =
          RunStoppable(stopper.Question(), u"sign", [&] { return workshop.Make(job, &made); });
      EXPECT_EQ(u"sign stopped by the user", status.what + u" " + status.why) << row.what << i;
      EXPECT_EQ(0u, made.facts.closed) << "set on success only";
      EXPECT_LE(stopper.asked, stopper.from + std::thread::hardware_concurrency()) << row.what;
      ASSERT_TRUE(workshop.Make(job, &made).ok()) << "nobody asks any more";
      ExpectSame(wanted, made);
    }
  }
}

// The threads that help are asked, too, and what stops there ends the whole.
TEST(Stop, HelpersAskWhatTheirCallerAsks) {
  for (const size_t from : {1, 50, 400}) {
    Stopper stopper{.from = from};
    std::atomic<size_t> done = 0;
    const Status status = RunStoppable(stopper.Question(), u"", [&] {
      ForEachInParallel(1000, [&](size_t) { ++done; });
      return Status::Ok();
    });
    EXPECT_FALSE(status.ok());
    EXPECT_LT(done, from);
    EXPECT_EQ(nullptr, StopQuestionHere());
  }
}

// A file of any format stays as it was when its writing is stopped, wherever that is, and nothing
// else is left.
TEST(Stop, AFileThatIsCancelledStaysWhatItWas) {
  CutJob job;
  job.face.family = u"DejaVu Sans";
  for (int i = 0; i < 600; ++i)
    job.text += i % 80 == 79 ? u'\n' : static_cast<char16_t>(u'!' + i % 90);
  job.size.height = 2;  // a small picture
  CutDrawing made;
  ASSERT_TRUE(MakeCut(job, &made).ok());
  const DrawingStyle style = {.moment = 0};
  for (const Format& format : Formats()) {
    const TemporaryFolder folder;
    const std::filesystem::path file = folder / ("a." + std::string(format.extension));
    const auto write = [&] { return WriteDrawing(made.drawing, style, 0.01, format, file); };
    Stopper all;
    ASSERT_TRUE(RunStoppable(all.Question(), u"", write).ok());
    const std::string whole = ReadBytes(file);
    EXPECT_GT(all.asked, 100u) << format.extension;
    WriteBytes(file, "old");
    for (const size_t from :
         {size_t{1}, all.asked / 3, all.asked * 2 / 3, all.asked - 1, all.asked + 0}) {
      Stopper stopper{.from = from};
      const Status status = RunStoppable(stopper.Question(), PathText(file), write);
      EXPECT_EQ(u"stopped by the user", status.why) << format.extension << from;
      EXPECT_EQ(PathText(file), status.what);
      EXPECT_EQ(from, stopper.asked) << "it ends at once";
      EXPECT_EQ("old", ReadBytes(file)) << format.extension << from;
      EXPECT_EQ(1u, folder.Names().size()) << format.extension << from;
    }
    ASSERT_TRUE(write().ok());
    EXPECT_TRUE(whole == ReadBytes(file)) << format.extension;
  }
}

}  // namespace
}  // namespace kerno::test
