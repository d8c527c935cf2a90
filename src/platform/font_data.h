// The bytes of an installed font, for those who shape text and read outlines themselves.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"

namespace kerno {

// A font file, or a collection of fonts, as it lies in memory.
class FontBytes {
 public:
  virtual ~FontBytes() = default;
  virtual std::string_view bytes() const = 0;
};

struct FontData {
  std::shared_ptr<const FontBytes> file;
  uint32_t index = 0;     // the font of a collection
  uint32_t instance = 0;  // above 0: the named instance of a variable font, counted from 1
  std::u16string family;  // as the system shows it
  std::u16string style;   // "Bold Oblique"
};

// Finds a family by any of its names, case ignored, and in it the style of this name; without a
// style the upright one nearest to normal weight and width. An empty family is the system's own
// choice. Fails with kNotFound where there is none (the reason lists the styles that there are),
// and for a file that cannot be read.
[[nodiscard]] Status FindFontData(std::u16string_view family, std::u16string_view style,
                                  FontData* data);

}  // namespace kerno
