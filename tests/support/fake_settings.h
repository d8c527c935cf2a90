// Settings out of a table, installed for the life of the object; counts the reads.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "base/settings.h"
#include "support/installed.h"

namespace kerno {

class FakeSettings final : public test::Installed<SettingsReader, ReplaceSettings> {
 public:
  int32_t GetInt(std::u16string_view section, std::u16string_view key, int32_t fallback) override {
    ++reads;
    const auto found = ints.find({std::u16string(section), std::u16string(key)});
    return found == ints.end() ? fallback : found->second;
  }
  std::u16string GetStr(std::u16string_view section, std::u16string_view key,
                        std::u16string_view fallback) override {
    ++reads;
    const auto found = texts.find({std::u16string(section), std::u16string(key)});
    return found == texts.end() ? std::u16string(fallback) : found->second;
  }

  using Key = std::pair<std::u16string, std::u16string>;
  std::map<Key, int32_t> ints;
  std::map<Key, std::u16string> texts;
  int reads = 0;
};

}  // namespace kerno
