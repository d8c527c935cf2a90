#include "app/typesetter.h"

#include <unordered_set>

#include "base/text.h"

namespace kerno {
namespace {

bool SameFont(const LogFont& a, const LogFont& b) {
  return a.height == b.height && a.width == b.width && a.weight == b.weight &&
         a.face_name == b.face_name;
}

bool IsLayoutControl(char32_t ch) {
  return ch == U'\r' || ch == U'\n' || ch == U'\t';
}

// Counts the characters and collects those without a glyph.
void Inspect(const Font& font, std::u16string_view text, SetText* set) {
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

Typesetter::Typesetter() : Typesetter(CreateMeasuringContext()) {}
Typesetter::Typesetter(std::unique_ptr<DeviceContext> context) : context_(std::move(context)) {}
Typesetter::~Typesetter() {
  context_->SelectFont(nullptr);
}

bool Typesetter::Select(const TextRequest& request) {
  LogFont wanted = BuildLogFont(request.height, request.width, request.weight, request.face);
  if (font_ && SameFont(wanted, wanted_)) return true;
  context_->SelectFont(nullptr);
  font_ = context_->CreateFontIndirect(wanted);
  if (!font_) return false;
  wanted_ = std::move(wanted);
  context_->SelectFont(font_.get());
  return true;
}

std::optional<SetText> Typesetter::Lay(const TextRequest& request) {
  if (!Select(request)) return std::nullopt;
  SetText set;
  set.face = font_->FaceName();
  (void)context_->GetTextMetrics(&set.metrics);
  LayoutOptions options = request.layout;
  if (request.face.starts_with(u'@')) {
    options.vertical = true;
    options.character_angle = -90;
  }
  LayoutString(*context_, request.text, options, &set.contours, &set.notes);
  Inspect(*font_, request.text, &set);
  return set;
}

std::optional<SetText> Typesetter::Set(const TextRequest& request) {
  std::optional<SetText> set = Lay(request);
  if (set) PlaceBlock(&set->contours.points, set->notes.low, set->notes.high, request.placement);
  return set;
}

}  // namespace kerno
