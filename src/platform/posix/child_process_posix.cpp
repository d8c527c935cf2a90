#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <sstream>

#include "platform/posix/child_process.h"

namespace kerno::posix {
namespace {

namespace fs = std::filesystem;

constexpr int kReport = 3;  // the descriptor on which the watcher tells what happened

// What the watcher sends: the program could not be started, or how it ended.
struct Report {
  enum Kind : int { kNotStarted, kEnded, kKilled };
  int kind = kNotStarted;
  int value = 0;
};

// The argument vector that the system wants, made before the fork.
class ArgumentVector {
 public:
  ArgumentVector(const fs::path& program, const std::vector<std::string>& arguments)
      : texts_{program.native()} {
    texts_.insert(texts_.end(), arguments.begin(), arguments.end());
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  char* const* get() const { return pointers_.data(); }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

void CloseFrom(int first) {
  if (close_range(static_cast<unsigned>(first), ~0U, 0) == 0) return;
  for (int fd = first; fd < 1024; ++fd) close(fd);
}

void Send(const Report& report) {
  // The caller may have lost patience and closed its end; the watcher ignores SIGPIPE.
  if (write(kReport, &report, sizeof report) < 0) return;
}

// Starts the program as a child and tells its fate. Between fork and exec only calls that are safe
// there are made.
[[noreturn]] void Watch(const char* program, char* const* argv, const char* folder) {
  const pid_t child = fork();
  if (child == 0) {
    signal(SIGPIPE, SIG_DFL);
    fcntl(kReport, F_SETFD, FD_CLOEXEC);
    if (*folder == '\0' || chdir(folder) == 0) execve(program, argv, environ);
    Send({Report::kNotStarted, errno});
    _exit(127);
  }
  if (child < 0) {
    Send({Report::kNotStarted, errno});
    _exit(1);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  if (WIFEXITED(status)) {
    Send({Report::kEnded, WEXITSTATUS(status)});
  } else {
    Send({Report::kKilled, WTERMSIG(status)});
  }
  _exit(0);
}

// Cuts every tie to the caller but the report.
void Detach(int report) {
  setsid();
  signal(SIGPIPE, SIG_IGN);
  const int nothing = open("/dev/null", O_RDWR);
  if (report != kReport) dup2(report, kReport);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nothing, stream);
  CloseFrom(kReport + 1);
}

ChildResult Await(int report_end, int patience) {
  ChildResult result;
  result.started = true;
  pollfd waiting{report_end, POLLIN, 0};
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::milliseconds(patience);
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    const int ready = poll(&waiting, 1, left.count() > 0 ? static_cast<int>(left.count()) : 0);
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return result;  // it still runs
    break;
  }
  Report report;
  if (read(report_end, &report, sizeof report) != sizeof report) return result;
  if (report.kind == Report::kNotStarted) result.started = false;
  if (report.kind == Report::kEnded) result.exit_status = report.value;
  return result;
}

bool IsExecutable(const fs::path& file) {
  struct stat info {};
  return stat(file.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
         faccessat(AT_FDCWD, file.c_str(), X_OK, AT_EACCESS) == 0;
}

}  // namespace

ChildResult StartDetached(const fs::path& program, const std::vector<std::string>& arguments,
                          const fs::path& folder, int patience) {
  const ArgumentVector argv(program, arguments);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return {};
  const pid_t starter = fork();
  if (starter == 0) {
    Detach(ends[1]);
    const pid_t watcher = fork();
    if (watcher == 0) Watch(program.c_str(), argv.get(), folder.c_str());
    _exit(watcher < 0 ? 1 : 0);
  }
  close(ends[1]);
  ChildResult result;
  if (starter > 0) {
    int status = 0;
    while (waitpid(starter, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0) result = Await(ends[0], patience);
  }
  close(ends[0]);
  return result;
}

ChildResult RunInTerminal(const fs::path& program, const std::vector<std::string>& arguments) {
  const ArgumentVector argv(program, arguments);
  const pid_t child = fork();
  if (child < 0) return {};
  if (child == 0) {
    execve(program.c_str(), argv.get(), environ);
    _exit(127);
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  ChildResult result;
  result.started = !WIFEXITED(status) || WEXITSTATUS(status) != 127;
  if (WIFEXITED(status)) result.exit_status = WEXITSTATUS(status);
  return result;
}

fs::path FindExecutable(const fs::path& name) {
  if (name.empty()) return {};
  if (name.has_parent_path()) return IsExecutable(name) ? name : fs::path();
  const char* const path = std::getenv("PATH");
  std::istringstream folders(path ? path : "/usr/local/bin:/usr/bin:/bin");
  for (std::string folder; std::getline(folders, folder, ':');) {
    // A relative folder would let the current one choose the program.
    if (fs::path(folder).is_absolute() && IsExecutable(folder / name)) return folder / name;
  }
  return {};
}

}  // namespace kerno::posix
