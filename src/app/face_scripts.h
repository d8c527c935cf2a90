// Which scripts a face can write, told by letters that every text of the script needs.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "platform/font_families.h"

namespace kerno {

struct FaceScript {
  std::string_view name;        // in English, ASCII: a key of the captions
  std::u16string_view letters;  // a face that has all of them writes the script
  std::u16string_view sample;   // what shows a face of the script at its best
};

// In the order in which a list shows them.
std::span<const FaceScript> FaceScripts();

// A bit for each of FaceScripts, the first one the lowest.
using FaceScriptSet = uint64_t;
FaceScriptSet ScriptsIn(const CharacterSet& characters);

// A sample of that one of the scripts which a face was most likely made for; its first characters
// where it writes none of them; empty where it has no character to show.
std::u16string OwnSample(FaceScriptSet scripts, const CharacterSet& characters);

}  // namespace kerno
