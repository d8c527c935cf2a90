#include "app/own_scratch.h"

#include <string>
#include <vector>

#include "base/folders.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kMostFolders = 100;
constexpr const char* kMarkEnd = ".held";

fs::path AllScratch() {
  const fs::path temp = OwnTempFolder();
  return temp.empty() ? temp : temp / "Kerno.drag";
}

fs::path MarkOf(fs::path folder) {
  return folder += kMarkEnd;
}

std::unique_ptr<HeldFile> Hold(const fs::path& folder) {
  const fs::path mark = MarkOf(folder);
  (void)CreateNewFile(mark, "");  // it may stand there from an earlier run
  Status status;
  return HeldFile::Open(mark, Deny::kAll, &status);
}

// What cannot be removed, because another program still reads it, stays for a later run; its mark
// says no more then than that nobody holds it.
void Remove(const fs::path& folder, std::unique_ptr<HeldFile> mark) {
  std::error_code error;
  fs::remove_all(PathToOpen(folder), error);
  // Before it is let go, or it may be the next holder's already; Windows removes none that is held.
  const bool is_gone = RemoveFile(MarkOf(folder)).ok();
  mark.reset();
  if (!is_gone) (void)RemoveFile(MarkOf(folder));
}

void RemoveLeftFolders(const fs::path& all) {
  std::vector<fs::path> left;
  const Status listed = ListFolder(all, [&](const fs::path& path) {
    left.push_back(path.extension() == kMarkEnd ? all / path.stem() : path);
  });
  if (!listed.ok()) return;  // nobody has made any
  for (const fs::path& folder : left) {
    if (auto mark = Hold(folder)) Remove(folder, std::move(mark));
  }
  std::error_code error;
  fs::remove(PathToOpen(all), error);  // unless another run has one in it
}

}  // namespace

OwnScratch::~OwnScratch() {
  if (!mark_) return;
  const fs::path all = folder_.parent_path();
  Remove(folder_, std::move(mark_));
  RemoveLeftFolders(all);
}

fs::path OwnScratch::Folder() {
  if (mark_) return MakeFolders(folder_).ok() ? folder_ : fs::path();
  const fs::path all = AllScratch();
  if (all.empty()) return {};
  RemoveLeftFolders(all);
  for (int number = 0; number < kMostFolders && !mark_; ++number) {
    if (!MakeFolders(all).ok()) return {};  // another run may just have removed it
    folder_ = all / std::to_string(number);
    mark_ = Hold(folder_);
  }
  return mark_ && MakeFolders(folder_).ok() ? folder_ : fs::path();
}

}  // namespace kerno
