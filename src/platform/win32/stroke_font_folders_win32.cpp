#include "platform/stroke_font_folders.h"
#include "platform/system.h"

namespace kerno {

std::vector<std::filesystem::path> StrokeFontFolders() {
  std::vector<std::filesystem::path> folders;
  for (const std::filesystem::path& place :
       {RealSystem().ConfigFolder(), RealSystem().ProgramPath().parent_path()}) {
    if (!place.empty()) folders.push_back(place / "stroke-fonts");
  }
  return folders;
}

}  // namespace kerno
