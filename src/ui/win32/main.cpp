// kerno-desktop: the main window as a program.

#include <filesystem>
#include <vector>

#include "app/captions.h"
#include "app/cut_services.h"
#include "app/system_services.h"
#include "base/dump_log.h"
#include "base/profile_settings.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

std::vector<std::filesystem::path> FilesToOpen() {
  int count = 0;
  LPWSTR* const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
  std::vector<std::filesystem::path> files;
  for (int i = 1; arguments != nullptr && i < count; ++i) files.emplace_back(arguments[i]);
  LocalFree(arguments);
  return files;
}

int RunProgram(HINSTANCE instance, int show) {
  INITCOMMONCONTROLSEX controls = {sizeof controls, ICC_STANDARD_CLASSES | ICC_UPDOWN_CLASS |
                                                        ICC_PROGRESS_CLASS | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
  if (LoadLibraryW(L"Msftedit.dll") == nullptr) {
    const std::u16string told = Say(u"Msftedit.dll: the rich edit control is not there");
    MessageBoxW(nullptr, ToWide(told).c_str(), L"Kerno", MB_OK | MB_ICONERROR);
    return 1;
  }
  InstallProfileSettings();
  const RunDump dump(u"kerno-desktop");
  SystemServices services;
  SystemCutServices cut_services;
  MainWindow window(instance, services, cut_services);
  return window.Run(show, FilesToOpen());
}

}  // namespace
}  // namespace kerno

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE /*before*/, PWSTR /*command_line*/, int show) {
  const HRESULT com = OleInitialize(nullptr);  // files are dragged out of the window
  const int status = kerno::RunProgram(instance, show);
  if (SUCCEEDED(com)) OleUninitialize();
  return status;
}
