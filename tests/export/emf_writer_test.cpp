#include "export/emf_writer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "export/draw_parts.h"
#include "export/emf_context.h"
#include "support/memory_file.h"
#include "support/picture_compare.h"
#include "support/picture_models.h"
#include "support/recording_notices.h"

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

std::string EmfOf(const PartsA& model, std::u16string title = u"t") {
  MemoryFile out;
  EXPECT_TRUE(WriteEmf(model, {.title = std::move(title)}, "a.emf", &out).ok());
  return out.bytes;
}

TEST(EmfWriter, HeaderTellsBoundsFrameDeviceAndProgram) {
  const std::string bytes = EmfOf(TriangleModel(98), u"A 字");
  const std::vector<Record> records = RecordsOf(bytes);
  const std::vector<uint32_t>& h = records.at(0).words;
  const uint32_t dots = 256;  // the finest whose 100 pixels stay within 16 bits
  const std::vector<uint32_t> expected = {1, 132, 0,    0,    100 * dots, 100 * dots,
                                          0, 0,   2500, 2500, 0x464D4520, 0x10000};
  EXPECT_EQ(std::vector<uint32_t>(h.begin(), h.begin() + 12), expected);
  const std::vector<uint32_t> rest = {11,  108, 0, 1280 * dots, 1024 * dots, 320,
                                      256, 0,   0, 0,           320000,      256000};
  EXPECT_EQ(std::vector<uint32_t>(h.begin() + 15, h.begin() + 27), rest);
  std::u16string description(11, u'?');
  std::memcpy(description.data(), bytes.data() + 108, 22);
  EXPECT_EQ(description, std::u16string(u"Kerno\0A 字\0\0", 11));
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
    for (const Record& record : records) {
      if (record.type != c.polygon) continue;
      EXPECT_EQ(record.words[6], 3u) << "closed by the format, not by a fourth point";
      const bool narrow = c.polygon == 86;
      EXPECT_EQ(record.words.size(), narrow ? 10u : 13u);
      const uint32_t dot = c.scale;  // the pixel of room around
      if (narrow) {
        EXPECT_EQ(record.words[7] & 0xFFFF, dot) << c.side;
      }
    }
  }
}

TEST(EmfWriter, FilesHaveRoomForAnyNumberOfPens) {
  PartsA hues;
  for (int i = 0; i < 600; ++i) {
    PartsElement& part = hues.parts.emplace_back();
    part.pen.color = i % 599 * 7;
    part.AddLine({0, i * 1.0, 0}, {9, i * 1.0, 0});
  }
  EXPECT_EQ(CountTypes(RecordsOf(EmfOf(hues)))[87], 600);
}

TEST(EmfWriter, DrawingTooSmallForAnyScaleIsADot) {
  const EmfLayout dot = LayOutEmf({{0, 0, 0}, {1e-310, 1e-320, 0}});
  EXPECT_TRUE(dot.one_to_one);
  EXPECT_EQ(dot.frame.width, 2);
  EXPECT_EQ(LayOutEmf({{0, 0, 0}, {1e-300, 0, 0}}).frame.width, 258);
}

TEST(EmfContext, WritesTextWithItsFontAndAdvances) {
  EmfContext context({100, 100, 16}, u"");
  const auto font = context.CreateFontIndirect({.height = 20, .face_name = u"IPAGothic"});
  context.SelectFont(font.get());
  context.SetTextColor(0x0000FF);
  context.SetLogicalUnits(2);
  ASSERT_TRUE(context.TextOut(6, 8, u"a字𠮷"));
  context.SelectFont(nullptr);
  const std::vector<Record> records = RecordsOf(context.Finish());
  for (const Record& record : records) {
    if (record.type == 82) {
      EXPECT_EQ(record.words[3], 160u);  // 10 pixels of 16 dots
      EXPECT_EQ(record.words.size() * 4, 332u);
      EXPECT_EQ(record.words[10], static_cast<uint32_t>(u'I' | u'P' << 16));
    }
    if (record.type == 24) {
      EXPECT_EQ(record.words[2], 0xFFu);
    }
    if (record.type != 84) continue;
    EXPECT_EQ(record.words[9], 48u);
    EXPECT_EQ(record.words[10], 64u);
    ASSERT_EQ(record.words[11], 4u);  // units: the last character has two
    EXPECT_EQ(record.words[12], 76u);
    EXPECT_EQ(record.words[19], static_cast<uint32_t>(u'a' | u'字' << 16));
    const size_t dx = record.words[18] / 4;
    ASSERT_EQ(record.words.size(), dx + 4);
    EXPECT_EQ(record.words[dx], 80u);  // half a cell of 10 pixels
    EXPECT_EQ(record.words[dx + 1], 160u);
  }
  const auto counts = CountTypes(records);
  EXPECT_TRUE(counts.contains(82) && counts.contains(24) && counts.contains(84));
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
