#include <sys/utsname.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/posix/system_error.h"
#include "platform/system_facts.h"

namespace kerno {
namespace {

// The distribution's name: PRETTY_NAME="..." in the system's own description.
std::string DistributionName() {
  constexpr std::string_view kKey = "PRETTY_NAME=";
  for (const char* file : {"/etc/os-release", "/usr/lib/os-release"}) {
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
      if (!line.starts_with(kKey)) continue;
      std::string name = line.substr(kKey.size());
      if (name.size() >= 2 && (name.front() == '"' || name.front() == '\'')) {
        name = name.substr(1, name.size() - 2);
      }
      return name;
    }
  }
  return {};
}

}  // namespace

SystemFacts ReadSystemFacts() {
  SystemFacts facts;
  utsname names{};
  std::string text = DistributionName();
  if (uname(&names) == 0) {
    if (!text.empty()) text += "  ";
    text += std::string(names.sysname) + " " + names.release;
  }
  facts.description = SystemText(text.empty() ? "POSIX" : text);
  return facts;
}

// The variables' order is that of POSIX; one that is empty counts as none.
std::u16string TextLocale() {
  for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value && *value) return SystemText(value);
  }
  return {};
}

std::vector<std::pair<std::u16string, std::u16string>> OwnVersionStrings() {
  const std::u16string version = SystemText(KERNO_VERSION);
  return {{u"CompanyName", u"Kerno maintainers"},
          {u"FileDescription", u"Kerno"},
          {u"FileVersion", version},
          {u"InternalName", u"kerno"},
          {u"LegalCopyright", u"Copyright (c) 2026 the Kerno maintainers"},
          {u"OriginalFilename", u"kerno"},
          {u"ProductName", u"Kerno"},
          {u"ProductVersion", version}};
}

}  // namespace kerno
