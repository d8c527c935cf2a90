// The parts model as an SVG drawing (.svg).
//
// Coordinates are the model's with y negated, so that the drawing stands upright. The program's
// path and the time of writing, which the first comment tells, come from CurrentSystem and
// CurrentClock.
#pragma once

#include <filesystem>

#include "parts/parts.h"
#include "platform/file_replacement.h"

namespace kerno {

struct SvgOptions {
  // Adds width and height in millimetres, one to a unit. Off: the reader chooses the size.
  bool millimetres = false;
};

// Writes every element of the model, in groups (svg_groups.h): faces filled or hatched with the
// brushes of their parts; lines that chain as one polygon or polyline, edges as lines, circles,
// arcs, points as crosses, texts. What has a coordinate that is not finite, or beyond 1e100, is
// left out, and the notices tell how many.
[[nodiscard]] Status ExportSvg(const PartsA& model, const std::filesystem::path& file,
                               const SvgOptions& options = {});

// The same bytes into an open file, which the caller commits; `name` is for messages and for the
// comment.
[[nodiscard]] Status WriteSvg(const PartsA& model, const SvgOptions& options,
                              const std::filesystem::path& name, FileReplacement* out);

}  // namespace kerno
