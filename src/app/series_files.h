// The files of a series: one after the other, whole or not at all, and never over another one
// unless that was asked for.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <unordered_set>

#include "platform/status.h"

namespace kerno {

// What becomes of files that stand where a series writes.
enum class ExistingFiles {
  kKeep,     // they stay, and that is told
  kReplace,  // they are written again
  kResume,   // they are done: files appear whole
};

// Whether what stands there stays, so that the file is not written. Not ok where a stopped run
// cannot have left it: a folder, an empty file.
[[nodiscard]] Status FindStanding(const std::filesystem::path& file, ExistingFiles existing,
                                  bool* stays);

// Makes the folder of a file; the last one is remembered. For one thread at a time.
class FolderMaker {
 public:
  [[nodiscard]] Status MakeFor(const std::filesystem::path& file);

 private:
  std::filesystem::path last_;
};

// Takes away what killed writers left in the folders of files, once in each folder. Another
// writer's file at work is younger than a minute and stays.
class LeftoverRemover {
 public:
  void CleanFor(const std::filesystem::path& file);

 private:
  std::unordered_set<uint64_t> seen_;
};

}  // namespace kerno
