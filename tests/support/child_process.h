// A real second process.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <vector>

namespace kerno::test {

// Runs a program, or a function whose answer is the exit status, with its standard output readable
// here; ended by a signal when it still runs at the end of the test.
class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> arguments)
      : ChildProcess([&arguments] {
          std::vector<char*> argv;
          for (std::string& argument : arguments) argv.push_back(argument.data());
          argv.push_back(nullptr);
          execvp(argv[0], argv.data());
          return 127;
        }) {}
  explicit ChildProcess(const std::function<int()>& work) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe(ends), 0);
    id_ = fork();
    if (id_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      close(ends[1]);
      _exit(work());
    }
    close(ends[1]);
    output_ = ends[0];
  }
  ~ChildProcess() {
    if (id_ > 0) kill(id_, SIGKILL);
    Wait();
    close(output_);
  }
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  // Waits until the program has printed a line.
  std::string ReadLine() {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line.push_back(c);
    return line;
  }

  void Signal(int signal) { kill(id_, signal); }

  // The exit status, or minus the signal that ended it.
  int Wait() {
    if (id_ <= 0) return 0;
    int status = 0;
    waitpid(id_, &status, 0);
    id_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  }

 private:
  pid_t id_ = -1;
  int output_ = -1;
};

// Runs in a process of its own, so that limits, identities and settings end with it; its exit
// status or minus the signal that ended it.
inline int InChild(const std::function<int()>& work) {
  return ChildProcess(work).Wait();
}

}  // namespace kerno::test
