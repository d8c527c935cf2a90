// Every setting that the program reads, one row each. A reader passes its row, so that a setting's
// name, type, default and limits stand once. docs/settings.md is checked against the table.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "base/profile_values.h"
#include "base/settings.h"

namespace kerno {

// What a stored number outside its limits is taken as.
enum class Outside { kNearestLimit, kDefault };

struct IntegerLimits {
  int32_t least = std::numeric_limits<int32_t>::min();
  int32_t most = std::numeric_limits<int32_t>::max();
  Outside outside = Outside::kNearestLimit;
};

struct IntegerSetting {
  std::u16string_view section;
  std::u16string_view key;
  int32_t default_value = 0;
  std::string_view meaning;  // one line
  IntegerLimits limits = {};
};

// An integer that is off at 0 and on at every other value.
struct SwitchSetting {
  std::u16string_view section;
  std::u16string_view key;
  bool default_value = false;
  std::string_view meaning;
};

struct TextSetting {
  std::u16string_view section;
  std::u16string_view key;
  std::u16string_view default_value;
  std::string_view meaning;
};

// Its default is the empty rectangle; in the file the key has the suffix of rectangles.
struct RectangleSetting {
  std::u16string_view section;
  std::u16string_view key;
  std::string_view meaning;
};

// The value of a setting: the one that is stored, within its limits, else its default.
int32_t Get(const IntegerSetting& row, SettingsReader& reader = CurrentSettings());
bool Get(const SwitchSetting& row, SettingsReader& reader = CurrentSettings());
std::u16string Get(const TextSetting& row, SettingsReader& reader = CurrentSettings());
ProfileRect Get(const RectangleSetting& row, SettingsReader& reader = CurrentSettings());

// Outputs and models

inline constexpr IntegerSetting kSvgPrecision{
    u"Dec", u"SvgOut::Precision", 15, "Digits of the numbers in SVG files, 1 to 40", {1, 40}};
inline constexpr IntegerSetting kMaxSearch{
    u"Parts", u"P3A::Search__MaxSearch", -1,
    "How many of the newest vertices are searched for an equal one; negative: all"};
inline constexpr TextSetting kHorizontalFace{u"Parts", u"横書フェイス名", u"ＭＳ ゴシック",
                                             "Face of horizontal text elements"};
inline constexpr TextSetting kVerticalFace{u"Parts", u"縦書フェイス名", u"@ＭＳ 明朝",
                                           "Face of vertical text elements"};
inline constexpr IntegerSetting kDrawTiming{
    u"Message", u"DrawTiming", 100, "Milliseconds between two messages of a progress display"};

// The main window

inline constexpr TextSetting kDialogFace{
    u"Dialog", u"Face", u"", "Face of the main window; empty: the one that the system gives"};
inline constexpr TextSetting kDialogHeight{u"Dialog", u"Height", u"100",
                                           "Character height, as typed"};
inline constexpr SwitchSetting kDialogVertical{u"Dialog", u"Vertical", false,
                                               "1: vertical writing"};
inline constexpr SwitchSetting kDialogPolyPolygon{
    u"Dialog", u"PolyPolygon", true, "0: the preview shows each contour in its own colour"};
inline constexpr IntegerSetting kDialogTextColor{u"Dialog",
                                                 u"TextColor",
                                                 0,
                                                 "Colour of the text: red + 256 green + 65536 blue",
                                                 {0, 0xFFFFFF, Outside::kDefault}};
inline constexpr IntegerSetting kDialogSecondColor{
    u"Dialog", u"SecondColor", 0, "Which colour of the second list: 0 the same as the text", {0}};
inline constexpr IntegerSetting kDialogElements{u"Dialog",
                                                u"Elements",
                                                0,
                                                "What contours become: 0 lines, 1 faces, 2 both",
                                                {0, 2, Outside::kDefault}};
inline constexpr IntegerSetting kDialogVerticalPitch{
    u"Dialog",
    u"VerticalPitch",
    0,
    "Pitch of vertical text: 0 by the ink, 1 by the cell",
    {0, 1, Outside::kDefault}};
inline constexpr IntegerSetting kDialogColorIndexRule{
    u"Dialog",
    u"ColorIndexRule",
    0,
    "Colour index of drawing files: 0 classic, 1 nearest",
    {0, 1, Outside::kDefault}};
inline constexpr TextSetting kDialogOutputFolder{
    u"Dialog", u"OutputFolder", u"",
    "Folder of the outputs; empty: Kerno.tmp in the temporary folder"};
inline constexpr IntegerSetting kDialogLanguage{
    u"Dialog",
    u"Language",
    0,
    "Language of the window: 0 as the system, 1 Japanese, 2 English, 3 German",
    {0, 3, Outside::kDefault}};
inline constexpr IntegerSetting kDialogMode{
    u"Dialog", u"Mode", 0, "Way of working: 0 Classic, 1 Cut", {0, 1, Outside::kDefault}};
inline constexpr SwitchSetting kWindowMinimised{u"Position\\MainFrame", u"Iconic", false,
                                                "1: the main window was minimised"};
inline constexpr SwitchSetting kWindowMaximised{u"Position\\MainFrame", u"Maximized", false,
                                                "1: the main window was maximised"};
inline constexpr RectangleSetting kWindowPlace{
    u"Position\\MainFrame", u"Position199902",
    "The main window's last normal place: left, top, right, bottom"};
inline constexpr RectangleSetting kFormerPlace{
    u"Position\\Dialog", u"Kerno",
    "The same, as former versions kept it; read where there is none"};

// Diagnostics

inline constexpr SwitchSetting kLogReads{u"Debug", u"Log", false,
                                         "1: log every setting that is read"};
inline constexpr SwitchSetting kLogWrites{u"Debug", u"Write", false,
                                          "1: log every setting that is written"};
inline constexpr SwitchSetting kRunDump{u"Debug", u"DbgDump", false,
                                        "1: each run writes a dump file"};
inline constexpr SwitchSetting kUseProfileCache{
    u"Debug\\2009_09", u"UseProfileCache", true,
    "0: read every setting from the file again each time"};
inline constexpr SwitchSetting kOutlinesOneByOne{
    u"Debug\\DrawTTOutline", u"UseP2A_Ary", false,
    "1: outlines are drawn contour by contour, without a limit of points"};
inline constexpr SwitchSetting kCopyLog{u"Debug\\Parts", u"CopyLog", false,
                                        "1: log every copy of a model"};

// The rows as a list, for those who show and change settings.
using Setting = std::variant<IntegerSetting, SwitchSetting, TextSetting, RectangleSetting>;
inline constexpr Setting kKnownSettings[] = {
    kSvgPrecision,
    kMaxSearch,
    kHorizontalFace,
    kVerticalFace,
    kDrawTiming,
    kDialogFace,
    kDialogHeight,
    kDialogVertical,
    kDialogPolyPolygon,
    kDialogTextColor,
    kDialogSecondColor,
    kDialogElements,
    kDialogVerticalPitch,
    kDialogColorIndexRule,
    kDialogOutputFolder,
    kDialogLanguage,
    kDialogMode,
    kWindowMinimised,
    kWindowMaximised,
    kWindowPlace,
    kFormerPlace,
    kLogReads,
    kLogWrites,
    kRunDump,
    kUseProfileCache,
    kOutlinesOneByOne,
    kCopyLog,
};
inline std::span<const Setting> KnownSettings() {
  return kKnownSettings;
}

// A row as the user reads it.
struct SettingText {
  std::u16string section;
  std::u16string key;     // as it stands in the file
  std::string_view type;  // "integer", "text" or "rectangle"
  std::u16string default_value;
  std::string_view meaning;
};
SettingText Describe(const Setting& row);

// The value of a row as text.
std::u16string ValueText(const Setting& row, SettingsReader& reader);

// The row of a setting by the name in the file, compared without case; null for one that the
// program does not know.
const Setting* FindSetting(std::u16string_view section, std::u16string_view key);

}  // namespace kerno
