#include "app/cut.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <mutex>
#include <numbers>
#include <utility>

#include "app/glyph_source.h"
#include "app/overlaps.h"
#include "app/shape_maker.h"
#include "app/warm_glyphs.h"
#include "base/parallel.h"
#include "base/stop.h"
#include "drawing/affine.h"
#include "drawing/measures.h"

namespace kerno {
namespace {

constexpr double kSmallest = 1e-3;  // units; below, the decimals of files leave no shape
constexpr double kFarthest = 1e7;   // units; beyond, coordinates lose the decimals of a tolerance

Status Refuse(const char16_t* what, std::u16string why) {
  return Status::Error(Failure::kOther, what, std::move(why));
}

// First the slant, then the mirror, then the turn.
Linear PoseOf(const CutJob& job) {
  const Affine turn = Turned(job.angle, {});
  const double side = job.mirror ? -1 : 1;
  const double lean = job.slant == 0 ? 0 : std::tan(job.slant * std::numbers::pi / 180) * side;
  return {turn.xx * side, turn.xx * lean + turn.xy, turn.yx * side, turn.yx * lean + turn.yy};
}

// Glyphs of a text, with what is made of them once.
class CutMaker {
 public:
  // `later`: whether other texts come after this one.
  CutMaker(const CutJob& job, WarmGlyphs* warm, bool later)
      : job_(job), source_(warm->source()), warm_(*warm), later_(later), pose_(PoseOf(job)) {}

  Status Make(CutDrawing* made);

 private:
  struct Placed {
    P2 at;
    Box2 ink;  // empty for a blank
  };
  Status Size();
  void Set(double letter_spacing);
  Box2 InkOfBlock(const Linear& map);
  const Box2& InkOfGlyph(const BlockGlyph& glyph);
  const std::vector<Path>& Outline(const BlockGlyph& glyph) const;
  Linear MapOf(const BlockGlyph& glyph) const { return map_.After(block_.forms[glyph.form].map); }
  uint64_t KeyOf(const BlockGlyph& glyph) const {
    return WarmGlyphs::KeyOf(form_ids_[glyph.form], glyph.glyph);
  }
  void Use(const Linear& map);
  bool KeepsShapes() const;
  void Place();
  void Settle();
  P2 AnchorOf(const Box2& ink) const;
  uint32_t ShapeOf(const std::vector<size_t>& cluster);
  void FinishAll();
  void CountFaults(CutDrawing* made) const;

  const CutJob& job_;
  const GlyphSource& source_;
  WarmGlyphs& warm_;
  bool later_;
  Linear pose_;  // without a size
  Linear map_;   // from font units to the drawing's
  TextBlock block_;
  std::vector<uint32_t> form_ids_;    // of the forms of block_
  WarmGlyphs::Inks* inks_ = nullptr;  // of glyphs in their forms, under map_
  std::vector<Placed> placed_;        // the glyphs of block_
  // The shapes so far, by their glyphs and where these stand to the first, in font units.
  std::map<ShapeStore::Key, uint32_t> known_;
  ShapeStore* store_ = nullptr;  // of earlier texts
  // A shape of this text: made already, or of outlines as the font has them.
  struct NewShape {
    const ShapeStore::Key* key = nullptr;
    const WarmShape* made = nullptr;
    std::vector<Path> outlines;
  };
  std::vector<NewShape> new_shapes_;
  std::vector<ShapeNotes> notes_;  // of each shape
  CutDrawing made_;
};

const std::vector<Path>& CutMaker::Outline(const BlockGlyph& glyph) const {
  return source_.PathsOf(block_.forms[glyph.form].font, glyph.glyph);
}

const Box2& CutMaker::InkOfGlyph(const BlockGlyph& glyph) {
  const auto [kept, is_new] = inks_->try_emplace(KeyOf(glyph));
  if (is_new) {
    const Linear map = MapOf(glyph);
    for (const Path& path : Outline(glyph)) Include(&kept->second, BoxOf(Mapped(path, map)));
  }
  return kept->second;
}

void CutMaker::Use(const Linear& map) {
  map_ = map;
  inks_ = &warm_.InksUnder(map);
}

// A text that is fitted has a scale that hardly another one has, unless it is typed: most changes
// leave its longest line alone.
bool CutMaker::KeepsShapes() const {
  const CutSize::By by = job_.size.by;
  return later_ && (by == CutSize::By::kCapHeight || by == CutSize::By::kEm || warm_.Knows(map_));
}

Box2 CutMaker::InkOfBlock(const Linear& map) {
  Use(map);
  Box2 ink;
  for (const BlockGlyph& glyph : block_.glyphs) {
    const Box2& box = InkOfGlyph(glyph);
    if (!(box.min.x <= box.max.x)) continue;
    const P2 at = map.Apply(glyph.origin);
    Include(&ink, Box2{box.min + at, box.max + at});
  }
  return ink;
}

void CutMaker::Set(double letter_spacing) {
  block_ = source_.Set(job_.text, {job_.mode, job_.align, job_.line_spacing, letter_spacing,
                                   job_.language, job_.direction, job_.across_digits});
  form_ids_.clear();
  for (const GlyphForm& form : block_.forms) form_ids_.push_back(warm_.IdOf(form));
}

// Settles map_ and block_. Letter spacing is a length of the drawing, so that where the ink decides
// on the scale, the scale and the spacing in font units are found together.
Status CutMaker::Size() {
  const CutSize& size = job_.size;
  const bool fits = size.by == CutSize::By::kFit || size.by == CutSize::By::kStretch;
  if (!fits) {
    const double reference =
        size.by == CutSize::By::kEm ? source_.UnitsPerEm() : source_.CapHeight();
    if (!(reference > 0)) {
      return Refuse(u"cap height",
                    u"the face \"" + source_.Family() + u"\" has no capital letters to measure");
    }
    const double scale = size.height / reference;
    Set(job_.letter_spacing / scale);
    map_ = pose_.Scaled(scale, scale);
    return Status::Ok();
  }
  double x = 0, y = 0;
  bool settled = false;
  // The ink grows about evenly with the scale that the spacing is set for: where it is right is
  // found by secants.
  struct Guess {
    double scale, error;
  };
  Guess before = {0, 0};
  double scale = 0;
  constexpr int kMostRounds = 60;
  for (int round = 0; round < kMostRounds && !settled; ++round) {
    Set(scale > 0 ? job_.letter_spacing / scale : 0);
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
    x = next_x;
    y = next_y;
    const double next = std::min(x, y);
    const Guess guess = {scale, scale / next - 1};
    settled = job_.letter_spacing == 0 || std::fabs(guess.error) <= 1e-12;
    const double rise = guess.error - before.error;
    scale = next;
    if (before.scale > 0 && rise != 0) {
      scale = guess.scale - guess.error * (guess.scale - before.scale) / rise;
      if (!(scale > 0)) break;
    }
    before = guess;
  }
  if (!settled) return Refuse(u"letter spacing", u"leaves the letters no room in the size");
  map_ = pose_.Scaled(x, y);
  return Status::Ok();
}

P2 CutMaker::AnchorOf(const Box2& ink) const {
  const auto part = [](double low, double high, int which) {
    return which == 0 ? low : which == 1 ? (low + high) / 2 : high;
  };
  return {part(ink.min.x, ink.max.x, job_.anchor.across),
          part(ink.min.y, ink.max.y, job_.anchor.up)};
}

// Moves the block so that the anchor of its ink lies where it was wanted.
void CutMaker::Place() {
  const Box2 ink = InkOfBlock(map_);
  const bool blank = !(ink.min.x <= ink.max.x);
  const P2 shift = job_.at - (blank ? P2{} : AnchorOf(ink));
  placed_.reserve(block_.glyphs.size());
  for (const BlockGlyph& glyph : block_.glyphs) {
    Placed placed = {map_.Apply(glyph.origin) + shift, {}};
    if (const Box2& box = InkOfGlyph(glyph); box.min.x <= box.max.x) {
      placed.ink = {box.min + placed.at, box.max + placed.at};
    }
    const GlyphForm& form = block_.forms[glyph.form];
    made_.glyphs.push_back({glyph.glyph, glyph.character, placed.at, form.font, form.map.yx != 0});
    placed_.push_back(placed);
  }
}

// The number of the shape of glyphs that are welded together, about the first one's origin. A new
// one's outlines wait to be finished.
uint32_t CutMaker::ShapeOf(const std::vector<size_t>& cluster) {
  const std::vector<BlockGlyph>& glyphs = block_.glyphs;
  const P2 origin = glyphs[cluster[0]].origin;
  std::vector<double> key;
  for (const size_t i : cluster) {
    const P2 apart = glyphs[i].origin - origin;
    key.insert(key.end(), {static_cast<double>(KeyOf(glyphs[i])), apart.x, apart.y});
  }
  const auto [known, is_new] =
      known_.try_emplace(std::move(key), static_cast<uint32_t>(new_shapes_.size()));
  if (!is_new) return known->second;
  NewShape& shape = new_shapes_.emplace_back();
  shape.key = &known->first;
  if (store_) shape.made = store_->Find(known->first);
  if (shape.made) return known->second;
  for (const size_t i : cluster) {
    const P2 apart = map_.Apply(glyphs[i].origin - origin);
    const Linear map = MapOf(glyphs[i]);
    for (const Path& path : Outline(glyphs[i])) {
      shape.outlines.push_back(Moved(Mapped(path, map), apart));
    }
  }
  return known->second;
}

void CutMaker::FinishAll() {
  std::vector<Shape>& shapes = made_.drawing.shapes;
  shapes.resize(new_shapes_.size());
  notes_.resize(new_shapes_.size());
  ForEachInParallel(new_shapes_.size(), [&](size_t i) {
    NewShape& shape = new_shapes_[i];
    if (shape.made) {
      shapes[i] = shape.made->shape;
      notes_[i] = shape.made->notes;
    } else if (source_.HoldsStrokes()) {
      shapes[i] = ShapeOfStrokes(std::move(shape.outlines), job_);
    } else {
      shapes[i] = ShapeOfOutlines(std::move(shape.outlines), job_, &notes_[i]);
    }
  });
  for (size_t i = 0; store_ && i < shapes.size(); ++i) {
    if (!new_shapes_[i].made) store_->Keep(*new_shapes_[i].key, shapes[i], notes_[i]);
  }
  new_shapes_.clear();
}

// Counts the paths that cross or touch others or themselves, in a drawing whose shapes were not
// kept apart.
void CutMaker::CountFaults(CutDrawing* made) const {
  const Drawing& drawing = made->drawing;
  std::vector<Box2> of_shapes, boxes;
  for (const Shape& shape : drawing.shapes) {
    Box2& box = of_shapes.emplace_back();
    for (const ShapePath& path : shape) Include(&box, BoxOf(path.path));
  }
  for (const PlacedShape& placed : drawing.placed) {
    const Box2& box = of_shapes[placed.shape];
    boxes.push_back({box.min + placed.at, box.max + placed.at});
  }
  made->crossing = made->touching = 0;
  std::map<std::vector<int64_t>, ShapeNotes> known;  // by shapes and where they stand to the first
  for (const std::vector<size_t>& cluster : Overlapping(boxes)) {
    StopIfAsked();
    if (cluster.size() == 1) {
      const ShapeNotes& notes = notes_[drawing.placed[cluster[0]].shape];
      made->crossing += notes.crossing;
      made->touching += notes.touching;
      continue;
    }
    std::vector<int64_t> key;
    for (const size_t i : cluster) {
      const PlacedShape& placed = drawing.placed[i];
      const P2 apart = placed.at - drawing.placed[cluster[0]].at;
      constexpr double kAlike = 1e6;  // to a unit
      key.insert(key.end(),
                 {placed.shape, std::llround(apart.x * kAlike), std::llround(apart.y * kAlike)});
    }
    const auto [count, is_new] = known.try_emplace(std::move(key));
    if (is_new) {
      std::vector<Path> paths;
      for (const size_t i : cluster) {
        const PlacedShape& placed = drawing.placed[i];
        const P2 apart = placed.at - drawing.placed[cluster[0]].at;
        for (const ShapePath& path : drawing.shapes[placed.shape]) {
          paths.push_back(Moved(path.path, apart));
        }
      }
      Count(CheckPaths(paths, job_.tolerance), &count->second);
    }
    made->crossing += count->second.crossing;
    made->touching += count->second.touching;
  }
}

// Fits and places the drawing as it is, not as the curves are that it was made from.
void CutMaker::Settle() {
  Drawing& drawing = made_.drawing;
  const Box2 ink = InkOf(drawing);
  if (job_.offset != 0 || !(ink.min.x <= ink.max.x)) return;
  const CutSize& size = job_.size;
  double scale = 1;
  if (size.by == CutSize::By::kFit) {
    const double across = size.width > 0 && ink.Width() > 0 ? size.width / ink.Width() : HUGE_VAL;
    const double up = size.height > 0 && ink.Height() > 0 ? size.height / ink.Height() : HUGE_VAL;
    const double fits = std::min(across, up);
    if (fits < HUGE_VAL) scale = fits;
  }
  if (scale != 1) {
    const Linear larger = {scale, 0, 0, scale};
    for (Shape& shape : drawing.shapes) {
      for (ShapePath& path : shape) path.path = Mapped(path.path, larger);
    }
  }
  const P2 by = job_.at - AnchorOf({ink.min * scale, ink.max * scale});
  for (PlacedShape& placed : drawing.placed) placed.at = placed.at * scale + by;
  for (CutGlyph& glyph : made_.glyphs) glyph.at = glyph.at * scale + by;
}

Status CutMaker::Make(CutDrawing* made) {
  if (Status sized = Size(); !sized.ok()) return sized;
  if (KeepsShapes()) store_ = &warm_.ShapesFor(job_, map_);
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
  made_.drawing.strokes = source_.HoldsStrokes();
  const bool together = !source_.HoldsStrokes() && job_.weld == WeldScope::kText;
  std::vector<PlacedShape> placed;
  for (const std::vector<size_t>& cluster : together ? Overlapping(inks) : EachAlone(inks)) {
    placed.push_back({ShapeOf(cluster), placed_[cluster[0]].at, block_.glyphs[cluster[0]].line});
  }
  FinishAll();
  for (const PlacedShape& shape : placed) {
    made_.crossing += notes_[shape.shape].crossing;
    made_.vanished += notes_[shape.shape].vanished;
    if (!made_.drawing.shapes[shape.shape].empty()) made_.drawing.placed.push_back(shape);
  }
  if (!together && !source_.HoldsStrokes()) CountFaults(&made_);
  Settle();
  made_.facts = FactsOf(made_.drawing);
  made_.ink = InkOf(made_.drawing);
  made_.missing = std::move(block_.missing);
  made_.faces = source_.FacesOf(block_);
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

}  // namespace

struct CutWorkshop::Fonts {
  explicit Fonts(std::unique_ptr<GlyphSource> source) : glyphs(std::move(source)) {}

  std::u16string key;
  WarmGlyphs glyphs;
};

CutWorkshop::CutWorkshop() = default;
CutWorkshop::~CutWorkshop() = default;

// The systems' lists of fonts are for one thread at a time.
Status CutWorkshop::Open(const CutJob& job) {
  static std::mutex opening;
  constexpr size_t kMostFonts = 8;
  std::u16string key = GlyphSource::KeyOf(job);
  const auto known =
      std::ranges::find_if(fonts_, [&](const auto& fonts) { return fonts->key == key; });
  if (known != fonts_.end()) {
    std::rotate(fonts_.begin(), known, known + 1);
    return Status::Ok();
  }
  std::unique_ptr<GlyphSource> source;
  {
    const std::lock_guard lock(opening);
    if (Status opened = GlyphSource::Open(job, &source); !opened.ok()) return opened;
  }
  if (fonts_.size() == kMostFonts) fonts_.pop_back();
  auto fonts = std::make_unique<Fonts>(std::move(source));
  fonts->key = std::move(key);
  fonts_.insert(fonts_.begin(), std::move(fonts));
  return Status::Ok();
}

Status CutWorkshop::Make(const CutJob& job, CutDrawing* made) {
  return Make(job, true, made);
}

Status CutWorkshop::Make(const CutJob& job, bool later, CutDrawing* made) {
  if (!(job.tolerance > 0)) return Refuse(u"tolerance", u"must be above 0");
  if (Status opened = Open(job); !opened.ok()) return opened;
  WarmGlyphs& glyphs = fonts_.front()->glyphs;
  if (Status checked = glyphs.source().Check(job.text); !checked.ok()) return checked;
  glyphs.Trim();
  return CutMaker(job, &glyphs, later).Make(made);
}

Status MakeCut(const CutJob& job, CutDrawing* made) {
  return CutWorkshop().Make(job, false, made);
}

}  // namespace kerno
