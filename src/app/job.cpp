#include "app/job.h"

#include <span>
#include <vector>

#include "drawing/affine.h"

namespace kerno {
namespace {

constexpr int kHueStep = 30;
constexpr int kLightness = 128;
constexpr int kSaturation = 128;

void ColourByIndex(size_t index, PartsElement* part) {
  const int hue = static_cast<int>(index % 12) * kHueStep;
  part->pen.color = static_cast<int32_t>(HlsColor(hue, kLightness, kSaturation));
  part->brush.color = static_cast<int32_t>(HlsColor(hue + 180, kLightness, kSaturation));
}

// The contour without points that repeat the one before, and without its closing point: the first
// of `room`, which is at least as long as the contour.
std::span<const P3> CollectLoop(std::span<const P2> contour, std::vector<P3>* room) {
  if (room->size() < contour.size()) room->resize(contour.size());
  P3* const loop = room->data();
  size_t count = 0;
  for (const P2& p : contour) {
    loop[count] = {p.x, p.y, 0};
    if (count == 0 || !(loop[count] == loop[count - 1])) ++count;
  }
  while (count > 1 && loop[count - 1] == loop[0]) --count;
  return {loop, count};
}

}  // namespace

// Without a scale the insertion point moves the block once, in the units of its glyphs; a scaled
// block is moved after it.
std::optional<TypesetText> Make(const Job& job, Typesetter& typesetter) {
  TextRequest text = job.text;
  const bool scaled = job.scale != 1;
  const Affine up = FlippedY(job.scale, scaled ? job.at : P2{});
  text.placement.insertion = scaled ? P2{} : up.Apply(job.at);
  std::optional<TypesetText> set = typesetter.Typeset(text);
  if (!set) return set;
  for (P2& p : set->contours.points) p = up.Apply(p);
  return set;
}

void BuildParts(const GlyphContours& contours, const PartsOptions& options, PartsA* parts) {
  parts->parts.reserve(parts->parts.size() + contours.counts.size());
  std::vector<P3> room;
  size_t first = 0;
  for (size_t i = 0; i < contours.counts.size(); ++i) {
    const auto contour = std::span(contours.points).subspan(first, contours.counts[i]);
    const std::span<const P3> loop = CollectLoop(contour, &room);
    first += contours.counts[i];
    PartsElement& part = parts->parts.emplace_back();
    part.name = options.layer;
    ColourByIndex(i, &part);
    if (options.elements != ContourElements::kFaces && loop.size() > 1) part.AddClosedLines(loop);
    if (options.elements != ContourElements::kLines && !loop.empty()) part.AddFace(loop, 0);
  }
}

}  // namespace kerno
