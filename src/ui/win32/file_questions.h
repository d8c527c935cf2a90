// What the user is asked: for files, a folder, a name, a decision. Nothing when it is cancelled.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/cut_view.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// The system asks before another file is replaced.
std::optional<std::filesystem::path> AskForSave(HWND owner, const SaveQuestion& question);
std::optional<std::filesystem::path> AskForOpen(HWND owner, const OpenQuestion& question);
std::optional<std::filesystem::path> AskForFolder(HWND owner, const std::filesystem::path& start);
std::optional<std::u16string> AskForName(HINSTANCE instance, HWND owner, std::u16string_view title,
                                         std::u16string_view proposed);
// Which of the buttons was pressed; there is one more, which cancels.
std::optional<size_t> AskForDecision(HWND owner, std::u16string_view text,
                                     const std::vector<std::u16string>& buttons);

}  // namespace kerno
