// Curves as chords.
#pragma once

#include <vector>

#include "drawing/segment.h"

namespace kerno {

// Where a chord ends on its piece.
struct ChordEnd {
  double t;
  P2 point;
};

// Appends the ends of chords along the piece, its own end included, its start not. No point of the
// piece is farther than `tolerance` (above 0) from its chord, nor a point of a chord from the
// piece: the distance is computed from the curve's equation, not sampled. Each chord is about as
// long as the tolerance lets it be.
void FlattenPiece(const Piece& piece, double tolerance, std::vector<ChordEnd>* ends);

// Replaces `points` by the corners of the path's chords, its start first. All ends of its segments
// are among them, but points that repeat the one before are not, nor is the start again at the end
// of a closed path. Empty for a path without any length.
void FlattenPath(const Path& path, double tolerance, std::vector<P2>* points);

// At least the farthest distance between a polynomial piece and the chord between its ends, both
// ways; exactly it where the piece does not reach past the chord's ends.
double DistanceFromChord(const Polynomial& curve);

}  // namespace kerno
