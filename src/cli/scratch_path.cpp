#include "cli/scratch_path.h"

#include <random>
#include <string>
#include <system_error>

#include "base/folders.h"
#include "platform/system.h"

namespace kerno {

ScratchPath::ScratchPath(std::string_view extension) {
  std::random_device random;
  folder_ = TempFolder() / ("kerno-" + std::to_string(random()) + std::to_string(random()));
  status_ = CurrentSystem().MakePrivateFolder(folder_);
  path_ = folder_ / ("out." + std::string(extension));
}

void ScratchPath::Remove() const {
  if (!status_.ok()) return;
  std::error_code gone;
  std::filesystem::remove(path_, gone);
  std::filesystem::remove(folder_, gone);
}

}  // namespace kerno
