#include "base/settings_table.h"

#include "platform/fold_case.h"

namespace kerno {
namespace {

constexpr SettingType kInteger = SettingType::kInteger;
constexpr SettingType kText = SettingType::kText;
constexpr SettingType kRectangle = SettingType::kRectangle;

// "oprator" is spelled so in the files that users have.
constexpr Setting kSettings[] = {
    {u"Dec", u"SvgOut::Precision", kInteger, u"15", "Digits of the numbers in SVG files"},
    {u"Parts", u"P3A::Search__MaxSearch", kInteger, u"-1",
     "How many of the newest vertices are searched for an equal one; negative: all"},
    {u"Parts", u"横書フェイス名", kText, u"ＭＳ ゴシック", "Face of horizontal text elements"},
    {u"Parts", u"縦書フェイス名", kText, u"@ＭＳ 明朝", "Face of vertical text elements"},
    {u"PartsAry\\Convert3D", u"UseCacheIPX", kInteger, u"0",
     "1: keep an IPX copy of converted models in the cache folder"},
    {u"Message", u"DrawTiming", kInteger, u"100",
     "Milliseconds between two messages of a progress display"},
    {u"Position\\MainFrame", u"Iconic", kInteger, u"0", "1: the main window was minimised"},
    {u"Position\\MainFrame", u"Maximized", kInteger, u"0", "1: the main window was maximised"},
    {u"Position\\MainFrame", u"Position199902_LTRB", kRectangle, u"0 0 0 0",
     "The main window's last normal place: left, top, right, bottom"},
    {u"Dialog", u"Face", kText, u"",
     "Face of the main window; empty: the one that the system gives"},
    {u"Dialog", u"Height", kText, u"100", "Character height, as typed"},
    {u"Dialog", u"Vertical", kInteger, u"0", "1: vertical writing"},
    {u"Dialog", u"PolyPolygon", kInteger, u"1",
     "0: the preview shows each contour in its own colour"},
    {u"Dialog", u"TextColor", kInteger, u"0", "Colour of the text: red + 256 green + 65536 blue"},
    {u"Dialog", u"SecondColor", kInteger, u"0",
     "Which colour of the second list: 0 the same as the text"},
    {u"Dialog", u"Elements", kInteger, u"0", "What contours become: 0 lines, 1 faces, 2 both"},
    {u"Dialog", u"VerticalPitch", kInteger, u"0",
     "Pitch of vertical text: 0 by the ink, 1 by the cell"},
    {u"Dialog", u"ColorIndexRule", kInteger, u"0",
     "Colour index of drawing files: 0 classic, 1 nearest"},
    {u"Dialog", u"OutputFolder", kText, u"",
     "Folder of the outputs; empty: Kerno.tmp in the temporary folder"},
    {u"Position\\Dialog", u"Kerno_LTRB", kRectangle, u"0 0 0 0",
     "The dialog's place: left, top, right, bottom"},
    {u"Debug", u"Log", kInteger, u"0", "1: log every setting that is read"},
    {u"Debug", u"Write", kInteger, u"0", "1: log every setting that is written"},
    {u"Debug", u"DbgDump", kInteger, u"0", "1: each run writes a dump file"},
    {u"Debug", u"DbgFile", kText, u"", "The dump file of the last run, written by the program"},
    {u"Debug\\2009_09", u"UseProfileCache", kInteger, u"1",
     "0: read every setting from the file again each time"},
    {u"Debug\\DrawTTOutline", u"UseP2A_Ary", kInteger, u"0",
     "1: outlines are drawn contour by contour, without a limit of points"},
    {u"Debug\\Parts", u"oprator+=...UseMerge", kInteger, u"1",
     "1: joining a smaller part to a larger one lists the larger one's elements first"},
    {u"Debug\\Parts", u"CopyLog", kInteger, u"0", "1: log every copy of a model"},
};

}  // namespace

std::string_view SettingTypeName(SettingType type) {
  switch (type) {
    case SettingType::kInteger:
      return "integer";
    case SettingType::kText:
      return "text";
    case SettingType::kRectangle:
      break;
  }
  return "rectangle";
}

std::span<const Setting> KnownSettings() {
  return kSettings;
}

const Setting* FindSetting(std::u16string_view section, std::u16string_view key) {
  for (const Setting& setting : kSettings) {
    if (EqualWithoutCase(setting.section, section) && EqualWithoutCase(setting.key, key)) {
      return &setting;
    }
  }
  return nullptr;
}

}  // namespace kerno
