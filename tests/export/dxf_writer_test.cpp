#include "export/dxf_writer.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

#include "support/memory_file.h"

namespace kerno {
namespace {

using test::MemoryFile;

// The groups are "CODE VALUE|"; in a file both stand on lines of their own, the code in three
// columns.
std::string Groups(const std::string& groups) {
  std::istringstream list(groups);
  std::string text;
  for (std::string group; std::getline(list, group, '|');) {
    const size_t end = group.find(' ');
    text.append(3 - end, ' ').append(group, 0, end).append("\r\n");
    text.append(group, end + 1).append("\r\n");
  }
  return text;
}

std::string Finished(DxfWriter* dxf) {
  MemoryFile file;
  EXPECT_TRUE(dxf->FinishInto(&file).ok());
  return file.bytes;
}

std::string Between(const std::string& text, std::string_view from, std::string_view to) {
  const size_t start = text.find(from) + from.size();
  return text.substr(start, text.find(to, start) - start);
}

// The entities of a finished drawing.
std::string Entities(DxfWriter* dxf) {
  return Between(Finished(dxf), "ENTITIES\r\n", "  0\r\nENDSEC");
}

std::string Layers(DxfWriter* dxf) {
  return Between(Finished(dxf), "  2\r\nLAYER\r\n", "  0\r\nENDTAB");
}

TEST(DxfWriter, FlatEntitiesCarryNoZExceptFaces) {
  DxfWriter dxf(DxfMode::kFlat);
  const DxfStyle style = {u"own", 12};
  dxf.Line2D({1, 2, 3}, {4, 5, 6}, &style);
  dxf.Circle2D({1, 2, 3}, 0.5);
  dxf.Arc2D({{1, 2, 3}, 0.5, 0, 90});
  dxf.Face({0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1});
  EXPECT_EQ(Entities(&dxf), Groups("0 LINE|8 own|62 12|10 1|20 2|11 4|21 5|") +
                                Groups("0 CIRCLE|8 0|62 7|10 1|20 2|40 0.5|") +
                                Groups("0 ARC|8 0|62 7|10 1|20 2|40 0.5|50 0|51 90|") +
                                Groups("0 3DFACE|8 0|62 7|10 0|20 0|30 1|11 1|21 0|31 1|12 1|22 "
                                       "1|32 1|13 0|23 1|33 1|70 0|"));
}

// A line that starts where the last one ended takes its text over: it must be the same text.
TEST(DxfWriter, ChainsAreWrittenAsSingleLinesAre) {
  const P3 points[] = {{1, 2, 3}, {-0.0, 1e7, 4}, {0.0, 1e7, 4}, {1, 2, 3}, {1, 2, 3}, {5, 6, 7}};
  const auto write = [&](const P3& a, const P3& b, size_t i, DxfWriter* dxf) {
    dxf->SetColor(static_cast<int16_t>(i));
    i % 2 ? dxf->Line3D(a, b) : dxf->Line2D(a, b);
  };
  DxfWriter chain(DxfMode::kSpatial);
  std::string singles;
  for (size_t i = 0; i + 1 < std::size(points); ++i) {
    DxfWriter single(DxfMode::kSpatial);
    write(points[i], points[i + 1], i, &single);
    singles += Entities(&single);
    write(points[i], points[i + 1], i, &chain);
  }
  EXPECT_EQ(Entities(&chain), singles);
}

TEST(DxfWriter, Layers) {
  DxfWriter dxf(DxfMode::kFlat);
  dxf.SetLayerName(u"   ");
  dxf.SetColor(5);
  dxf.SetLayerName(u"Layer");
  dxf.SetColor(6);
  dxf.SetLayerName(u"layer");
  dxf.SetLayerName(u"Lay er");
  dxf.SetLayerNumber(-12);
  std::string rows = Groups("70 4|");
  for (const char* layer :
       {"Unknown|70 64|62 7", "Layer|70 64|62 6", "layer|70 64|62 6", "-12|70 64|62 6"}) {
    rows += Groups(std::string("0 LAYER|2 ") + layer + "|6 CONTINUOUS|");
  }
  EXPECT_EQ(Layers(&dxf), rows);
}

TEST(DxfWriter, TheLayerTableEndsAt500Rows) {
  DxfWriter dxf(DxfMode::kFlat);
  for (int i = 0; i < 500; ++i) dxf.SetLayerNumber(i);
  EXPECT_FALSE(dxf.RegisterLayer(u"500", 1));
  EXPECT_TRUE(dxf.RegisterLayer(u"499", 2));
  dxf.SetLayerNumber(500);
  dxf.Line2D({0, 0}, {1, 1});
  const std::string file = Finished(&dxf);
  EXPECT_NE(file.find("LAYER\r\n 70\r\n500\r\n"), file.npos);
  EXPECT_EQ(file.find("LAYER\r\n  2\r\n500\r\n"), file.npos);
  EXPECT_NE(file.find("LINE\r\n  8\r\n500\r\n"), file.npos);
}

TEST(DxfWriter, TextsAreCutBeforeTheCharacterThatDoesNotFit) {
  const std::string full(1022, 'x');
  const std::u16string almost(1022, u'x');
  const std::pair<std::u16string, std::string> cases[] = {
      {u"\x0E01\x2028\xD83D\xDE00x", "____x"},
      {almost + u"x", full + "x"},
      {almost + u"xx", full + "x"},
      {almost.substr(1) + u"あ", full.substr(1) + "\x82\xA0"},
      {almost + u"あy", full},
      {almost.substr(1) + u",y", full.substr(1)},
  };
  for (const auto& [text, bytes] : cases) EXPECT_EQ(DxfTextBytes(text), bytes) << text.size();
}

TEST(DxfWriter, WhatIsNotFiniteIsLeftOutAndCounted) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  DxfWriter dxf(DxfMode::kFlat);
  dxf.Line2D({nan, 0}, {1, 1});
  dxf.Line2D({0, 0}, {1, -inf});
  dxf.Circle2D({0, 0}, nan);
  dxf.Arc2D({{0, 0}, 1, inf, 0});
  dxf.Text2D({{0, 0}, u"x", nan});
  dxf.Triangle({0, 0, inf}, {1, 0}, {0, 1});
  EXPECT_EQ(dxf.left_out(), 6u);
  dxf.Line2D({1, 1, nan}, {2, 2, inf});  // z is not written here
  EXPECT_EQ(dxf.left_out(), 6u);
  EXPECT_EQ(Finished(&dxf).find("nan"), std::string::npos);
}

// Streamed after a rehearsal, a drawing is the same, is not kept, and a full disk is still noticed.
TEST(DxfWriter, StreamedDrawingsAreTheSame) {
  const auto draw = [](DxfWriter* dxf) {
    for (int i = 0; i < 15000; ++i) {
      dxf->SetColor(static_cast<int16_t>(1 + i % 7));
      dxf->SetLayerNumber(i % 20);
      dxf->Line3D({i * 0.5, 1.0, -2}, {i * 0.5 + 0.5, -3.0, 4});
      dxf->Circle2D({-1.0 * i, 0}, 1);
      dxf->Triangle({0, 0, 0}, {1, 0, 0}, {0, 1, 1.0 * i});
      dxf->Text2D({{0, 2.0 * i}, u"x", 1});
      dxf->Arc3D({{0, 0, -1.0 * i}, 1, 0, 90});
    }
  };
  DxfWriter kept(DxfMode::kSpatial), rehearsal(DxfMode::kSpatial);
  draw(&kept);
  const std::string expected = Finished(&kept);
  rehearsal.Rehearse();
  draw(&rehearsal);
  for (const size_t capacity : {MemoryFile::kUnlimited, expected.size() / 2}) {
    DxfWriter dxf(DxfMode::kSpatial);
    MemoryFile file(capacity);
    dxf.StreamInto(&file, rehearsal);
    draw(&dxf);
    const bool fits = capacity == MemoryFile::kUnlimited;
    EXPECT_GT(file.bytes.size(), fits ? expected.size() / 2 : 0);
    EXPECT_EQ(dxf.FinishInto(&file).failure, fits ? Failure::kNone : Failure::kNoSpace);
    EXPECT_EQ(file.bytes == expected, fits);
  }
}

}  // namespace
}  // namespace kerno
