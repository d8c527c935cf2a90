// The parts model as a drawing for a machine, for the formats that know only paths.
#pragma once

#include <filesystem>

#include "drawing/drawing.h"
#include "parts/parts.h"

namespace kerno {

// How far chords and cubics stray from arcs of a model, in its units.
inline constexpr double kPartsTolerance = 0.01;

// One shape for each part; a unit of the model is a millimetre, y stays up. Lines that come back to
// where they began and faces are closed paths. Texts and sets of points have no form, nor has what
// is not finite: `name`, the file that will lack them, is told of.
Drawing DrawingOfParts(const PartsA& model, const std::filesystem::path& name);

// The same drawing with the lower left corner of its ink at 0, 0.
Drawing AtOrigin(Drawing drawing);

}  // namespace kerno
