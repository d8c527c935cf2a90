// What the user is asked: for files, a folder, a name, a decision. Nothing when it is cancelled.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "app/cut_view.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// The system asks before another file is replaced.
std::optional<std::filesystem::path> AskForSave(HWND owner, const SaveQuestion& question);
std::optional<std::filesystem::path> AskForOpen(HWND owner, const OpenQuestion& question);
std::optional<std::filesystem::path> AskForFolder(HWND owner, const std::filesystem::path& start);
std::optional<std::u16string> AskForName(HINSTANCE instance, HWND owner, std::u16string_view title,
                                         std::u16string_view proposed);
// Whether the button was pressed; the other one cancels.
bool AskForDecision(HWND owner, std::u16string_view text, std::u16string_view button);

}  // namespace kerno
