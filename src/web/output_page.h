// The web page that shows what one run made: a picture slider and a table of the files.
//
// It is one HTML file without anything from elsewhere: style and script stand in it, pictures and
// links are relative to its own folder, and without script the pictures are a plain list.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "export/formats.h"

namespace kerno {

// What the outputs were made of.
struct PageSource {
  std::u16string text;
  std::u16string face;
  std::u16string height;  // as the user typed it; may be empty when it is not known
  bool operator==(const PageSource&) const = default;
};

// The kind of an output by its extension, compared without case; null when a run makes no such
// files.
const FileKind* KindOfFile(const std::filesystem::path& name);

struct PageFile {
  std::filesystem::path name;  // in the page's folder; of a known kind
  uint64_t size = 0;           // bytes
};

struct OutputPage {
  PageSource source;
  std::vector<PageFile> files;  // in the order in which they are shown
};

// The page's bytes, UTF-8.
std::string BuildOutputPage(const OutputPage& page);

// What a page of BuildOutputPage says of its source (a text longer than the page shows comes back
// cut). False for any other bytes.
bool ReadPageSource(std::string_view html, PageSource* source);

}  // namespace kerno
