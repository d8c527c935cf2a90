// Font files made for one test, and a Fontconfig configuration that knows nothing else.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/font_catalog.h"
#include "support/temporary_folder.h"

namespace kerno::test {

using FontBytes = std::string;

inline FontBytes ReadFontFile(const std::string& path) {
  FontBytes bytes = ReadBytes(path);
  EXPECT_FALSE(bytes.empty()) << path;
  return bytes;
}

// The file of an installed family, "" when it is missing.
inline std::string InstalledFontPath(std::u16string_view family) {
  const auto faces = FontCatalog::Current().FindFamily(family, FaceWish{});
  return faces.empty() ? "" : faces.front()->path;
}

inline uint32_t GetBig(const FontBytes& bytes, size_t at, int size) {
  uint32_t value = 0;
  for (int i = 0; i < size; ++i) {
    value = value << 8 | static_cast<uint8_t>(bytes.at(at + static_cast<size_t>(i)));
  }
  return value;
}

inline void PutBig(FontBytes* bytes, size_t at, int size, uint32_t value) {
  for (int i = size; i-- > 0; value >>= 8) {
    bytes->at(at + static_cast<size_t>(i)) = static_cast<char>(value & 0xFF);
  }
}

// Where the directory entry of a table stands in a single-face file.
inline size_t TableEntry(const FontBytes& font, std::string_view tag) {
  const size_t count = GetBig(font, 4, 2);
  for (size_t i = 0; i < count; ++i) {
    if (font.compare(12 + 16 * i, 4, tag) == 0) return 12 + 16 * i;
  }
  ADD_FAILURE() << "no table " << tag;
  return 12;
}

inline size_t TableOffset(const FontBytes& font, std::string_view tag) {
  return GetBig(font, TableEntry(font, tag) + 8, 4);
}

// Numbers of 16 bits.
inline FontBytes Words(std::initializer_list<size_t> words) {
  FontBytes bytes;
  for (const size_t word : words) {
    bytes += {static_cast<char>(word >> 8 & 0xFF), static_cast<char>(word & 0xFF)};
  }
  return bytes;
}

// The font under another family name: a new name table at the end of the file.
inline FontBytes WithFamilyName(FontBytes font, std::u16string_view family) {
  FontBytes text;
  for (const char16_t unit : family) text += Words({unit});
  FontBytes table = Words({0, 4, 6 + 4 * 12});
  for (const size_t name : {1, 2, 4, 6}) {  // family, style, full and PostScript name
    constexpr size_t kWindows = 3, kUnicode = 1, kEnglish = 0x409;
    table += Words({kWindows, kUnicode, kEnglish, name, text.size(), 0});
  }
  font.resize((font.size() + 3) / 4 * 4);
  const size_t entry = TableEntry(font, "name");
  PutBig(&font, entry + 8, 4, static_cast<uint32_t>(font.size()));
  PutBig(&font, entry + 12, 4, static_cast<uint32_t>(table.size() + text.size()));
  return font + table + text;
}

// One collection file of several fonts.
inline FontBytes Collection(const std::vector<FontBytes>& fonts) {
  FontBytes file(12 + 4 * fonts.size(), '\0');
  file.replace(0, 4, "ttcf");
  PutBig(&file, 4, 4, 0x00010000);
  PutBig(&file, 8, 4, static_cast<uint32_t>(fonts.size()));
  for (size_t i = 0; i < fonts.size(); ++i) {
    file.resize((file.size() + 3) / 4 * 4);
    const auto base = static_cast<uint32_t>(file.size());
    PutBig(&file, 12 + 4 * i, 4, base);
    FontBytes font = fonts[i];
    for (size_t entry = 12; entry < 12 + 16 * GetBig(font, 4, 2); entry += 16) {
      PutBig(&font, entry + 8, 4, GetBig(font, entry + 8, 4) + base);
    }
    file += font;
  }
  return file;
}

// While one of these lives, the fonts in its folder are the only ones installed.
class OnlyTheseFonts {
 public:
  OnlyTheseFonts() {
    if (const char* before = getenv("FONTCONFIG_FILE")) before_ = before;
    const std::string configuration = folder_ / "fonts.conf";
    WriteBytes(configuration, "<fontconfig><dir>" + folder_.path().native() + "</dir><cachedir>" +
                                  (folder_ / "cache").native() + "</cachedir></fontconfig>");
    setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
    FontCatalog::Forget();
  }
  ~OnlyTheseFonts() {
    before_ ? setenv("FONTCONFIG_FILE", before_->c_str(), 1) : unsetenv("FONTCONFIG_FILE");
    FontCatalog::Forget();
  }
  OnlyTheseFonts(const OnlyTheseFonts&) = delete;
  OnlyTheseFonts& operator=(const OnlyTheseFonts&) = delete;

  std::string Install(std::string_view name, std::string_view bytes) {
    std::string path = folder_ / name;
    WriteBytes(path, bytes);
    FontCatalog::Forget();
    return path;
  }

 private:
  TemporaryFolder folder_;
  std::optional<std::string> before_;
};

}  // namespace kerno::test
