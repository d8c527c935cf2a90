#include "platform/win32/realized_font.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "platform/big_endian.h"
#include "platform/win32/wide_text.h"

namespace kerno {
namespace {

constexpr DWORD kCharacterMapTable = 0x70616D63;  // "cmap"
constexpr uint32_t kSegmentedCoverage = 12;       // the subtable's format
constexpr size_t kGroupSize = 12;
constexpr char32_t kFirstFar = 0x10000;
constexpr int64_t kSurelySmall = 0x1000;  // units: a letter may be several times as large

}  // namespace

LOGFONTW ToSystem(const LogFont& font) {
  LOGFONTW description{};
  description.lfHeight = font.height;
  description.lfWidth = font.width;
  description.lfEscapement = font.escapement;
  description.lfOrientation = font.orientation;
  description.lfWeight = font.weight;
  description.lfItalic = font.italic;
  description.lfUnderline = font.underline;
  description.lfStrikeOut = font.strike_out;
  description.lfCharSet = font.char_set;
  description.lfOutPrecision = font.out_precision;
  description.lfClipPrecision = font.clip_precision;
  description.lfQuality = font.quality;
  description.lfPitchAndFamily = font.pitch_and_family;
  const std::u16string_view name = std::u16string_view(font.face_name).substr(0, kMaxFaceName);
  std::copy(name.begin(), name.end(), description.lfFaceName);
  return description;
}

LogFont FromSystem(const LOGFONTW& description) {
  LogFont font;
  font.height = description.lfHeight;
  font.width = description.lfWidth;
  font.escapement = description.lfEscapement;
  font.orientation = description.lfOrientation;
  font.weight = description.lfWeight;
  font.italic = description.lfItalic;
  font.underline = description.lfUnderline;
  font.strike_out = description.lfStrikeOut;
  font.char_set = description.lfCharSet;
  font.out_precision = description.lfOutPrecision;
  font.clip_precision = description.lfClipPrecision;
  font.quality = description.lfQuality;
  font.pitch_and_family = description.lfPitchAndFamily;
  font.face_name = FromWideBuffer(description.lfFaceName, LF_FACESIZE);
  return font;
}

void CharacterMap::Load(HDC dc) {
  const DWORD size = GetFontData(dc, kCharacterMapTable, 0, nullptr, 0);
  if (size == GDI_ERROR || size == 0) return;
  std::string table(size, '\0');
  if (GetFontData(dc, kCharacterMapTable, 0, table.data(), size) != size) return;
  const uint32_t subtables = Big(table, 2, 2);
  for (uint32_t i = 0; i < subtables; ++i) {
    const size_t at = Big(table, 4 + i * 8 + 4, 4);
    if (Big(table, at, 2) != kSegmentedCoverage) continue;
    const size_t most = at + 16 < size ? (size - at - 16) / kGroupSize : 0;
    const size_t count = std::min<size_t>(Big(table, at + 12, 4), most);
    for (size_t group = 0; group < count; ++group) {
      const size_t from = at + 16 + group * kGroupSize;
      groups_.push_back({Big(table, from, 4), Big(table, from + 4, 4), Big(table, from + 8, 4)});
    }
    return;
  }
}

uint32_t CharacterMap::GlyphOf(char32_t ch) const {
  const auto next =
      std::upper_bound(groups_.begin(), groups_.end(), ch,
                       [](char32_t wanted, const Group& group) { return wanted < group.first; });
  if (next == groups_.begin()) return 0;
  const Group& group = *(next - 1);
  return ch <= group.last ? group.glyph + (ch - group.first) : 0;
}

RealizedFont::RealizedFont(HFONT font, HDC dc, const LOGFONTW& description) : font_(font), dc_(dc) {
  SelectObject(dc_, font_);
  std::array<wchar_t, LF_FACESIZE> name{};
  GetTextFaceW(dc_, static_cast<int>(name.size()), name.data());
  face_name_ = FromWideBuffer(name.data(), name.size());
  TEXTMETRICW metrics{};
  GetTextMetricsW(dc_, &metrics);
  const int64_t wanted = std::abs(int64_t{description.lfHeight});
  is_large_ = std::max(wanted, std::abs(int64_t{description.lfWidth})) > kSurelySmall ||
              metrics.tmMaxCharWidth > kSurelySmall;
  // A cell is as high as it was asked for, or as its em and more.
  has_size_ = !is_large_ || 2 * int64_t{metrics.tmHeight} > wanted;
  if (face_name_.starts_with(u'@')) turned_ = std::make_unique<TurnedGlyphs>(description);
}

RealizedFont::~RealizedFont() {
  DeleteDC(dc_);
  DeleteObject(font_);
}

std::unique_ptr<RealizedFont> RealizedFont::Create(const LogFont& wanted) {
  const LOGFONTW description = ToSystem(wanted);
  const HFONT font = CreateFontIndirectW(&description);
  if (font == nullptr) return nullptr;
  const HDC dc = CreateCompatibleDC(nullptr);
  if (dc == nullptr) {
    DeleteObject(font);
    return nullptr;
  }
  return std::unique_ptr<RealizedFont>(new RealizedFont(font, dc, description));
}

bool RealizedFont::HasGlyph(char32_t ch) const {
  if (ch >= kFirstFar) return FarGlyph(ch) != 0;
  if (IsSurrogate(ch)) return false;
  const auto unit = static_cast<wchar_t>(ch);
  WORD glyph = 0;
  return GetGlyphIndicesW(dc_, &unit, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS) == 1 &&
         glyph != 0xFFFF;
}

uint32_t RealizedFont::FarGlyph(char32_t ch) const {
  if (!far_) {
    far_ = std::make_unique<CharacterMap>();
    far_->Load(dc_);
  }
  return far_->GlyphOf(ch);
}

}  // namespace kerno
