// The readers and shells that tests ask are those of the system that Wine runs on: it starts them,
// and their answer comes back through a file.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <string>
#include <thread>
#include <utility>

#include "support/environment.h"
#include "support/file_holder.h"
#include "support/places.h"
#include "support/private_registry.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno::test {
namespace {

std::wstring Wide(const std::string& text) {
  return std::filesystem::path(text).native();
}

// What the other system calls a path; empty when there is no other system.
std::string OtherName(const std::wstring& path) {
  using GetUnixFileName = char*(CDECL*)(const wchar_t*);
  const auto get = reinterpret_cast<GetUnixFileName>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
  char* const name = get ? get(path.c_str()) : nullptr;
  if (!name) return {};
  std::string copy = name;
  HeapFree(GetProcessHeap(), 0, name);
  return copy;
}

// The command as the other system's shell understands it: with its names for our paths.
std::string ForShell(const std::string& command) {
  std::string out;
  for (size_t i = 0; i < command.size();) {
    const bool path = i + 2 < command.size() && (command[i] == 'C' || command[i] == 'Z') &&
                      command[i + 1] == ':' && (command[i + 2] == '\\' || command[i + 2] == '/');
    if (!path) {
      out.push_back(command[i++]);
      continue;
    }
    const size_t end = std::min(command.find_first_of("' \"\n", i), command.size());
    out += OtherName(Wide(command.substr(i, end - i)));
    i = end;
  }
  return out;
}

}  // namespace

const std::filesystem::path kUnwritableFolder = "Z:/proc";
const std::filesystem::path kFullDevice = "Z:/dev/full";
const bool kHoldsKeepReadersOut = true;

void SetVariable(const std::string& name, const std::string& value) {
  SetEnvironmentVariableW(Wide(name).c_str(), Wide(value).c_str());
}

std::string OutputOf(const std::string& command, int status) {
  const TemporaryFolder folder;
  const std::string script = (folder / "run").string();
  WriteBytes(script, ForShell("{ " + command + "\n} >" + script + ".out 2>&1\necho $? >" + script +
                              ".part\nmv " + script + ".part " + script + ".status\n"));
  std::wstring line = Wide("Z:\\bin\\sh " + ForShell(script));
  STARTUPINFOW start{};
  start.cb = sizeof start;
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                      &process)) {
    ADD_FAILURE() << "no shell beside Windows for " << command;
    return {};
  }
  std::string ended;
  for (int i = 0; i < 6000 && ended.empty(); ++i) {
    Sleep(10);
    ended = ReadBytes(script + ".status");
  }
  const std::string output = ReadBytes(script + ".out");
  EXPECT_EQ(ended, std::to_string(status) + "\n") << command << "\n" << output;
  return output;
}

PrivateRegistry::PrivateRegistry() {
  for (const auto& [root, name] : {std::pair{HKEY_CURRENT_USER, L"Software\\KernoTest\\User"},
                                   {HKEY_LOCAL_MACHINE, L"Software\\KernoTest\\Machine"}}) {
    HKEY key = nullptr;
    EXPECT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER,
                              (name + std::to_wstring(GetCurrentProcessId())).c_str(), 0, nullptr,
                              REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr),
              ERROR_SUCCESS);
    EXPECT_EQ(RegOverridePredefKey(root, key), ERROR_SUCCESS);
    RegCloseKey(key);
  }
}

PrivateRegistry::~PrivateRegistry() {
  for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
    RegDeleteTreeW(root, nullptr);
    RegOverridePredefKey(root, nullptr);
  }
}

FileHolder::FileHolder(const std::filesystem::path& file, HoldKind /*kind*/, unsigned milliseconds)
    : hold_(CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                        FILE_ATTRIBUTE_NORMAL, nullptr),
            CloseHandle) {
  EXPECT_NE(hold_.get(), INVALID_HANDLE_VALUE) << file;
  if (!milliseconds) return;
  hold_ = std::make_shared<std::jthread>([hold = hold_, milliseconds]() mutable {
    Sleep(milliseconds);
    hold.reset();
  });
}

}  // namespace kerno::test
