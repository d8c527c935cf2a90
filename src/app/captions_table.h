// The rows of the window's texts: sources say them by their English text (captions.h).
#pragma once

#include <span>

namespace kerno {

struct CaptionRow {
  const char16_t* english;
  const char16_t* japanese;
  const char16_t* german;
  // What an English window says in place of the key, where that names an option.
  const char16_t* shown = nullptr;
};

// What the window says of itself.
std::span<const CaptionRow> CaptionTexts();

// Reasons of failures, which come as whole English texts: "{}" stands for what is in its place.
std::span<const CaptionRow> CaptionReasons();

// What failures are about, where that is no file and no name.
std::span<const CaptionRow> CaptionSubjects();

}  // namespace kerno
