#include <algorithm>
#include <utility>
#include <vector>

#include "platform/shell.h"
#include "platform/system.h"
#include "platform/win32/special_folder.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// An argument as programs of this system take it apart again: quotes round it where it needs them,
// quotes within it escaped, and the backslashes before a quote doubled.
void AppendArgument(std::wstring* line, const std::wstring& argument) {
  if (!line->empty()) line->push_back(L' ');
  if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == argument.npos) {
    *line += argument;
    return;
  }
  line->push_back(L'"');
  size_t backslashes = 0;
  for (const wchar_t unit : argument) {
    if (unit == L'"') line->append(backslashes + 1, L'\\');
    backslashes = unit == L'\\' ? backslashes + 1 : 0;
    line->push_back(unit);
  }
  line->append(backslashes, L'\\');
  line->push_back(L'"');
}

std::wstring Joined(const std::vector<std::u16string>& parameters) {
  std::wstring line;
  for (const std::u16string& parameter : parameters) AppendArgument(&line, ToWide(parameter));
  return line;
}

// Some of what the shell starts needs it.
class ComApartment {
 public:
  ComApartment()
      : made_(
            SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE))) {
  }
  ~ComApartment() {
    if (made_) CoUninitialize();
  }
  ComApartment(const ComApartment&) = delete;
  ComApartment& operator=(const ComApartment&) = delete;

 private:
  bool made_;
};

constexpr int kLastFailure = 32;  // of the shell's results

int FailureOf(DWORD error) {
  return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND ? static_cast<int>(error)
                                                                        : SE_ERR_ACCESSDENIED;
}

int NativeShow(WindowShow show) {
  switch (show) {
    case WindowShow::kMinimised:
      return SW_SHOWMINIMIZED;
    case WindowShow::kMaximised:
      return SW_SHOWMAXIMIZED;
    case WindowShow::kNormal:
      break;
  }
  return SW_SHOWNORMAL;
}

class WindowsShell final : public Shell {
 public:
  int Execute(const ShellRequest& request) override {
    const std::wstring verb = ToWide(request.verb);
    const std::wstring line = Joined(request.parameters);
    SHELLEXECUTEINFOW native{};
    native.cbSize = sizeof native;
    native.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOASYNC;
    native.hwnd = request.owner != nullptr ? static_cast<HWND>(request.owner) : GetActiveWindow();
    native.lpVerb = verb.c_str();
    native.lpFile = request.file.c_str();
    native.lpParameters = line.empty() ? nullptr : line.c_str();
    native.lpDirectory = request.folder.empty() ? nullptr : request.folder.c_str();
    native.nShow = NativeShow(request.show);
    const ComApartment apartment;
    const bool done = ShellExecuteExW(&native) != 0;
    const auto result = static_cast<int>(reinterpret_cast<INT_PTR>(native.hInstApp));
    return done || result <= kLastFailure ? result : FailureOf(GetLastError());
  }

  bool StartProcess(const ShellRequest& request) override {
    const std::wstring folder = request.folder.native();
    std::wstring line;
    AppendArgument(&line, request.file.native());
    for (const std::u16string& parameter : request.parameters) {
      AppendArgument(&line, ToWide(parameter));
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, NORMAL_PRIORITY_CLASS,
                        nullptr, folder.empty() ? nullptr : folder.c_str(), &start, &process)) {
      return false;
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return true;
  }

  std::vector<fs::path> ProgramFolders() override {
    std::vector<fs::path> folders;
    const std::wstring path = ToWide(CurrentSystem().Environment(u"PATH").value_or(u""));
    for (size_t at = 0; at < path.size();) {
      const size_t end = std::min(path.find(L';', at), path.size());
      std::wstring folder = path.substr(at, end - at);
      std::erase(folder, L'"');  // quotes may stand round a folder
      if (!folder.empty()) folders.emplace_back(std::move(folder));
      at = end + 1;
    }
    return folders;
  }

  std::vector<fs::path> ApplicationFolders() override {
    std::vector<fs::path> folders;
    for (const uint32_t id :
         {static_cast<uint32_t>(SpecialFolderId::kProgramFiles), kProgramFilesX86}) {
      if (fs::path folder = SpecialFolderPath(id, MissingFolder::kLeave); !folder.empty()) {
        folders.push_back(std::move(folder));
      }
    }
    return folders;
  }
};

WindowsShell windows_shell;
Shell* current = &windows_shell;

}  // namespace

bool HasDisplay() {
  USEROBJECTFLAGS station{};
  return GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &station, sizeof station,
                                   nullptr) &&
         (station.dwFlags & WSF_VISIBLE) != 0;
}

Shell& CurrentShell() {
  return *current;
}

Shell* ReplaceShell(Shell* shell) {
  Shell* before = current;
  current = shell ? shell : &windows_shell;
  return before;
}

}  // namespace kerno
