// Text as RTF (Rich Text Format 1.9).
#pragma once

#include <string>
#include <string_view>

#include "parts/color.h"

namespace kerno {

struct RtfOptions {
  std::u16string face;
  Color color = 0;
  int half_points = 24;  // the size of the letters
};

// A whole RTF document in one face and colour. Everything outside printable ASCII is written as
// \uN with N as a signed 16-bit number and "?" (\'3f) as its stand-in, surrogates one by one; line
// ends (CR LF, CR or LF) separate paragraphs, and the last paragraph is ended by the document
// alone, so that a reader gives back the same text. Pure ASCII, declared as code page 932.
std::string RtfDocument(std::u16string_view text, const RtfOptions& options);

}  // namespace kerno
