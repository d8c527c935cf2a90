// The controls of the Cut page, for every view alike.
//
// The page has a panel of sections from top to bottom, each under its title; the preview with a bar
// under it; and a line at the bottom with the status and the outputs. In a panel's line, the
// caption of a field stands before it.
#pragma once

#include <span>

#include "app/controls.h"

namespace kerno {

enum class CutSection {
  kText,
  kFace,
  kSize,
  kPaths,
  kSeries,
  kPreview,
  kZoomBar,
  kOutput,
};

// The title over a section of the panel, English (a key of Say); empty for what is no panel.
const char16_t* TitleOf(CutSection section);

// Their order is that of the Tab key, from top to bottom and from left to right.
struct CutControlRow {
  ControlId id;
  ControlKind kind;
  CutSection section;
  bool same_line;           // stands right of the one before it
  int width;                // in pixels of a screen of 96 dpi; kRestOfLine
  const char16_t* caption;  // English, a key of Say: before a field, on a button or a box
  const char16_t* hint;     // the same: what it does; in a field that is empty, what goes there
  const char16_t* shortcut;
  const char* option;  // of `kerno cut` that it gives a value; null: none, or more than one
};

std::span<const CutControlRow> CutControls();

// What assistive technology calls it, English: its caption, or a short name where it has none.
// Empty where its hint is all there is.
const char16_t* NameOf(const CutControlRow& row);
const CutControlRow* FindCutControl(ControlId id);  // null where there is none

}  // namespace kerno
