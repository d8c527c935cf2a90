// How kerno.dll is loaded: once and for good.

#include "platform/win32/windows_api.h"

// The entry of the compiler's runtime, which ends in DllMain.
extern "C" BOOL WINAPI DllMainCRTStartup(HINSTANCE library, DWORD reason, LPVOID reserved);

// Threads may still hold its texts when a program lets go of it: it stays.
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, LPVOID /*reserved*/) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  HMODULE held = nullptr;
  return GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                            reinterpret_cast<LPCWSTR>(library), &held);
}

// At the end of the process nothing is destroyed: the thread library, whose locks may be left taken
// by threads that are gone, would wait for them for ever.
extern "C" BOOL WINAPI KernoEntry(HINSTANCE library, DWORD reason, LPVOID reserved) {
  const bool process_ends = reason == DLL_PROCESS_DETACH && reserved != nullptr;
  return process_ends ? TRUE : DllMainCRTStartup(library, reason, reserved);
}
