// One entry for every file format of the dispatch: the extension of the file's name chooses.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "export/dxf_export.h"
#include "export/svg_writer.h"
#include "parts/parts.h"
#include "platform/status.h"

namespace kerno {

enum class ExportFormat {
  kDxf,
  kSvg,
  kX3d,
  kIpx,
  kMesh,       // stl, wrl, 3ds, off, dae: known, and meant to have no writer
  kUnmatched,  // obj, imo, nxr, ix3: known to other programs, not supported
};

// The format of an extension (without the point), compared exactly; "ipx" alone is taken in any
// case. Nothing for an extension that nobody knows.
std::optional<ExportFormat> FormatOfExtension(std::u16string_view extension);

struct ExportOptions {
  DxfOptions dxf;
  SvgOptions svg;

  // The path of the running program, for the formats that name their writer.
  std::u16string program;

  // Runs after a successful export with the model and the file written: the copy in the cache
  // (IpxCache::KeepCopy), for a program that keeps one. Its failure is its own.
  std::function<void(const PartsA& model, const std::filesystem::path& file)> after_export;
};

// Writes the model to `file`, whole or not at all, in the format of its extension. 1 on success, 0
// on failure; the reason goes to *status when that is given.
int32_t Export(const PartsA& model, const std::filesystem::path& file,
               const ExportOptions& options = {}, Status* status = nullptr);

// The same in a format that the caller chose, whatever the file is called.
int32_t ExportAs(ExportFormat format, const PartsA& model, const std::filesystem::path& file,
                 const ExportOptions& options = {}, Status* status = nullptr);

}  // namespace kerno
