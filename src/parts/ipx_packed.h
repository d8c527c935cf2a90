// The packed form of a parts file's text: each UTF-16 unit as one to three bytes, in the manner of
// UTF-8 but unit by unit. Every text goes there and back, lone surrogates included, and everything
// that means something to the format is one byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kerno::ipx {

// UTF-16 to the packed form and back.
void AppendPacked(std::string* packed, std::u16string_view text);
std::string Pack(std::u16string_view text);
std::u16string Unpack(std::string_view packed);

// The same of units as a file holds them, two bytes each; the half of one at the end is nothing.
enum class ByteOrder { kLittle, kBig };
void AppendPackedBytes(std::string* packed, std::string_view bytes, ByteOrder order);
std::string UnpackBytes(std::string_view packed);  // the low byte first

// The bytes before the first that is not ASCII.
size_t AsciiPrefix(std::string_view bytes);

}  // namespace kerno::ipx
