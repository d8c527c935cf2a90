// A line of text cut into runs that a font shapes each at once: of one direction, one script, and
// in a column standing or lying.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

#include "outline/bidi.h"
#include "outline/scripts.h"

namespace kerno {

enum class WritingMode {
  kHorizontal,
  kVertical,  // each line is a column, top to bottom, in the font's vertical forms
};

enum class RunPose : uint8_t {
  kInLine,   // of a horizontal line
  kUpright,  // of a column: each character stands below the one before
  kTurned,   // of a column: a piece of a horizontal line that lies on its right side
  kAcross,   // of a column: a short number, side by side in the place of one character
};

struct RunOptions {
  WritingMode mode = WritingMode::kHorizontal;
  ParagraphDirection direction = ParagraphDirection::kAuto;
  size_t across_digits = 0;  // in a column, numbers of so many digits at most are kAcross
  // Whether the font has a form for columns of a character that else lies on its side.
  std::function<bool(char32_t)> has_vertical_form = nullptr;
};

struct TextRun {
  size_t start = 0, length = 0;  // UTF-16 units of the line
  Script script = kCommonScript;
  bool right_to_left = false;
  RunPose pose = RunPose::kInLine;
};

// The runs as they stand: left to right, or top to bottom. Every unit of the line is in one of
// them.
//
// Digits, blanks, punctuation and marks have the script of what is before them (at the start of a
// line: after them), brackets that of their opening half. Han and kana are one run, as Japanese is
// written: a run of both has the script that comes first.
std::vector<TextRun> RunsOf(std::u16string_view line, const RunOptions& options);

}  // namespace kerno
