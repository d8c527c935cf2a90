// How the characters of a text are laid out.
#pragma once

namespace kerno {

// How far a character of vertical text moves the pen down.
enum class VerticalPitch {
  kClassic,  // the mean of its advance and its ink height; can bring glyphs into contact
  kCell,     // its advance
};

struct LayoutOptions {
  bool vertical = false;
  // Turns each glyph about the middle of its cell, in degrees, and in vertical text puts the turned
  // cells on one middle line; 0 leaves it untouched.
  double character_angle = 0;
  VerticalPitch pitch = VerticalPitch::kClassic;

  bool operator==(const LayoutOptions&) const = default;
};

}  // namespace kerno
