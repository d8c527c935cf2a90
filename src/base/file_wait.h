// Waiting for a file that another process holds.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>

#include "platform/file_replacement.h"
#include "platform/status.h"

namespace kerno {

// What the wait display tells.
enum class FileWait { kRead, kWrite, kNothing };

// Which failures may pass with time.
enum class WaitOut {
  kHolder,       // another process holds the file
  kAskedHolder,  // the same, while Notices::KeepWaiting says so
  kAnyFailure,   // whatever keeps it from being opened; a full disk does not
};

// How long is waited in all: 100 pauses of 100 ms. Shared by several files, it lasts for them
// together; a minute after the last pause all of them may be made again.
class Patience {
 public:
  // Makes a pause unless all were made. Whether another attempt is due.
  bool Pause();

 private:
  int left_ = 100;
  uint32_t last_ = 0;  // in ticks
};

// Makes `attempt` up to 100 times, 100 ms apart, while it fails for what is waited out. The wait
// display tells the path after the first such failure and is cleared at the end. The result is that
// of the last attempt. Without a patience of the caller's, the file has one of its own.
Status WaitForFile(const std::filesystem::path& path, FileWait wait,
                   const std::function<Status()>& attempt, WaitOut what = WaitOut::kHolder,
                   Patience* patience = nullptr);

// ReplaceFile for a target that another process may hold: waits until nobody does. What may be
// stopped (base/stop.h) is asked before each piece and at the end; the target then stays.
Status ReplaceWhenFree(const std::filesystem::path& target, const FileFiller& fill);
Status ReplaceWhenFree(const std::filesystem::path& target, std::string_view bytes);

}  // namespace kerno
