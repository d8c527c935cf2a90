#include "cli/scratch_path.h"

#include <random>
#include <string>
#include <system_error>

#include "base/folders.h"
#include "platform/system.h"

namespace kerno {

ScratchPath::ScratchPath(std::string_view extension) {
  std::random_device random;
  const std::filesystem::path temporary = TempFolder();
  folder_ = temporary / ("kerno-" + std::to_string(random()) + std::to_string(random()));
  path_ = folder_ / ("out." + std::string(extension));
  file_ = UnnamedFile::Create(temporary, path_, &status_);
  if (!file_ && status_.ok()) status_ = CurrentSystem().MakePrivateFolder(folder_);
}

void ScratchPath::Remove() const {
  if (file_ || !status_.ok()) return;
  std::error_code gone;
  std::filesystem::remove(path_, gone);
  std::filesystem::remove(folder_, gone);
}

}  // namespace kerno
