#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

#include "base/text.h"
#include "base/version_info.h"
#include "platform/system.h"
#include "support/run.h"

namespace kerno {
namespace {

TEST(SystemVersionPosix, TheRunningSystemStatesDistributionAndKernel) {
  const std::string wanted = test::OutputOf(
      ". /etc/os-release; printf '%s  %s %s' \"$PRETTY_NAME\" \"$(uname -s)\" \"$(uname -r)\"");
  EXPECT_EQ(SystemDescription(), std::u16string(wanted.begin(), wanted.end()));
}

// KERNO_WINDOWS_PROGRAMS names the cross-built programs, where there are some, with blanks between.
TEST(VersionReaderPosix, ReadsTheProgramsForWindows) {
  const char* programs = std::getenv("KERNO_WINDOWS_PROGRAMS");
  if (programs == nullptr) GTEST_SKIP() << "no programs for Windows are named";
  VersionReader running;
  ASSERT_TRUE(running.Open(CurrentSystem().ProgramPath()));
  std::istringstream paths(programs);
  for (std::string path; paths >> path;) {
    VersionReader reader;
    ASSERT_TRUE(reader.Open(path)) << path;
    EXPECT_EQ(TextPath(reader.Get(u"OriginalFilename")), std::filesystem::path(path).filename());
    EXPECT_EQ(reader.Get(u"FileVersion"), running.Get(u"FileVersion"));
  }
}

}  // namespace
}  // namespace kerno
