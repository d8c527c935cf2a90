#include "app/face_samples.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <span>

#include "app/stroke_fonts.h"
#include "base/text.h"
#include "drawing/flatten.h"
#include "outline/shaping_font.h"
#include "outline/text_block.h"

namespace kerno {
namespace {

constexpr double kEmOfHeight = 0.7;    // an em, of the picture's height
constexpr double kCapsOfHeight = 0.5;  // capital letters, the same
constexpr double kMargin = 2;          // pixels around the ink
constexpr double kTolerance = 0.1;     // pixels, of curves
constexpr double kPenOfHeight = 0.04;  // the width of a line of strokes
constexpr size_t kLongest = 80;        // characters that are looked at

// The first line, without what is too long for any picture.
std::u16string FirstLine(std::u16string_view text) {
  const std::u16string_view line = text.substr(0, text.find_first_of(u"\r\n\u0085\u2028\u2029"));
  size_t end = 0;
  for (size_t count = 0; end < line.size() && count < kLongest; ++count) NextCharacter(line, &end);
  return std::u16string(line.substr(0, end));
}

// The text without its last characters, about `part` of it; letters keep their marks. At least one
// character goes, and one stays.
std::u16string Shortened(const std::u16string& text, double part) {
  const std::vector<ComposedCharacter> characters = ComposedCharacters(text);
  if (characters.size() < 2) return text;
  auto count = static_cast<size_t>(static_cast<double>(characters.size()) * part);
  count = std::clamp<size_t>(count, 1, characters.size() - 1);
  while (count > 1 && IsAttached(characters[count].ch)) --count;
  return text.substr(0, characters[count - 1].end);
}

// The letters of one face, of outlines or of strokes.
class Letters {
 public:
  // For drawing this text alone.
  Status Open(FaceCatalogue& catalogue, const FacePick& pick, std::u16string_view text) {
    const FaceEntry& face = catalogue.entry(pick.entry);
    strokes_ = face.kind == FaceKind::kStrokes;
    if (strokes_) return ReadStrokesFor(text, face.file, &chosen_);
    FontData data;
    if (Status found = FindFontData(catalogue.RequestOf(pick), &data); !found.ok()) return found;
    return ShapingFont::Open(data, &font_);
  }

  bool AreStrokes() const { return strokes_; }
  double UnitsPerEm() const { return strokes_ ? chosen_.font.units_per_em : font_->units_per_em(); }
  double CapHeight() const { return strokes_ ? chosen_.font.cap_height : font_->cap_height(); }

  TextBlock Set(std::u16string_view text) const {
    if (strokes_) return SetStrokeBlock(chosen_.font, text, {});
    const ShapingFont* const fonts[] = {font_.get()};
    return SetBlock(fonts, text, {});
  }
  const std::vector<Path>& PathsOf(uint32_t glyph) const {
    return strokes_ ? chosen_.font.glyphs[glyph].strokes : font_->Outline(glyph);
  }

 private:
  bool strokes_ = false;
  std::unique_ptr<ShapingFont> font_;
  ChosenStrokeFont chosen_;
};

// What is drawn, in font units: each glyph's paths as corners.
struct SetText {
  std::vector<std::vector<std::vector<P2>>> glyphs;
  Extent3 ink = kEmptyExtent;

  bool HasInk() const { return ink.min.x <= ink.max.x; }
  double Width() const { return ink.max.x - ink.min.x; }
  double Height() const { return ink.max.y - ink.min.y; }
};

SetText Flattened(const Letters& letters, const TextBlock& block, double tolerance) {
  SetText set;
  for (const BlockGlyph& glyph : block.glyphs) {
    if (glyph.glyph == 0) continue;
    auto& paths = set.glyphs.emplace_back();
    for (const Path& path : letters.PathsOf(glyph.glyph)) {
      std::vector<P2>& corners = paths.emplace_back();
      FlattenPath(Mapped(path, block.forms[glyph.form].map), tolerance, &corners);
      if (path.closed && letters.AreStrokes() && !corners.empty()) corners.push_back(corners[0]);
      for (P2& corner : corners) {
        corner = {corner.x + glyph.origin.x, corner.y + glyph.origin.y};
        Include(&set.ink, {corner.x, corner.y, 0});
      }
    }
  }
  return set;
}

// Half of the text may come from elsewhere before another one shows the face better.
bool LacksMost(const TextBlock& block) {
  const auto lacking = std::ranges::count(block.glyphs, 0U, &BlockGlyph::glyph);
  return 2 * static_cast<size_t>(lacking) > block.glyphs.size();
}

class SamplePainter {
 public:
  SamplePainter(const Letters& letters, const SampleLook& look, BitmapSurface* surface)
      : letters_(letters), look_(look), context_(surface->Context()) {
    scale_ = kEmOfHeight * look.height / letters.UnitsPerEm();
    // An em of strokes is whatever their file takes for one.
    if (letters.AreStrokes() && letters.CapHeight() > 0) {
      scale_ = kCapsOfHeight * look.height / letters.CapHeight();
    }
  }

  // False where the face has no ink for the text.
  bool Paint(std::u16string text) {
    TextBlock block = letters_.Set(text);
    if (LacksMost(block)) return false;
    SetText set = Flattened(letters_, block, kTolerance / scale_);
    const double room = look_.width - 2 * kMargin;
    for (;;) {
      const double width = set.Width() * scale_;
      std::u16string shorter = width > room ? Shortened(text, room / width) : text;
      if (!set.HasInk() || shorter == text) break;
      text = std::move(shorter);
      set = Flattened(letters_, letters_.Set(text), kTolerance / scale_);
    }
    if (!set.HasInk()) return false;
    Place(set);
    Draw(set);
    return true;
  }

 private:
  // Capital letters stand in the middle, and all ink within the picture.
  void Place(const SetText& set) {
    const double room = look_.height - 2 * kMargin;
    if (set.Height() * scale_ > room) scale_ = room / set.Height();
    const double cap = letters_.CapHeight() > 0 ? letters_.CapHeight() : set.ink.max.y;
    base_ = (look_.height + cap * scale_) / 2;
    base_ = std::min(base_, look_.height - kMargin + set.ink.min.y * scale_);
    base_ = std::max(base_, kMargin + set.ink.max.y * scale_);
    left_ = kMargin - set.ink.min.x * scale_;
  }

  void Draw(const SetText& set) {
    const bool strokes = letters_.AreStrokes();
    const auto brush = context_.CreateBrushIndirect({BrushStyle::kSolid, look_.ink});
    PenData pen_data = {strokes ? PenStyle::kSolid : PenStyle::kNull,
                        std::max(1.0, kPenOfHeight * look_.height), look_.ink};
    const auto pen = context_.CreatePenIndirect(pen_data);
    Brush* brush_before = context_.SelectBrush(brush.get());
    Pen* pen_before = context_.SelectPen(pen.get());
    const FillMode mode_before = context_.SetFillMode(FillMode::kWinding);
    for (const auto& glyph : set.glyphs) {
      if (strokes) {
        for (const std::vector<P2>& path : glyph) context_.DrawPolyline(Pixels({&path, 1}));
      } else {
        DrawFilled(glyph);
      }
    }
    context_.SetFillMode(mode_before);
    context_.SelectPen(pen_before);
    context_.SelectBrush(brush_before);
  }

  void DrawFilled(const std::vector<std::vector<P2>>& glyph) {
    std::vector<uint32_t> counts;
    for (const std::vector<P2>& path : glyph) counts.push_back(static_cast<uint32_t>(path.size()));
    context_.DrawPolygons(Pixels(glyph), counts);
  }

  std::vector<DevicePoint> Pixels(std::span<const std::vector<P2>> paths) const {
    std::vector<DevicePoint> points;
    for (const std::vector<P2>& path : paths) {
      for (const P2& p : path) points.push_back({left_ + p.x * scale_, base_ - p.y * scale_});
    }
    return points;
  }

  const Letters& letters_;
  const SampleLook& look_;
  DrawingContext& context_;
  double scale_ = 1;  // pixels of a font unit
  double base_ = 0, left_ = 0;
};

// The user's text; where the face lacks most of that, a sample of its script; where it lacks most
// of that, too (a font of capitals), its first characters.
void PaintSample(FaceCatalogue& catalogue, const FacePick& pick, const SampleLook& look,
                 BitmapSurface* surface) {
  for (int choice = 0; choice < 3; ++choice) {
    const FaceScriptSet scripts = choice == 1 ? catalogue.ScriptsOf(pick.entry) : 0;
    const std::u16string text =
        choice == 0 ? look.text : OwnSample(scripts, catalogue.CharactersOf(pick.entry));
    Letters letters;
    if (!letters.Open(catalogue, pick, text).ok() || !(letters.UnitsPerEm() > 0)) return;
    if (SamplePainter(letters, look, surface).Paint(text)) return;
  }
}

}  // namespace

const BitmapSurface* FaceSamples::PictureOf(size_t entry, const SampleLook& look) {
  SampleLook wanted = look;
  wanted.text = FirstLine(look.text);
  if (wanted != look_) {
    Forget();
    look_ = std::move(wanted);
  }
  if (const auto known = places_.find(entry); known != places_.end()) {
    pictures_.splice(pictures_.begin(), pictures_, known->second);
    return known->second->second.get();
  }
  std::erase(waiting_, entry);
  constexpr size_t kMostWaiting = 64;
  if (waiting_.size() == kMostWaiting) waiting_.erase(waiting_.begin());
  waiting_.push_back(entry);
  return nullptr;
}

bool FaceSamples::MakeNext() {
  if (waiting_.empty()) return false;
  const size_t entry = waiting_.back();
  waiting_.pop_back();
  Picture picture = CreateBitmapSurface(look_.width, look_.height, look_.paper);
  const bool is_chosen = pick_ && pick_->entry == entry;
  const FacePick pick = is_chosen ? *pick_ : FacePick{entry, catalogue_.RegularStyleOf(entry), {}};
  if (picture) PaintSample(catalogue_, pick, look_, picture.get());
  if (pictures_.size() == kMostPictures) {
    places_.erase(pictures_.back().first);
    pictures_.pop_back();
  }
  pictures_.emplace_front(entry, std::move(picture));
  places_[entry] = pictures_.begin();
  return true;
}

void FaceSamples::Choose(const std::optional<FacePick>& pick) {
  if (pick == pick_) return;
  const bool is_regular =
      !pick || (pick->places.empty() && pick->style == catalogue_.RegularStyleOf(pick->entry));
  if (pick_ && !pick_is_regular_) Drop(pick_->entry);
  if (!is_regular) Drop(pick->entry);
  pick_ = pick;
  pick_is_regular_ = is_regular;
}

void FaceSamples::Drop(size_t entry) {
  const auto known = places_.find(entry);
  if (known == places_.end()) return;
  pictures_.erase(known->second);
  places_.erase(known);
}

void FaceSamples::Forget() {
  pictures_.clear();
  places_.clear();
  waiting_.clear();
}

}  // namespace kerno
