// Dragging a file out of the window.
#pragma once

#include <filesystem>

#include "platform/win32/windows_api.h"

namespace kerno {

// Lets the user drop the file on another program, which gets a copy. Returns when the mouse button
// is up. The thread has called OleInitialize. False where the system has no such file.
bool DragFile(const std::filesystem::path& file);

}  // namespace kerno
