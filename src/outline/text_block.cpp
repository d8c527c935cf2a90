#include "outline/text_block.h"

#include <algorithm>
#include <map>
#include <unordered_set>
#include <utility>

#include "base/text.h"
#include "outline/scripts.h"

namespace kerno {
namespace {

struct LineOfText {
  std::u16string_view text;
  size_t start;
};

bool EndsLine(char16_t unit) {
  constexpr char16_t kNextLine = 0x85, kLineSeparator = 0x2028, kParagraphSeparator = 0x2029;
  return unit == u'\n' || unit == u'\r' || unit == kNextLine || unit == kLineSeparator ||
         unit == kParagraphSeparator;
}

// Blanks at which a line may end; those of fixed places, such as U+00A0, stay.
bool IsBlank(char16_t unit) {
  constexpr char16_t kIdeographicSpace = 0x3000;
  return unit == u' ' || unit == kIdeographicSpace || (unit >= 0x2000 && unit <= 0x200A);
}

// Tabs and the like as blanks, each in its own place.
std::u16string WithBlanks(std::u16string_view text) {
  std::u16string plain(text);
  std::ranges::replace_if(
      plain, [](char16_t unit) { return unit == u'\t' || unit == u'\v' || unit == u'\f'; }, u' ');
  return plain;
}

// Blanks at the end of a line are left out, for they would shift it.
std::vector<LineOfText> LinesIn(std::u16string_view text) {
  std::vector<LineOfText> lines;
  size_t start = 0;
  for (size_t i = 0; i <= text.size(); ++i) {
    if (i < text.size() && !EndsLine(text[i])) continue;
    std::u16string_view line = text.substr(start, i - start);
    while (!line.empty() && IsBlank(line.back())) line.remove_suffix(1);
    lines.push_back({line, start});
    if (i + 1 < text.size() && text[i] == u'\r' && text[i + 1] == u'\n') ++i;
    start = i + 1;
  }
  return lines;
}

// Where a line begins along its own direction, so that lines of different lengths are aligned.
double StartOf(double length, Alignment align) {
  return align == Alignment::kLeft ? 0 : align == Alignment::kCentre ? -length / 2 : -length;
}

ShapeDirection DirectionOf(const TextRun& run) {
  if (run.pose == RunPose::kUpright) return ShapeDirection::kTopToBottom;
  return run.right_to_left ? ShapeDirection::kRightToLeft : ShapeDirection::kLeftToRight;
}

// A glyph of a run, and which font it is from.
struct RunGlyph : ShapedGlyph {
  size_t font = 0;
};

// Glyphs of one cluster stand together; clusters ascend, or descend where the run goes leftwards.
template <class Glyph>
size_t ClusterEnd(const std::vector<Glyph>& glyphs, size_t first) {
  size_t end = first + 1;
  while (end < glyphs.size() && glyphs[end].cluster == glyphs[first].cluster) ++end;
  return end;
}

// The part of a run that the clusters of glyphs [first, end) come from.
template <class Glyph>
ShapingRun PartOf(const ShapingRun& run, const std::vector<Glyph>& glyphs, size_t first,
                  size_t end) {
  const bool leftwards = run.direction == ShapeDirection::kRightToLeft;
  const size_t start = leftwards ? glyphs[end - 1].cluster : glyphs[first].cluster;
  size_t stop = run.start + run.length;
  if (leftwards && first > 0) stop = glyphs[first - 1].cluster;
  if (!leftwards && end < glyphs.size()) stop = glyphs[end].cluster;
  ShapingRun part = run;
  part.start = start;
  part.length = stop - start;
  return part;
}

class BlockSetter {
 public:
  BlockSetter(std::span<const ShapingFont* const> fonts, const BlockOptions& options)
      : fonts_(fonts), options_(options) {
    run_options_ = {options.mode, options.direction, options.across_digits,
                    [this](char32_t ch) { return HasVerticalForm(ch); }};
    middle_ = fonts[0]->middle();
    block_.forms.emplace_back();
    block_.substituted.resize(fonts.size());
  }

  TextBlock Set(std::u16string_view text);

 private:
  // A cluster that all fonts have been asked for is set in the first one after all.
  enum class Asked { kSome, kAll };

  bool HasVerticalForm(char32_t ch);
  double ScaleOf(const RunGlyph& glyph) const {
    return fonts_[0]->units_per_em() / fonts_[glyph.font]->units_per_em();
  }
  void Shape(const ShapingRun& run, size_t font, Asked asked);
  void Note(const ShapingRun& run);
  static bool Lacks(const ShapingFont& font, std::u16string_view text,
                    const ComposedCharacter& character);
  double LayRun(const LineOfText& line, const TextRun& run, double along);
  uint32_t FormOf(const GlyphForm& form);

  std::span<const ShapingFont* const> fonts_;
  const BlockOptions& options_;
  RunOptions run_options_;
  double middle_ = 0;  // of the first font
  TextBlock block_;
  std::vector<RunGlyph> glyphs_;  // of the run at hand
  std::map<char32_t, bool> vertical_forms_;
  std::unordered_set<char32_t> missing_;
};

// Of the font that the character will come from.
bool BlockSetter::HasVerticalForm(char32_t ch) {
  const auto [known, is_new] = vertical_forms_.try_emplace(ch);
  if (is_new) {
    const auto giver =
        std::ranges::find_if(fonts_, [&](const ShapingFont* font) { return font->HasGlyph(ch); });
    known->second = giver != fonts_.end() && (*giver)->HasVerticalForm(ch);
  }
  return known->second;
}

// Appends the run's glyphs; clusters that the font lacks come from the next one.
void BlockSetter::Shape(const ShapingRun& run, size_t font, Asked asked) {
  const std::vector<ShapedGlyph> shaped = fonts_[font]->Shape(run);
  const bool takes_all = asked == Asked::kAll || fonts_.size() == 1;
  const auto is_whole = [&](size_t first, size_t end) {
    return takes_all || std::none_of(shaped.begin() + static_cast<ptrdiff_t>(first),
                                     shaped.begin() + static_cast<ptrdiff_t>(end),
                                     [](const ShapedGlyph& glyph) { return glyph.glyph == 0; });
  };
  for (size_t first = 0; first < shaped.size();) {
    size_t end = ClusterEnd(shaped, first);
    if (is_whole(first, end)) {
      for (; first < end; ++first) glyphs_.push_back({shaped[first], font});
      continue;
    }
    while (end < shaped.size() && !is_whole(end, ClusterEnd(shaped, end))) {
      end = ClusterEnd(shaped, end);
    }
    const bool is_last = font + 1 == fonts_.size();
    Shape(PartOf(run, shaped, first, end), is_last ? 0 : font + 1,
          is_last ? Asked::kAll : Asked::kSome);
    first = end;
  }
}

// Whether the font has neither the character nor all that it is composed of.
bool BlockSetter::Lacks(const ShapingFont& font, std::u16string_view text,
                        const ComposedCharacter& character) {
  if (font.HasGlyph(character.ch)) return false;
  for (size_t at = character.start; at < character.end;) {
    if (!font.HasGlyph(NextCharacter(text, &at))) return true;
  }
  return false;
}

// Takes down what other fonts gave and what none has.
void BlockSetter::Note(const ShapingRun& run) {
  for (size_t first = 0; first < glyphs_.size();) {
    const size_t end = ClusterEnd(glyphs_, first);
    const bool lacks = std::any_of(glyphs_.begin() + static_cast<ptrdiff_t>(first),
                                   glyphs_.begin() + static_cast<ptrdiff_t>(end),
                                   [](const RunGlyph& glyph) { return glyph.glyph == 0; });
    const size_t font = glyphs_[first].font;
    if (lacks || font > 0) {
      const ShapingRun part = PartOf(run, glyphs_, first, end);
      const std::u16string_view text = run.line.substr(part.start, part.length);
      for (const ComposedCharacter& character : ComposedCharacters(text)) {
        const bool is_base = character.start == 0;
        if (font > 0) ++block_.substituted[font];
        // A mark goes with its letter, and is named where the letter is there.
        const bool is_missing =
            (is_base || !IsIgnorable(character.ch)) && Lacks(*fonts_[font], text, character);
        if (lacks && is_missing && missing_.insert(character.ch).second) {
          block_.missing.push_back(character.ch);
        }
      }
    }
    first = end;
  }
}

uint32_t BlockSetter::FormOf(const GlyphForm& form) {
  auto& forms = block_.forms;
  const auto found = std::find(forms.rbegin(), forms.rend(), form);
  if (found != forms.rend()) return static_cast<uint32_t>(forms.rend() - found - 1);
  forms.push_back(form);
  return static_cast<uint32_t>(forms.size() - 1);
}

// Adds the run's glyphs at a distance from the start of the line; returns how far it goes.
double BlockSetter::LayRun(const LineOfText& line, const TextRun& run, double along) {
  const bool across = run.pose == RunPose::kAcross;
  const ShapingRun shaping = {line.text,
                              run.start,
                              run.length,
                              DirectionOf(run),
                              run.script,
                              options_.language,
                              across ? 0 : options_.letter_spacing};
  glyphs_.clear();
  Shape(shaping, 0, Asked::kSome);
  Note(shaping);
  const double em = fonts_[0]->units_per_em();
  double squeeze = 1, pen = across ? 0 : along;
  if (across) {
    double width = 0;
    for (const RunGlyph& glyph : glyphs_) width += glyph.advance.x * ScaleOf(glyph);
    if (width > em) squeeze = em / width;
    pen = -width * squeeze / 2;
  }
  for (const RunGlyph& glyph : glyphs_) {
    const double scale = ScaleOf(glyph);
    const P2 offset = {glyph.offset.x * scale, glyph.offset.y * scale};
    BlockGlyph& placed = block_.glyphs.emplace_back();
    placed.glyph = glyph.glyph;
    placed.character = line.start + glyph.cluster;
    Linear map = {scale, 0, 0, scale};
    switch (run.pose) {
      case RunPose::kInLine:
        placed.origin = {pen + offset.x, offset.y};
        break;
      case RunPose::kUpright:
        placed.origin = {offset.x, -pen + offset.y};
        break;
      case RunPose::kTurned:
        placed.origin = {offset.y - middle_, -(pen + offset.x)};
        map = {0, scale, -scale, 0};
        break;
      case RunPose::kAcross:
        placed.origin = {pen + offset.x * squeeze, offset.y - along - em / 2 - middle_};
        map = {scale * squeeze, 0, 0, scale};
        break;
    }
    placed.form = FormOf({glyph.font, map});
    pen += run.pose == RunPose::kUpright ? -glyph.advance.y * scale
                                         : glyph.advance.x * scale * squeeze;
  }
  return across ? along + em + options_.letter_spacing : pen;
}

TextBlock BlockSetter::Set(std::u16string_view text) {
  const std::u16string plain = WithBlanks(text);
  block_.glyphs.reserve(text.size());
  const bool vertical = options_.mode == WritingMode::kVertical;
  const double pitch = fonts_[0]->line_pitch(options_.mode) * options_.line_spacing;
  uint32_t number = 0;
  for (const LineOfText& line : LinesIn(plain)) {
    const size_t first = block_.glyphs.size();
    double length = 0;
    for (const TextRun& run : RunsOf(line.text, run_options_)) length = LayRun(line, run, length);
    const double start = StartOf(length, options_.align);
    const P2 origin = vertical ? P2{-pitch * number, -start} : P2{start, -pitch * number};
    for (size_t i = first; i < block_.glyphs.size(); ++i) {
      block_.glyphs[i].line = number;
      P2& at = block_.glyphs[i].origin;
      at = {origin.x + at.x, origin.y + at.y};
    }
    ++number;
  }
  return std::move(block_);
}

}  // namespace

TextBlock SetBlock(std::span<const ShapingFont* const> fonts, std::u16string_view text,
                   const BlockOptions& options) {
  return BlockSetter(fonts, options).Set(text);
}

TextBlock SetStrokeBlock(const StrokeFont& font, std::u16string_view text,
                         const BlockOptions& options) {
  TextBlock set;
  set.forms.emplace_back();
  set.substituted = {0};
  std::vector<BlockGlyph>& block = set.glyphs;
  const bool vertical = options.mode == WritingMode::kVertical;
  const double pitch = font.line_pitch * options.line_spacing;
  uint32_t number = 0;
  const std::u16string plain = WithBlanks(text);
  for (const LineOfText& line : LinesIn(plain)) {
    const size_t first = block.size();
    double pen = 0;
    for (const auto& [ch, at, end] : ComposedCharacters(line.text)) {
      if (IsIgnorable(ch)) continue;
      const uint32_t glyph = font.GlyphOf(ch);
      const auto told = std::ranges::find(set.missing, ch);
      if (glyph == 0 && told == set.missing.end()) set.missing.push_back(ch);
      const double advance = font.glyphs[glyph].advance;
      const P2 origin = vertical ? P2{-advance / 2, -pen - font.ascent} : P2{pen, 0};
      block.push_back({glyph, 0, line.start + at, number, origin});
      pen += (vertical ? font.ascent - font.descent : advance) + options.letter_spacing;
    }
    const double start = StartOf(pen, options.align);
    const P2 by = vertical ? P2{-pitch * number, -start} : P2{start, -pitch * number};
    for (size_t i = first; i < block.size(); ++i) {
      block[i].origin = {block[i].origin.x + by.x, block[i].origin.y + by.y};
    }
    ++number;
  }
  return set;
}

}  // namespace kerno
