// The files that something is written to: their names and formats.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "export/formats.h"

namespace kerno {

struct OutputFile {
  std::string name;  // UTF-8, or the bytes that the user gave
  const Format* format = nullptr;
};
using OutputList = std::vector<OutputFile>;

// One that was written.
struct WrittenFile {
  std::string name;
  uint64_t bytes = 0;        // of a regular file
  int64_t milliseconds = 0;  // that it took
};

// The format of a file: that of the name `format`, or where that is empty the one of the file's
// extension. What is wrong is reported.
std::optional<OutputFile> ReadOutput(const std::string& file, const std::string& format);

// Whether one of them is of this format, by its extension.
bool HasFormat(const OutputList& outputs, std::string_view extension);

// "dxf, svg, ..."
std::string FormatNames();

}  // namespace kerno
