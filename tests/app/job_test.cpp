#include "app/job.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "export/formats.h"
#include "support/fake_clock.h"
#include "support/fake_settings.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

TEST(BuildParts, DegenerateContours) {
  const struct {
    GlyphContours contours;
    size_t lines, faces;
  } cases[] = {
      // A square whose native form repeats its start, as many fonts' do.
      {{{{10, 0}, {10, 10}, {0, 10}, {0, 0}, {0, 0}, {10, 0}}, {6}}, 4, 1},
      {{{{1, 1}, {1, 1}}, {2}}, 0, 1},
      {{{{1, 1}, {2, 2}, {1, 1}}, {3}}, 2, 1},
      {{{}, {0}}, 0, 0},
  };
  for (const auto& c : cases) {
    PartsA parts;
    BuildParts(TextContours(c.contours), {.elements = ContourElements::kBoth}, &parts);
    ASSERT_EQ(1u, parts.parts.size());
    EXPECT_EQ(c.lines, parts.parts[0].lines.items.size());
    EXPECT_EQ(c.faces, parts.parts[0].faces[0].items.size());
  }
}

// Parts that are made anew each time, in whatever order a writer asks for them.
TEST(DrawingOf, IsWrittenAsThePartsThatAreKept) {
  const test::FakeClock clock;
  const test::TemporaryFolder folder;
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  Job job;
  job.text.text = u"Kerno\t8\r\n文字、Kerno";
  job.text.face.name = u"IPAGothic";
  job.text.placement = {.insertion = {}, .slant = 12, .angle = 30};
  job.scale = 0.37;
  job.at = {7, -3};
  const auto contours = std::make_shared<const TextContours>(Make(job, typesetter)->contours);
  for (const auto elements :
       {ContourElements::kLines, ContourElements::kFaces, ContourElements::kBoth}) {
    PartsA kept;
    BuildParts(*contours, {.elements = elements}, &kept);
    const PartsA made = DrawingOf(contours, {.elements = elements});
    EXPECT_TRUE(made.parts.empty());
    for (const Format& format : Formats()) {
      const auto bytes_of = [&](const PartsA& model) {
        EXPECT_TRUE(format.write(model, folder / "a", {}).ok()) << format.extension;
        return test::ReadBytes(folder / "a");
      };
      const std::string bytes = bytes_of(kept);
      EXPECT_GT(bytes.size(), 100u) << format.extension;
      EXPECT_TRUE(bytes == bytes_of(made)) << format.extension << static_cast<int>(elements);
    }
  }
  FakeSettings settings;
  settings.ints[{u"Parts", u"P3A::Search__MaxSearch"}] = 5;
  EXPECT_EQ(contours->size(), DrawingOf(contours, {}).parts.size()) << "a search with a memory";
}

}  // namespace
}  // namespace kerno
