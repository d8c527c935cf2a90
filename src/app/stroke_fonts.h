// Fonts of strokes by name or file.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "outline/stroke_font.h"
#include "platform/font_families.h"
#include "platform/status.h"

namespace kerno {

struct StrokeFontFile {
  // That of the file without its ending, or with it where another font comes first by that name.
  std::u16string name;
  std::filesystem::path file;
};

// All that lie in the system's folders for them, by name; what is in them is not looked at.
std::vector<StrokeFontFile> InstalledStrokeFonts();

// Whether a file can be a font of strokes by the ending of its name: one of these.
inline constexpr std::u16string_view kStrokeFontEndings[] = {u"jhf", u"lff", u"svg"};
bool IsStrokeFontName(const std::filesystem::path& file);

struct ChosenStrokeFont {
  std::filesystem::path file;
  StrokeFont font;  // its family is the file's name where it has none of its own
};

// Reads the font of this name (case ignored), or the file: what has a separator or names a file
// that is there is one. Fails with kNotFound where there is none (the reason names near ones), and
// for a file that cannot be read or is no font, with file and line. *chosen is set on success only.
[[nodiscard]] Status ChooseStrokeFont(std::u16string_view wanted, ChosenStrokeFont* chosen);

// The same for a file, of which at least the strokes of `text` are wanted: quick for large ones.
[[nodiscard]] Status ReadStrokesFor(std::u16string_view text, const std::filesystem::path& file,
                                    ChosenStrokeFont* chosen);

// The characters that a file has strokes for.
[[nodiscard]] Status ReadStrokeCharacters(const std::filesystem::path& file,
                                          CharacterSet* characters);

}  // namespace kerno
