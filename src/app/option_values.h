// Arguments as numbers: the whole argument must be one, in range, whatever the locale.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "drawing/geometry.h"

namespace kerno {

// Each reports what is wrong with `text` under the option's name and answers nothing.
std::optional<int32_t> WholeNumber(std::string_view option, std::string_view text, int32_t least,
                                   int32_t most);
std::optional<double> Number(std::string_view option, std::string_view text);
std::optional<P2> Point(std::string_view option, std::string_view text);  // "X,Y"

// The argument as text; reports arguments that are not UTF-8.
std::optional<std::u16string> TextArgument(std::string_view option, std::string_view text);

// The argument as the name of a file, byte for byte where names are bytes: one that is not UTF-8
// names its file all the same.
std::filesystem::path PathArgument(std::string_view text);

// Whether the argument names a file or folder at all; reports one that does not.
bool IsFileName(std::string_view option, std::string_view text);

// Reports that an option's value is none of its choices.
void ReportChoice(std::string_view option, std::string_view text, std::string_view choices);

}  // namespace kerno
