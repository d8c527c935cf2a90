// The cache folder of parts files: "PartsA.tmp/<version number>/" in the temporary folder.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parts/parts.h"

namespace kerno {

// The version text of the format as one number, 1.20 2018/07/26 as 1.2020180726: digits are kept,
// the first of "." "," "/" "-" becomes the point, later ones, ":", tabs and blanks are dropped.
double IpxVersionNumber(std::u16string_view version_text);

// Whether the setting "PartsAry\Convert3D", "UseCacheIPX" (default 0) asks for converted models to
// be kept as parts files.
bool UsesIpxCache();

// Keeps copies in the cache folder for the life of the program. Destruction removes the copies that
// this object put there, unless somebody changed them since, and then the folders that it made as
// far as they are empty.
class IpxCache {
 public:
  // `temporary` is the temporary folder, `program` the path that the copies name as their writer.
  IpxCache(const std::filesystem::path& temporary, std::u16string program);
  ~IpxCache();
  IpxCache(const IpxCache&) = delete;
  IpxCache& operator=(const IpxCache&) = delete;

  const std::filesystem::path& folder() const { return folder_; }

  // Where the parts file of a converted model lies, its folder made: the model's file name with
  // ".ipx" added. A model that is a parts file is its own. Nothing when UsesIpxCache says no.
  std::optional<std::filesystem::path> PathOfConverted(const std::filesystem::path& source);

  // After `written` was written from these parts: keeps them as a parts file of the same base name,
  // unless that is the very file that was written. A failure is passed over in silence.
  void KeepCopy(const PartsA& parts, const std::filesystem::path& written);

 private:
  // A copy as this object left it.
  struct Copy {
    std::filesystem::path path;
    std::filesystem::file_time_type time;
    uintmax_t size = 0;
  };

  bool MakeFolder();
  void Remember(const std::filesystem::path& path);

  std::filesystem::path folder_;
  std::u16string program_;
  std::vector<Copy> copies_;
  std::vector<std::filesystem::path> made_folders_;  // outer ones first
};

}  // namespace kerno
