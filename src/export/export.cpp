#include "export/export.h"

#include <string>
#include <utility>

#include "base/text.h"
#include "export/x3d_writer.h"
#include "parts/ipx.h"

namespace kerno {
namespace {

constexpr std::pair<std::u16string_view, ExportFormat> kExtensions[] = {
    {u"stl", ExportFormat::kMesh},      {u"dxf", ExportFormat::kDxf},
    {u"wrl", ExportFormat::kMesh},      {u"3ds", ExportFormat::kMesh},
    {u"obj", ExportFormat::kUnmatched}, {u"imo", ExportFormat::kUnmatched},
    {u"off", ExportFormat::kMesh},      {u"x3d", ExportFormat::kX3d},
    {u"nxr", ExportFormat::kUnmatched}, {u"dae", ExportFormat::kMesh},
    {u"svg", ExportFormat::kSvg},       {u"ix3", ExportFormat::kUnmatched},
};

Status NotWritten(const std::filesystem::path& file, std::u16string why) {
  return Status::Error(Failure::kOther, PathText(file), std::move(why));
}

Status Write(ExportFormat format, const PartsA& model, const std::filesystem::path& file,
             const ExportOptions& options) {
  switch (format) {
    case ExportFormat::kDxf:
      return ExportDxf(model, file, options.dxf);
    case ExportFormat::kSvg:
      return ExportSvg(model, file, options.svg);
    case ExportFormat::kX3d:
      return ExportX3d(model, file);
    case ExportFormat::kIpx:
      return WriteIpxFile(file, model, options.program);
    case ExportFormat::kMesh:
      return NotWritten(file, u"mesh formats cannot be written");
    case ExportFormat::kUnmatched:
      break;
  }
  return NotWritten(file, u"this format is not supported");
}

}  // namespace

std::optional<ExportFormat> FormatOfExtension(std::u16string_view extension) {
  for (const auto& [known, format] : kExtensions) {
    if (extension == known) return format;
  }
  if (AsciiLower(extension) == u"ipx") return ExportFormat::kIpx;
  return std::nullopt;
}

int32_t ExportAs(ExportFormat format, const PartsA& model, const std::filesystem::path& file,
                 const ExportOptions& options, Status* status) {
  Status done = Write(format, model, file, options);
  const bool ok = done.ok();
  if (status) *status = std::move(done);
  if (ok && options.after_export) options.after_export(model, file);
  return ok ? 1 : 0;
}

int32_t Export(const PartsA& model, const std::filesystem::path& file, const ExportOptions& options,
               Status* status) {
  const std::u16string extension = Extension(PathText(file));
  if (const auto format = FormatOfExtension(extension)) {
    return ExportAs(*format, model, file, options, status);
  }
  if (status) {
    *status = NotWritten(file, extension.empty() ? u"the name has no extension to choose a format"
                                                 : u"no format has this extension");
  }
  return 0;
}

}  // namespace kerno
