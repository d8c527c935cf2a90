#include "outline/typesetter.h"

#include <unordered_set>

#include "base/text.h"

namespace kerno {
namespace {

constexpr double kUpright = -90;  // degrees of a character of a vertical form

bool SameFont(const LogFont& a, const LogFont& b) {
  return a.height == b.height && a.width == b.width && a.weight == b.weight &&
         a.italic == b.italic && a.face_name == b.face_name;
}

bool IsLayoutControl(char32_t ch) {
  return ch == U'\r' || ch == U'\n' || ch == U'\t';
}

// Counts the characters and collects those without a glyph.
void Inspect(const Font& font, std::u16string_view text, TypesetText* set) {
  std::unordered_set<char32_t> seen;
  for (size_t at = 0; at < text.size();) {
    const char32_t ch = NextCharacter(text, &at);
    set->ended_by_nul = ch == 0;
    if (ch == 0) break;
    if (IsLayoutControl(ch)) continue;
    ++set->characters;
    if (seen.insert(ch).second && !font.HasGlyph(ch)) set->missing.push_back(ch);
  }
}

}  // namespace

std::u16string SystemFaceName(const FaceForm& face) {
  return face.vertical ? u"@" + face.name : face.name;
}

FaceForm FaceFormOf(std::u16string_view system_name) {
  const bool vertical = system_name.starts_with(u'@');
  return {std::u16string(system_name.substr(vertical ? 1 : 0)), vertical};
}

void SetVertical(TextRequest* request) {
  request->face.vertical = true;
  request->layout.vertical = true;
  request->layout.character_angle = kUpright;
}

Typesetter::Typesetter(DeviceContext& context)
    : context_(context), before_(context.SelectedFont()) {}

Typesetter::~Typesetter() {
  if (font_) context_.SelectFont(before_);
}

bool Typesetter::Select(const TextRequest& request) {
  LogFont wanted =
      BuildLogFont(request.height, request.width, request.weight, SystemFaceName(request.face));
  wanted.italic = request.italic ? 1 : 0;
  if (font_ && SameFont(wanted, wanted_)) return true;
  if (font_) context_.SelectFont(before_);
  font_ = context_.CreateFontIndirect(wanted);
  if (!font_) return false;
  wanted_ = std::move(wanted);
  context_.SelectFont(font_.get());
  return true;
}

std::optional<TypesetText> Typesetter::LayOut(const TextRequest& request) {
  if (!Select(request)) return std::nullopt;
  TypesetText set;
  set.face = font_->FaceName();
  (void)context_.GetTextMetrics(&set.metrics);
  set.contours = TextContours(LayOutGlyphs(context_, request.text, request.layout, &set.notes));
  Inspect(*font_, request.text, &set);
  return set;
}

std::optional<TypesetText> Typesetter::Typeset(const TextRequest& request) {
  std::optional<TypesetText> set = LayOut(request);
  if (!set) return set;
  for (const Affine& map : PlacementMaps(set->notes.low, set->notes.high, request.placement)) {
    set->contours.Apply(map);
  }
  return set;
}

uint32_t Typesetter::Outline(const TextRequest& request, GlyphContours* contours) {
  *contours = {};
  if (!Select(request)) return 0;
  LayoutNotes notes;
  const uint32_t count = LayoutString(context_, request.text, request.layout, contours, &notes);
  PlaceBlock(&contours->points, notes.low, notes.high, request.placement);
  return count;
}

uint32_t StringOutline(DeviceContext& dc, const TextRequest& request, GlyphContours* contours) {
  return Typesetter(dc).Outline(request, contours);
}

}  // namespace kerno
