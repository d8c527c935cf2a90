#include <charconv>
#include <optional>
#include <string>
#include <utility>

#include "outline/stroke_font.h"
#include "outline/stroke_font_parts.h"

namespace kerno {
namespace {

constexpr size_t kHead = 8;          // characters before the pairs
constexpr size_t kNumberDigits = 5;  // of the glyph's number; the rest is the count of pairs
constexpr size_t kWrappedLine = 72;  // files from tapes go on in the next line after so many
constexpr int kCentre = 'R';
// In units of the letters: Hershey drew them between the lines 12 above and 9 below the centre.
constexpr double kBaseline = 9, kCapHeight = 21, kAscent = 25, kDescent = -7;

// The characters of a stretch of a file's glyphs; U+3000 stands for a glyph that is none.
struct Order {
  std::u16string_view file;
  size_t first;  // the place of the first one
  std::u16string_view characters;
};

// Where files differ from ASCII. Letters that were put on the keys of other letters stand for
// themselves here; files of signs keep their keys, as there is no other order in them.
constexpr Order kOrders[] = {
    {u"greek", 33, u"ΑΒΧΔΕΦΓΗΙ·ΚΛΜΝΟΠΘΡΣΤΥ°ΩΞΨΖ"},
    {u"greek", 65, u"αβχδεφγηι×κλμνοπθρστυ÷ωξψζ"},
    {u"greekc", 33, u"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ　　"},
    {u"greekc", 62, u"↑"},
    {u"greekc", 65, u"αβγδεζηθικλμνξοπρστυφχψω　　"},
    {u"greeks", 33, u"ΑΒΓΔΕΖΗΘΙΚΛΜΝΞΟΠΡΣΤΥΦΧΨΩ　　"},
    {u"greeks", 62, u"↑"},
    {u"greeks", 65, u"αβγδεζηθικλμνξοπρστυφχψω　　"},
    {u"cyrillic", 4, u"Ыцы"},
    {u"cyrillic", 33, u"АБЭДИФГЖ　ЧКЛМНОПШРСТЮВЩХУЗЕ\\ЪЯЬЦабЭ"},
    {u"cyrillic", 68, u"дйфгжичклмнопшрстювщхузеъяь~"},
    {u"cyrilc_1", 33, u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩ"},
    {u"cyrilc_1", 62, u"↑"},
    {u"cyrilc_1", 65, u"абвгдежзийклмнопрстуфхцчшщ"},
    {u"japanese", 0,
     u"．，ー日円年大国人東中本京出時上者十一二三四五六七入九　　　　　　あいうえおかきくけ"},
    {u"japanese", 42,
     u"こさしすせそたちつてとなにぬねのはひふへほまみむめもや　ゆ　よらりるれろわゐ　ゑをん"},
    {u"japanese", 88, u"がぎぐげござじずぜぞだぢづでどばびぶべぼぱぴぷぺぽ"},
    {u"japanese", 113, u"アイウエオカキクケコサシスセソタチツテトナニヌネノハヒフヘホマミムメモ"},
    {u"japanese", 148, u"ヤ　ユ　ヨラリルレロワヰ　ヱヲン"},
    {u"japanese", 168, u"ガギグゲゴザジズゼゾダヂヅデドバビブベボパピプペポ"},
};
constexpr char16_t kNone = u'\u3000';
constexpr size_t kNotNumbered = 12345;  // in place of a glyph's number in files put together later
constexpr size_t kAsciiGlyphs = 95;     // the place after "~", where the numbered files have "°"

// The character of the file's glyph at this place; 0 where it has none.
char32_t CharacterAt(std::u16string_view file, size_t place, size_t number) {
  bool is_ascii = true;
  for (const Order& order : kOrders) {
    if (order.file != file) continue;
    if (place >= order.first && place < order.first + order.characters.size()) {
      const char16_t character = order.characters[place - order.first];
      return character == kNone ? 0 : character;
    }
    if (order.first == 0) is_ascii = false;
  }
  if (is_ascii && place < kAsciiGlyphs) return U' ' + static_cast<char32_t>(place);
  return is_ascii && place == kAsciiGlyphs && number != kNotNumbered ? U'°' : 0;
}

std::optional<size_t> WholeNumber(std::string_view text) {
  text = Trimmed(text);
  size_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// The pairs of a glyph: the left and right edge first, then points; " R" lifts the pen.
StrokeGlyph GlyphOfPairs(std::string_view pairs, size_t line) {
  const auto is_lift = [&](size_t i) { return pairs[i] == ' ' && pairs[i + 1] == kCentre; };
  for (size_t i = 0; i < pairs.size(); i += 2) {
    const bool is_pair =
        pairs[i] > ' ' && pairs[i] <= '~' && pairs[i + 1] > ' ' && pairs[i + 1] <= '~';
    if (is_pair || (i > 0 && is_lift(i))) continue;
    return {.bad_line = line, .fault = u"holds characters that are no coordinates"};
  }
  if (pairs[1] < pairs[0]) return {.bad_line = line, .fault = u"has its edges on the wrong sides"};
  StrokeGlyph glyph;
  const double left = pairs[0] - kCentre, right = pairs[1] - kCentre;
  glyph.advance = right - left;
  bool down = false;
  for (size_t i = 2; i < pairs.size(); i += 2) {
    if (is_lift(i)) {
      down = false;
      continue;
    }
    const P2 point = {pairs[i] - kCentre - left, kCentre - pairs[i + 1] + kBaseline};
    if (down) {
      glyph.strokes.back().segments.push_back({.end = point});
    } else {
      glyph.strokes.push_back({.start = point, .segments = {}, .closed = false});
    }
    down = true;
  }
  std::erase_if(glyph.strokes, [](const Path& stroke) { return stroke.segments.empty(); });
  return glyph;
}

}  // namespace

Status ReadHersheyFont(std::string_view bytes, std::u16string_view name, StrokeFont* font) {
  StrokeFont made;
  made.units_per_em = kAscent - kDescent;
  made.cap_height = kCapHeight;
  made.ascent = kAscent;
  made.descent = kDescent;
  made.line_pitch = made.units_per_em;
  size_t place = 0;
  for (size_t line = 1; !bytes.empty(); ++line) {
    const size_t begin = line;
    std::string_view part = TakeLine(&bytes);
    if (Trimmed(part).empty()) continue;
    const auto number = WholeNumber(part.substr(0, kNumberDigits));
    const auto count = part.size() < kHead
                           ? std::nullopt
                           : WholeNumber(part.substr(kNumberDigits, kHead - kNumberDigits));
    if (!number || !count || *count == 0) {
      return StrokeFontFault(begin, u"begins with no glyph number and count of points");
    }
    std::string pairs(part.substr(kHead));
    while (pairs.size() < 2 * *count && part.size() == kWrappedLine && !bytes.empty()) {
      part = TakeLine(&bytes);
      ++line;
      pairs += part;
    }
    StrokeGlyph glyph = {.bad_line = begin, .fault = u"ends before its last point"};
    if (pairs.size() >= 2 * *count) {
      glyph = GlyphOfPairs(std::string_view(pairs).substr(0, 2 * *count), begin);
    }
    const char32_t character = CharacterAt(name, place++, *number);
    if (character != 0) made.Add(character, std::move(glyph), StrokeFont::IfKnown::kKeep);
  }
  if (place == 0) return StrokeFontFault(0, u"holds no character of a stroke font");
  made.Add(U' ', {.advance = kCapHeight}, StrokeFont::IfKnown::kKeep);
  made.glyphs[0].advance = kCapHeight;
  *font = std::move(made);
  return Status::Ok();
}

}  // namespace kerno
