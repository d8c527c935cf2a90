// Fonts of any bytes as installed faces: the catalogue's names, the system's outlines and metrics
// of them, and texts set in them. The first bytes are the form, the height and the weight.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <fstream>

#include "font_mutator.h"
#include "outline/glyph_outline.h"
#include "outline/typesetter.h"
#include "own_fonts.h"
#include "platform/font_data.h"
#include "platform/font_faces.h"
#include "platform/posix/font_catalog.h"
#include "readers.h"

namespace kerno {
namespace {

using fuzz::Require;

constexpr size_t kOptions = 3;
constexpr size_t kMostFaces = 4;

int file = -1;  // in memory, and its name
std::string path;

void CheckPaths(const std::vector<Path>& paths) {
  for (const Path& p : paths) {
    Require(!p.segments.empty());
    for (const Segment& s : p.segments) Require(std::fabs(s.end.x) + std::fabs(s.end.y) < 1e6);
  }
}

void CheckContours(const TypesetText& set) {
  size_t points = 0;
  set.contours.EachPoint([&points](const P2& p) {
    Require(std::isfinite(p.x) && std::isfinite(p.y));
    ++points;
  });
  Require(points == set.contours.point_count());
}

void UseFace(const CatalogFace& face, TextRequest request) {
  const auto context = CreateMeasuringContext();
  request.face.name = face.families.front().text;
  Typesetter typesetter(*context);
  const auto set = typesetter.Typeset(request);
  if (!set) return;  // no font that can be opened
  CheckContours(*set);
  Require(set->metrics.tmHeight == set->metrics.tmAscent + set->metrics.tmDescent);
  const auto font = context->CreateFontIndirect(
      BuildLogFont(request.height, request.width, request.weight, SystemFaceName(request.face)));
  if (!font) return;
  Font* const before = context->SelectFont(font.get());
  for (const char32_t ch : {U'A', U'g', U'永', U'ー', U'ａ', U'\U0001F600'}) {
    GlyphMetrics metrics;
    CheckPaths(GetGlyphPaths(*context, ch, &metrics));
    Require(metrics.gmCellIncY == 0);
  }
  context->SelectFont(before);
}

void Run(const uint8_t* options, std::string_view font) {
  Require(ftruncate(file, 0) == 0);
  Require(pwrite(file, font.data(), font.size(), 0) == static_cast<ssize_t>(font.size()));
  FontCatalog::Forget();
  TextRequest request;
  request.text = u"Affi Öé\r\n\t縦、ー\U0001F600";
  request.height = static_cast<int8_t>(options[1]);
  if ((options[0] & 1) != 0) request.height *= 257;  // to the ends of the range
  request.width = (options[0] & 2) != 0 ? options[2] * 128 : 0;
  request.weight = options[2] * 4;
  request.italic = (options[0] & 4) != 0;
  if ((options[0] & 8) != 0) SetVertical(&request);
  FontData data;
  (void)FindFontData({.file = path}, &data);  // most are no fonts
  (void)EnumerateFaces();
  (void)ListFaces();
  const std::vector<CatalogFace>& faces = FontCatalog::Current().faces();
  for (size_t i = 0; i < std::min(faces.size(), kMostFaces); ++i) {
    if (faces[i].families.empty()) continue;
    UseFace(faces[i], request);
    const std::u16string& family = faces[i].families.front().text;
    (void)FindFontData({.family = family, .style = u"Bold"}, &data);
  }
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const std::string configuration = kerno::fuzz::UseOwnFonts() / "none.conf";
  std::ofstream(configuration) << "<fontconfig/>";
  setenv("FONTCONFIG_FILE", configuration.c_str(), 1);
  kerno::file = memfd_create("font", MFD_CLOEXEC);
  kerno::path = "/proc/self/fd/" + std::to_string(kerno::file);
  kerno::FontCatalog::AddedFiles() = {kerno::path};
  return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t most, unsigned seed) {
  return kerno::fuzz::MutateFont(data, size, most, seed, kerno::kOptions);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size <= kerno::kOptions) return 0;
  kerno::Run(data, {reinterpret_cast<const char*>(data) + kerno::kOptions, size - kerno::kOptions});
  return 0;
}
