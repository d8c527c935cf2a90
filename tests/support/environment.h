// The process's environment, changed for a test. Names and values are ASCII.
#pragma once

#include <string>

namespace kerno::test {

void SetVariable(const std::string& name, const std::string& value);

}  // namespace kerno::test
