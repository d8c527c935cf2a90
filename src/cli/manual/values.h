// What can stand after an option, as far as completions can know.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kerno {

struct Values {
  enum class Kind {
    kFree,        // numbers, texts: nothing to offer
    kWords,       // one of `words`
    kFile,        // a file; one of the endings in `words`, without the point, or any
    kFolder,      // one that is there
    kOutput,      // a file to write, whose ending, one of `words`, chooses the format
    kFace,        // a family that is installed
    kStyle,       // a style of the family, or of the file, that another option names
    kFeatures,    // of that face, several by commas
    kAxes,        // the same, with a place on each
    kStrokeFont,  // the name of a font of strokes, or a file with one of the endings in `words`
    kSection,     // of a setting
    kKey,         // of a setting in the section that stands before it
    kCommand,     // of kerno
  };
  Kind kind = Kind::kFree;
  std::vector<std::string> words;
};

// Of an option or argument by its name: "--align", "FILE". One name means the same in every
// command.
Values ValuesOf(std::string_view name);

// A section of the settings with its keys.
struct SettingNames {
  std::string section;
  std::vector<std::string> keys;
};
std::vector<SettingNames> SettingSections();

}  // namespace kerno
