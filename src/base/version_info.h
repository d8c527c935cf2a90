// What a program file says of itself, and what the system is called.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "platform/system_facts.h"

namespace kerno {

// Which texts a failed Open leaves.
enum class VersionTexts { kFirst, kSecond };

// Reads the version resource of a PE file on every system, and the running program's own strings
// where it is no such file.
class VersionReader {
 public:
  explicit VersionReader(VersionTexts texts = VersionTexts::kFirst) : texts_(texts) {}

  // True when the file states its translation; false leaves a text in last_error(), except that
  // the first kind says nothing of a file without a version resource.
  bool Open(const std::filesystem::path& path);

  // The string of a key, empty when there is none: "Comments", "CompanyName", "FileDescription",
  // "FileVersion", "InternalName", "LegalCopyright", "LegalTrademarks", "OriginalFilename",
  // "PrivateBuild", "ProductName", "ProductVersion", "SpecialBuild".
  std::u16string Get(std::u16string_view key) const;

  const std::u16string& last_error() const { return last_error_; }

  // "\StringFileInfo\" + translation + "\".
  const std::u16string& prefix() const { return prefix_; }

 private:
  bool Fail(std::u16string_view first, std::u16string_view second);
  bool OpenOwn(const std::filesystem::path& path);

  VersionTexts texts_;
  std::u16string last_error_;
  std::u16string prefix_;
  std::string image_;
  std::string_view block_;
  std::map<std::u16string, std::u16string, std::less<>> own_;
};

// The two lines of the about box, of the running program.
struct AboutTexts {
  std::u16string copyright;
  std::u16string version;  // description, three blanks, "Version", a blank, the version
};
AboutTexts ReadAboutTexts();

// The system's version as one number: major in bits 16 and up, minor in bits 8 to 15, service pack
// in bits 0 to 7. The newest of the known versions that the system meets or exceeds; 0 when it is
// older than all of them.
uint32_t PackedSystemVersion(const SystemFacts& facts);

// "6.1.1  Win 7 SP1  Build 7601", or the description of a system that has one.
std::u16string DescribeSystem(const SystemFacts& facts);

// The running system's description, worked out once per process.
const std::u16string& SystemDescription();

}  // namespace kerno
