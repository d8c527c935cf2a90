// What the user is told of a file that could not show everything.
#pragma once

#include <filesystem>

#include "export/draw_texts.h"
#include "parts/shapes.h"

namespace kerno {

// One message for each kind of thing that `name` lacks; none when it lacks nothing. `rule` is that
// by which elements were left out.
void TellLeftOut(const PictureNotes& notes, const VertexRule& rule,
                 const std::filesystem::path& name);

// Tells that the drawing did not keep one pixel a unit: `scale` pixels are one.
void TellScale(double scale, const std::filesystem::path& name);

}  // namespace kerno
