// The outputs of a run as they lie in their folder, and the page that is written beside them.
//
// The files of a run share a base name: "BASE.svg", "BASE.dxf", ... and the page "BASE.html". A
// base here is the folder and that name, without an extension; a point in the name stays.
#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "platform/status.h"
#include "web/output_page.h"

namespace kerno {

std::filesystem::path PageOfRun(const std::filesystem::path& base);

// Lists the run's outputs that stand in the folder, in the order of a page; the page is none of
// them. Fails where the folder or one of them cannot be looked at; *files then holds a part of
// them.
[[nodiscard]] Status FilesOfRun(const std::filesystem::path& base, std::vector<PageFile>* files);

// What a base name of the form FACE_HEIGHT_TEXT says; a name of another form is the text.
PageSource SourceOfName(std::u16string_view base_name);

// Writes the page of a run, whole or not at all. A page that stands there is replaced; a file of
// that name that this program did not write is not, and is a failure.
Status WriteOutputPage(const std::filesystem::path& base, const PageSource& source);

// Writes the page again when there is one, from what it says itself of text, face and height; for
// whenever another output of the run was written. Ok when there is none.
Status RefreshOutputPage(const std::filesystem::path& base);

// Writes the page of every run in a folder: of each base name with an output beyond the formatted
// text, or with a page of this program. Text, face and height come from the page that stands there,
// else from the base name. Goes on after a page that cannot be written, and then returns the first
// failure; a folder without any run is a failure too.
Status WriteFolderPages(const std::filesystem::path& folder,
                        std::vector<std::filesystem::path>* written);

}  // namespace kerno
