#include <stdlib.h>

#include "support/child_process.h"
#include "support/environment.h"
#include "support/file_holder.h"
#include "support/places.h"
#include "support/private_registry.h"
#include "support/run.h"

namespace kerno::test {

const std::filesystem::path kUnwritableFolder = "/proc";
const std::filesystem::path kFullDevice = "/dev/full";
const bool kHoldsKeepReadersOut = false;

void SetVariable(const std::string& name, const std::string& value) {
  setenv(name.c_str(), value.c_str(), 1);
}

PrivateRegistry::PrivateRegistry() = default;
PrivateRegistry::~PrivateRegistry() = default;

std::string OutputOf(const std::string& command, int status) {
  std::string output;
  FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
  if (!pipe) {
    ADD_FAILURE() << command;
    return output;
  }
  std::array<char, 4096> buffer;
  while (const size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
    output.append(buffer.data(), count);
  }
  const int ended = pclose(pipe);
  EXPECT_EQ(ended >> 8, status) << command << "\n" << output;
  return output;
}

FileHolder::FileHolder(const std::filesystem::path& file, HoldKind kind, unsigned milliseconds) {
  const auto process = std::make_shared<ChildProcess>(
      std::vector<std::string>{KERNO_PYTHON, "-c",
                               "import fcntl, sys, time\n"
                               "f = open(sys.argv[1], 'r+b')\n"
                               "getattr(fcntl, sys.argv[2])(f, fcntl.LOCK_EX)\n"
                               "print('held', flush=True)\n"
                               "time.sleep(float(sys.argv[3]) / 1000)\n",
                               file.native(), kind == HoldKind::kWholeFile ? "flock" : "lockf",
                               std::to_string(milliseconds ? milliseconds : 1000000)});
  EXPECT_EQ(process->ReadLine(), "held");
  hold_ = process;
}

}  // namespace kerno::test
