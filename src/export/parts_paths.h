// The parts model as paths, for the formats that know nothing else.
#pragma once

#include <filesystem>

#include "export/layer_paths.h"
#include "parts/parts.h"

namespace kerno {

// How far chords and cubics stray from arcs of a model, in its units.
inline constexpr double kPartsTolerance = 0.01;

enum class PartsOrigin {
  kModel,      // the model's own
  kLowerLeft,  // the lower left corner of the ink
};

// One layer; a unit of the model is a millimetre, y stays up. Lines that come back to where they
// began and faces are closed paths. Texts and sets of points have no form, nor has what is not
// finite: `name`, the file that will lack them, is told of. Parts are looked at one by one, at each
// walk again; the model lives as long as what is returned.
LayerPaths PathsOfParts(const PartsA& model, PartsOrigin origin, const std::filesystem::path& name);

}  // namespace kerno
