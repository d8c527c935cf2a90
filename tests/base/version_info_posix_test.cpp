#include <gtest/gtest.h>

#include <string>

#include "base/version_info.h"
#include "support/run.h"

namespace kerno {
namespace {

TEST(SystemVersionPosix, TheRunningSystemStatesDistributionAndKernel) {
  const std::string wanted = test::OutputOf(
      ". /etc/os-release; printf '%s  %s %s' \"$PRETTY_NAME\" \"$(uname -s)\" \"$(uname -r)\"");
  EXPECT_EQ(SystemDescription(), std::u16string(wanted.begin(), wanted.end()));
}

}  // namespace
}  // namespace kerno
