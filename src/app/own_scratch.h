// A folder for files of this run that other programs are given.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/held_file.h"

namespace kerno {

// The folder is this run's alone ("Kerno.drag/NUMBER" in OwnTempFolder) while a file beside it
// ("NUMBER.held") is held; it goes with this object. What runs have left that did not come to their
// end goes with the next one that does, or that needs a folder.
class OwnScratch {
 public:
  OwnScratch() = default;
  ~OwnScratch();
  OwnScratch(const OwnScratch&) = delete;
  OwnScratch& operator=(const OwnScratch&) = delete;

  // Made when it is asked for. Empty when it cannot be had.
  std::filesystem::path Folder();

 private:
  std::filesystem::path folder_;
  std::unique_ptr<HeldFile> mark_;
};

}  // namespace kerno
