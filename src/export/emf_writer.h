// The parts model as an enhanced metafile (.emf).
#pragma once

#include <filesystem>

#include "export/emf_encoder.h"
#include "export/fit.h"
#include "parts/parts.h"
#include "platform/file_replacement.h"

namespace kerno {

struct EmfOptions {
  std::u16string title;  // the picture's name in the description; empty: the file's
};

// Where a drawing of this box goes in its metafile. One unit is one pixel of the reference device,
// unless the drawing is smaller than a pixel or its longer side passes kMaxEmfSide.
struct EmfLayout {
  EmfFrame frame;
  Affine fit = FlippedY(1, {});
  bool one_to_one = true;
};
inline constexpr double kMaxEmfSide = 1 << 22;  // pixels
EmfLayout LayOutEmf(const Extent3& box);

// Draws the model and writes it. Fails only where the file does.
[[nodiscard]] Status ExportEmf(const PartsA& model, const std::filesystem::path& file,
                               const EmfOptions& options = {});

// The same bytes into an open file, which the caller commits; `name` is for messages.
[[nodiscard]] Status WriteEmf(const PartsA& model, const EmfOptions& options,
                              const std::filesystem::path& name, FileReplacement* out);

}  // namespace kerno
