#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstdlib>

#include "platform/console.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

UINT code_page_before = 0;

void RestoreCodePage() {
  SetConsoleOutputCP(code_page_before);
}

}  // namespace

// The C runtime's own copy went through the 8-bit code page. A lone surrogate becomes U+FFFD.
std::vector<std::string> ProgramArguments(int argc, char** argv) {
  int count = 0;
  LPWSTR* const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return {argv, argv + argc};
  std::vector<std::string> arguments;
  arguments.reserve(static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) arguments.push_back(ToUtf8(wide[i]));
  LocalFree(wide);
  return arguments;
}

void PrepareStandardStreams() {
  for (FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
  code_page_before = GetConsoleOutputCP();
  if (code_page_before == 0 || code_page_before == CP_UTF8) return;
  // The console belongs to the programs that run in it afterwards too.
  if (SetConsoleOutputCP(CP_UTF8)) std::atexit(RestoreCodePage);
}

bool IsErrorTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_ERROR_HANDLE), &mode) != 0;
}

bool IsOutputTerminal() {
  DWORD mode = 0;
  return GetConsoleMode(GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

}  // namespace kerno
