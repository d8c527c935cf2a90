// UTF-16 text as the bytes of a file.
#pragma once

#include <string>
#include <string_view>

namespace kerno::posix {

enum class ByteForm {
  kCodePage932,     // no mark
  kUtf16,           // little-endian after FF FE
  kUtf16BigEndian,  // after FE FF
};

// The text of a file that begins with a UTF-16 mark or is in the 8-bit code page.
std::u16string TextOfBytes(std::string_view bytes, ByteForm* form);
std::string BytesOfText(std::u16string_view text, ByteForm form);

}  // namespace kerno::posix
