#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/stroke_font_folders.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

std::string Variable(const char* name) {
  const char* value = std::getenv(name);
  return value ? value : "";
}

// The folders of data by the desktop conventions, the user's first.
std::vector<fs::path> DataFolders() {
  std::vector<fs::path> folders;
  const auto add = [&](const fs::path& folder) {
    if (folder.is_absolute()) folders.push_back(folder);
  };
  const std::string own = Variable("XDG_DATA_HOME");
  add(fs::path(own).is_absolute() ? fs::path(own) : fs::path(Variable("HOME")) / ".local/share");
  std::string shared = Variable("XDG_DATA_DIRS");
  if (shared.empty()) shared = "/usr/local/share:/usr/share";
  for (size_t at = 0; at <= shared.size();) {
    const size_t end = std::min(shared.find(':', at), shared.size());
    add(shared.substr(at, end - at));
    at = end + 1;
  }
  return folders;
}

}  // namespace

std::vector<fs::path> StrokeFontFolders() {
  std::vector<fs::path> folders;
  for (const fs::path& data : DataFolders()) {
    for (const std::string_view place : {"kerno/stroke-fonts", "hershey-fonts", "librecad/fonts",
                                         "inkscape/extensions/svg_fonts"}) {
      folders.push_back(data / place);
    }
  }
  return folders;
}

}  // namespace kerno
