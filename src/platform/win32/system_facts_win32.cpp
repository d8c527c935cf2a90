#include <iterator>

#include "platform/system_facts.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {

// What the system says to a program whose manifest names its newest version.
SystemFacts ReadSystemFacts() {
  OSVERSIONINFOEXW version{};
  version.dwOSVersionInfoSize = sizeof version;
  SystemFacts facts;
  if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version))) return facts;
  facts.major = version.dwMajorVersion;
  facts.minor = version.dwMinorVersion;
  facts.build = version.dwBuildNumber;
  facts.service_pack = FromWideBuffer(version.szCSDVersion, std::size(version.szCSDVersion));
  return facts;
}

std::u16string TextLocale() {
  wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
  const LCID language = MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT);
  const int length = LCIDToLocaleName(language, name, static_cast<int>(std::size(name)), 0);
  return length > 0 ? FromWideBuffer(name, std::size(name)) : std::u16string();
}

// The program's file holds them.
std::vector<std::pair<std::u16string, std::u16string>> OwnVersionStrings() {
  return {};
}

}  // namespace kerno
