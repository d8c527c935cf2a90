#include "platform/posix/font_context.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "platform/posix/font_catalog.h"
#include "platform/posix/unicode.h"
#include "platform/stock_font.h"

namespace kerno {
namespace {

constexpr int32_t kNormalWeight = 400;
constexpr int32_t kBoldFrom = 550;  // weights above count as bold

// The font of the first of these faces that can be opened; damaged ones are passed over. *reading
// keeps the first failure to read a file.
std::unique_ptr<RealizedFont> RealizeFirst(const std::vector<const CatalogFace*>& faces,
                                           std::u16string_view family, const LogFont& wanted,
                                           const FaceWish& wish, Status* reading) {
  const FontCatalog& catalog = FontCatalog::Current();
  const auto note = [&](const Status& status) {
    if (reading->ok()) *reading = status;
  };
  for (const CatalogFace* face : faces) {
    const SfntFacts& facts = catalog.FactsOf(*face);
    note(facts.reading);
    if (!facts.whole) {
      continue;
    }
    FontChoice choice;
    choice.path = face->path;
    choice.index = face->index;
    choice.name = SystemName(*face, family, wish.vertical);
    choice.face_weight = face->weight;
    choice.embolden = face->has_outlines && wish.weight > kBoldFrom && face->weight <= kBoldFrom;
    choice.vertical = wish.vertical;
    Status opened;
    auto font = RealizedFont::Create(choice, wanted.height, wanted.width, &opened);
    note(opened);
    if (font) {
      return font;
    }
  }
  return nullptr;
}

std::unique_ptr<RealizedFont> RealizeAs(std::u16string_view family, const LogFont& wanted,
                                        const FaceWish& wish, Status* reading) {
  const FontCatalog& catalog = FontCatalog::Current();
  if (auto font = RealizeFirst(catalog.FindFamily(family, wish), family, wanted, wish, reading)) {
    return font;
  }
  return RealizeFirst(catalog.Substitutes(family, wish), family, wanted, wish, reading);
}

bool IsIdentity(const Mat2& matrix) {
  return matrix.eM11 == 0x10000 && matrix.eM12 == 0 && matrix.eM21 == 0 && matrix.eM22 == 0x10000;
}

class MeasuringContext final : public FontContext {
 public:
  bool TextOut(int32_t /*x*/, int32_t /*y*/, std::u16string_view /*text*/) override { return true; }
};

}  // namespace

std::unique_ptr<RealizedFont> RealizeFont(const LogFont& wanted, Status* reading) {
  const std::lock_guard held(FontCatalog::Lock());
  // The "@" counts among the units of a name.
  std::u16string_view family = std::u16string_view(wanted.face_name).substr(0, kMaxFaceName);
  FaceWish wish;
  wish.weight = wanted.weight == 0 ? kNormalWeight : wanted.weight;
  wish.italic = wanted.italic != 0;
  wish.vertical = family.starts_with(u'@');
  if (wish.vertical) {
    family.remove_prefix(1);
    if (auto font = RealizeAs(family, wanted, wish, reading)) {
      return font;
    }
    wish.vertical = false;
  }
  return RealizeAs(family, wanted, wish, reading);
}

std::unique_ptr<Font> FontContext::CreateFontIndirect(const LogFont& wanted) {
  return RealizeFont(wanted, &reading_);
}

Font* FontContext::SelectFont(Font* font) {
  Font* before = selected_;
  selected_ = font;
  realized_ = dynamic_cast<RealizedFont*>(font);
  return before;
}

RealizedFont* FontContext::CurrentFont() {
  if (selected_ != nullptr) {
    return realized_;
  }
  if (!stock_) {
    stock_ = RealizeFont(SystemLogFont(), &reading_);
  }
  return stock_.get();
}

bool FontContext::GetTextMetrics(TextMetrics* metrics) {
  const RealizedFont* font = CurrentFont();
  const bool known = font != nullptr && font->metrics() != nullptr;
  *metrics = known ? *font->metrics() : TextMetrics{};
  return known;
}

uint32_t FontContext::GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics,
                                      uint32_t size, void* buffer, const Mat2& matrix) {
  RealizedFont* font = CurrentFont();
  if (font == nullptr || !IsIdentity(matrix) || format != kGgoNative) {
    return kGdiError;
  }
  const NativeGlyph& glyph = font->Glyph(ch);
  if (!glyph.has_outline) {
    return kGdiError;
  }
  const auto needed = static_cast<uint32_t>(glyph.outline.size());
  if (buffer != nullptr && size < needed) {
    return kGdiError;
  }
  if (buffer != nullptr && needed > 0) {
    std::memcpy(buffer, glyph.outline.data(), needed);
  }
  *metrics = glyph.metrics;
  return needed;
}

bool FontContext::GetTextExtent(std::u16string_view text, Extent* extent) {
  *extent = Extent{};
  RealizedFont* font = CurrentFont();
  if (font == nullptr || font->metrics() == nullptr) {
    return false;
  }
  int64_t length = 0;
  for (size_t i = 0; i < text.size();) {
    length += font->Glyph(NextUtf16Character(text, &i)).advance;
  }
  constexpr int64_t kLongest = std::numeric_limits<int32_t>::max();
  extent->cx = static_cast<int32_t>(std::min(length, kLongest));
  extent->cy = font->metrics()->tmHeight;
  return true;
}

std::unique_ptr<DeviceContext> CreateMeasuringContext() {
  return std::make_unique<MeasuringContext>();
}

}  // namespace kerno
