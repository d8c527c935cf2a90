// The process's FreeType library and faces opened with it.
//
// The library is set up by hand, so that the user's FREETYPE_PROPERTIES cannot change an outline:
// the modules keep their built-in settings and the TrueType interpreter is version 40.
#pragma once

#include <ft2build.h>

#include <memory>
#include <string>

#include "platform/status.h"
#include FT_FREETYPE_H

namespace kerno {

// Closes a face, while no other one is opened or closed, and keeps the library alive as long as one
// of its faces is open.
struct FaceCloser {
  std::shared_ptr<FT_LibraryRec_> library;
  void operator()(FT_Face face) const noexcept;
};
using FacePtr = std::unique_ptr<FT_FaceRec_, FaceCloser>;

// A sign must not lose a letter because memory is short: that ends the work.
void CheckMemory(FT_Error error);

// Opens one face of a file: `index` counts faces as Fontconfig does (a named instance of a variable
// face in the upper 16 bits). Null when FreeType cannot read it: *reading is then the failure of a
// file that could not be opened or read, and ok for one that is damaged.
FacePtr OpenFace(const std::string& path, long index, Status* reading);

}  // namespace kerno
