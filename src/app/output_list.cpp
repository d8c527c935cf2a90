#include "app/output_list.h"

#include <algorithm>

#include "app/option_values.h"
#include "app/reports.h"
#include "base/folders.h"
#include "base/text.h"
#include "export/export.h"

namespace kerno {

std::string FormatNames() {
  std::string names;
  for (const Format& format : Formats()) {
    names.append(names.empty() ? "" : ", ").append(format.extension);
  }
  return names;
}

std::optional<OutputFile> ReadOutput(const std::string& file, const std::string& format) {
  if (!IsFileName("-o", file)) return std::nullopt;
  if (!format.empty()) {
    if (const Format* named = FindFormat(Utf8ToUtf16Lossy(format))) return OutputFile{file, named};
    ReportChoice("--format", format, FormatNames());
    return std::nullopt;
  }
  const std::u16string extension = AsciiLower(Extension(Utf8ToUtf16Lossy(file)));
  const std::string shown = Utf16ToUtf8(extension);
  if (const Format* found = FindFormat(extension)) return OutputFile{file, found};
  if (extension.empty()) {
    ReportError(file, "has no extension to choose the format by");
  } else if (IsKnownUnwritten(extension)) {
    ReportError(file, "the format \"" + shown + "\" is known but not written");
  } else {
    ReportError(file, "the format \"" + shown + "\" is unknown (" + FormatNames() + ")");
  }
  return std::nullopt;
}

bool HasFormat(const OutputList& outputs, std::string_view extension) {
  return std::ranges::any_of(
      outputs, [&](const OutputFile& output) { return output.format->extension == extension; });
}

}  // namespace kerno
