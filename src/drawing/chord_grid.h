// Paths as chords between points of a grid of whole numbers, where every question about crossings
// and sides has an exact answer. Each chord knows the part of the curve that it stands for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/stop.h"
#include "drawing/box_tree.h"
#include "drawing/segment.h"

namespace kerno {

struct Chord {
  GridPoint from, to;
  uint32_t path = 0;
  uint32_t piece = 0;           // in ChordGrid::Pieces
  double t_from = 0, t_to = 1;  // the part of the piece
};

// Twice the area of the triangle: above 0 where c lies to the left of the way from a to b.
inline int64_t Side(const GridPoint& a, const GridPoint& b, const GridPoint& c) {
  return (int64_t{b.x} - a.x) * (int64_t{c.y} - a.y) - (int64_t{b.y} - a.y) * (int64_t{c.x} - a.x);
}

// Whether two chords have a point in common.
enum class Contact { kNone, kTouch, kCross };
Contact ContactOf(const Chord& a, const Chord& b);

class ChordGrid {
 public:
  // The chords stay within `tolerance` of the paths, closer where a path is small, and paths that
  // run along the same curve in either direction get the same chords. Paths with a coordinate that
  // is not a finite number have none. Open paths are closed by a chord if `close` says so. Chords
  // are the same on every grid whose paths and `beside` have the same box together.
  enum class Closing { kAsTheyAre, kAll };
  ChordGrid(std::span<const Path> paths, double tolerance, Closing closing,
            std::span<const Path> beside = {});

  const std::vector<Piece>& Pieces() const { return pieces_; }
  const std::vector<Chord>& Chords() const { return chords_; }
  const BoxTree& Boxes() const { return boxes_; }  // of the chords
  // The chords of a path are those from ChordsBegin(path) to before ChordsBegin(path + 1), each
  // going on where the one before ends; the pieces likewise.
  size_t ChordsBegin(size_t path) const { return chords_begin_[path]; }
  size_t PathCount() const { return chords_begin_.size() - 1; }
  bool HasChords(size_t path) const { return chords_begin_[path] < chords_begin_[path + 1]; }
  // Around the end of a path's chords.
  size_t ChordBefore(size_t chord) const;
  size_t ChordAfter(size_t chord) const;

  // Calls visit(i, j, contact) for all chords i < j with points in common; not for neighbours on a
  // path that have but their common end.
  template <class Visit>
  void ForEachContact(const Visit& visit) const {
    StopNowAndThen stop;
    boxes_.ForEachPair([&](size_t i, size_t j) {
      stop.Step();
      const Contact contact = ContactBetween(i, j);
      if (contact != Contact::kNone) visit(i, j, contact);
    });
  }

  // How often a path goes around a point that is not on it, counter-clockwise.
  int Winding(size_t path, const GridPoint& p) const;
  // Twice the area, as a number that is exact enough for its sign.
  double TwiceArea(size_t path) const;

  const GridBox& BoxOf(size_t path) const { return path_boxes_[path]; }
  double Unit() const { return unit_; }
  double Tolerance() const { return tolerance_; }
  P2 InPlane(const GridPoint& p) const {
    return {origin_.x + p.x * unit_, origin_.y + p.y * unit_};
  }

 private:
  void Add(const Path& path, double tolerance);
  GridPoint OnGrid(const P2& p) const;
  Contact ContactBetween(size_t i, size_t j) const;
  void MeasureBoxes();

  double tolerance_;
  double unit_ = 1;      // a power of two
  double per_unit_ = 1;  // its inverse
  P2 origin_;
  std::vector<Piece> pieces_;
  std::vector<Chord> chords_;
  std::vector<size_t> chords_begin_ = {0};
  std::vector<GridBox> path_boxes_;
  BoxTree boxes_{{}};
};

inline GridBox BoxOf(const Chord& chord) {
  return {{std::min(chord.from.x, chord.to.x), std::min(chord.from.y, chord.to.y)},
          {std::max(chord.from.x, chord.to.x), std::max(chord.from.y, chord.to.y)}};
}

}  // namespace kerno
