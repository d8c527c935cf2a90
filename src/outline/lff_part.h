// A part of a LibreCAD font, found without reading the rest: files of many thousand characters have
// millions of bytes, and a line of text needs a dozen letters.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kerno {

// The characters that a file has entries for, each once, in ascending order.
std::vector<char32_t> CharactersOfLff(std::string_view bytes);

// What stands before the first entry, and the entries of these characters and of those whose
// strokes they take over: a font file itself. Characters that the font lacks are left out.
std::string PartOfLff(std::string_view bytes, std::u32string_view characters);

}  // namespace kerno
