// What the readers of stroke fonts share.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "outline/stroke_font.h"

namespace kerno {

// More than any font has; keeps what a hostile file takes of memory within bounds.
inline constexpr size_t kMostStrokeSegments = 4'000'000, kMostGlyphSegments = 20'000;
inline constexpr std::u16string_view kGlyphTooLarge = u"has more than 20000 lines and curves";

Status StrokeFontFault(size_t line, std::u16string why);

// Takes a decimal number from the front of the text, which moves to what follows. Nothing, and the
// text as it was, where there is none or it is out of all bounds (beyond 1e6).
std::optional<double> TakeNumber(std::string_view* text);

// Takes a line, without its end (LF or CR LF), from the front of the text.
std::string_view TakeLine(std::string_view* text);

// The text without the blanks around it.
std::string_view Trimmed(std::string_view text);

// The height of the ink of the font's "H", as far as it lies above the baseline; 0 where it has
// none.
double HeightOfH(const StrokeFont& font);

size_t CountSegments(const StrokeGlyph& glyph);

}  // namespace kerno
