#include "platform/win32/font_context.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

#include "platform/win32/native_points.h"
#include "platform/win32/wide_text.h"

namespace kerno {
namespace {

constexpr char32_t kFirstFar = 0x10000;
constexpr uint32_t kMissingGlyph = 0;

FIXED ToFixed(int32_t number) {
  FIXED fixed{};
  fixed.value = static_cast<short>(number >> 16);
  fixed.fract = static_cast<WORD>(number & 0xFFFF);
  return fixed;
}

bool IsPairAt(std::u16string_view text, size_t at) {
  return at + 1 < text.size() && (text[at] & 0xFC00) == 0xD800 && (text[at + 1] & 0xFC00) == 0xDC00;
}
char32_t PairAt(std::u16string_view text, size_t at) {
  return kFirstFar + ((text[at] & 0x3FFu) << 10) + (text[at + 1] & 0x3FFu);
}

bool IsIdentity(const Mat2& matrix) {
  return matrix.eM11 == 0x10000 && matrix.eM12 == 0 && matrix.eM21 == 0 && matrix.eM22 == 0x10000;
}

// The rasteriser works in 1/64 of a unit; what some systems put into the lower bits of the 16.16
// numbers (a repetition of the upper ones) is no part of the outline.
void CutToRasterUnits(uint8_t* outline, size_t size) {
  constexpr int32_t kRasterBits = ~0x3FF;
  ChangeNativePoints(outline, size, [](int32_t& x, int32_t& y) {
    x &= kRasterBits;
    y &= kRasterBits;
  });
}

// Adds the extent of one run to the whole.
void AddExtent(const SIZE& size, int64_t* length, Extent* extent) {
  *length += size.cx;
  extent->cy = std::max(extent->cy, static_cast<int32_t>(size.cy));
}

bool FitsShort(int64_t number) {
  using Limits = std::numeric_limits<int16_t>;
  return number >= Limits::min() && number <= Limits::max();
}

// Whether 16.16 numbers can hold all that lies in the box.
bool BoxFits(const GLYPHMETRICS& glyph) {
  const int64_t left = glyph.gmptGlyphOrigin.x;
  const int64_t top = glyph.gmptGlyphOrigin.y;
  return FitsShort(left) && FitsShort(top) && FitsShort(left + glyph.gmBlackBoxX) &&
         FitsShort(top - glyph.gmBlackBoxY);
}

}  // namespace

FontContext::FontContext()
    : dc_(CreateCompatibleDC(nullptr)), stock_(SelectObject(dc_, GetStockObject(SYSTEM_FONT))) {}

FontContext::~FontContext() {
  SelectObject(dc_, stock_);
  DeleteDC(dc_);
}

std::unique_ptr<Font> FontContext::CreateFontIndirect(const LogFont& wanted) {
  return RealizedFont::Create(wanted);
}

Font* FontContext::SelectFont(Font* font) {
  Font* before = selected_;
  selected_ = font;
  realized_ = dynamic_cast<RealizedFont*>(font);
  SelectObject(dc_, realized_ ? realized_->handle() : GetStockObject(SYSTEM_FONT));
  return before;
}

bool FontContext::GetTextMetrics(TextMetrics* metrics) {
  *metrics = {};
  TEXTMETRICW text{};
  if (!GetTextMetricsW(dc_, &text)) return false;
  metrics->tmHeight = text.tmHeight;
  metrics->tmAscent = text.tmAscent;
  metrics->tmDescent = text.tmDescent;
  metrics->tmInternalLeading = text.tmInternalLeading;
  metrics->tmExternalLeading = text.tmExternalLeading;
  metrics->tmAveCharWidth = text.tmAveCharWidth;
  metrics->tmMaxCharWidth = text.tmMaxCharWidth;
  metrics->tmWeight = text.tmWeight;
  return true;
}

// The system takes a character of the first plane or the index of a glyph: another character is
// looked up first, and a surrogate half has no glyph of its own.
uint32_t FontContext::GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics,
                                      uint32_t size, void* buffer, const Mat2& matrix) {
  if (format != kGgoNative) return kGdiError;
  if (realized_ != nullptr && !realized_->has_size()) return kGdiError;
  UINT what = ch;
  UINT how = format;
  if (ch >= kFirstFar || IsSurrogate(ch)) {
    what = ch >= kFirstFar && realized_ ? realized_->FarGlyph(ch) : kMissingGlyph;
    how |= GGO_GLYPH_INDEX;
  }
  const MAT2 transform = {ToFixed(matrix.eM11), ToFixed(matrix.eM12), ToFixed(matrix.eM21),
                          ToFixed(matrix.eM22)};
  GLYPHMETRICS glyph{};
  const DWORD needed = GetGlyphOutlineW(dc_, what, how, &glyph, size, buffer, &transform);
  if (needed == GDI_ERROR || (buffer != nullptr && size < needed)) return kGdiError;
  const bool large = realized_ != nullptr && realized_->is_large();
  if (large && !(BoxFits(glyph) && AdvanceFits(what, how))) return kGdiError;
  const bool native = IsIdentity(matrix);
  auto* outline = static_cast<uint8_t*>(buffer);
  if (native && outline != nullptr) CutToRasterUnits(outline, needed);
  if (native && realized_ != nullptr && realized_->turned() != nullptr) {
    PlaceTurned(what, how, transform, needed, outline, &glyph);
    if (large && !BoxFits(glyph)) return kGdiError;
  }
  metrics->gmBlackBoxX = glyph.gmBlackBoxX;
  metrics->gmBlackBoxY = glyph.gmBlackBoxY;
  metrics->gmptGlyphOriginX = glyph.gmptGlyphOrigin.x;
  metrics->gmptGlyphOriginY = glyph.gmptGlyphOrigin.y;
  metrics->gmCellIncX = glyph.gmCellIncX;
  metrics->gmCellIncY = glyph.gmCellIncY;
  return needed;
}

// The system cuts the advance in the metrics of a glyph to 16 bits; that of a text is whole.
bool FontContext::AdvanceFits(uint32_t what, uint32_t how) const {
  SIZE size{};
  if ((how & GGO_GLYPH_INDEX) != 0) {
    auto glyph = static_cast<WORD>(what);
    return GetTextExtentPointI(dc_, &glyph, 1, &size) && FitsShort(size.cx);
  }
  const auto unit = static_cast<wchar_t>(what);
  return GetTextExtentPoint32W(dc_, &unit, 1, &size) && FitsShort(size.cx);
}

// Where the system leaves a turned outline at the pen it is moved into its cell here, together with
// its box; for the box alone the outline is fetched too.
void FontContext::PlaceTurned(uint32_t what, uint32_t how, const MAT2& transform, uint32_t size,
                              uint8_t* outline, GLYPHMETRICS* metrics) {
  if (size == 0) {  // a blank has the same box in either direction
    metrics->gmBlackBoxX = metrics->gmBlackBoxY = 1;
    metrics->gmptGlyphOrigin = {0, 0};
    return;
  }
  const std::optional<OutlineShift>& shift = realized_->turned()->ShiftOf(what, how);
  if (!shift) return;
  std::vector<uint8_t> fetched;
  if (outline == nullptr) {
    fetched.resize(size);
    outline = fetched.data();
    if (GetGlyphOutlineW(dc_, what, how, metrics, size, outline, &transform) != size) return;
    CutToRasterUnits(outline, size);
  }
  MoveOutline(*shift, outline, size, metrics);
}

bool FontContext::GetTextExtent(std::u16string_view text, Extent* extent) {
  constexpr size_t kLongestRun = 0x4000;
  *extent = {};
  int64_t length = 0;
  for (size_t at = 0; at < text.size();) {
    SIZE size{};
    if (IsPairAt(text, at)) {
      auto glyph = static_cast<WORD>(realized_ ? realized_->FarGlyph(PairAt(text, at)) : 0);
      if (!GetTextExtentPointI(dc_, &glyph, 1, &size)) return false;
      at += 2;
    } else {
      size_t end = at + 1;
      while (end < text.size() && end - at < kLongestRun && !IsPairAt(text, end)) ++end;
      const std::wstring run = ToWide(text.substr(at, end - at));
      if (!GetTextExtentPoint32W(dc_, run.data(), static_cast<int>(run.size()), &size)) {
        return false;
      }
      at = end;
    }
    AddExtent(size, &length, extent);
  }
  if (text.empty()) {
    TextMetrics metrics;
    if (!GetTextMetrics(&metrics)) return false;
    extent->cy = metrics.tmHeight;
  }
  constexpr int64_t kLongest = std::numeric_limits<int32_t>::max();
  extent->cx = static_cast<int32_t>(std::min(length, kLongest));
  return true;
}

std::unique_ptr<DeviceContext> CreateMeasuringContext() {
  return std::make_unique<FontContext>();
}

}  // namespace kerno
