// The process's fonts: the small ones that make_font_seeds.py wrote, and none of the machine's; and
// a folder of its own for files and settings.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

namespace kerno::fuzz {

inline std::filesystem::path UseOwnFonts() {
  const std::filesystem::path fonts = KERNO_FUZZ_FONTS;
  setenv("FONTCONFIG_FILE", (fonts / "fonts.conf").c_str(), 1);
  // Where files need no disk, if there is such a place.
  const std::filesystem::path memory = "/dev/shm";
  const auto place = exists(memory) ? memory : std::filesystem::temp_directory_path();
  std::string folder = (place / "kerno-fuzz-XXXXXX").string();
  if (mkdtemp(folder.data()) == nullptr) abort();
  static const std::string kept = folder;
  atexit([] {
    std::error_code ignored;
    std::filesystem::remove_all(kept, ignored);
  });
  for (const char* name : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
    setenv(name, folder.c_str(), 1);
  }
  return folder;
}

}  // namespace kerno::fuzz
