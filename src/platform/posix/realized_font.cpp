#include "platform/posix/realized_font.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

#include FT_OUTLINE_H

namespace kerno {
namespace {

constexpr FT_Int32 kLoadFlags = FT_LOAD_DEFAULT | FT_LOAD_NO_BITMAP | FT_LOAD_TARGET_NORMAL;
constexpr int64_t kMaxPixelsPerEm = 0xFFFF;  // FreeType counts pixels per em in 16 bits
constexpr int32_t kBoldWeight = 700;

// Whether FreeType did what it was asked for.
bool Done(FT_Error error) {
  CheckMemory(error);
  return error == 0;
}

// False for a glyph that the font cannot give.
bool LoadGlyph(FT_Face face, FT_UInt glyph, FT_Int32 flags) {
  return Done(FT_Load_Glyph(face, glyph, flags));
}

int64_t FloorToPixels(int64_t value) {
  return value >> 6;
}
int64_t CeilToPixels(int64_t value) {
  return (value + 63) >> 6;
}

int64_t FloorDivide(int64_t dividend, int64_t divisor) {
  const int64_t quotient = dividend / divisor;
  return dividend % divisor < 0 ? quotient - 1 : quotient;
}

int32_t Clamp32(int64_t value) {
  return static_cast<int32_t>(std::clamp<int64_t>(value, std::numeric_limits<int32_t>::min(),
                                                  std::numeric_limits<int32_t>::max()));
}

// The box with these edges in whole units; a side is at least 1 long.
GlyphMetrics Box(int64_t left, int64_t bottom, int64_t right, int64_t top) {
  GlyphMetrics metrics;
  metrics.gmBlackBoxX = static_cast<uint32_t>(std::max<int64_t>(right - left, 1));
  metrics.gmBlackBoxY = static_cast<uint32_t>(std::max<int64_t>(top - bottom, 1));
  metrics.gmptGlyphOriginX = Clamp32(left);
  metrics.gmptGlyphOriginY = Clamp32(top);
  return metrics;
}

// Turns by 90 degrees counter-clockwise about the pen and moves.
void TurnAndMove(const CellShift& shift, Outline* outline) {
  for (OutlinePoint& point : outline->points) {
    const int64_t x = point.x;
    point.x = shift.x - point.y;
    point.y = shift.y + x;
  }
}

// The box of all points, control points included, as the rasteriser's own boxes are.
GlyphMetrics ControlBox(const Outline& outline) {
  const auto [left, right] =
      std::minmax_element(outline.points.begin(), outline.points.end(),
                          [](const auto& a, const auto& b) { return a.x < b.x; });
  const auto [bottom, top] =
      std::minmax_element(outline.points.begin(), outline.points.end(),
                          [](const auto& a, const auto& b) { return a.y < b.y; });
  return Box(FloorToPixels(left->x), FloorToPixels(bottom->y), CeilToPixels(right->x),
             CeilToPixels(top->y));
}

void ChooseCharacterMap(FT_Face face) {
  if (FT_Select_Charmap(face, FT_ENCODING_UNICODE) != 0 &&
      FT_Select_Charmap(face, FT_ENCODING_MS_SYMBOL) != 0 && face->num_charmaps > 0) {
    FT_Set_Charmap(face, face->charmaps[0]);
  }
}

bool IsSurrogate(char32_t ch) {
  return ch >= 0xD800 && ch <= 0xDFFF;
}

}  // namespace

std::unique_ptr<RealizedFont> RealizedFont::Create(const FontChoice& choice, int32_t height,
                                                   int32_t width, Status* reading) {
  FacePtr face = OpenFace(choice.path, choice.index, reading);
  if (!face) {
    return nullptr;
  }
  std::unique_ptr<RealizedFont> font(new RealizedFont(std::move(face), choice));
  if (FT_IS_SCALABLE(font->face_.get())) {
    font->SetOutlineSize(height, width);
  } else {
    font->SetStrikeSize(height);
  }
  return font;
}

RealizedFont::RealizedFont(FacePtr face, const FontChoice& choice)
    : choice_(choice),
      face_(std::move(face)),
      units_(ReadFaceUnits(face_.get())),
      fixed_pitch_(IsFixedPitch(face_.get())) {
  ChooseCharacterMap(face_.get());
}

void RealizedFont::SetOutlineSize(int32_t height, int32_t width) {
  pixels_per_em_ = PixelsPerEm(units_, height);
  const auto pixels = static_cast<FT_UInt>(std::min(pixels_per_em_, kMaxPixelsPerEm + 1));
  if (pixels > kMaxPixelsPerEm || !Done(FT_Set_Pixel_Sizes(face_.get(), pixels, pixels))) {
    return;
  }
  sized_ = true;
  metrics_ = ScaleTextMetrics(units_, pixels_per_em_);
  metrics_.tmWeight = choice_.embolden ? kBoldWeight : FaceWeight(face_.get(), choice_.face_weight);
  const int64_t own = metrics_.tmAveCharWidth;
  metrics_.tmAveCharWidth += EmboldenedWidth();
  metrics_.tmMaxCharWidth += EmboldenedWidth();
  if (width != 0) {
    const int64_t wanted = std::abs(static_cast<int64_t>(width));
    width_ratio_ = (wanted << 16) / own;
    const auto scaled = [&](int64_t unscaled) {
      return Clamp32((2 * unscaled * wanted + own) / (2 * own));
    };
    metrics_.tmMaxCharWidth = scaled(metrics_.tmMaxCharWidth);
    metrics_.tmAveCharWidth = scaled(metrics_.tmAveCharWidth);
  }
}

// A raster face comes in the sizes that it was drawn in: the nearest is taken.
void RealizedFont::SetStrikeSize(int32_t height) {
  const FT_Face face = face_.get();
  const int64_t wanted = height == 0 ? 16 : std::abs(static_cast<int64_t>(height));
  int best = -1;
  int64_t best_distance = 0;
  for (int i = 0; i < face->num_fixed_sizes; ++i) {
    const int64_t distance = std::abs(face->available_sizes[i].height - wanted);
    if (best < 0 || distance < best_distance) {
      best = i;
      best_distance = distance;
    }
  }
  if (best < 0 || !Done(FT_Select_Size(face, best))) {
    return;
  }
  sized_ = true;
  const FT_Size_Metrics& size = face->size->metrics;
  metrics_.tmAscent = Clamp32(CeilToPixels(size.ascender));
  metrics_.tmDescent = Clamp32(-FloorToPixels(size.descender));
  metrics_.tmHeight = metrics_.tmAscent + metrics_.tmDescent;
  metrics_.tmInternalLeading = std::max(0, metrics_.tmHeight - size.y_ppem);
  metrics_.tmAveCharWidth = face->available_sizes[best].width;
  metrics_.tmMaxCharWidth = Clamp32(CeilToPixels(size.max_advance));
  metrics_.tmWeight = choice_.face_weight;
}

FT_UInt RealizedFont::GlyphIndex(char32_t ch) const {
  if (IsSurrogate(ch) || ch > 0x10FFFF) {
    return 0;
  }
  const FT_UInt glyph = FT_Get_Char_Index(face_.get(), ch);
  const FT_CharMap map = face_->charmap;
  if (glyph == 0 && ch < 0x100 && map != nullptr && map->encoding == FT_ENCODING_MS_SYMBOL) {
    return FT_Get_Char_Index(face_.get(), 0xF000 + ch);  // symbol faces keep their glyphs there
  }
  return glyph;
}

bool RealizedFont::HasGlyph(char32_t ch) const {
  return GlyphIndex(ch) != 0;
}

const NativeGlyph& RealizedFont::Glyph(char32_t ch) {
  std::unique_ptr<NativeGlyph>& kept = ch < kFlatCharacters ? flat_[ch] : others_[ch];
  if (!kept) {
    NativeGlyph glyph;
    if (sized_) {
      glyph = FT_IS_SCALABLE(face_.get()) ? LoadOutline(ch) : LoadRaster(ch);
    }
    kept = std::make_unique<NativeGlyph>(std::move(glyph));
  }
  return *kept;
}

NativeGlyph RealizedFont::LoadRaster(char32_t ch) const {
  NativeGlyph glyph;
  if (LoadGlyph(face_.get(), GlyphIndex(ch), FT_LOAD_DEFAULT)) {
    glyph.advance = Clamp32(CeilToPixels(face_->glyph->advance.x));
  }
  return glyph;
}

NativeGlyph RealizedFont::LoadOutline(char32_t ch) {
  NativeGlyph glyph;
  VerticalForm form{GlyphIndex(ch), false};
  if (choice_.vertical) {
    form = vertical_forms_.Find(face_.get(), ch, form.glyph);
  }
  const FT_GlyphSlot slot = face_->glyph;
  if (!LoadGlyph(face_.get(), form.glyph, kLoadFlags) || slot->format != FT_GLYPH_FORMAT_OUTLINE) {
    return glyph;
  }
  // Classic: a face of no fixed pitch and without vertical metrics keeps the advance that the
  // rasteriser makes up, as in the drawings so far.
  const bool has_vertical_advance = FT_HAS_VERTICAL(face_.get()) || !fixed_pitch_;
  const int64_t own =
      form.turned && has_vertical_advance ? slot->metrics.vertAdvance : slot->metrics.horiAdvance;
  const int64_t advance = Advance(own) + EmboldenedWidth();
  glyph.advance = Clamp32(advance);
  if (choice_.embolden) {
    Embolden(slot);
  }
  Outline outline = TakeOutline(slot->outline);
  if (outline.points.empty()) {
    glyph.metrics = Box(0, 0, 1, 0);
    glyph.metrics.gmptGlyphOriginY = 0;
  } else if (form.turned) {
    TurnAndMove(ShiftOfTurned(form.glyph), &outline);
    glyph.metrics = ControlBox(outline);
  } else {
    glyph.metrics = GridFittedBox(slot->metrics);
  }
  const bool fits = advance >= std::numeric_limits<int16_t>::min() &&
                    advance <= std::numeric_limits<int16_t>::max();
  glyph.metrics.gmCellIncX = fits ? static_cast<int16_t>(advance) : int16_t{0};
  glyph.has_outline =
      WriteNativeOutline(CubicsToQuadratics(std::move(outline)), &glyph.outline) && fits;
  return glyph;
}

// The vertical origin of the glyph comes to the pen, and the middle of the em square to the middle
// of its typographic ascender and descender.
CellShift RealizedFont::ShiftOfTurned(FT_UInt glyph) const {
  const FT_Face face = face_.get();
  const auto scaled = [this](int64_t doubled_units) {
    return FloorDivide(doubled_units * pixels_per_em_ * 64 + units_.em, 2 * units_.em);
  };
  int64_t origin = units_.typographic_ascent;
  if (LoadGlyph(face, glyph, FT_LOAD_NO_SCALE)) {
    origin = face->glyph->metrics.horiBearingY + face->glyph->metrics.vertBearingY;
  }
  const int64_t middle = units_.typographic_ascent - units_.typographic_descent;
  return {scaled(2 * origin), scaled(middle) - ScaleX(pixels_per_em_ * 64) / 2};
}

// Thickens the strokes by 1/24 em, to the right and upwards, as the desktop's graphics interface
// does.
void RealizedFont::Embolden(FT_GlyphSlot slot) const {
  const FT_Pos strength = static_cast<FT_Pos>(pixels_per_em_ * 64 / 24);
  FT_Outline* outline = &slot->outline;
  if (outline->n_points == 0 || !Done(FT_Outline_Embolden(outline, strength))) {
    return;
  }
  FT_BBox box;
  FT_Outline_Get_CBox(outline, &box);
  slot->metrics.horiBearingX = box.xMin & ~FT_Pos{63};
  slot->metrics.horiBearingY = (box.yMax + 63) & ~FT_Pos{63};
  slot->metrics.width = ((box.xMax + 63) & ~FT_Pos{63}) - slot->metrics.horiBearingX;
  slot->metrics.height = slot->metrics.horiBearingY - (box.yMin & ~FT_Pos{63});
}

int64_t RealizedFont::Advance(int64_t hinted) const {
  // As wide as two average characters to the pixel; what is a little wider or narrower keeps its
  // own advance.
  const bool full_width =
      CeilToPixels(hinted) == ScaledUnits(2 * units_.average_width, units_, pixels_per_em_);
  if (fixed_pitch_ && full_width) {
    // Twice the average, whose scaled width is rounded in font units first.
    return 2 * ScaledUnits(ScaleX(units_.average_width), units_, pixels_per_em_);
  }
  return CeilToPixels(ScaleX(hinted));
}

// x times the width's ratio, rounded to 26.6, halves away from zero; no more than 64 bits hold.
int64_t RealizedFont::ScaleX(int64_t x) const {
  constexpr int64_t kHalf = 0x8000;
  const int64_t most =
      (std::numeric_limits<int64_t>::max() - kHalf) / std::max<int64_t>(width_ratio_, 1);
  const int64_t magnitude = (std::min(std::abs(x), most) * width_ratio_ + kHalf) >> 16;
  return x < 0 ? -magnitude : magnitude;
}

Outline RealizedFont::TakeOutline(const FT_Outline& source) const {
  Outline outline;
  outline.points.reserve(static_cast<size_t>(source.n_points));
  for (int i = 0; i < source.n_points; ++i) {
    PointKind kind = PointKind::kOn;
    switch (FT_CURVE_TAG(source.tags[i])) {
      case FT_CURVE_TAG_ON:
        break;
      case FT_CURVE_TAG_CUBIC:
        kind = PointKind::kCubic;
        break;
      default:
        kind = PointKind::kQuadratic;
    }
    outline.points.push_back({ScaleX(source.points[i].x), source.points[i].y, kind});
  }
  for (int i = 0; i < source.n_contours; ++i) {
    outline.ends.push_back(static_cast<size_t>(source.contours[i]) + 1);
  }
  return outline;
}

GlyphMetrics RealizedFont::GridFittedBox(const FT_Glyph_Metrics& fitted) const {
  const int64_t left = FloorToPixels(ScaleX(fitted.horiBearingX));
  const int64_t right = CeilToPixels(ScaleX(fitted.horiBearingX + fitted.width));
  const int64_t top = CeilToPixels(fitted.horiBearingY);
  const int64_t bottom = FloorToPixels(fitted.horiBearingY - fitted.height);
  return Box(left, std::max<int64_t>(bottom, -static_cast<int64_t>(metrics_.tmDescent)), right,
             std::min<int64_t>(top, metrics_.tmAscent));
}

}  // namespace kerno
