#include "app/job.h"

#include <array>
#include <span>
#include <utility>
#include <vector>

#include "base/settings_table.h"
#include "drawing/affine.h"

namespace kerno {
namespace {

constexpr int kHueStep = 30;
constexpr int kLightness = 128;
constexpr int kSaturation = 128;

constexpr size_t kHues = 360 / kHueStep;

// The colours of a pen and of the brush opposite to it, for each hue.
std::array<std::pair<int32_t, int32_t>, kHues> HueColours() {
  std::array<std::pair<int32_t, int32_t>, kHues> colours;
  int hue = 0;
  for (auto& [pen, brush] : colours) {
    pen = static_cast<int32_t>(HlsColor(hue, kLightness, kSaturation));
    brush = static_cast<int32_t>(HlsColor(hue + 180, kLightness, kSaturation));
    hue += kHueStep;
  }
  return colours;
}

void ColourByIndex(size_t index, PartsElement* part) {
  static const auto colours = HueColours();
  const auto& [pen, brush] = colours[index % kHues];
  part->pen.color = pen;
  part->brush.color = brush;
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

// Makes parts of contours, one after the other or in any order.
class PartMaker {
 public:
  PartMaker(const TextContours& contours, const PartsOptions& options)
      : contours_(contours), options_(options) {}

  // Into a part as it was made by PartsElement or by this function.
  void Make(size_t i, PartsElement* part) {
    const std::span<const P3> loop = CollectLoop(contours_.Contour(i, &points_), &room_);
    part->name = options_.layer;
    ColourByIndex(i, part);
    part->vertices.Clear();
    part->lines.items.clear();
    part->faces[0].items.clear();
    if (options_.elements != ContourElements::kFaces && loop.size() > 1) part->AddClosedLines(loop);
    if (options_.elements != ContourElements::kLines && !loop.empty()) part->AddFace(loop, 0);
  }

 private:
  const TextContours& contours_;
  const PartsOptions& options_;
  std::vector<P2> points_;
  std::vector<P3> room_;
};

class ContourParts final : public MadeParts {
 public:
  ContourParts(std::shared_ptr<const TextContours> contours, PartsOptions options)
      : contours_(std::move(contours)),
        options_(std::move(options)),
        maker_(*contours_, options_) {}

  size_t Count() const override { return contours_->size(); }
  void Make(size_t i, PartsElement* part) const override { maker_.Make(i, part); }

 private:
  std::shared_ptr<const TextContours> contours_;
  PartsOptions options_;
  mutable PartMaker maker_;  // keeps room between calls
};

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
  set->contours.Apply(up);
  return set;
}

void BuildParts(const TextContours& contours, const PartsOptions& options, PartsA* parts) {
  parts->parts.reserve(parts->parts.size() + contours.size());
  PartMaker maker(contours, options);
  for (size_t i = 0; i < contours.size(); ++i) maker.Make(i, &parts->parts.emplace_back());
}

// A limited search for vertices finds one of two equal points, and which hangs on all searches
// before it: such parts are made once, in their order.
PartsA DrawingOf(std::shared_ptr<const TextContours> contours, const PartsOptions& options) {
  PartsA parts;
  if (Get(kMaxSearch) >= 0) {
    BuildParts(*contours, options, &parts);
  } else {
    parts.made = std::make_shared<ContourParts>(std::move(contours), options);
  }
  return parts;
}

}  // namespace kerno
