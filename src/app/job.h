// From a text to a drawing: what the command line, the window and a row of a series all do.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "outline/text_contours.h"
#include "outline/typesetter.h"
#include "parts/parts.h"

namespace kerno {

// What a contour becomes in its part.
enum class ContourElements {
  kLines,  // a closed chain of lines, without lines of no length: a cutter would pierce twice
  kFaces,  // one face
  kBoth,
};

struct PartsOptions {
  ContourElements elements = ContourElements::kLines;
  std::u16string layer = u"Kerno";
};

struct Job {
  TextRequest text;  // its placement's insertion point is not read: `at` takes its place
  double scale = 1;  // multiplies the finished geometry
  P2 at;             // where the block's centre lands in the drawing, after the scale, y up
  PartsOptions parts;
};

// Sets the job's text and puts it in its place, y up. Nothing when the system has no face at all.
std::optional<TypesetText> Make(const Job& job, Typesetter& typesetter);

// Adds one part per contour (y up) to *parts. Contour i gets the hues 30 i and 30 i + 180 for pen
// and brush: neighbours step round the colour wheel.
void BuildParts(const TextContours& contours, const PartsOptions& options, PartsA* parts);

// The same parts as a drawing that makes them of the contours each time they are looked at: of a
// long text they would take gigabytes.
PartsA DrawingOf(std::shared_ptr<const TextContours> contours, const PartsOptions& options);

}  // namespace kerno
