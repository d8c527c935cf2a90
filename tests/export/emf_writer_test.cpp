#include "export/emf_writer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "export/draw_parts.h"
#include "support/memory_file.h"
#include "support/picture_compare.h"
#include "support/picture_models.h"
#include "support/recording_notices.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::MemoryFile;
using test::RecordingNotices;
using test::TriangleModel;

// One record of a metafile: its type and all its 32-bit words, type and size included.
struct Record {
  uint32_t type;
  std::vector<uint32_t> words;
};

// Walks a file, checking what every file must keep.
std::vector<Record> RecordsOf(const std::string& bytes) {
  std::vector<Record> records;
  size_t at = 0;
  while (at + 8 <= bytes.size()) {
    uint32_t head[2];
    std::memcpy(head, bytes.data() + at, sizeof head);
    EXPECT_EQ(head[1] % 4, 0u);
    if (head[1] < 8 || head[1] > bytes.size() - at) {
      ADD_FAILURE() << "a record of " << head[1] << " bytes at " << at;
      return records;
    }
    Record record{head[0], std::vector<uint32_t>(head[1] / 4)};
    std::memcpy(record.words.data(), bytes.data() + at, head[1]);
    records.push_back(std::move(record));
    at += head[1];
  }
  EXPECT_EQ(at, bytes.size());
  if (records.empty()) return records;
  EXPECT_EQ(records.front().type, 1u);
  EXPECT_EQ(records.front().words[12], bytes.size());
  EXPECT_EQ(records.front().words[13], records.size());
  EXPECT_EQ(records.back().type, 14u);
  EXPECT_EQ(records.back().words[4], 20u);

  // Objects are created once, selected only while they live, and below the header's number.
  std::set<uint32_t> alive;
  for (const Record& record : records) {
    const bool creates =
        record.type == 38 || record.type == 39 || record.type == 82 || record.type == 95;
    if (creates) {
      EXPECT_TRUE(alive.insert(record.words[2]).second) << record.words[2];
      EXPECT_LT(record.words[2], records.front().words[14]);
    }
    if (record.type == 37 && record.words[2] < 0x80000000) {
      EXPECT_TRUE(alive.contains(record.words[2])) << record.words[2];
    }
    if (record.type == 40) {
      EXPECT_EQ(alive.erase(record.words[2]), 1u);
    }
  }
  return records;
}

std::map<uint32_t, int> CountTypes(const std::vector<Record>& records) {
  std::map<uint32_t, int> counts;
  for (const Record& record : records) ++counts[record.type];
  return counts;
}

std::string EmfOf(const PartsA& model) {
  MemoryFile out;
  EXPECT_TRUE(WriteEmf(model, {.title = u"t"}, "a.emf", &out).ok());
  return out.bytes;
}

TEST(EmfWriter, PointsAreNarrowWhereTheyFitAndWideElsewhere) {
  const struct {
    double side;
    uint32_t polygon, scale;  // the record of the closed line; dots of a pixel
  } cases[] = {{1, 86, 4096}, {10, 86, 2048},   {1000, 86, 32}, {2045, 86, 16},
               {5000, 3, 16}, {1 << 22, 3, 16}, {1e9, 3, 16},   {1e-9, 86, 64}};
  for (const auto& c : cases) {
    RecordingNotices notices;
    const std::vector<Record> records = RecordsOf(EmfOf(TriangleModel(c.side)));
    EXPECT_EQ(CountTypes(records)[c.polygon], 1) << c.side;
    EXPECT_EQ(records[0].words[18] / 1280, c.scale) << c.side;
    EXPECT_EQ(notices.messages.size(), c.side < 1 || c.side > 1 << 22 ? 1u : 0u) << c.side;
  }
}

TEST(EmfWriter, FilesHaveRoomForAnyNumberOfPens) {
  PartsA hues;
  for (int i = 0; i < 3000; ++i) {
    PartsElement& part = hues.parts.emplace_back();
    part.pen.color = i % 599 * 7;
    part.AddLine({0, i * 0.1, 0}, {9, i * 0.1, 0});
  }
  const std::string bytes = EmfOf(hues);
  EXPECT_EQ(CountTypes(RecordsOf(bytes))[87], 3000);
  // Into a file it goes piece by piece, and the header is written over at the end.
  const test::TemporaryFolder folder;
  EXPECT_TRUE(ExportEmf(hues, folder / "a.emf", {.title = u"t"}).ok());
  EXPECT_TRUE(test::ReadBytes(folder / "a.emf") == bytes);
}

TEST(EmfWriter, DrawingTooSmallForAnyScaleIsADot) {
  const EmfLayout dot = LayOutEmf({{0, 0, 0}, {1e-310, 1e-320, 0}});
  EXPECT_TRUE(dot.one_to_one);
  EXPECT_EQ(dot.frame.width, 2);
  EXPECT_EQ(LayOutEmf({{0, 0, 0}, {1e-300, 0, 0}}).frame.width, 258);
}

TEST(EmfWriter, AnotherProgramDrawsTheSamePicture) {
  const test::TemporaryFolder folder;
  for (const auto& [name, model] : test::PictureModels()) {
    const auto fonts = CreateMeasuringContext();
    const EmfLayout layout = LayOutEmf(PictureBox(model, fonts.get()));
    const std::string emf = (folder / name).string() + ".emf";
    ASSERT_TRUE(ExportEmf(model, emf).ok());
    std::ostringstream convert;
    convert << "emf2svg-conv -w " << layout.frame.width << " -h " << layout.frame.height << " -i "
            << emf << " -o " << emf << ".svg && rsvg-convert " << emf << ".svg -o " << emf
            << ".png";
    test::OutputOf(convert.str());
    const test::Picture other = test::ReadPicture(emf + ".png");
    const int width = layout.frame.width, height = layout.frame.height;
    EXPECT_GE(AgreementNearInk(test::Drawn(model, width, height, layout.fit), other), 0.99) << name;
    Affine moved = layout.fit;
    moved.to.x += 3;
    EXPECT_LT(AgreementNearInk(test::Drawn(model, width, height, moved), other), 0.9)
        << "a blind comparison";
  }
}

}  // namespace
}  // namespace kerno
