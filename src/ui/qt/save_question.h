// The question for a file to write.
#pragma once

#include <filesystem>
#include <optional>

#include "app/dialog_view.h"

class QWidget;

namespace kerno {

// Asks before another file is replaced; nothing when cancelled. A name without an extension gets
// that of the kind that was chosen.
std::optional<std::filesystem::path> AskForFile(QWidget* parent, const SaveQuestion& question);

}  // namespace kerno
