#include "app/sheets.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

#include "app/number_strokes.h"
#include "base/number_text.h"
#include "base/text.h"

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
Shape FrameShape(const SheetSize& size, double corner) {
  const double w = size.width, h = size.height, r = corner;
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

Status SheetMaker::Add(const Drawing& sign, int64_t row) {
  const Box2 ink = InkOf(sign);
  const SheetSize size = {ink.Width(), ink.Height()};
  const SheetSize cell = CellOf(ink, row);
  if (!(size.width <= cell.width + kRounding && size.height <= cell.height + kRounding)) {
    return Refuse(u"size",
                  SizeText(size, unit_) + u" is larger than the frame of " + SizeText(cell, unit_));
  }
  if (!Fits(cell)) {
    return Refuse(u"size", SizeText(cell, unit_) + u" does not fit on the sheet of " +
                               SizeText(options_.sheet, unit_) + u" within its margin");
  }
  if (options_.frame && options_.number_height > 0 &&
      NumberWidth(row, options_.number_height) > cell.width - 2 * NumberInset()) {
    return Refuse(u"--numbers", u"the row's number is wider than the frame");
  }
  if (options_.frame || options_.pack) {
    Set(sign, ink, cell, row);
  } else {
    waiting_.push_back({sign, ink, row});
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
  for (const Sign& sign : waiting_) Set(sign.drawing, sign.ink, largest, sign.row);
  waiting_.clear();
  if (!is_empty_) HandOut();
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

void SheetMaker::Set(const Drawing& sign, const Box2& ink, const SheetSize& cell, int64_t row) {
  const P2 upper = PlaceOf(cell);
  const P2 lower = {upper.x, upper.y - cell.height};
  is_empty_ = false;
  ++signs_set_;
  sheet_.strokes |= sign.strokes;
  const auto first = static_cast<uint32_t>(sheet_.shapes.size());
  sheet_.shapes.insert(sheet_.shapes.end(), sign.shapes.begin(), sign.shapes.end());
  Box2 inked;
  if (!sign.placed.empty()) {
    const double below = options_.frame ? 0 : kNumberRoom * options_.number_height;
    const P2 middle = lower + P2{cell.width, cell.height + below} * 0.5;
    const P2 by = middle - (ink.min + ink.max) * 0.5;
    inked = {ink.min + by, ink.max + by};
    for (PlacedShape placed : sign.placed) {
      placed.shape += first;
      placed.at = placed.at + by;
      sheet_.texts.push_back(placed);
    }
  }
  if (options_.frame) {
    const uint32_t shape = sheet_.frames.empty() ? AddShape(FrameShape(cell, options_.corner))
                                                 : sheet_.frames[0].shape;
    sheet_.frames.push_back({shape, lower, 0, ShapeRole::kFrame});
  }
  if (options_.number_height > 0) SetNumber(lower, inked, row);
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
