#include "app/face_catalogue.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "app/face_samples.h"

namespace kerno {
namespace {

TEST(FaceCatalogue, FindsNamesWhateverTheirSpellingTheBestFirst) {
  struct Case {
    const char16_t* search;
    std::vector<std::u16string> found;  // in this order
  };
  const std::vector<SearchNames> faces = [] {
    std::vector<SearchNames> made;
    for (const auto& names :
         std::vector<std::vector<std::u16string>>{{u"IPAゴシック", u"IPAGothic"},
                                                  {u"ＭＳ 明朝", u"MS Mincho"},
                                                  {u"Century Gothic"},
                                                  {u"Gothic A1"},
                                                  {u"ヴェール ぽっぷ体"},
                                                  {u"Größe Ärger", u"Groesse"},
                                                  {u"Łódź Åsa \u039C\u03CC\u03BD\u03BF"}}) {
      SearchNames folded;
      for (const std::u16string& name : names) folded.names.push_back(FoldedName(name));
      folded.full_names = {FoldedName(names.front() + u" Bold")};
      made.push_back(folded);
    }
    return made;
  }();
  const Case cases[] = {
      {u"gothic", {u"gothic a1", u"century gothic", u"ipaごしっく"}},
      {u"ｇｏｔｈｉｃ　Ａ", {u"gothic a1", u"ipaごしっく"}},
      {u"ごしっく", {u"ipaごしっく"}},
      {u"ｺﾞｼｯｸ ipa", {u"ipaごしっく"}},
      {u"ﾎﾟｯﾌﾟ ｳﾞｪｰﾙ", {u"ゔぇーる ぽっぷ体"}},
      {u"MS 明朝", {u"ms 明朝"}},
      {u"明朝 mincho", {u"ms 明朝"}},
      {u"GRÖSSE", {}},
      {u"ärger GRÖ", {u"große arger"}},
      {u"arger gro\u0308", {u"große arger"}},
      {u"LODZ ａＳＡ", {u"lodz asa μονο"}},
      {u"łó μόνο", {u"lodz asa μονο"}},
      {u"  ",
       {u"ipaごしっく", u"ms 明朝", u"century gothic", u"gothic a1", u"ゔぇーる ぽっぷ体",
        u"große arger", u"lodz asa μονο"}},
      {u"century gothic b", {u"century gothic"}},
      {u"gothic bold", {}},
  };
  for (const Case& row : cases) {
    std::multimap<int, std::u16string> found;
    for (const SearchNames& names : faces) {
      if (const auto find = FindName(names, FoldedName(row.search))) {
        found.emplace(find->rank, names.names.front());
      }
    }
    std::vector<std::u16string> order;
    for (const auto& [rank, name] : found) order.push_back(name);
    EXPECT_EQ(row.found, order) << testing::PrintToString(row.search);
  }
}

size_t EntryOf(const FaceCatalogue& catalogue, std::u16string_view given) {
  for (size_t i = 0; i < catalogue.size(); ++i) {
    if (catalogue.entry(i).given == given) return i;
  }
  ADD_FAILURE() << "no " << testing::PrintToString(std::u16string(given));
  return 0;
}

std::vector<std::u16string> Names(const FaceRows& rows, size_t most) {
  std::vector<std::u16string> names;
  for (const FaceRow& row : rows.rows) {
    if (names.size() < most) names.push_back(row.name);
  }
  return names;
}

TEST(FaceCatalogue, KeepsFavouritesAndRecentFacesThroughTheSettings) {
  FaceCatalogue catalogue;
  catalogue.Read("en");
  const std::vector<std::u16string> plain = Names(catalogue.Rows({}), 3);
  catalogue.ToggleFavourite(EntryOf(catalogue, u"Khmer OS"));
  catalogue.ToggleFavourite(EntryOf(catalogue, u"DejaVu Serif"));
  catalogue.ToggleFavourite(EntryOf(catalogue, u"DejaVu Sans"));
  catalogue.ToggleFavourite(EntryOf(catalogue, u"DejaVu Sans"));
  for (const char16_t* name :
       {u"Lohit Devanagari", u"Khmer OS", u"DejaVu Sans Mono", u"Lohit Devanagari"}) {
    catalogue.NoteUse(EntryOf(catalogue, name));
  }
  const std::u16string odd = u"Gone|100%22|%7C|A%2c%";  // by hand, and of faces that are gone
  FaceCatalogue next;
  next.Read("ja");
  next.SetStored(catalogue.StoredFavourites() + u"|" + odd, catalogue.StoredRecent());
  EXPECT_EQ((std::vector<std::u16string>{u"Lohit Devanagari", u"DejaVu Sans Mono", u"Khmer OS",
                                         u"DejaVu Serif"}),
            Names(next.Rows({}), 4));
  EXPECT_EQ(catalogue.StoredRecent(), next.StoredRecent());
  FaceCatalogue third;
  third.SetStored(next.StoredFavourites(), u"");
  EXPECT_EQ(u"DejaVu Serif|Khmer OS|Gone|100%22|%7C|A%252c%25", third.StoredFavourites());
  EXPECT_EQ(2U, next.Rows({.favourites = true}).rows.size());
  next.ShowNamesIn("en");
  EXPECT_EQ(plain.front(), Names(next.Rows({.search = plain.front()}), 1).front());
  for (size_t i = 0; i < 20; ++i) next.NoteUse(i);
  EXPECT_EQ(FaceCatalogue::kMostRecent,
            static_cast<size_t>(std::ranges::count(next.StoredRecent(), u'|')) + 1);
}

TEST(FaceSamples, KeepsAFewPicturesAndDropsThemForAnotherLook) {
  FaceCatalogue catalogue;
  catalogue.Read("en");
  FaceSamples samples(catalogue);
  SampleLook look = {u"Kerno\nsecond", 120, 24, 0x2040FF, 0x101010};
  const size_t first = EntryOf(catalogue, u"DejaVu Sans"),
               second = EntryOf(catalogue, u"DejaVu Serif");
  EXPECT_EQ(nullptr, samples.PictureOf(first, look));
  EXPECT_EQ(nullptr, samples.PictureOf(second, look));
  EXPECT_EQ(nullptr, samples.PictureOf(first, look));
  EXPECT_TRUE(samples.MakeNext());
  const BitmapSurface* made = samples.PictureOf(first, look);  // asked for last
  ASSERT_NE(nullptr, made);
  EXPECT_EQ(120, made->Width());
  look.text = u"Kerno";  // the same first line
  EXPECT_EQ(made, samples.PictureOf(first, look));
  EXPECT_TRUE(samples.MakeNext());
  EXPECT_FALSE(samples.MakeNext());
  const std::vector<uint8_t> plain(made->Pixels().begin(), made->Pixels().end());
  const auto& styles = catalogue.StylesOf(first);
  const auto bold = std::ranges::find(styles, u"Bold", &FaceStyle::own_name) - styles.begin();
  samples.Choose(FacePick{first, static_cast<size_t>(bold), {}});
  EXPECT_EQ(nullptr, samples.PictureOf(first, look)) << "it is drawn again in the style chosen";
  EXPECT_NE(nullptr, samples.PictureOf(second, look));
  EXPECT_TRUE(samples.MakeNext());
  const auto pixels = samples.PictureOf(first, look)->Pixels();
  EXPECT_FALSE(std::ranges::equal(plain, pixels));
  samples.Choose(FacePick{second, catalogue.RegularStyleOf(second), {}});
  EXPECT_EQ(nullptr, samples.PictureOf(first, look));
  EXPECT_NE(nullptr, samples.PictureOf(second, look)) << "it is that of the regular style already";
  EXPECT_TRUE(samples.MakeNext());
  EXPECT_TRUE(std::ranges::equal(plain, samples.PictureOf(first, look)->Pixels()));
  look.ink = 0;
  EXPECT_EQ(nullptr, samples.PictureOf(first, look));
}

}  // namespace
}  // namespace kerno
