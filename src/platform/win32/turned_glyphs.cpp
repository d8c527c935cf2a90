#include "platform/win32/turned_glyphs.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <vector>

#include "platform/win32/native_points.h"

namespace kerno {
namespace {

constexpr int64_t kDefaultCell = 16;
constexpr MAT2 kIdentity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};

int64_t FloorDivide(int64_t dividend, int64_t divisor) {
  const int64_t quotient = dividend / divisor;
  return dividend % divisor < 0 ? quotient - 1 : quotient;
}

// Halves up.
int64_t DivideRounded(int64_t dividend, int64_t divisor) {
  return FloorDivide(2 * dividend + divisor, 2 * divisor);
}

// The leftmost x of an outline in whole units, rounded down.
int64_t LeftEdge(std::vector<uint8_t>* outline) {
  int32_t left = std::numeric_limits<int32_t>::max();
  ChangeNativePoints(outline->data(), outline->size(),
                     [&left](int32_t& x, int32_t&) { left = std::min(left, x); });
  return left >> 16;
}

}  // namespace

TurnedGlyphs::TurnedGlyphs(const LOGFONTW& wanted)
    : dc_(CreateCompatibleDC(nullptr)),
      wanted_height_(wanted.lfHeight),
      wanted_width_(wanted.lfWidth) {
  LOGFONTW description = wanted;
  description.lfWidth = 0;
  description.lfWeight = FW_NORMAL;
  // The first font tells how many design units the em square has.
  for (int round = 0; round < 2; ++round) {
    const HFONT font = CreateFontIndirectW(&description);
    if (font == nullptr) return;
    SelectObject(dc_, font);
    if (design_font_ != nullptr) DeleteObject(design_font_);
    design_font_ = font;
    OUTLINETEXTMETRICW text{};
    text.otmSize = sizeof text;
    if (GetOutlineTextMetricsW(dc_, sizeof text, &text) == 0) return;
    em_ = std::max<int64_t>(text.otmEMSquare, 1);
    average_width_ = std::max<int64_t>(text.otmTextMetrics.tmAveCharWidth, 1);
    middle_ = int64_t{text.otmAscent} + text.otmDescent;
    pixels_per_em_ = PixelsPerEm(text.otmTextMetrics.tmHeight);
    description.lfHeight = -static_cast<LONG>(em_);
  }
}

TurnedGlyphs::~TurnedGlyphs() {
  DeleteDC(dc_);
  if (design_font_ != nullptr) DeleteObject(design_font_);
}

// The cell's height in design units gives the size of the em square for a wanted height.
int64_t TurnedGlyphs::PixelsPerEm(int64_t cell) const {
  if (wanted_height_ < 0) return -int64_t{wanted_height_};
  const int64_t height = wanted_height_ == 0 ? kDefaultCell : wanted_height_;
  int64_t pixels = DivideRounded(height * em_, cell);
  if (DivideRounded(pixels * cell, em_) > height) --pixels;
  return std::max<int64_t>(pixels, 1);
}

const std::optional<OutlineShift>& TurnedGlyphs::ShiftOf(UINT what, UINT format) {
  const uint64_t key = uint64_t{what} << 1 | ((format & GGO_GLYPH_INDEX) != 0 ? 1 : 0);
  const auto found = shifts_.find(key);
  if (found != shifts_.end()) return found->second;
  return shifts_.emplace(key, FindShift(what, format)).first->second;
}

std::optional<OutlineShift> TurnedGlyphs::FindShift(UINT what, UINT format) const {
  GLYPHMETRICS metrics{};
  const DWORD size = GetGlyphOutlineW(dc_, what, format, &metrics, 0, nullptr, &kIdentity);
  if (size == GDI_ERROR || size == 0) return std::nullopt;
  std::vector<uint8_t> outline(size);
  if (GetGlyphOutlineW(dc_, what, format, &metrics, size, outline.data(), &kIdentity) != size) {
    return std::nullopt;
  }
  const int64_t apart = metrics.gmptGlyphOrigin.x - LeftEdge(&outline);
  // A turned glyph hangs to the left of the pen by most of the em square.
  if (apart < em_ / 4) return std::nullopt;
  const auto scaled = [this](int64_t doubled_units) {
    return FloorDivide(doubled_units * pixels_per_em_ * 64 + em_, 2 * em_);
  };
  int64_t em_width = pixels_per_em_ * 64;
  if (wanted_width_ != 0) {
    const int64_t own = std::max<int64_t>(DivideRounded(average_width_ * pixels_per_em_, em_), 1);
    const int64_t ratio = (std::abs(int64_t{wanted_width_}) << 16) / own;
    em_width = (em_width * ratio + 0x8000) >> 16;
  }
  return OutlineShift{scaled(2 * apart), scaled(middle_) - em_width / 2};
}

void MoveOutline(const OutlineShift& shift, uint8_t* outline, size_t size, GLYPHMETRICS* metrics) {
  constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
  constexpr int32_t kHighest = std::numeric_limits<int32_t>::max();
  RECT box = {kHighest, kHighest, kLowest, kLowest};  // y up: top is the lowest here
  ChangeNativePoints(outline, size, [&](int32_t& x, int32_t& y) {
    x = static_cast<int32_t>(x + shift.x * 1024);
    y = static_cast<int32_t>(y + shift.y * 1024);
    box = {std::min<LONG>(box.left, x), std::min<LONG>(box.top, y), std::max<LONG>(box.right, x),
           std::max<LONG>(box.bottom, y)};
  });
  const auto up = [](LONG fixed) { return static_cast<LONG>((int64_t{fixed} + 0xFFFF) >> 16); };
  metrics->gmptGlyphOrigin = {box.left >> 16, up(box.bottom)};
  metrics->gmBlackBoxX = static_cast<UINT>(std::max<LONG>(up(box.right) - (box.left >> 16), 1));
  metrics->gmBlackBoxY = static_cast<UINT>(std::max<LONG>(up(box.bottom) - (box.top >> 16), 1));
}

}  // namespace kerno
