// A real second process.
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace kerno::test {

// Runs a program with its standard output readable here; ended by a signal when it still runs at
// the end of the test.
class ChildProcess {
 public:
  explicit ChildProcess(std::vector<std::string> arguments) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe(ends), 0);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    id_ = fork();
    if (id_ == 0) {
      dup2(ends[1], STDOUT_FILENO);
      close(ends[0]);
      close(ends[1]);
      execvp(argv[0], argv.data());
      _exit(127);
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

}  // namespace kerno::test
