// The vertex pool of a part.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "drawing/geometry.h"

namespace kerno {

// Keeps the points that were ever put in, in order: indices are stable.
class P3A {
 public:
  P3A() noexcept;
  P3A(const P3A& other);
  P3A& operator=(const P3A& other);
  P3A(P3A&&) noexcept;
  P3A& operator=(P3A&&) noexcept;
  ~P3A();

  int32_t id = 0;  // written in the array's header line

  size_t size() const { return points_.size(); }
  bool empty() const { return points_.empty(); }
  const P3& operator[](size_t i) const { return points_[i]; }
  std::span<const P3> points() const { return points_; }
  auto begin() const { return points_.begin(); }
  auto end() const { return points_.end(); }

  void Clear();
  void Reserve(size_t count) { points_.reserve(count); }

  // Sets the number of points; new ones are the origin.
  void Resize(size_t count);

  // Replaces one point.
  void Set(size_t i, const P3& point);

  void Append(const P3& point);

  // The index of a point equal to `point`, or -1. Exact comparison; answers what a scan in the
  // direction of the process-wide flag answers: backward the last equal point, forward the first,
  // and a hit in the far half turns the direction. From 101 points on only the newest MaxSearch
  // points are looked at (setting "Parts", "P3A::Search__MaxSearch", default -1: all; read again on
  // every thousandth such search).
  int32_t Search(const P3& point) const;

  // Search, and where that finds nothing the point is appended. The index of the point.
  int32_t FindOrAddPoint(const P3& point);

  // Fills an empty pool with the corners of a closed chain of lines, as FindOrAddPoint for both
  // ends of each line in turn would, at a fraction of the cost. False, with nothing done, where the
  // outcome could differ from the corners in their order: equal corners, not-a-numbers, a limit on
  // the search, fewer than two corners.
  bool FillWithChain(std::span<const P3> corners);

 private:
  class Index;

  std::vector<P3> points_;
  mutable std::unique_ptr<Index> index_;  // made by the first search that is worth it
};

// Forgets the process-wide state of the search: direction backward, limit to be read again. For
// tests and for a program whose settings change.
void ResetVertexSearch();

}  // namespace kerno
