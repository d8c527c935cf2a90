// Runs an outside program and keeps what it printed.
#pragma once

#include <gtest/gtest.h>
#include <stdio.h>

#include <array>
#include <string>

namespace kerno::test {

// Standard output and error of a shell command; a failure is the test's when it does not exit with
// `status`.
std::string OutputOf(const std::string& command, int status = 0);

// The same for a Python script beside the tests, with the interpreter that has the readers.
inline std::string OutputOfPython(const std::string& script_and_arguments) {
  return OutputOf(std::string(KERNO_PYTHON) + " " + KERNO_TESTS + "/" + script_and_arguments);
}

}  // namespace kerno::test
