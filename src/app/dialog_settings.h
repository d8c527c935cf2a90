// What the main window keeps between runs, in the settings and beside them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "app/dialog_services.h"
#include "platform/status.h"

namespace kerno {

// What does not make sense is read as its default.
DialogMemory LoadDialogMemory();

// Writes what differs from `before`. The first failure, after which nothing more is written.
Status SaveDialogMemory(const DialogMemory& memory, const DialogMemory& before);

// The text has a file of its own beside the settings, in UTF-16.
std::filesystem::path SavedTextPath();
std::u16string LoadDialogText();
Status SaveDialogText(std::u16string_view text);

}  // namespace kerno
