// Making an INI file ready for a store.
#pragma once

#include <filesystem>
#include <string>

#include "platform/status.h"

namespace kerno {

// Creates the file's folder, and turns a file that is not UTF-16 with a mark into one, with a
// header of three lines before its text. Text that is UTF-8 is read as such, other text in the
// 8-bit code page; bytes that would not come back from the new text are kept in a copy beside the
// file. A missing file stays missing. A conversion waits while another process holds the file, and
// so does reading where the system keeps readers out. Not ok when the file cannot be read; a
// failure of the conversion alone, which leaves the file as it was, goes to *converted.
Status PrepareIniFile(const std::filesystem::path& file, Status* converted);

// The three lines, with the current time in the middle one.
std::u16string IniHeader();

}  // namespace kerno
