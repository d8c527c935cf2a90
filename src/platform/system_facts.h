// What the running system and the running program say of themselves.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace kerno {

// A desktop system answers by numbers, other systems by a description of their own.
struct SystemFacts {
  std::u16string description;  // not empty: it stands for the system, the numbers do not count
  uint32_t major = 0;
  uint32_t minor = 0;
  uint32_t build = 0;
  std::u16string service_pack;  // a text with the number in it, such as "Service Pack 1"
};

SystemFacts ReadSystemFacts();

// The name of the locale in which the user wants texts ("ja_JP.UTF-8", "de-DE"); empty where the
// system does not tell.
std::u16string TextLocale();

// The version strings of the running program where its file holds no version resource, by their
// keys ("FileVersion"); empty where it does.
std::vector<std::pair<std::u16string, std::u16string>> OwnVersionStrings();

}  // namespace kerno
