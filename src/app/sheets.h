// Signs on sheets of material: where each one goes, what is cut around it, and what helps whoever
// stands at the machine.
//
// Lengths are in the drawings' unit, y up; a sheet's lower left corner is 0, 0. Signs are set from
// the upper left corner on, row by row, in the order in which they come.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "drawing/drawing.h"
#include "platform/status.h"

namespace kerno {

struct SheetSize {
  double width = 0, height = 0;
};

struct SheetOptions {
  SheetSize sheet;
  double margin = 0;               // around everything
  double gap = 0;                  // between signs
  std::optional<SheetSize> frame;  // cut around each sign, which stands in its middle
  double corner = 0;               // the radius of the frame's corners
  bool pack = false;               // each sign takes its own size, not that of the largest
  double number_height = 0;        // of the row's number in the frame or below a sign; 0: none
  bool marks = false;              // crosses in the corners of the margin
  double chords = 0;               // above 0: frames have no arcs but chords so near to them
};

class SheetMaker {
 public:
  // Takes a finished sheet; sheets are numbered from 1.
  using Take = std::function<void(const Drawing& sheet, size_t number)>;

  SheetMaker(const SheetOptions& options, LengthUnit unit, Take take);

  // Fails for options that no sheet can follow.
  [[nodiscard]] Status Check() const;

  // Sets a sign `copies` times; `row` is the number it may bear. Fails for one that does not stand
  // free within its frame, or is larger than the sheet, which is left out. Without a frame and
  // without packing, nothing is set before Finish: all places are as large as the largest sign.
  [[nodiscard]] Status Add(Drawing sign, int64_t row, int32_t copies);

  // Hands out the last sheet. A drawing of no signs has no sheets.
  void Finish();

  // How many signs stand on sheets that are finished or being taken, in the order of Add.
  uint64_t signs_set() const { return signs_set_; }

  // How many numbers stand so that they meet the ink's box of their sign.
  size_t numbers_in_texts() const { return numbers_in_texts_; }

 private:
  struct Sign {
    Drawing drawing;
    Box2 ink;
    int64_t row;
    int32_t copies;
    std::vector<uint32_t> shapes;  // where they are on the sheet in hand
  };
  // What goes onto the sheet in hand, by what it is there for.
  struct Sheet {
    std::vector<Shape> shapes;
    std::unordered_multimap<uint64_t, uint32_t> known;  // shapes of texts, by what they hold
    std::vector<PlacedShape> numbers, texts, frames;
    bool strokes = false;
  };

  bool Fits(const SheetSize& size) const;
  SheetSize CellOf(const Box2& ink, int64_t row) const;
  double NumberInset() const;
  P2 PlaceOf(const SheetSize& size);
  Status CheckFrame(const Sign& sign) const;
  void SetAll(Sign* sign, const SheetSize& cell);
  void Set(Sign* sign, const SheetSize& cell);
  void SetNumber(const P2& cell, const Box2& ink, int64_t row);
  uint32_t AddShape(Shape shape);
  uint32_t AddShapeOnce(const Shape& shape);
  void HandOut();

  SheetOptions options_;
  LengthUnit unit_;
  Take take_;
  std::vector<Sign> waiting_;
  Sheet sheet_;
  size_t number_ = 1;
  uint64_t signs_set_ = 0;
  size_t numbers_in_texts_ = 0;
  P2 next_;               // upper left corner of the next place
  double deepest_ = 0;    // height of the row of signs in hand
  bool is_empty_ = true;  // the sheet in hand
};

}  // namespace kerno
