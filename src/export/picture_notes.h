// What the user is told of a picture that could not show everything.
#pragma once

#include <filesystem>

#include "export/draw_texts.h"

namespace kerno {

// One message for each kind of thing that `name` lacks; none when it lacks nothing.
void TellLeftOut(const PictureNotes& notes, const std::filesystem::path& name);

// Tells that the drawing did not keep one pixel a unit: `scale` pixels are one.
void TellScale(double scale, const std::filesystem::path& name);

}  // namespace kerno
