#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "platform/font_faces.h"
#include "support/font_probe.h"

namespace kerno {
namespace {

using test::FontProbe;

TEST(FontChoice, FamiliesGoByAnyLocalizedNameInAnyCase) {
  using Case = std::pair<std::u16string, std::u16string>;
  for (const auto& [wanted, used] : {
           Case{u"dEJAvU sANS mONO", u"DejaVu Sans Mono"},
           {u"DejaVu Sans Condensed", u"DejaVu Sans Condensed"},
           {u"DEJAVU SERIF CONDENSED", u"DejaVu Serif Condensed"},
           {u"dejavu sans light", u"DejaVu Sans Light"},
           {u"IPA明朝", u"IPAMincho"},
           {u"ipa Pゴシック", u"IPAPGothic"},
           {u"@ipa Pゴシック", u"@IPAPGothic"},
       }) {
    EXPECT_TRUE(IsFaceInstalled(wanted));
    const FontProbe font(wanted, 20);
    EXPECT_EQ(font.Points(U'g'), FontProbe(used, 20).Points(U'g')) << std::filesystem::path(wanted);
    EXPECT_NE(font.Points(U'g'), FontProbe(u"DejaVu Serif", 20).Points(U'g'))
        << std::filesystem::path(wanted);
  }
  for (const char16_t* missing :
       {u"", u" DejaVu Sans", u"DejaVu", u"sans-serif", u"DejaVu Sans\n"}) {
    EXPECT_FALSE(IsFaceInstalled(missing));
    EXPECT_NE(FontProbe(missing, 20).font(), nullptr);
  }
}

TEST(FontChoice, BoldBeginsAbove550) {
  const auto glyph = [](int32_t weight) {
    return FontProbe(u"DejaVu Sans", 200, 0, weight).Points(U'M');
  };
  EXPECT_NE(glyph(700), glyph(400));
  for (const int32_t weight : {-5, 0, 550, 551, 1000}) {
    EXPECT_EQ(glyph(weight), glyph(weight > 550 ? 700 : 400)) << weight;
  }
  // The lightest face of the whole family is in a family of its own.
  EXPECT_NE(FontProbe(u"DejaVu Sans Light", 200).Points(U'M'), glyph(200));
}

TEST(FontChoice, EveryListedFaceCanBeHad) {
  const std::vector<InstalledFace> faces = EnumerateFaces();
  EXPECT_GT(faces.size(), 10u);
  for (const InstalledFace& face : faces) {
    EXPECT_TRUE(IsFaceInstalled(face.name));
    EXPECT_EQ(FontProbe(face.name, 20).name(), face.name);
    EXPECT_NE(face.name, u"@DejaVu Sans");
    if (face.name != u"IPAGothic" && face.name != u"@IPAゴシック") continue;
    EXPECT_EQ(face.pitch_and_family, 0x31);
    EXPECT_EQ(face.char_set, 128);
    EXPECT_EQ(face.font_type, kTrueTypeFontType);
  }
}

}  // namespace
}  // namespace kerno
