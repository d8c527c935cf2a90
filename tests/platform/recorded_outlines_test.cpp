// Every value that was recorded of the desktop's graphics interface, met exactly.
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "support/font_probe.h"
#include "support/native_records.h"

namespace kerno {
namespace {

using nlohmann::json;
using test::FontProbe;
using test::ReadNativeRecords;

std::u16string Ascii(const std::string& text) {
  return {text.begin(), text.end()};
}

json MetricsOf(const FontProbe& font) {
  const TextMetrics m = font.metrics();
  return {{"tmHeight", m.tmHeight},
          {"tmAscent", m.tmAscent},
          {"tmDescent", m.tmDescent},
          {"tmInternalLeading", m.tmInternalLeading},
          {"tmExternalLeading", m.tmExternalLeading},
          {"tmAveCharWidth", m.tmAveCharWidth},
          {"tmMaxCharWidth", m.tmMaxCharWidth},
          {"tmWeight", m.tmWeight}};
}

// A number of 16.16 as 26.6; one that is none stays a fraction and so differs.
json Rounded(int32_t fixed) {
  return fixed % 1024 == 0 ? json(fixed / 1024) : json(fixed / 1024.0);
}

json PointJson(const test::FixedPoint& point) {
  return json::array({Rounded(point.first), Rounded(point.second)});
}

json ContoursJson(const std::vector<std::byte>& buffer) {
  json contours = json::array();
  for (const auto& contour : ReadNativeRecords(buffer)) {
    json records = json::array();
    for (const auto& record : contour.records) {
      json points = json::array();
      for (const auto& point : record.points) points.push_back(PointJson(point));
      records.push_back({{"type", record.type}, {"points", points}});
    }
    contours.push_back({{"start", PointJson(contour.start)}, {"records", records}});
  }
  return contours;
}

json GlyphOf(const FontProbe& font, char32_t ch) {
  const test::ProbedGlyph glyph = font.Glyph(ch);
  if (!glyph.ok()) return "GDI_ERROR";
  const GlyphMetrics& m = glyph.metrics;
  const char16_t unit = static_cast<char16_t>(ch);
  const Extent extent = font.TextExtent({&unit, 1});
  return {{"ch", static_cast<uint32_t>(ch)},
          {"size", glyph.size},
          {"gmBlackBoxX", m.gmBlackBoxX},
          {"gmBlackBoxY", m.gmBlackBoxY},
          {"gmptGlyphOrigin", {m.gmptGlyphOriginX, m.gmptGlyphOriginY}},
          {"gmCellIncX", m.gmCellIncX},
          {"gmCellIncY", m.gmCellIncY},
          {"extent", {extent.cx, extent.cy}},
          {"contours", ContoursJson(glyph.buffer)}};
}

TEST(RecordedOutlines, EveryValueIsMet) {
  std::ifstream lines(KERNO_TEST_DATA "/gdi-outlines.jsonl");
  int fonts = 0;
  int wrong = 0;
  for (std::string line; std::getline(lines, line); ++fonts) {
    json recorded = json::parse(line);
    const std::u16string face = Ascii(recorded["face"]);
    const FontProbe font(face, recorded["height"], recorded["width"], recorded["weight"]);
    EXPECT_EQ(font.name(), face);
    const std::string what = line.substr(0, line.find(",\"tmHeight\""));
    const json metrics = MetricsOf(font);
    for (const auto& [name, value] : metrics.items()) {
      EXPECT_EQ(value, recorded[name]) << what << ": " << name;
    }
    for (const json& glyph : recorded["glyphs"]) {
      const json got = GlyphOf(font, glyph["ch"].get<char32_t>());
      if (got != glyph && ++wrong <= 10) {
        ADD_FAILURE() << what << ", character " << glyph["ch"] << ": " << json::diff(glyph, got);
      }
    }
  }
  EXPECT_EQ(fonts, 60);
  EXPECT_EQ(wrong, 0);
}

// Recorded besides: advances in fixed-pitch faces, at widths of their own too, and in one that says
// that it is one in its PANOSE classification alone and has letters of many widths.
TEST(RecordedOutlines, FullWidthCharacters) {
  std::ifstream lines(KERNO_TEST_DATA "/full-width-advances.tsv");
  std::string face;
  std::getline(lines, face);  // what the columns are
  int count = 0, height = 0, width = 0, advance = 0;
  uint32_t ch = 0;
  const auto next = [&] {
    return std::getline(lines >> std::ws, face, '\t') &&
           lines >> height >> width >> std::hex >> ch >> std::dec >> advance;
  };
  for (; next(); ++count) {
    EXPECT_EQ(FontProbe(Ascii(face), height, width).Glyph(ch).metrics.gmCellIncX, advance)
        << face << " height " << height << " width " << width << " U+" << std::hex << ch;
  }
  EXPECT_EQ(count, 97);
}

// In faces whose average character is narrower than half a unit at one pixel per em.
TEST(RecordedOutlines, AverageWidthIsNeverZero) {
  for (const char16_t* face : {u"IPAPGothic", u"@IPAPMincho", u"DejaVu Sans Condensed"}) {
    const FontProbe own(face, 1);
    EXPECT_EQ(own.metrics().tmAveCharWidth, 1);
    EXPECT_EQ(FontProbe(face, 1, 19).metrics().tmAveCharWidth, 19);
  }
}

// The letter's second contour is one point, kept in the face for composing accents.
TEST(RecordedOutlines, ContoursOfOnePointAreLeftOut) {
  const test::ProbedGlyph glyph = FontProbe(u"DejaVu Sans", 100).Glyph(U'u');
  EXPECT_EQ(test::ReadNativeRecords(glyph.buffer).size(), 1u);
}

}  // namespace
}  // namespace kerno
