// What the writers of files tell the user, kept for a sign instead of shown.
#pragma once

#include <string>
#include <vector>

namespace kerno {

// While it lives, the notices of this thread go into the list. The first one takes the place of the
// process's notices, for its life: a library shows nothing.
class FileNotices {
 public:
  explicit FileNotices(std::vector<std::string>* texts);
  ~FileNotices();
  FileNotices(const FileNotices&) = delete;
  FileNotices& operator=(const FileNotices&) = delete;

 private:
  std::vector<std::string>* before_;
};

}  // namespace kerno
