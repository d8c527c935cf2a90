// How kerno.dll is loaded: once and for good.

#include "platform/win32/windows_api.h"

// Threads may still hold its texts when a program lets go of it: it stays.
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID /*reserved*/) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  HMODULE held = nullptr;
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCWSTR>(library), &held);
}
