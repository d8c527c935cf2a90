#include "export/formats.h"

#include "base/text.h"
#include "export/drawing_pdf.h"
#include "export/drawing_plt.h"
#include "export/ipl_writer.h"
#include "export/parts_paths.h"
#include "export/x3d_writer.h"
#include "parts/ipx.h"

namespace kerno {
namespace {

using Path = std::filesystem::path;
using Options = OutputOptions;

constexpr std::string_view kMetafile[] = {"emf"};
constexpr std::string_view kMetafileAndPage[] = {"emf", kPageExtension};
constexpr std::string_view kSizes[] = {"ipl"};

constexpr Format kFormats[] = {
    {{"svg", "SVG drawing", PageRole::kDrawing},
     Format::Dispatch::kExactly,
     32087,
     kMetafileAndPage,
     [](const PartsA& m, const Path& f, const Options& o) { return ExportSvg(m, f, o.svg); }},
    {{"bmp", "Bitmap", PageRole::kBitmap},
     Format::Dispatch::kNever,
     32088,
     {},
     [](const PartsA& m, const Path& f, const Options& o) { return ExportBmp(m, f, o.bmp); }},
    {{"dxf", "DXF drawing"},
     Format::Dispatch::kExactly,
     1002,
     kMetafile,
     [](const PartsA& m, const Path& f, const Options& o) { return ExportDxf(m, f, o.dxf); }},
    {{"emf", "Enhanced metafile"},
     Format::Dispatch::kNever,
     32089,
     {},
     [](const PartsA& m, const Path& f, const Options& o) { return ExportEmf(m, f, o.emf); }},
    {{"x3d", "X3D scene"},
     Format::Dispatch::kExactly,
     0,
     {},
     [](const PartsA& m, const Path& f, const Options& o) { return ExportX3d(m, f, o.moment); }},
    {{"ipx", "IPX parts"},
     Format::Dispatch::kAnyCase,
     1001,
     kSizes,
     [](const PartsA& m, const Path& f, const Options& o) {
       return WriteIpxFile(f, m, o.program);
     }},
    {{"ipl", "IPL sizes"},
     Format::Dispatch::kNever,
     32066,
     {},
     [](const PartsA& m, const Path& f, const Options&) { return ExportIpl(m, f); }},
    {{"plt", "HPGL plot"},
     Format::Dispatch::kNever,
     0,
     {},
     [](const PartsA& m, const Path& f, const Options&) {
       return WritePlt(PathsOfParts(m, PartsOrigin::kLowerLeft, f), kPartsTolerance, f);
     }},
    {{"pdf", "PDF page"},
     Format::Dispatch::kNever,
     0,
     {},
     [](const PartsA& m, const Path& f, const Options&) {
       return WritePdf(PathsOfParts(m, PartsOrigin::kModel, f), kPartsTolerance, f);
     }},
};

}  // namespace

std::span<const Format> Formats() {
  return kFormats;
}

const Format* FindFormat(std::u16string_view extension) {
  const std::string wanted = Utf16ToUtf8(AsciiLower(extension));
  for (const Format& format : kFormats) {
    if (format.extension == wanted) return &format;
  }
  return nullptr;
}

const Format* FormatOfButton(int button) {
  for (const Format& format : kFormats) {
    if (format.button != 0 && format.button == button) return &format;
  }
  return nullptr;
}

}  // namespace kerno
