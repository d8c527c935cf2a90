#include "app/rebuild.h"

#include <span>
#include <vector>

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

// The contour without points that repeat the one before, and without its closing point.
void CollectLoop(std::span<const P2> contour, std::vector<P3>* loop) {
  loop->clear();
  for (const P2& p : contour) {
    const P3 point = {p.x, p.y, 0};
    if (loop->empty() || !(loop->back() == point)) loop->push_back(point);
  }
  while (loop->size() > 1 && loop->back() == loop->front()) loop->pop_back();
}

void AddClosedLines(std::span<const P3> loop, Parts* part) {
  if (loop.size() < 2) return;
  part->vertices.Reserve(loop.size());
  part->lines.items.reserve(loop.size());
  for (size_t i = 0; i + 1 < loop.size(); ++i) part->AddLine(loop[i], loop[i + 1]);
  part->AddLine(loop.back(), loop.front());
}

}  // namespace

void StoreContours(const RebuildOptions& options, GlyphContours* contours) {
  for (P2& p : contours->points) {
    p = {p.x * options.scale + options.at.x, -p.y * options.scale + options.at.y};
  }
}

void BuildParts(const GlyphContours& stored, const RebuildOptions& options, PartsA* parts) {
  parts->parts.reserve(parts->parts.size() + stored.counts.size());
  std::vector<P3> loop;
  size_t first = 0;
  for (size_t i = 0; i < stored.counts.size(); ++i) {
    CollectLoop(std::span(stored.points).subspan(first, stored.counts[i]), &loop);
    first += stored.counts[i];
    PartsElement& part = parts->parts.emplace_back();
    part.name = options.layer;
    ColourByIndex(i, &part);
    if (options.elements != ContourElements::kFaces) AddClosedLines(loop, &part);
    if (options.elements != ContourElements::kLines && !loop.empty()) part.AddFace(loop, 0);
  }
}

}  // namespace kerno
