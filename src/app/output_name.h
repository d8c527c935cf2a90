// Names of output files.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace kerno {

// Room that a cleaned name leaves for the longest ending that is put after it, in UTF-8 bytes, and
// the length that file systems take.
inline constexpr size_t kLongestSuffix = 16;
inline constexpr size_t kLongestName = 255;

// How much of the text goes into a name, in characters.
inline constexpr size_t kTextInName = 100;

// Whether a system takes the name (what stands before its first ".") for a device.
bool IsDeviceName(std::u16string_view name);

// A file name without its ending that is valid and harmless on every system: separators and the
// other characters that some system keeps for itself, control characters, invisible direction
// marks and lone surrogates become "_", as does a "." or "-" in front; blanks in front and dots
// and blanks at the end go; a device's reserved name gets "_" in front; cut between characters so
// that kLongestSuffix bytes fit after it; "_" where nothing is left.
std::u16string CleanFileName(std::u16string_view name);

// The base name of a run's outputs: face, height and the first kTextInName characters of the text,
// joined by "_" and cleaned.
std::u16string OutputBaseName(std::u16string_view face, std::u16string_view height,
                              std::u16string_view text);

// The path of an output: the base path with another ending. "." is put in front of `extension`
// where it begins with none.
std::filesystem::path OutputPath(const std::filesystem::path& base_path,
                                 std::u16string_view extension);

}  // namespace kerno
