#include "app/cut.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <unordered_set>
#include <utility>

#include "app/face_choice.h"
#include "app/overlaps.h"
#include "base/parallel.h"
#include "base/text.h"
#include "drawing/affine.h"
#include "drawing/check_paths.h"
#include "drawing/cutting_order.h"
#include "drawing/fit_arcs.h"
#include "drawing/flatten.h"
#include "drawing/measures.h"
#include "drawing/offset.h"
#include "drawing/weld.h"

namespace kerno {
namespace {

constexpr double kShare = 0.25;     // of the tolerance, for welding and for an offset
constexpr double kSmallest = 1e-3;  // units; below, the decimals of files leave no shape
constexpr double kFarthest = 1e7;   // units; beyond, coordinates lose the decimals of a tolerance

Status Refuse(const char16_t* what, std::u16string why) {
  return Status::Error(Failure::kOther, what, std::move(why));
}

// A linear map: first the slant, then the mirror, then the turn, then the scales.
struct Linear {
  double xx = 1, xy = 0, yx = 0, yy = 1;

  P2 Apply(const P2& p) const { return {xx * p.x + xy * p.y, yx * p.x + yy * p.y}; }
  Linear Scaled(double x, double y) const { return {xx * x, xy * x, yx * y, yy * y}; }
};

Linear PoseOf(const CutJob& job) {
  const Affine turn = Turned(job.angle, {});
  const double side = job.mirror ? -1 : 1;
  const double lean = job.slant == 0 ? 0 : std::tan(job.slant * std::numbers::pi / 180) * side;
  return {turn.xx * side, turn.xx * lean + turn.xy, turn.yx * side, turn.yx * lean + turn.yy};
}

Path Mapped(const Path& path, const Linear& map) {
  Path mapped = path;
  mapped.start = map.Apply(path.start);
  for (Segment& segment : mapped.segments) {
    segment.end = map.Apply(segment.end);
    segment.first = map.Apply(segment.first);
    segment.second = map.Apply(segment.second);
  }
  return mapped;
}

Path Moved(Path path, const P2& by) {
  path.start = path.start + by;
  for (Segment& segment : path.segments) {
    segment.end = segment.end + by;
    segment.first = segment.first + by;
    segment.second = segment.second + by;
  }
  return path;
}

// Glyphs of a text, with what is made of them once.
class CutMaker {
 public:
  CutMaker(const CutJob& job, const ShapingFont& font)
      : job_(job), font_(font), pose_(PoseOf(job)) {}

  Status Make(CutDrawing* made);

 private:
  struct Placed {
    P2 at;
    Box2 ink;  // empty for a blank
  };
  // What the user is told of a shape, once for each place of it.
  struct ShapeNotes {
    size_t crossing = 0, vanished = 0;
  };

  Status Size();
  void Set(double letter_spacing);
  Box2 InkOfBlock(const Linear& map);
  const Box2& InkOfGlyph(uint32_t glyph);
  void Place();
  uint32_t ShapeOf(const std::vector<size_t>& cluster);
  Shape Finish(std::vector<Path> outlines, ShapeNotes* notes) const;
  void FinishAll();
  size_t CrossingsOf(const Drawing& drawing) const;
  Path InForm(Path path, double tolerance, bool again) const;
  std::vector<Path> Formed(std::vector<Path> paths, double tolerance, size_t* vanished) const;

  const CutJob& job_;
  const ShapingFont& font_;
  Linear pose_;  // without a size
  Linear map_;   // from font units to the drawing's
  std::vector<BlockGlyph> block_;
  std::map<uint32_t, Box2> inks_;  // of glyphs, under map_
  std::vector<Placed> placed_;     // the glyphs of block_
  // The shapes so far, by their glyphs and where these stand to the first, in font units.
  std::map<std::vector<double>, uint32_t> known_;
  std::vector<std::vector<Path>> outlines_;  // of each shape, as the font has them
  std::vector<ShapeNotes> notes_;            // of each shape
  CutDrawing made_;
};

const Box2& CutMaker::InkOfGlyph(uint32_t glyph) {
  const auto [kept, is_new] = inks_.try_emplace(glyph);
  if (is_new) {
    for (const Path& path : font_.Outline(glyph)) Include(&kept->second, BoxOf(Mapped(path, map_)));
  }
  return kept->second;
}

Box2 CutMaker::InkOfBlock(const Linear& map) {
  map_ = map;
  inks_.clear();
  Box2 ink;
  for (const BlockGlyph& glyph : block_) {
    const Box2& box = InkOfGlyph(glyph.glyph);
    if (!(box.min.x <= box.max.x)) continue;
    const P2 at = map.Apply(glyph.origin);
    Include(&ink, Box2{box.min + at, box.max + at});
  }
  return ink;
}

void CutMaker::Set(double letter_spacing) {
  block_ = SetBlock(font_, job_.text, {job_.mode, job_.align, job_.line_spacing, letter_spacing});
}

// Settles map_ and block_. Letter spacing is a length of the drawing, so that where the ink decides
// on the scale, the scale and the spacing in font units are found together.
Status CutMaker::Size() {
  const CutSize& size = job_.size;
  const bool fits = size.by == CutSize::By::kFit || size.by == CutSize::By::kStretch;
  if (!fits) {
    const double reference =
        size.by == CutSize::By::kEm ? font_.units_per_em() : font_.cap_height();
    if (!(reference > 0)) {
      return Refuse(u"cap height",
                    u"the face \"" + font_.data().family + u"\" has no capital letters to measure");
    }
    const double scale = size.height / reference;
    Set(job_.letter_spacing / scale);
    map_ = pose_.Scaled(scale, scale);
    return Status::Ok();
  }
  double x = 0, y = 0;
  bool settled = false;
  constexpr int kMostRounds = 200;
  for (int round = 0; round < kMostRounds && !settled; ++round) {
    Set(x > 0 ? job_.letter_spacing / std::min(x, y) : 0);
    const Box2 ink = InkOfBlock(pose_);
    const double width = ink.Width(), height = ink.Height();
    if (!(width > 0 || height > 0)) return Refuse(u"fit", u"the text has no ink to fit");
    const double by_width = size.width > 0 && width > 0 ? size.width / width : 0;
    const double by_height = size.height > 0 && height > 0 ? size.height / height : 0;
    if (by_width == 0 && by_height == 0) return Refuse(u"fit", u"the ink has no such side");
    const double both = by_width == 0 || by_height == 0 ? std::max(by_width, by_height)
                                                        : std::min(by_width, by_height);
    const bool stretches = size.by == CutSize::By::kStretch && by_width > 0 && by_height > 0;
    const double next_x = stretches ? by_width : both, next_y = stretches ? by_height : both;
    settled = job_.letter_spacing == 0 || std::fabs(next_x - x) <= 1e-12 * next_x;
    x = next_x;
    y = next_y;
  }
  if (!settled) return Refuse(u"letter spacing", u"leaves the letters no room in the size");
  map_ = pose_.Scaled(x, y);
  return Status::Ok();
}

// Moves the block so that the anchor of its ink lies where it was wanted.
void CutMaker::Place() {
  const Box2 ink = InkOfBlock(map_);
  const bool blank = !(ink.min.x <= ink.max.x);
  const auto part = [](double low, double high, int which) {
    return which == 0 ? low : which == 1 ? (low + high) / 2 : high;
  };
  const P2 anchor = blank ? P2{}
                          : P2{part(ink.min.x, ink.max.x, job_.anchor.across),
                               part(ink.min.y, ink.max.y, job_.anchor.up)};
  const P2 shift = job_.at - anchor;
  placed_.reserve(block_.size());
  for (const BlockGlyph& glyph : block_) {
    Placed placed = {map_.Apply(glyph.origin) + shift, {}};
    if (const Box2& box = InkOfGlyph(glyph.glyph); box.min.x <= box.max.x) {
      placed.ink = {box.min + placed.at, box.max + placed.at};
    }
    made_.glyphs.push_back({glyph.glyph, glyph.character, placed.at});
    placed_.push_back(placed);
  }
}

Path CutMaker::InForm(Path path, double tolerance, bool again) const {
  switch (job_.curves) {
    case CurveForm::kArcs:
      return again ? FitArcsKeepingNodes(path, tolerance) : FitArcs(path, tolerance);
    case CurveForm::kLines: {
      std::vector<P2> corners;
      FlattenPath(path, tolerance, &corners);
      Path chords;
      if (corners.empty()) return chords;
      chords.start = corners[0];
      for (size_t i = 1; i < corners.size(); ++i) chords.segments.push_back({.end = corners[i]});
      chords.segments.push_back({.end = corners[0]});
      return chords;
    }
    case CurveForm::kCurves:
      break;
  }
  return path;
}

// Welds, offsets and fits the outlines of one shape. The tolerance is shared out: welding and
// moving may take part of it, fitting the rest.
std::vector<Path> CutMaker::Formed(std::vector<Path> paths, double tolerance,
                                   size_t* vanished) const {
  double left = tolerance;
  if (job_.weld != WeldScope::kNone) {
    WeldResult welded = Weld(paths, kShare * left);
    paths.clear();
    for (WeldedPath& path : welded.paths) paths.push_back(std::move(path.path));
  }
  if (job_.offset != 0) {
    OffsetResult offset = Offset(paths, job_.offset, kShare * left);
    *vanished = offset.vanished;
    paths = std::move(offset.paths);
    left -= kShare * left;
  }
  for (Path& path : paths) path = InForm(std::move(path), left, tolerance < job_.tolerance);
  std::erase_if(paths, [](const Path& path) { return path.segments.empty(); });
  return paths;
}

// Makes a shape of outlines, in the order in which it is cut. Contours that all but touch may cross
// when each is bent by the tolerance; these follow their curves more closely, and through all of
// their nodes.
Shape CutMaker::Finish(std::vector<Path> outlines, ShapeNotes* notes) const {
  std::erase_if(outlines, [](const Path& path) { return path.segments.empty(); });
  constexpr double kClosest = 1.0 / 64;
  Shape shape;
  for (double share = 1; share >= kClosest; share *= 0.25) {
    const double tolerance = job_.tolerance * share;
    const std::vector<Path> paths = Formed(outlines, tolerance, &notes->vanished);
    const ChordGrid grid(paths, tolerance * 0.25, ChordGrid::Closing::kAll);
    const PathFaults faults = CheckPaths(paths, grid);
    notes->crossing = 2 * faults.crossing + faults.self_crossing;
    shape.clear();
    for (const CutStep& step : OrderForCutting(paths, grid, job_.order)) {
      shape.push_back({PathOf(paths[step.path], step), static_cast<uint32_t>(step.depth)});
    }
    if (notes->crossing == 0 || job_.weld == WeldScope::kNone) break;
  }
  return shape;
}

// The number of the shape of glyphs that are welded together, about the first one's origin. A new
// one's outlines wait to be finished.
uint32_t CutMaker::ShapeOf(const std::vector<size_t>& cluster) {
  const P2 origin = block_[cluster[0]].origin;
  std::vector<double> key;
  for (const size_t i : cluster) {
    const P2 apart = block_[i].origin - origin;
    key.insert(key.end(), {static_cast<double>(block_[i].glyph), apart.x, apart.y});
  }
  const auto [known, is_new] =
      known_.try_emplace(std::move(key), static_cast<uint32_t>(outlines_.size()));
  if (!is_new) return known->second;
  std::vector<Path>& paths = outlines_.emplace_back();
  for (const size_t i : cluster) {
    const P2 apart = map_.Apply(block_[i].origin - origin);
    for (const Path& path : font_.Outline(block_[i].glyph)) {
      paths.push_back(Moved(Mapped(path, map_), apart));
    }
  }
  return known->second;
}

void CutMaker::FinishAll() {
  made_.drawing.shapes.resize(outlines_.size());
  notes_.resize(outlines_.size());
  ForEachInParallel(outlines_.size(), [&](size_t i) {
    made_.drawing.shapes[i] = Finish(std::move(outlines_[i]), &notes_[i]);
  });
  outlines_.clear();
}

// The paths that cross others or themselves, in a drawing whose shapes were not kept apart.
size_t CutMaker::CrossingsOf(const Drawing& drawing) const {
  std::vector<Box2> of_shapes, boxes;
  for (const Shape& shape : drawing.shapes) {
    Box2& box = of_shapes.emplace_back();
    for (const ShapePath& path : shape) Include(&box, BoxOf(path.path));
  }
  for (const PlacedShape& placed : drawing.placed) {
    const Box2& box = of_shapes[placed.shape];
    boxes.push_back({box.min + placed.at, box.max + placed.at});
  }
  size_t crossing = 0;
  for (const std::vector<size_t>& cluster : Overlapping(boxes)) {
    if (cluster.size() == 1) {
      crossing += notes_[drawing.placed[cluster[0]].shape].crossing;
      continue;
    }
    std::vector<Path> paths;
    for (const size_t i : cluster) {
      const PlacedShape& placed = drawing.placed[i];
      for (const ShapePath& path : drawing.shapes[placed.shape]) {
        paths.push_back(Moved(path.path, placed.at));
      }
    }
    const PathFaults faults = CheckPaths(paths, job_.tolerance);
    crossing += 2 * faults.crossing + faults.self_crossing;
  }
  return crossing;
}

Status CutMaker::Make(CutDrawing* made) {
  if (Status sized = Size(); !sized.ok()) return sized;
  Place();
  std::vector<Box2> inks;
  inks.reserve(placed_.size());
  // What comes closer than the tolerance may meet when it is fitted.
  const double around = std::max(0.0, job_.offset) + job_.tolerance;
  for (const Placed& placed : placed_) {
    Box2 box = placed.ink;
    box.min = box.min - P2{around, around};
    box.max = box.max + P2{around, around};
    inks.push_back(box);
  }
  made_.drawing.unit = job_.unit;
  const bool together = job_.weld == WeldScope::kText;
  std::vector<PlacedShape> placed;
  for (const std::vector<size_t>& cluster : together ? Overlapping(inks) : EachAlone(inks)) {
    placed.push_back({ShapeOf(cluster), placed_[cluster[0]].at, block_[cluster[0]].line});
  }
  FinishAll();
  for (const PlacedShape& shape : placed) {
    made_.crossing += notes_[shape.shape].crossing;
    made_.vanished += notes_[shape.shape].vanished;
    if (!made_.drawing.shapes[shape.shape].empty()) made_.drawing.placed.push_back(shape);
  }
  if (!together) made_.crossing = CrossingsOf(made_.drawing);
  made_.facts = FactsOf(made_.drawing);
  made_.ink = InkOf(made_.drawing);
  const Box2& ink = made_.ink;
  const bool blank = made_.drawing.placed.empty();
  if (!blank && !(std::max({-ink.min.x, -ink.min.y, ink.max.x, ink.max.y}) < kFarthest)) {
    return Refuse(u"size", u"the drawing is too large or too far away for a file");
  }
  if (!blank && std::max(ink.Width(), ink.Height()) < kSmallest) {
    return Refuse(u"size", u"the drawing is too small for the decimals of a file");
  }
  *made = std::move(made_);
  return Status::Ok();
}

// The characters that the font has no glyph for, each once. A glyph may stand for a letter with its
// marks; those of them are named that are missing.
std::vector<char32_t> MissingOf(std::u16string_view text, const ShapingFont& font,
                                const std::vector<CutGlyph>& glyphs) {
  std::vector<size_t> starts;
  starts.reserve(glyphs.size());
  for (const CutGlyph& glyph : glyphs) starts.push_back(glyph.character);
  std::ranges::sort(starts);
  std::vector<char32_t> missing;
  std::unordered_set<char32_t> seen;
  for (const CutGlyph& glyph : glyphs) {
    if (glyph.glyph != 0) continue;
    const auto next = std::ranges::upper_bound(starts, glyph.character);
    const size_t end = next == starts.end() ? text.size() : *next;
    std::vector<char32_t> lacking;
    for (size_t at = glyph.character; at < end;) {
      const char32_t ch = NextCharacter(text, &at);
      if (!IsUnseen(ch) && !font.HasGlyph(ch)) lacking.push_back(ch);
    }
    size_t at = glyph.character;
    if (lacking.empty()) lacking.push_back(NextCharacter(text, &at));
    for (const char32_t ch : lacking) {
      if (seen.insert(ch).second) missing.push_back(ch);
    }
  }
  return missing;
}

}  // namespace

Status MakeCut(const CutJob& job, CutDrawing* made) {
  if (!(job.tolerance > 0)) return Refuse(u"tolerance", u"must be above 0");
  FontData data;
  if (Status found = FindFace(job.face, &data); !found.ok()) return found;
  std::unique_ptr<ShapingFont> font;
  if (Status opened = ShapingFont::Open(data, &font); !opened.ok()) return opened;
  CutDrawing cut;
  if (Status status = CutMaker(job, *font).Make(&cut); !status.ok()) return status;
  cut.family = data.family;
  cut.style = data.style;
  cut.made_bold = data.make_bold;
  cut.made_slanted = data.make_slanted;
  cut.no_features = font->FeaturesWithoutRules();
  cut.missing = MissingOf(job.text, *font, cut.glyphs);
  *made = std::move(cut);
  return Status::Ok();
}

}  // namespace kerno
