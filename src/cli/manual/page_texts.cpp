#include "cli/manual/page_texts.h"

#include <algorithm>

namespace kerno {
namespace {

// Kerno as a whole

constexpr std::string_view kProgramDescription[] = {
    "Kerno sets a text in any installed face, horizontally or in vertical columns, and writes its "
    "outlines for machines that cut. Contours are closed, sizes are true, and a file is written "
    "whole or not at all.",
    "`kerno cut` writes the font's own curves, ready for a machine. `kerno convert` writes the "
    "outlines of the system's rasteriser, hinted to whole units. The ending of each `-o` chooses "
    "the format of that file.",
    "Without a command, `kerno` opens the window where there is a display."};
constexpr Term kFontVariables[] = {
    {"FONTCONFIG_FILE", "The configuration of Fontconfig, which knows the installed faces."},
    {"TMPDIR", "The folder of temporary files; `/tmp` without it."}};
constexpr Term kProgramVariables[] = {
    {"DISPLAY", "The display of the window; or WAYLAND_DISPLAY."},
    {"FONTCONFIG_FILE", "The configuration of Fontconfig, which knows the installed faces."},
    {"TMPDIR", "The folder of temporary files; `/tmp` without it."},
    {"XDG_CONFIG_HOME", "Where the folder `kerno` of the settings is; `~/.config` without it."}};
constexpr Term kSettingsFiles[] = {
    {"~/.config/kerno/Quenkit_Setting/Quenkit.ini",
     "The settings, where they are in the user's configuration folder; `kerno settings path` tells "
     "where they are."}};
constexpr Example kProgramExamples[] = {
    {"A sign of 120 mm for the laser, and the same for a look at it:",
     "kerno cut \"Öffnungszeiten 9–17 h\" --face \"DejaVu Sans\" --style Bold \\\n"
     "    --fit 120mm -o plate.dxf -o plate.svg"},
    {"Which faces have these characters:", "kerno faces --covers \"切文字\""}};
constexpr std::string_view kProgramSeeAlso[] = {"kerno-desktop(1)", "fc-list(1)"};

// convert, contours, measure

constexpr std::string_view kConvertDescription[] = {
    "Sets the text as the system's rasteriser draws it, places the block and writes its outlines "
    "to one or more files. Points are hinted to whole units: a large `--height` with a small "
    "`--scale` gives finely divided small letters. What is to be cut at a small size is better "
    "made by `kerno cut`.",
    "With `--ipx` no text is set: the drawing of a parts file is written in other formats."};
constexpr Example kConvertExamples[] = {
    {"A drawing of letters that are 100 units high:",
     "kerno convert \"Hello, cutter\" --face \"DejaVu Sans\" -o hello.dxf"},
    {"Vertical writing:",
     "kerno convert \"縦書き、ーと「」\" --face IPAGothic --vertical \\\n"
     "    --pitch cell -o vertical.dxf"},
    {"A parts file, and later a bitmap and a list of sizes of it:",
     "kerno convert \"Parts\" --face \"DejaVu Serif\" -o parts.ipx\n"
     "kerno convert --ipx parts.ipx -o parts.bmp -o parts.ipl"}};
constexpr std::string_view kConvertSeeAlso[] = {"kerno-cut(1)", "kerno-contours(1)",
                                                "kerno-faces(1)"};

constexpr std::string_view kContoursDescription[] = {
    "Prints every point of the outlines that `kerno convert` would write, contour by contour. "
    "Placed points have y down; with `--unplaced` they have y up."};
constexpr Example kContoursExamples[] = {
    {"The contours of two letters as JSON:",
     "kerno contours \"AB\" --face \"DejaVu Sans\" --height 30 --json"}};
constexpr std::string_view kContoursSeeAlso[] = {"kerno-convert(1)", "kerno-measure(1)"};

constexpr std::string_view kMeasureDescription[] = {
    "Prints the length and the height of a text as `kerno convert` sets it, in units of the "
    "drawing."};
constexpr Example kMeasureExamples[] = {
    {"The room that a word takes, and the box of its outlines:",
     "kerno measure \"Hello\" --face \"DejaVu Sans\" --height 200 --ink"}};
constexpr std::string_view kMeasureSeeAlso[] = {"kerno-convert(1)", "kerno-contours(1)"};

// cut

constexpr std::string_view kCutDescription[] = {
    "Sets the text in the font's own curves, in every script, and writes closed paths of true "
    "size. Letters that overlap are welded, curves become lines and arcs no farther than "
    "`--tolerance` from the true curve, and counters come before the contour around them.",
    "A length (L, W, H, X, Y) is a number with `mm`, `cm`, `in` or `pt`; a bare number is in "
    "millimetres. Without a size, capital letters are 20 mm high.",
    "In the text, line ends start a new line. With `--data`, `--lines` or `--count` a series of "
    "files is written, or with `--sheet` sheets full of signs: fields such as `{name}` in the "
    "text, in values of options and in names of files are filled from each row. Rows that fail "
    "are told, and the others are written.",
    "The same command gives the same bytes, but for X3D, which tells when it was written."};
constexpr Term kCutVariables[] = {
    {"FONTCONFIG_FILE", "The configuration of Fontconfig, which knows the installed faces."},
    {"SOURCE_DATE_EPOCH",
     "The time that X3D files tell instead of the clock's, in seconds since 1970."},
    {"TMPDIR", "The folder of temporary files; `/tmp` without it."},
    {"XDG_DATA_HOME",
     "Where the user's folder of fonts of strokes is, `kerno/stroke-fonts`; `~/.local/share` "
     "without it. The folders in XDG_DATA_DIRS are looked through after it."}};
constexpr Term kCutFiles[] = {
    {"~/.local/share/kerno/stroke-fonts", "Fonts of strokes that `--stroke-font` finds by name."}};
constexpr Example kCutExamples[] = {
    {"A sign of 120 mm, for the machine and for a look at it:",
     "kerno cut \"Öffnungszeiten 9–17 h\" --face \"DejaVu Sans\" --style Bold \\\n"
     "    --fit 120mm -o plate.dxf -o plate.svg"},
    {"Characters that the face lacks come from another one:",
     "kerno cut \"שלום Ключ 鍵\" --face \"DejaVu Sans\" --fallback IPAGothic \\\n"
     "    --cap-height 12mm -o key.dxf"},
    {"Single lines to engrave:",
     "kerno cut \"Panel 12 V\" --stroke-font rowmans --cap-height 5mm \\\n"
     "    -o panel.dxf"},
    {"A file for each row of a table:",
     "printf 'name,room\\nJörg,12\\nAnna,14\\n' > doors.csv\n"
     "kerno cut --data doors.csv --text \"{name} {room}\" --cap-height 15mm \\\n"
     "    --face \"DejaVu Sans\" -o \"door-{room}.dxf\""},
    {"Fifty numbered plates on sheets:",
     "kerno cut --count 50 --text \"No. {n:03}\" --face \"DejaVu Sans\" \\\n"
     "    --cap-height 6mm --sheet 300x200mm --frame 40x15mm \\\n"
     "    -o \"plates-{sheet}.dxf\""}};
constexpr std::string_view kCutSeeAlso[] = {"kerno-faces(1)", "kerno-convert(1)",
                                            "kerno-desktop(1)"};

// faces

constexpr std::string_view kFacesDescription[] = {
    "Prints the families that `--face` takes, one a line. No font file is opened for that, so "
    "that damaged ones may be among them; `--skipped` looks at every file.",
    "With `--json` every face is told with its names in all languages, its file, styles, axes, "
    "scripts, features and what its maker permits (`embedding`)."};
constexpr Example kFacesExamples[] = {
    {"The families that have everything in a text, drawn on one sheet:",
     "kerno faces --sample \"Größe 12\" -o sheet.svg"},
    {"The fonts of single lines:", "kerno faces --strokes"}};
constexpr std::string_view kFacesSeeAlso[] = {"kerno-cut(1)", "fc-list(1)"};

// settings

constexpr std::string_view kSettingsDescription[] = {
    "Kerno keeps its settings in an INI file. What is not in the file has its default. A change "
    "takes effect at the next read."};
constexpr Term kSettingsVariables[] = {
    {"TMPDIR", "The folder that takes the settings where no other can be written."},
    {"XDG_CONFIG_HOME", "Where the folder `kerno` of the settings is; `~/.config` without it."}};
constexpr Example kSettingsExamples[] = {{"Fewer digits in SVG files, and back to the default:",
                                          "kerno settings set Dec SvgOut::Precision 6\n"
                                          "kerno settings get Dec SvgOut::Precision\n"
                                          "kerno settings unset Dec SvgOut::Precision"}};
constexpr std::string_view kSettingsSeeAlso[] = {"kerno(1)", "kerno-desktop(1)"};

// page, upload, help

constexpr std::string_view kPageDescription[] = {
    "The outputs of one run have one name and several endings. The page of a run, NAME.html, "
    "shows its drawings and links to its files. Everything in it is relative, so that the folder "
    "can be moved or served as it is. The names of the pages are printed."};
constexpr Example kPageExamples[] = {
    {"Two files of one run, and their page:",
     "mkdir -p outputs\n"
     "kerno convert \"Page\" --face \"DejaVu Sans\" -o outputs/page.svg \\\n"
     "    -o outputs/page.dxf\n"
     "kerno page outputs"}};
constexpr std::string_view kPageSeeAlso[] = {"kerno-convert(1)", "kerno-upload(1)"};

constexpr std::string_view kUploadDescription[] = {
    "Posts each file to the server in a request of its own and prints what the server answers."};
constexpr Term kUploadVariables[] = {
    {"http_proxy", "A proxy, as curl(1) uses it; also https_proxy and no_proxy."},
    {"XDG_CONFIG_HOME", "Where the folder `kerno` of the settings is; `~/.config` without it."}};
constexpr Term kUploadFiles[] = {
    {"~/.config/kerno/UpFile.ini",
     "Where the files go: section `[UpFile]`, key `server`. It is never written."}};
constexpr std::string_view kUploadSeeAlso[] = {"kerno-page(1)", "curl(1)"};

constexpr std::string_view kHelpDescription[] = {
    "Prints what a command is for and its options, or without a command the list of all."};
constexpr Example kHelpExamples[] = {{"The options of kerno cut:", "kerno help cut"}};
constexpr std::string_view kHelpSeeAlso[] = {"kerno(1)"};

constexpr PageText kPages[] = {
    {"", kProgramDescription, kProgramVariables, kSettingsFiles, kProgramExamples, kProgramSeeAlso,
     Answers::kAll},
    {"convert",
     kConvertDescription,
     kFontVariables,
     {},
     kConvertExamples,
     kConvertSeeAlso,
     Answers::kAll},
    {"cut", kCutDescription, kCutVariables, kCutFiles, kCutExamples, kCutSeeAlso, Answers::kAll},
    {"contours",
     kContoursDescription,
     kFontVariables,
     {},
     kContoursExamples,
     kContoursSeeAlso,
     Answers::kAll},
    {"measure",
     kMeasureDescription,
     kFontVariables,
     {},
     kMeasureExamples,
     kMeasureSeeAlso,
     Answers::kAll},
    {"faces",
     kFacesDescription,
     kFontVariables,
     {},
     kFacesExamples,
     kFacesSeeAlso,
     Answers::kAll,
     "The file of `--font-file` is not there, or no family has the text of `--sample`."},
    {"settings", kSettingsDescription, kSettingsVariables, kSettingsFiles, kSettingsExamples,
     kSettingsSeeAlso},
    {"page", kPageDescription, {}, {}, kPageExamples, kPageSeeAlso},
    {"upload", kUploadDescription, kUploadVariables, kUploadFiles, {}, kUploadSeeAlso},
    {"help", kHelpDescription, {}, {}, kHelpExamples, kHelpSeeAlso},
};

// kerno-desktop

constexpr std::string_view kDesktopDescription[] = {
    "Opens the window of Kerno: type a text, pick a face by its looks, give a size, save. It has "
    "two ways of working, in Japanese, English or German: Cut makes drawings for the machine as "
    "`kerno cut` does, Classic makes outlines as `kerno convert` does.",
    "`kerno` without a command opens the same window."};
constexpr Term kDesktopArguments[] = {
    {"FILE",
     "Files to open, as if they were dropped on the window: a text, a parts file (`.ipx`), a font "
     "file, on the Cut page a table (`.csv`) for a series."},
    {"--help", "Tells in a few lines what this page tells."},
    {"--version", "Prints the version."},
    {"-platform NAME", "How Qt reaches the display: `xcb`, `wayland`, `offscreen`."},
    {"-style NAME", "The style of Qt's controls."}};
constexpr Term kDesktopVariables[] = {
    {"DISPLAY", "The display of the window; or WAYLAND_DISPLAY."},
    {"LANG",
     "The language of the window and the names of faces in it, where no other is set in its menu; "
     "LC_ALL and LC_MESSAGES come before it."},
    {"XDG_CONFIG_HOME", "Where the folder `kerno` of the settings is; `~/.config` without it."}};
constexpr Term kDesktopFiles[] = {
    {"~/.config/kerno/Quenkit_Setting/Quenkit.ini",
     "The settings; `kerno settings path` tells where they are."},
    {"~/.config/kerno/Quenkit_Setting/Kerno_Cut.txt",
     "What the Cut page keeps: fields, presets, recent texts, favourite faces."}};
constexpr Example kDesktopExamples[] = {
    {"The window with a text in it:", "kerno-desktop sign.txt"}};
constexpr std::string_view kDesktopSeeAlso[] = {"kerno(1)", "kerno-cut(1)", "kerno-convert(1)"};

constexpr DesktopText kDesktop = {"draw texts as outlines for machines that cut, in a window",
                                  {"desktop", kDesktopDescription, kDesktopVariables, kDesktopFiles,
                                   kDesktopExamples, kDesktopSeeAlso, Answers::kNone},
                                  kDesktopArguments};

constexpr StatusText kStatusTexts[] = {
    {kDone, "Done."},
    {kFailed, "Something could not be written or read: a font file too."},
    {kWrongUsage, "Wrong usage."},
    {kFaceTrouble,
     "The face is not installed, or with `--strict` a character has no glyph or no outline."}};

}  // namespace

const PageText& TextOf(std::string_view command) {
  static constexpr PageText kNothing = {};
  const auto found = std::ranges::find(kPages, command, &PageText::command);
  return found == std::end(kPages) ? kNothing : *found;
}

const DesktopText& TextOfDesktop() {
  return kDesktop;
}

std::span<const StatusText> ExitStatusTexts() {
  return kStatusTexts;
}

}  // namespace kerno
