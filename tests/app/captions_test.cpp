#include "app/captions.h"

#include <gtest/gtest.h>

#include <set>

#include "app/captions_table.h"
#include "app/controls.h"
#include "base/text.h"

namespace kerno {
namespace {

constexpr Language kLanguages[] = {Language::kEnglish, Language::kJapanese, Language::kGerman};

// Adds the letter that Alt presses, if there is one.
void ExpectOwnLetter(std::u16string_view text, char16_t mark, std::set<std::u16string>* letters) {
  const size_t at = text.find(mark);
  if (at == text.npos) return;
  EXPECT_TRUE(letters->insert(AsciiLower(text.substr(at + 1, 1))).second) << Utf16ToUtf8(text);
}

TEST(Captions, EveryLetterPressesOneThing) {
  for (const Language language : kLanguages) {
    std::set<std::u16string> window;
    for (const ControlRow& row : Controls()) {
      const std::u16string caption = SayIn(language, row.caption);
      ExpectOwnLetter(caption, u'&', &window);
      if (std::u16string_view(row.shortcut).starts_with(u"Alt+")) {
        EXPECT_NE(caption.npos, caption.find(u"&" + std::u16string(row.shortcut).substr(4)))
            << Utf16ToUtf8(caption) << ": the letter that is underlined is the one that works";
      }
    }
    for (const MenuColumn& column : Menu()) {
      ExpectOwnLetter(SayIn(language, column.caption), u'&', &window);
      std::set<std::u16string> menu;
      for (const MenuRow& row : column.rows) {
        ExpectOwnLetter(SayIn(language, row.caption), u'&', &menu);
      }
    }
  }
}

TEST(Captions, EveryCaptionNameAndHintHasARow) {
  std::set<std::u16string> keys = {u""};
  for (const CaptionRow& row : CaptionTexts()) keys.insert(row.english);
  for (const ControlRow& row : Controls()) {
    for (const char16_t* text : {row.caption, row.name, row.hint}) {
      EXPECT_TRUE(keys.contains(text)) << Utf16ToUtf8(text);
    }
  }
  for (const MenuColumn& column : Menu()) {
    EXPECT_TRUE(keys.contains(column.caption));
    for (const MenuRow& row : column.rows) {
      EXPECT_TRUE(keys.contains(row.caption)) << Utf16ToUtf8(row.caption);
    }
  }
}

TEST(Captions, PartsStandWhereTheLanguageWantsThem) {
  SetLanguage(Language::kJapanese);
  EXPECT_EQ(u"/tmp に 看板 の .dxf を出力しました",
            Say(u"Wrote {} of {} in {}", {u".dxf", u"看板", u"/tmp"}));
  EXPECT_EQ(u"a{}: ディスクの空きがありません",
            SayStatus(Status::Error(Failure::kNoSpace, u"a{}", u"the disk is full")));
  SetLanguage(Language::kEnglish);
  EXPECT_EQ(u"no row {} for x", Say(u"no row {} for {}", {u"{}", u"x"}));
}

TEST(Captions, ReasonsAreFoundByTheirFixedWords) {
  constexpr std::pair<const char16_t*, const char16_t*> kReasons[] = {
      {u"\"x\" is not a number", u"\"x\" ist keine Zahl"},
      {u"\"9\" is outside 1 to 8", u"\"9\" liegt nicht zwischen 1 und 8"},
      {u"\"99\" is outside -80 to 80", u"\"99\" liegt nicht zwischen -80 und 80"},
      {u"\"{\" has no partner; \"{{\" is a brace",
       u"„{“ hat kein Gegenstück; eine Klammer schreibt sich „{{“"},
      {u"there is no column \"nope\"; the columns are name, no, and row and n",
       u"es gibt keine Spalte \"nope\"; die Spalten sind name, no, dazu row und n"},
      {u"\"Arail\" is not installed; the nearest are \"Liberation Sans\" (as wide as \"Arial\"), "
       u"\"A\"",
       u"\"Arail\" ist nicht installiert; am nächsten sind \"Liberation Sans\" (so breit wie "
       u"\"Arial\"), \"A\""},
      {u"cannot be read: the disk is full", u"ist nicht lesbar: der Datenträger ist voll"},
      {u"goes not with --frame, whose places are alike",
       u"passt nicht zu einem Rahmen, dessen Plätze gleich sind"},
      // Texts of the window are no patterns for reasons, and a place is never empty.
      {u"a: 3 rows", u"a: 3 rows"},
      {u" is not a number", u" is not a number"},
      {u"nobody wrote this", u"nobody wrote this"}};
  SetLanguage(Language::kGerman);
  for (const auto& [english, german] : kReasons) EXPECT_EQ(german, SayReason(english));
  for (const CaptionRow& row : CaptionReasons()) {
    if (row.shown) continue;
    const std::initializer_list<std::u16string_view> parts = {u"\"a b\"", u"2", u"c", u"d"};
    SetLanguage(Language::kEnglish);
    const std::u16string english = Say(row.english, parts);
    SetLanguage(Language::kGerman);
    EXPECT_EQ(Say(row.english, parts), SayReason(english)) << "another row is nearer";
  }
  EXPECT_EQ(u"Größe: der Text hat nichts, was sich einpassen lässt",
            SayStatus(Status::Error(Failure::kOther, u"fit", u"the text has no ink to fit")));
  SetLanguage(Language::kEnglish);
  EXPECT_EQ(u"Frame: \"x\" is not installed",
            SayStatus(Status::Error(Failure::kOther, u"--frame",
                                    u"\"x\" is not installed (kerno faces lists those that are)")));
}

TEST(Captions, LocalesChooseTheLanguageAndMnemonicsGo) {
  const std::pair<const char16_t*, Language> locales[] = {{u"ja_JP.UTF-8", Language::kJapanese},
                                                          {u"JA", Language::kJapanese},
                                                          {u"de-AT", Language::kGerman},
                                                          {u"de@euro", Language::kGerman},
                                                          {u"den_CA", Language::kEnglish},
                                                          {u"C", Language::kEnglish},
                                                          {u"", Language::kEnglish}};
  for (const auto& [locale, language] : locales) {
    EXPECT_EQ(language, LanguageOfLocale(locale)) << Utf16ToUtf8(locale);
  }
  EXPECT_EQ(u"ファイル", WithoutMnemonic(u"ファイル(&F)"));
  EXPECT_EQ(u"コピーを保存...", WithoutMnemonic(u"コピーを保存(&A)..."));
  EXPECT_EQ(u"Save as...", WithoutMnemonic(u"Save &as..."));
}

}  // namespace
}  // namespace kerno
