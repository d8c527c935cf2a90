// kerno: the command line as a program.

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <system_error>

#include "cli/console.h"
#include "cli/program.h"
#include "platform/console.h"

namespace kerno {
namespace {

// Says so without memory of its own.
ExitStatus ReportNoMemory() {
  std::fputs("kerno: memory: there is not enough for this text\n", stderr);
  return kFailed;
}

std::atomic<bool> memory_ran_out = false;

void OnNoMemory() {
  memory_ran_out = true;
  throw std::bad_alloc();
}

// The exception of missing memory ends here, too, where it meets a function of a library that
// promised to throw none (CLI11's search for an option). Functions of the C++ library that did so
// (its iterator of folders) leave no exception to ask.
[[noreturn]] void OnTerminate() {
  try {
    if (const auto error = std::current_exception()) std::rethrow_exception(error);
  } catch (const std::bad_alloc&) {
    std::_Exit(ReportNoMemory());
  } catch (...) {
    std::abort();
  }
  if (memory_ran_out) std::_Exit(ReportNoMemory());
  std::abort();
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  kerno::PrepareStandardStreams();
  kerno::ShowReports();
  std::set_new_handler(kerno::OnNoMemory);
  std::set_terminate(kerno::OnTerminate);
  try {
    return kerno::Program().Run(kerno::ProgramArguments(argc, argv));
  } catch (const std::bad_alloc&) {
    return kerno::ReportNoMemory();
  } catch (const std::system_error& error) {
    const bool of_thread = error.code() == std::errc::resource_unavailable_try_again;
    kerno::ReportError(of_thread ? "a thread cannot be had" : "kerno", error.what());
    return kerno::kFailed;
  } catch (const std::exception& error) {
    kerno::ReportError("kerno", error.what());
    return kerno::kFailed;
  }
}
