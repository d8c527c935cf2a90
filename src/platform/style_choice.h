// Which face of a family is meant by the name of a style.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kerno {

struct StyledFace {
  std::vector<std::u16string> styles;  // in every language, the one to show first
  int32_t weight = 400;                // 100 to 1000
  int32_t width = 100;                 // percent of the normal width
  bool slanted = false;                // italic or oblique
};

struct StyleChoice {
  size_t face = 0;
  bool make_bold = false, make_slanted = false;  // what the face lacks of the style
};

// The face of this style, which may be spelt in the words of other families ("Italic" for
// "Oblique", "SemiBold" for "Demi Bold"), in another order or in another language. Bold and italic
// that the family lacks are to be made of the nearest face; of any other style that it lacks there
// is nothing. `faces` (one at least) stand in the order of their likeness to a normal face.
std::optional<StyleChoice> ChooseStyle(std::u16string_view wanted,
                                       std::span<const StyledFace> faces);

// The same for a face that was named whole and is of the style `own`: that style and the wanted one
// together ("Bold" and "Oblique"), which the family must have.
std::optional<StyleChoice> ChooseStyleOfFace(std::u16string_view own, std::u16string_view wanted,
                                             std::span<const StyledFace> faces);

// The names to show, each once: "Book", "Bold".
std::u16string StyleList(std::span<const StyledFace> faces);

}  // namespace kerno
