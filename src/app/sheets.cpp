#include "app/sheets.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <string>
#include <utility>

#include "app/number_strokes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "drawing/flatten.h"

namespace kerno {
namespace {

constexpr double kRounding = 1e-9;   // of sums of lengths
constexpr double kNumberRoom = 1.5;  // heights of a number that it takes below a sign
constexpr double kQuarterTurn = 0.41421356237309503;  // the bulge of a quarter of a circle

Status Refuse(std::u16string_view thing, std::u16string why) {
  return Status::Error(Failure::kOther, std::u16string(thing), std::move(why));
}

std::u16string SizeText(const SheetSize& size, LengthUnit unit) {
  std::string text;
  AppendGeneral(&text, size.width, 6);
  text += " x ";
  AppendGeneral(&text, size.height, 6);
  text += unit == LengthUnit::kInch ? " in" : " mm";
  return Utf8ToUtf16Lossy(text);
}

// Counter-clockwise from the lower edge on, its lower left corner at 0, 0.
Shape FrameShape(const SheetSize& size, const SheetOptions& options) {
  const double w = size.width, h = size.height, r = options.corner;
  Path path;
  path.start = {r, 0};
  const auto line = [&](const P2& to) { path.segments.push_back({SegmentKind::kLine, to}); };
  const auto turn = [&](const P2& to) {
    if (r > 0) path.segments.push_back({SegmentKind::kArc, to, {}, {}, kQuarterTurn});
  };
  line({w - r, 0});
  turn({w, r});
  line({w, h - r});
  turn({w - r, h});
  line({r, h});
  turn({0, h - r});
  line({0, r});
  turn({r, 0});
  // Corners that meet leave no line between them.
  P2 from = path.start;
  std::erase_if(path.segments, [&](const Segment& segment) {
    const bool empty = segment.end.x == from.x && segment.end.y == from.y;
    from = segment.end;
    return empty;
  });
  if (options.chords > 0) {
    std::vector<P2> corners;
    FlattenPath(path, options.chords, &corners);
    path.segments.clear();
    for (size_t i = 1; i < corners.size(); ++i) line(corners[i]);
    line(path.start);
  }
  return {{std::move(path), 0}};
}

Shape CrossShape(double arm) {
  Shape shape;
  for (const P2& end : {P2{arm, 0}, P2{0, arm}}) {
    Path path;
    path.start = end * -1;
    path.segments = {{SegmentKind::kLine, end}};
    path.closed = false;
    shape.push_back({std::move(path), 0});
  }
  return shape;
}

// Of what a shape holds; FNV-1a over numbers of 64 bits.
uint64_t HashOf(const Shape& shape) {
  uint64_t hash = 0xCBF29CE484222325;
  const auto take = [&hash](double value) {
    hash = (hash ^ std::bit_cast<uint64_t>(value)) * 0x100000001B3;
    hash ^= hash >> 32;
  };
  for (const ShapePath& path : shape) {
    take(path.path.start.x);
    take(path.path.start.y);
    for (const Segment& segment : path.path.segments) {
      take(segment.end.x);
      take(segment.end.y);
      take(segment.bulge);
    }
  }
  return hash;
}

// Whether a point about the middle of a frame lies within it, its corners cut off round.
bool IsWithin(const P2& p, const SheetSize& frame, double corner) {
  const P2 beyond = {std::fabs(p.x) - (frame.width / 2 - corner),
                     std::fabs(p.y) - (frame.height / 2 - corner)};
  if (beyond.x <= 0 || beyond.y <= 0) return true;  // beside the corners, the box tells
  return Length(beyond) < corner;
}

}  // namespace

SheetMaker::SheetMaker(const SheetOptions& options, LengthUnit unit, Take take)
    : options_(options),
      unit_(unit),
      take_(std::move(take)),
      next_{options.margin, options.sheet.height - options.margin} {}

Status SheetMaker::Check() const {
  const SheetSize& sheet = options_.sheet;
  if (!(sheet.width > 2 * options_.margin && sheet.height > 2 * options_.margin)) {
    return Refuse(u"--margin", u"leaves nothing of the sheet");
  }
  if (options_.frame) {
    if (!Fits(*options_.frame)) {
      return Refuse(u"--frame", SizeText(*options_.frame, unit_) +
                                    u" does not fit on the sheet within its margin");
    }
    const double least = std::min(options_.frame->width, options_.frame->height);
    if (options_.corner > least / 2) return Refuse(u"--corner", u"is more than half of the frame");
  } else if (options_.corner > 0) {
    return Refuse(u"--corner", u"needs --frame");
  }
  if (options_.marks && !(options_.margin > 0)) return Refuse(u"--marks", u"need a --margin");
  if (options_.frame && options_.number_height > options_.frame->height / 2) {
    return Refuse(u"--numbers", u"are higher than half of the frame");
  }
  return Status::Ok();
}

bool SheetMaker::Fits(const SheetSize& size) const {
  return size.width <= options_.sheet.width - 2 * options_.margin + kRounding &&
         size.height <= options_.sheet.height - 2 * options_.margin + kRounding;
}

// What a sign takes: its frame; or itself with its number below it.
SheetSize SheetMaker::CellOf(const Box2& ink, int64_t row) const {
  if (options_.frame) return *options_.frame;
  SheetSize cell = {ink.Width(), ink.Height()};
  if (options_.number_height > 0) {
    cell.width = std::max(cell.width, NumberWidth(row, options_.number_height));
    cell.height += kNumberRoom * options_.number_height;
  }
  return cell;
}

// A letter that reaches to its frame would be cut open.
Status SheetMaker::CheckFrame(const Sign& sign) const {
  const SheetSize size = {sign.ink.Width(), sign.ink.Height()};
  const SheetSize& frame = *options_.frame;
  if (!(size.width < frame.width - kRounding && size.height < frame.height - kRounding)) {
    return Refuse(u"size", SizeText(size, unit_) + u" does not stand free in the frame of " +
                               SizeText(frame, unit_));
  }
  const P2 middle = (sign.ink.min + sign.ink.max) * 0.5;
  if (!IsWithin(sign.ink.max - middle, frame, options_.corner)) {
    constexpr double kSteps = 1000;  // of a corner, that its text is looked at by
    std::vector<P2> points;
    for (const PlacedShape& placed : sign.drawing.placed) {
      for (const ShapePath& path : sign.drawing.shapes[placed.shape]) {
        FlattenPath(path.path, options_.corner / kSteps, &points);
        for (const P2& p : points) {
          if (IsWithin(p + placed.at - middle, frame, options_.corner)) continue;
          return Refuse(u"size", SizeText(size, unit_) +
                                     u" reaches over the rounded corners of the frame of " +
                                     SizeText(frame, unit_));
        }
      }
    }
  }
  if (options_.number_height > 0 &&
      NumberWidth(sign.row, options_.number_height) > frame.width - 2 * NumberInset()) {
    return Refuse(u"--numbers", u"the row's number is wider than the frame");
  }
  return Status::Ok();
}

Status SheetMaker::Add(Drawing drawing, int64_t row, int32_t copies) {
  Sign sign = {std::move(drawing), {}, row, copies, {}};
  sign.ink = InkOf(sign.drawing);
  if (options_.frame) {
    if (Status free = CheckFrame(sign); !free.ok()) return free;
  }
  const SheetSize cell = CellOf(sign.ink, row);
  if (!Fits(cell)) {
    return Refuse(u"size", SizeText(cell, unit_) + u" does not fit on the sheet of " +
                               SizeText(options_.sheet, unit_) + u" within its margin");
  }
  if (options_.frame || options_.pack) {
    SetAll(&sign, cell);
  } else {
    waiting_.push_back(std::move(sign));
  }
  return Status::Ok();
}

void SheetMaker::Finish() {
  SheetSize largest;
  for (const Sign& sign : waiting_) {
    const SheetSize cell = CellOf(sign.ink, sign.row);
    largest.width = std::max(largest.width, cell.width);
    largest.height = std::max(largest.height, cell.height);
  }
  for (Sign& sign : waiting_) SetAll(&sign, largest);
  waiting_.clear();
  if (!is_empty_) HandOut();
}

void SheetMaker::SetAll(Sign* sign, const SheetSize& cell) {
  for (int32_t copy = 0; copy < sign->copies; ++copy) Set(sign, cell);
}

// The upper left corner of a place of this size, on a new row or sheet where the one in hand is
// full.
P2 SheetMaker::PlaceOf(const SheetSize& size) {
  const double right = options_.sheet.width - options_.margin + kRounding;
  const double bottom = options_.margin - kRounding;
  if (next_.x + size.width > right) {
    next_ = {options_.margin, next_.y - deepest_ - options_.gap};
    deepest_ = 0;
  }
  if (next_.y - size.height < bottom) {
    // A high sign at the end of a row may have room above the next rows only.
    if (!is_empty_) HandOut();
    next_ = {options_.margin, options_.sheet.height - options_.margin};
    deepest_ = 0;
  }
  const P2 place = next_;
  next_.x += size.width + options_.gap;
  deepest_ = std::max(deepest_, size.height);
  return place;
}

void SheetMaker::Set(Sign* sign, const SheetSize& cell) {
  const size_t sheet = number_;
  const P2 upper = PlaceOf(cell);
  const P2 lower = {upper.x, upper.y - cell.height};
  if (number_ != sheet) sign->shapes.clear();
  is_empty_ = false;
  ++signs_set_;
  sheet_.strokes |= sign->drawing.strokes;
  if (sign->shapes.empty()) {
    for (const Shape& shape : sign->drawing.shapes) sign->shapes.push_back(AddShapeOnce(shape));
  }
  Box2 inked;
  if (!sign->drawing.placed.empty()) {
    const double below = options_.frame ? 0 : kNumberRoom * options_.number_height;
    const P2 middle = lower + P2{cell.width, cell.height + below} * 0.5;
    const P2 by = middle - (sign->ink.min + sign->ink.max) * 0.5;
    inked = {sign->ink.min + by, sign->ink.max + by};
    for (PlacedShape placed : sign->drawing.placed) {
      placed.shape = sign->shapes[placed.shape];
      placed.at = placed.at + by;
      sheet_.texts.push_back(placed);
    }
  }
  if (options_.frame) {
    const uint32_t shape =
        sheet_.frames.empty() ? AddShape(FrameShape(cell, options_)) : sheet_.frames[0].shape;
    sheet_.frames.push_back({shape, lower, 0, ShapeRole::kFrame});
  }
  if (options_.number_height > 0) SetNumber(lower, inked, sign->row);
}

// How far the number stands from the edges of its frame.
double SheetMaker::NumberInset() const {
  return options_.frame ? std::max(options_.corner, options_.number_height) / 2 : 0;
}

void SheetMaker::SetNumber(const P2& cell, const Box2& ink, int64_t row) {
  const double inset = NumberInset(), height = options_.number_height;
  const P2 at = cell + P2{inset, inset};
  const Box2 taken = {at, at + P2{NumberWidth(row, height), height}};
  numbers_in_texts_ += taken.Overlaps(ink) ? 1 : 0;
  sheet_.numbers.push_back({AddShape(NumberStrokes(row, height)), at, 0, ShapeRole::kNumber});
}

uint32_t SheetMaker::AddShape(Shape shape) {
  sheet_.shapes.push_back(std::move(shape));
  return static_cast<uint32_t>(sheet_.shapes.size() - 1);
}

// Rows are made of the same letters: what is alike to the last bit stands on a sheet once.
uint32_t SheetMaker::AddShapeOnce(const Shape& shape) {
  const uint64_t hash = HashOf(shape);
  for (auto [known, end] = sheet_.known.equal_range(hash); known != end; ++known) {
    if (sheet_.shapes[known->second] == shape) return known->second;
  }
  const uint32_t added = AddShape(shape);
  sheet_.known.emplace(hash, added);
  return added;
}

void SheetMaker::HandOut() {
  Drawing drawing;
  drawing.unit = unit_;
  drawing.strokes = sheet_.strokes;
  const SheetSize& size = options_.sheet;
  drawing.sheet = Box2{{0, 0}, {size.width, size.height}};
  if (options_.marks) {
    const double in = options_.margin / 2;
    constexpr double kPart = 0.8;  // of the way to the sheet's edge
    const uint32_t cross = AddShape(CrossShape(in * kPart));
    for (const P2& at : {P2{in, in}, P2{size.width - in, in}, P2{size.width - in, size.height - in},
                         P2{in, size.height - in}}) {
      drawing.placed.push_back({cross, at, 0, ShapeRole::kMark});
    }
  }
  for (const auto* group : {&sheet_.numbers, &sheet_.texts, &sheet_.frames}) {
    drawing.placed.insert(drawing.placed.end(), group->begin(), group->end());
  }
  drawing.shapes = std::move(sheet_.shapes);
  sheet_ = {};
  is_empty_ = true;
  take_(drawing, number_++);
}

}  // namespace kerno
