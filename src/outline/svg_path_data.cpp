#include "outline/svg_path_data.h"

#include <array>
#include <cmath>
#include <optional>

#include "drawing/affine.h"
#include "drawing/strokes.h"
#include "drawing/vector.h"
#include "outline/stroke_font_parts.h"

namespace kerno {
namespace {

constexpr std::string_view kCommands = "MmZzLlHhVvCcSsQqTtAa";
constexpr std::string_view kNumbers = "0123456789+-.";  // what one begins with

size_t ArgumentsOf(char command) {
  switch (command) {
    case 'Z':
      return 0;
    case 'H':
    case 'V':
      return 1;
    case 'S':
    case 'Q':
      return 4;
    case 'C':
      return 6;
    case 'A':
      return 7;
    default:
      return 2;
  }
}

class PathDataReader {
 public:
  PathDataReader(std::string_view data, std::vector<Path>* paths) : rest_(data), paths_(*paths) {}

  // What is wrong; empty when nothing is.
  std::u16string Read();

 private:
  void SkipSeparators(bool with_comma);
  bool TakeArguments(char command);
  bool TakeFlag(double* flag);
  void Run(char command, bool relative);
  void Move(const P2& to);
  void Close();
  void Append(Segment segment);
  void Curve(char command, const P2& from);
  void Arc(const P2& to);
  P2 Point(size_t first) const { return P2{numbers_[first], numbers_[first + 1]} + base_; }

  std::string_view rest_;
  std::vector<Path>& paths_;
  bool drawing_ = false;  // paths_.back() is being drawn
  P2 at_, start_;
  P2 base_;                 // what coordinates of the command count from
  P2 control_;              // the last one of the command before
  char control_of_ = '\0';  // 'C' or 'Q'; otherwise control_ is none
  std::array<double, 7> numbers_ = {};
};

void PathDataReader::SkipSeparators(bool with_comma) {
  const auto skip = [&] {
    while (!rest_.empty() && std::string_view(" \t\r\n\f").find(rest_[0]) != rest_.npos) {
      rest_.remove_prefix(1);
    }
  };
  skip();
  if (with_comma && rest_.starts_with(',')) {
    rest_.remove_prefix(1);
    skip();
  }
}

// Flags may stand without anything between them and what follows.
bool PathDataReader::TakeFlag(double* flag) {
  if (!rest_.starts_with('0') && !rest_.starts_with('1')) return false;
  *flag = rest_[0] == '1' ? 1 : 0;
  rest_.remove_prefix(1);
  return true;
}

bool PathDataReader::TakeArguments(char command) {
  const size_t count = ArgumentsOf(command);
  for (size_t i = 0; i < count; ++i) {
    if (i > 0) SkipSeparators(true);
    if (command == 'A' && (i == 3 || i == 4)) {
      if (!TakeFlag(&numbers_[i])) return false;
      continue;
    }
    const auto number = TakeNumber(&rest_);
    if (!number) return false;
    numbers_[i] = *number;
  }
  return true;
}

void PathDataReader::Move(const P2& to) {
  drawing_ = false;
  at_ = start_ = to;
}

void PathDataReader::Append(Segment segment) {
  if (!drawing_) paths_.push_back({.start = at_, .segments = {}, .closed = false});
  drawing_ = true;
  at_ = segment.end;
  paths_.back().segments.push_back(segment);
}

void PathDataReader::Close() {
  if (!drawing_) return;
  if (!(at_ == start_)) Append({.end = start_});
  paths_.back().closed = true;
  Move(start_);
}

void PathDataReader::Curve(char command, const P2& from) {
  const bool cubic = command == 'C' || command == 'S';
  const bool smooth = command == 'S' || command == 'T';
  const char kind = cubic ? 'C' : 'Q';
  const P2 mirrored = control_of_ == kind ? from * 2 - control_ : from;
  Segment segment;
  segment.kind = cubic ? SegmentKind::kCubic : SegmentKind::kQuadratic;
  segment.first = smooth ? mirrored : Point(0);
  if (cubic) segment.second = Point(smooth ? 0 : 2);
  segment.end = Point(command == 'C' ? 4 : command == 'T' ? 0 : 2);
  Append(segment);
  control_ = cubic ? segment.second : segment.first;
  control_of_ = kind;
}

// In the plane where the ellipse is a circle of radius 1, the chord tells the angle.
void PathDataReader::Arc(const P2& to) {
  const double rx = std::fabs(numbers_[0]), ry = std::fabs(numbers_[1]);
  const P2 chord = to - at_;
  if (!(Length(chord) > 0)) return;
  if (rx == 0 || ry == 0) return Append({.end = to});
  const Affine turn = Turned(numbers_[2], {});
  const P2 along = {(turn.xx * chord.x + turn.yx * chord.y) / rx,
                    (turn.xy * chord.x + turn.yy * chord.y) / ry};
  const double sine = std::min(1.0, Length(along) / 2);  // of half the angle; too small radii grow
  if (!(sine > 1e-9)) return Append({.end = to});
  const double cosine = SquareRoot(1 - sine * sine);
  const bool large = numbers_[3] != 0;
  const double bulge =
      (large ? (1 + cosine) / sine : sine / (1 + cosine)) * (numbers_[4] != 0 ? 1 : -1);
  Segment arc = {.kind = SegmentKind::kArc, .end = along};
  arc.bulge = bulge;
  const P2 from = at_;
  if (rx == ry) {
    arc.end = to;
    const Piece whole = {from, arc};
    if (!large) return Append(arc);
    const auto [first, second] = HalvesOf(whole);
    Append(first.segment);
    return Append(second.segment);
  }
  const auto mapped = [&](const P2& p) { return turn.Apply({p.x * rx, p.y * ry}) + from; };
  for (Segment curve : WithoutArcs({.start = {}, .segments = {arc}, .closed = false}).segments) {
    curve.first = mapped(curve.first);
    curve.second = mapped(curve.second);
    curve.end = mapped(curve.end);
    Append(curve);
  }
  paths_.back().segments.back().end = at_ = to;
}

void PathDataReader::Run(char command, bool relative) {
  base_ = relative ? at_ : P2{};
  switch (command) {
    case 'M':
      Move(Point(0));
      break;
    case 'Z':
      Close();
      break;
    case 'L':
      Append({.end = Point(0)});
      break;
    case 'H':
      Append({.end = {numbers_[0] + base_.x, at_.y}});
      break;
    case 'V':
      Append({.end = {at_.x, numbers_[0] + base_.y}});
      break;
    case 'A':
      Arc(Point(5));
      break;
    default:
      return Curve(command, at_);
  }
  control_of_ = '\0';
}

std::u16string PathDataReader::Read() {
  SkipSeparators(false);
  bool first = true;
  while (!rest_.empty()) {
    const char letter = rest_[0];
    if (kCommands.find(letter) == kCommands.npos) {
      return u"path data holds something that is no command";
    }
    const bool relative = letter >= 'a';
    char command = static_cast<char>(relative ? letter - 'a' + 'A' : letter);
    if (first && command != 'M') return u"path data does not begin with M";
    first = false;
    rest_.remove_prefix(1);
    SkipSeparators(false);
    // A command's letter serves as many sets of numbers as follow; after M they are those of lines.
    for (bool more = true; more;) {
      if (!TakeArguments(command)) {
        return std::u16string(u"path data has a broken or missing number after ") +
               static_cast<char16_t>(letter);
      }
      Run(command, relative);
      if (command == 'M') command = 'L';
      SkipSeparators(command != 'Z');
      more = command != 'Z' && !rest_.empty() && kNumbers.find(rest_[0]) != kNumbers.npos;
    }
  }
  return {};
}

}  // namespace

bool ReadSvgPathData(std::string_view data, std::vector<Path>* paths, std::u16string* fault) {
  *fault = PathDataReader(data, paths).Read();
  return fault->empty();
}

}  // namespace kerno
