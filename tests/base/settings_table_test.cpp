#include "base/settings_table.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "base/text.h"

namespace kerno {
namespace {

// docs/settings.md lists each setting as a row "| section | key | type | default | meaning |".
TEST(SettingsTable, IsWhatTheDocumentSays) {
  std::ifstream file(KERNO_TESTS "/../docs/settings.md");
  std::stringstream stream;
  stream << file.rdbuf();
  std::set<std::string> rows;
  for (std::string line; std::getline(stream, line) && line != "## Where the file is";) {
    if (line.starts_with("| `")) rows.insert(line);
  }
  for (const Setting& setting : KnownSettings()) {
    const SettingText text = Describe(setting);
    const std::string default_value = Utf16ToUtf8(text.default_value);
    const std::string row = "| `" + Utf16ToUtf8(text.section) + "` | `" + Utf16ToUtf8(text.key) +
                            "` | " + std::string(text.type) + " | " +
                            (default_value.empty() ? "(empty)" : "`" + default_value + "`") +
                            " | " + std::string(text.meaning) + " |";
    EXPECT_EQ(rows.erase(row), 1u) << "missing: " << row;
  }
  for (const std::string& row : rows) ADD_FAILURE() << "not in the table: " << row;
}

}  // namespace
}  // namespace kerno
