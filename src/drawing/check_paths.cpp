#include "drawing/check_paths.h"

#include <algorithm>
#include <vector>

#include "drawing/chord_grid.h"

namespace kerno {

PathFaults CheckPaths(std::span<const Path> paths, double tolerance) {
  return CheckPaths(paths, ChordGrid(paths, tolerance * 0.25, ChordGrid::Closing::kAsTheyAre));
}

PathFaults CheckPaths(std::span<const Path> paths, const ChordGrid& grid) {
  struct Meeting {
    uint32_t a, b;
    bool is_crossing;
  };
  std::vector<Meeting> meetings;
  grid.ForEachContact([&](size_t i, size_t j, Contact contact) {
    const auto [a, b] = std::minmax(grid.Chords()[i].path, grid.Chords()[j].path);
    const Meeting meeting = {a, b, contact == Contact::kCross};
    meetings.push_back(meeting);
  });
  // The crossings of two paths before their other meetings; one of them counts.
  std::ranges::sort(meetings, [](const Meeting& x, const Meeting& y) {
    if (x.a != y.a) return x.a < y.a;
    if (x.b != y.b) return x.b < y.b;
    return x.is_crossing && !y.is_crossing;
  });
  PathFaults faults;
  faults.open =
      static_cast<size_t>(std::ranges::count_if(paths, [](const Path& p) { return !p.closed; }));
  const Meeting* before = nullptr;
  for (const Meeting& m : meetings) {
    if (before && before->a == m.a && before->b == m.b) continue;
    before = &m;
    size_t& count = m.a == m.b ? (m.is_crossing ? faults.self_crossing : faults.self_touching)
                               : (m.is_crossing ? faults.crossing : faults.touching);
    ++count;
  }
  return faults;
}

}  // namespace kerno
