#include "outline/stroke_font.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "drawing/measures.h"
#include "outline/stroke_font_parts.h"

namespace kerno {
namespace {

constexpr double kMostNumber = 1e6;

// The character that stands in for one that a font has no strokes for; 0 where there is none.
char32_t StandInFor(char32_t character) {
  constexpr char32_t kNoBreakSpace = 0xA0, kIdeographicSpace = 0x3000;
  constexpr char32_t kHyphen = 0x2010, kNoBreakHyphen = 0x2011;
  if (character == kNoBreakSpace || character == kIdeographicSpace) return U' ';
  return character == kHyphen || character == kNoBreakHyphen ? U'-' : 0;
}

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}
bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

std::u16string Widened(std::string_view digits) {
  return {digits.begin(), digits.end()};
}

}  // namespace

uint32_t StrokeFont::GlyphOf(char32_t character) const {
  auto found = numbers.find(character);
  if (found == numbers.end()) {
    const char32_t stand_in = StandInFor(character);
    if (stand_in != 0) found = numbers.find(stand_in);
  }
  return found == numbers.end() ? 0 : found->second;
}

void StrokeFont::Add(char32_t character, StrokeGlyph glyph, IfKnown known) {
  const auto [at, is_new] = numbers.try_emplace(character, static_cast<uint32_t>(glyphs.size()));
  if (is_new) {
    glyphs.push_back(std::move(glyph));
  } else if (known == IfKnown::kReplace) {
    glyphs[at->second] = std::move(glyph);
  }
}

Status StrokeFontFault(size_t line, std::u16string why) {
  std::u16string what = line > 0 ? u"line " + Widened(std::to_string(line)) : std::u16string();
  return Status::Error(Failure::kOther, std::move(what), std::move(why));
}

std::optional<double> TakeNumber(std::string_view* text) {
  std::string_view rest = *text;
  if (rest.starts_with('+')) rest.remove_prefix(1);
  const size_t first = rest.starts_with('-') && text->front() != '+' ? 1 : 0;
  // The library would read "inf" and "nan" too.
  if (rest.size() <= first || !(IsDigit(rest[first]) || rest[first] == '.')) return std::nullopt;
  double value = 0;
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  if (error != std::errc() || !(std::fabs(value) <= kMostNumber)) return std::nullopt;
  rest.remove_prefix(static_cast<size_t>(end - rest.data()));
  *text = rest;
  return value;
}

std::string_view TakeLine(std::string_view* text) {
  const size_t end = text->find('\n');
  std::string_view line = text->substr(0, end);
  text->remove_prefix(end == text->npos ? text->size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

double HeightOfH(const StrokeFont& font) {
  const uint32_t glyph = font.GlyphOf(U'H');
  Box2 ink;
  if (glyph == 0) return 0;
  for (const Path& stroke : font.glyphs[glyph].strokes) Include(&ink, BoxOf(stroke));
  // Flourishes below the baseline are no part of a letter's height.
  return std::max(0.0, ink.max.y - std::max(0.0, ink.min.y));
}

size_t CountSegments(const StrokeGlyph& glyph) {
  size_t count = 0;
  for (const Path& path : glyph.strokes) count += path.segments.size();
  return count;
}

Status ReadStrokeFont(std::string_view bytes, std::u16string_view name, StrokeFont* font) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) {
    return StrokeFontFault(0, u"is in UTF-16; stroke fonts are read as UTF-8");
  }
  const size_t first = bytes.find_first_not_of(" \t\r\n");
  const char kind = first == bytes.npos ? '\0' : bytes[first];
  if (kind == '<') return ReadSvgFont(bytes, font);
  if (kind == '#' || kind == '[') return ReadLffFont(bytes, font);
  if (IsDigit(kind)) return ReadHersheyFont(bytes, name, font);
  return StrokeFontFault(0,
                         u"is no stroke font: neither Hershey (.jhf) nor LibreCAD (.lff) nor an "
                         u"SVG font");
}

}  // namespace kerno
