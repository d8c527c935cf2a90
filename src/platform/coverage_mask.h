// How much of each pixel polygons cover.
//
// Pixels: x to the right, y down, (0, 0) the upper left corner of the upper left pixel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/drawing.h"

namespace kerno {

// Gathers figures and then tells their coverage row by row. Every edge adds, to the pixels that it
// passes, by how much it changes the coverage of what lies to the right of it; the sum along a row
// is the coverage, exact but for rounding. What lies outside of the mask costs next to nothing.
class CoverageMask {
 public:
  CoverageMask(int width, int height);

  // A figure: finite corners, closed by Close.
  void MoveTo(const DevicePoint& to);
  void LineTo(const DevicePoint& to);
  void Close() { LineTo(start_); }

  // Calls visit(x, y, coverages) for each run of pixels with a coverage, 1 to 255, and forgets the
  // figures.
  template <class Visit>
  void Sweep(FillMode mode, const Visit& visit) {
    for (int y = first_row_; y <= last_row_; ++y) {
      int first = 0;
      const std::span<const uint8_t> row = SumRow(y, mode, &first);
      size_t x = 0;
      while (x < row.size()) {
        while (x < row.size() && row[x] == 0) ++x;
        const size_t from = x;
        while (x < row.size() && row[x] != 0) ++x;
        if (x > from) visit(first + static_cast<int>(from), y, row.subspan(from, x - from));
      }
    }
    first_row_ = height_;
    last_row_ = -1;
  }

 private:
  struct Row {
    int first, last;  // columns with changes
  };
  float* RowAt(int y) { return changes_.data() + static_cast<size_t>(y) * stride_; }
  void Edge(DevicePoint from, DevicePoint to);
  void EdgeInside(const DevicePoint& from, const DevicePoint& to, float sign);
  void Piece(int y, double from, double to, float height);
  std::span<const uint8_t> SumRow(int y, FillMode mode, int* first);

  int width_, height_;
  size_t stride_;
  std::vector<float> changes_;  // of the coverage, from one pixel to the next; rows of stride_
  std::vector<Row> rows_;
  std::vector<uint8_t> coverages_;  // of a row
  int first_row_, last_row_ = -1;   // with changes
  DevicePoint start_, at_;
};

}  // namespace kerno
