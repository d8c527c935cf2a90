#include "app/cut.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>
#include <unordered_set>
#include <utility>

#include "app/overlaps.h"
#include "app/stroke_fonts.h"
#include "base/parallel.h"
#include "base/text.h"
#include "drawing/affine.h"
#include "drawing/check_paths.h"
#include "drawing/cutting_order.h"
#include "drawing/fit_arcs.h"
#include "drawing/flatten.h"
#include "drawing/measures.h"
#include "drawing/offset.h"
#include "drawing/strokes.h"
#include "drawing/weld.h"

namespace kerno {
namespace {

constexpr double kShare = 0.25;       // of the tolerance, for welding and for an offset
constexpr double kSmallest = 1e-3;    // units; below, the decimals of files leave no shape
constexpr double kFarthest = 1e7;     // units; beyond, coordinates lose the decimals of a tolerance
constexpr double kSameStroke = 1e-6;  // of an em; strokes that lie closer count as one

Status Refuse(std::u16string what, std::u16string why) {
  return Status::Error(Failure::kOther, std::move(what), std::move(why));
}

// A linear map: first the slant, then the mirror, then the turn, then the scales.
struct Linear {
  double xx = 1, xy = 0, yx = 0, yy = 1;

  P2 Apply(const P2& p) const { return {xx * p.x + xy * p.y, yx * p.x + yy * p.y}; }
  bool TurnsOver() const { return xx * yy - xy * yx < 0; }
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
    if (map.TurnsOver()) segment.bulge = -segment.bulge;
  }
  return mapped;
}

bool HasArcs(const Path& path) {
  return std::ranges::any_of(path.segments,
                             [](const Segment& s) { return s.kind == SegmentKind::kArc; });
}
bool HasCurves(const Path& path) {
  return std::ranges::any_of(path.segments, [](const Segment& s) {
    return s.kind == SegmentKind::kQuadratic || s.kind == SegmentKind::kCubic;
  });
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
      : job_(job), font_(&font), pose_(PoseOf(job)) {}
  CutMaker(const CutJob& job, const StrokeFont& font)
      : job_(job), stroke_font_(&font), pose_(PoseOf(job)) {}

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
  const std::vector<Path>& Outline(uint32_t glyph);
  double FontSize(CutSize::By by) const;
  void Place();
  uint32_t ShapeOf(const std::vector<size_t>& cluster);
  Shape Finish(std::vector<Path> outlines, ShapeNotes* notes) const;
  Shape FinishStrokes(std::vector<Path> strokes) const;
  void FinishAll();
  size_t CrossingsOf(const Drawing& drawing) const;
  Path InForm(Path path, double tolerance, bool again) const;
  std::vector<Path> Formed(std::vector<Path> paths, double tolerance, size_t* vanished) const;

  const CutJob& job_;
  const ShapingFont* font_ = nullptr;  // null where there is a stroke font
  const StrokeFont* stroke_font_ = nullptr;
  std::map<uint32_t, std::vector<Path>> strokes_;  // of its glyphs, as they are drawn
  Linear pose_;                                    // without a size
  Linear map_;                                     // from font units to the drawing's
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
    for (const Path& path : Outline(glyph)) Include(&kept->second, BoxOf(Mapped(path, map_)));
  }
  return kept->second;
}

const std::vector<Path>& CutMaker::Outline(uint32_t glyph) {
  if (font_) return font_->Outline(glyph);
  const auto [kept, is_new] = strokes_.try_emplace(glyph);
  if (is_new) {
    kept->second =
        DrawnOnce(stroke_font_->glyphs[glyph].strokes, kSameStroke * stroke_font_->units_per_em);
    // Circles that lean or are stretched are none.
    if (job_.slant != 0 || job_.size.by == CutSize::By::kStretch) {
      for (Path& path : kept->second) path = WithoutArcs(path);
    }
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
  const BlockOptions options = {job_.mode, job_.align, job_.line_spacing, letter_spacing};
  block_ = font_ ? SetBlock(*font_, job_.text, options)
                 : SetStrokeBlock(*stroke_font_, job_.text, options);
}

// What a size by cap height or em is measured against, in font units; 0 where there is none.
double CutMaker::FontSize(CutSize::By by) const {
  const bool em = by == CutSize::By::kEm;
  if (font_) return em ? font_->units_per_em() : font_->cap_height();
  return em ? stroke_font_->units_per_em : stroke_font_->cap_height;
}

// Settles map_ and block_. Letter spacing is a length of the drawing, so that where the ink decides
// on the scale, the scale and the spacing in font units are found together.
Status CutMaker::Size() {
  const CutSize& size = job_.size;
  const bool fits = size.by == CutSize::By::kFit || size.by == CutSize::By::kStretch;
  if (!fits) {
    const double reference = FontSize(size.by);
    if (!(reference > 0)) {
      return Refuse(u"cap height", u"the face \"" +
                                       (font_ ? font_->data().family : stroke_font_->family) +
                                       u"\" has no capital letters to measure");
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
      chords.closed = path.closed;
      if (path.closed) chords.segments.push_back({.end = corners[0]});
      return chords;
    }
    case CurveForm::kCurves:
      break;
  }
  if (HasCurves(path) && HasArcs(path)) return WithoutArcs(path);
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

// Strokes cross and touch as they like, and are neither inside nor outside of each other.
Shape CutMaker::FinishStrokes(std::vector<Path> strokes) const {
  for (Path& path : strokes) path = InForm(std::move(path), job_.tolerance, false);
  std::erase_if(strokes, [](const Path& path) { return path.segments.empty(); });
  if (job_.order != CutOrder::kText) strokes = WithShortWays(std::move(strokes));
  Shape shape;
  for (Path& path : strokes) shape.push_back({std::move(path), 0});
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
    for (const Path& path : Outline(block_[i].glyph)) {
      paths.push_back(Moved(Mapped(path, map_), apart));
    }
  }
  return known->second;
}

void CutMaker::FinishAll() {
  made_.drawing.shapes.resize(outlines_.size());
  notes_.resize(outlines_.size());
  ForEachInParallel(outlines_.size(), [&](size_t i) {
    made_.drawing.shapes[i] = font_ ? Finish(std::move(outlines_[i]), &notes_[i])
                                    : FinishStrokes(std::move(outlines_[i]));
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
  made_.drawing.strokes = !font_;
  const bool together = font_ && job_.weld == WeldScope::kText;
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
  if (font_ && !together) made_.crossing = CrossingsOf(made_.drawing);
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

// The characters that the font has no glyph for, each once.
std::vector<char32_t> MissingOf(const CutJob& job, const std::vector<CutGlyph>& glyphs) {
  std::vector<char32_t> missing;
  std::unordered_set<char32_t> seen;
  for (const CutGlyph& glyph : glyphs) {
    if (glyph.glyph != 0) continue;
    size_t at = glyph.character;
    const char32_t ch = NextCharacter(job.text, &at);
    if (seen.insert(ch).second) missing.push_back(ch);
  }
  return missing;
}

// The first character of the text whose strokes cannot be read.
Status CheckStrokes(const CutJob& job, const ChosenStrokeFont& chosen) {
  for (size_t at = 0; at < job.text.size();) {
    const char32_t ch = NextCharacter(job.text, &at);
    if (ch == U'\n' || ch == U'\r') continue;
    const StrokeGlyph& glyph = chosen.font.glyphs[chosen.font.GlyphOf(ch)];
    if (glyph.bad_line == 0) continue;
    const std::string line = std::to_string(glyph.bad_line), code = CodeOf(ch);
    return Refuse(PathText(chosen.file) + u", line " + std::u16string(line.begin(), line.end()),
                  std::u16string(code.begin(), code.end()) + u": " + glyph.fault);
  }
  return Status::Ok();
}

Status MakeStrokeCut(const CutJob& job, CutDrawing* made) {
  if (job.offset != 0) {
    return Refuse(u"offset", u"strokes have no outside: an offset needs a font of outlines");
  }
  ChosenStrokeFont chosen;
  if (Status found = ChooseStrokeFont(job.stroke_font, &chosen); !found.ok()) return found;
  if (Status checked = CheckStrokes(job, chosen); !checked.ok()) return checked;
  CutDrawing cut;
  if (Status status = CutMaker(job, chosen.font).Make(&cut); !status.ok()) return status;
  cut.family = chosen.font.family;
  cut.missing = MissingOf(job, cut.glyphs);
  *made = std::move(cut);
  return Status::Ok();
}

}  // namespace

Status MakeCut(const CutJob& job, CutDrawing* made) {
  if (!(job.tolerance > 0)) return Refuse(u"tolerance", u"must be above 0");
  if (!job.stroke_font.empty()) return MakeStrokeCut(job, made);
  FontData data;
  if (Status found = FindFontData(job.family, job.style, &data); !found.ok()) return found;
  std::unique_ptr<ShapingFont> font;
  if (Status opened = ShapingFont::Open(data, &font); !opened.ok()) return opened;
  CutDrawing cut;
  if (Status status = CutMaker(job, *font).Make(&cut); !status.ok()) return status;
  cut.family = data.family;
  cut.style = data.style;
  cut.missing = MissingOf(job, cut.glyphs);
  *made = std::move(cut);
  return Status::Ok();
}

}  // namespace kerno
