#include <algorithm>
#include <charconv>
#include <cmath>
#include <map>
#include <utility>

#include "base/text.h"
#include "drawing/measures.h"
#include "outline/stroke_font.h"
#include "outline/stroke_font_parts.h"

namespace kerno {
namespace {

// What the format fixes: a text of height 1 is 9 units high, and so are capital letters, nearly.
constexpr double kHeight = 9, kAscent = 9, kDescent = -3;
constexpr double kLinePitch = 15;  // times the font's factor
constexpr double kLeastCapital = 0.8 * kHeight, kMostCapital = 1.1 * kHeight;
constexpr int kDeepest = 16;        // references of references
constexpr double kMostBulge = 1e3;  // a circle but for a quarter of a degree

// A character as the file has it; strokes of others are taken over when all are known.
struct Entry {
  struct Piece {
    Path stroke;
    char32_t other = 0;  // above 0: the strokes of this character instead
    size_t line = 0;
  };
  std::vector<Piece> pieces;
  size_t line = 0;
  size_t bad_line = 0;
  std::u16string fault;
};

std::optional<char32_t> HexCode(std::string_view text) {
  uint32_t code = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code, 16);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (code == 0 || code > 0x10FFFF) return std::nullopt;
  return code;
}

class LffReader {
 public:
  Status Read(std::string_view bytes, StrokeFont* font);

 private:
  void Comment(std::string_view text);
  bool Begin(std::string_view header);
  void Spoil(Entry* entry, const char16_t* why) const;
  void Line(std::string_view text);
  bool Polyline(std::string_view text, Path* stroke) const;
  bool Resolve(const Entry& entry, int depth, StrokeGlyph* glyph);

  size_t line_ = 0;
  std::map<char32_t, Entry> entries_;
  Entry* current_ = nullptr;
  size_t segments_ = 0;  // of all glyphs made so far
  StrokeFont made_;
  double letter_spacing_ = 3, word_spacing_ = 6.75, line_factor_ = 1;
};

// "# LetterSpacing: 3"
void LffReader::Comment(std::string_view text) {
  const size_t colon = text.find(':');
  if (colon == text.npos) return;
  const std::string_view key = Trimmed(text.substr(1, colon - 1));
  std::string_view value = Trimmed(text.substr(colon + 1));
  if (key == "Name") made_.family = Utf8ToUtf16Lossy(value);
  for (const auto& [name, field] : {std::pair{"LetterSpacing", &letter_spacing_},
                                    {"WordSpacing", &word_spacing_},
                                    {"LineSpacingFactor", &line_factor_}}) {
    if (key != name) continue;
    if (const auto number = TakeNumber(&value); number && *number >= 0) *field = *number;
  }
}

// "[0041] A"
bool LffReader::Begin(std::string_view header) {
  const size_t first = header.find_first_not_of("[#");
  const size_t end = header.find(']');
  if (first == header.npos || end == header.npos || end < first) return false;
  const auto code = HexCode(header.substr(first, end - first));
  if (!code) return false;
  // Of two entries for a character the later one counts, as in the program that the format is of.
  current_ = &(entries_[*code] = Entry{});
  current_->line = line_;
  return true;
}

void LffReader::Spoil(Entry* entry, const char16_t* why) const {
  if (entry->bad_line > 0) return;
  entry->bad_line = line_;
  entry->fault = why;
}

// "x,y;x,y,Abulge;...": a bulge is that of the way to its point.
bool LffReader::Polyline(std::string_view text, Path* stroke) const {
  stroke->closed = false;
  bool first = true;
  while (!text.empty()) {
    const auto x = TakeNumber(&text);
    if (!x || !text.starts_with(',')) return false;
    text.remove_prefix(1);
    const auto y = TakeNumber(&text);
    if (!y) return false;
    Segment segment = {.end = {*x, *y}};
    if (text.starts_with(",A")) {
      text.remove_prefix(2);
      const auto bulge = TakeNumber(&text);
      if (!bulge || std::fabs(*bulge) > kMostBulge) return false;
      if (*bulge != 0) segment.kind = SegmentKind::kArc;
      segment.bulge = *bulge;
    }
    if (!text.empty() && !text.starts_with(';')) return false;
    if (!text.empty()) text.remove_prefix(1);
    if (first) {
      stroke->start = segment.end;
    } else if (!(segment.end ==
                 (stroke->segments.empty() ? stroke->start : stroke->segments.back().end))) {
      stroke->segments.push_back(segment);
    }
    first = false;
  }
  return !first;
}

void LffReader::Line(std::string_view text) {
  Entry::Piece piece;
  piece.line = line_;
  if (text.starts_with('C')) {
    const auto code = HexCode(text.substr(1));
    if (!code) return Spoil(current_, u"names no character");
    piece.other = *code;
  } else if (!Polyline(text, &piece.stroke)) {
    return Spoil(current_, u"is no list of points x,y;x,y");
  }
  current_->pieces.push_back(std::move(piece));
}

// Appends the entry's strokes; false when the font becomes too large.
bool LffReader::Resolve(const Entry& entry, int depth, StrokeGlyph* glyph) {
  const auto spoil = [&](size_t line, const char16_t* why) {
    if (glyph->bad_line > 0) return;
    glyph->bad_line = line;
    glyph->fault = why;
  };
  if (entry.bad_line > 0 && glyph->bad_line == 0) {
    glyph->bad_line = entry.bad_line;
    glyph->fault = entry.fault;
  }
  for (const Entry::Piece& piece : entry.pieces) {
    if (glyph->bad_line > 0) return true;
    segments_ += piece.stroke.segments.size() + 1;
    if (segments_ > kMostStrokeSegments) return false;
    if (piece.other == 0) {
      if (!piece.stroke.segments.empty()) glyph->strokes.push_back(piece.stroke);
      continue;
    }
    const auto other = entries_.find(piece.other);
    if (other == entries_.end()) {
      spoil(piece.line, u"names a character that the font does not have");
    } else if (depth == kDeepest) {
      spoil(piece.line, u"leads from character to character without an end");
    } else if (!Resolve(other->second, depth + 1, glyph)) {
      return false;
    }
  }
  return true;
}

Status LffReader::Read(std::string_view bytes, StrokeFont* font) {
  while (!bytes.empty()) {
    ++line_;
    const std::string_view text = Trimmed(TakeLine(&bytes));
    if (text.empty()) continue;
    if (text.starts_with('#')) {
      if (!current_) Comment(text);
    } else if (text.starts_with('[')) {
      if (!Begin(text)) return StrokeFontFault(line_, u"names no character, as in [0041] A");
    } else if (!current_) {
      return StrokeFontFault(line_, u"stands before the first character, as in [0041] A");
    } else {
      Line(text);
    }
  }
  if (entries_.empty()) return StrokeFontFault(0, u"holds no character of a stroke font");
  made_.units_per_em = kHeight;
  made_.cap_height = kHeight;
  made_.ascent = kAscent;
  made_.descent = kDescent;
  made_.line_pitch = kLinePitch * line_factor_;
  for (const auto& [character, entry] : entries_) {
    StrokeGlyph glyph;
    if (!Resolve(entry, 0, &glyph)) return StrokeFontFault(entry.line, u"makes the font too large");
    Box2 ink;
    for (const Path& stroke : glyph.strokes) Include(&ink, BoxOf(stroke));
    if (glyph.strokes.empty()) ink.max.x = 0;
    glyph.advance = std::max(0.0, ink.max.x) + letter_spacing_;
    if (CountSegments(glyph) > kMostGlyphSegments) {
      glyph.bad_line = entry.line;
      glyph.fault = kGlyphTooLarge;
    }
    if (glyph.bad_line > 0) glyph.strokes.clear();
    made_.Add(character, std::move(glyph), StrokeFont::IfKnown::kReplace);
  }
  // Fonts of signs have anything in place of an "H".
  const double height = HeightOfH(made_);
  if (height > kLeastCapital && height < kMostCapital) made_.cap_height = height;
  made_.Add(U' ', {.advance = word_spacing_}, StrokeFont::IfKnown::kKeep);
  made_.glyphs[0].advance = word_spacing_;
  *font = std::move(made_);
  return Status::Ok();
}

}  // namespace

Status ReadLffFont(std::string_view bytes, StrokeFont* font) {
  return LffReader().Read(bytes, font);
}

}  // namespace kerno
