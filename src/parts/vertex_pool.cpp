#include "parts/vertex_pool.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "base/settings_table.h"

namespace kerno {
namespace {

constexpr size_t kScanned = 12;        // pools up to this size are scanned: faster than any index
constexpr size_t kLimitApplies = 101;  // pools from this size on obey MaxSearch
constexpr uint32_t kReadLimitEvery = 1000;

// Shared by all searches of a thread: a window draws while another thread writes.
// Classic: the direction outlives the pool; which of two equal points is found, and so the indices
// in files, hangs on it.
struct SearchState {
  bool backward = true;
  uint32_t limited_calls = 0;
  int32_t max_search = kMaxSearch.default_value;
};
thread_local SearchState state;

size_t LowestSearched(size_t count) {
  if (count < kLimitApplies) return 0;
  if (state.limited_calls++ % kReadLimitEvery == 0) {
    state.max_search = Get(kMaxSearch);
  }
  if (state.max_search < 0 || static_cast<size_t>(state.max_search) >= count) return 0;
  return count - static_cast<size_t>(state.max_search);
}

bool HasNan(const P3& p) {
  return std::isnan(p.x) || std::isnan(p.y) || std::isnan(p.z);
}

uint64_t Hash(const P3& p) {
  // + 0.0 makes the two zeros one.
  const auto bits = [](double v) { return std::bit_cast<uint64_t>(v + 0.0); };
  uint64_t h = bits(p.x) * 0x9E3779B97F4A7C15u;
  h = (h ^ (h >> 32)) + bits(p.y) * 0xC2B2AE3D27D4EB4Fu;
  h = (h ^ (h >> 29)) + bits(p.z) * 0x165667B19E3779F9u;
  h = (h ^ (h >> 32)) * 0xD6E8FEB86659FD93u;
  return h ^ (h >> 32);
}

// Whether `searches` more searches of large pools look at every point, without reading the limit
// again.
bool NoLimitFor(size_t searches) {
  const uint32_t since_read = state.limited_calls % kReadLimitEvery;
  return state.max_search < 0 && since_read != 0 && since_read + searches <= kReadLimitEvery;
}

// Tells whether all points of a loop differ. The table is never cleared: entries carry the number
// of their loop, and those of other loops count as free.
class DistinctTest {
 public:
  static constexpr size_t kMostPoints = 2048;

  bool AllDistinct(std::span<const P3> points) {
    if (++loop_ > kMostLoops) {
      slots_.fill(0);
      loop_ = 1;
    }
    for (size_t i = 0; i < points.size(); ++i) {
      if (HasNan(points[i]) || !Insert(points, i)) return false;
    }
    return true;
  }

 private:
  static constexpr size_t kSlots = 2 * kMostPoints;
  static constexpr int kSlotBits = 12;
  static constexpr uint32_t kMostLoops = 0xFFFF;

  bool Insert(std::span<const P3> points, size_t i) {
    const P3& p = points[i];
    const auto bits = [](double v) { return std::bit_cast<uint64_t>(v + 0.0); };
    const uint64_t hash = bits(p.x) * 0x9E3779B97F4A7C15u + bits(p.y) * 0xC2B2AE3D27D4EB4Fu +
                          bits(p.z) * 0x165667B19E3779F9u;
    for (size_t at = hash >> (64 - kSlotBits);; at = (at + 1) % kSlots) {
      if (slots_[at] >> 16 != loop_) {
        slots_[at] = loop_ << 16 | static_cast<uint32_t>(i);
        return true;
      }
      if (points[slots_[at] & 0xFFFF] == p) return false;
    }
  }

  std::array<uint32_t, kSlots> slots_{};
  uint32_t loop_ = 0;
};

thread_local DistinctTest distinct_test;

int64_t ScanBackward(const P3* points, size_t lowest, size_t count, const P3& wanted) {
  for (size_t i = count; i-- > lowest;) {
    if (points[i] == wanted) return static_cast<int64_t>(i);
  }
  return -1;
}

int64_t ScanForward(const P3* points, size_t lowest, size_t count, const P3& wanted) {
  for (size_t i = lowest; i < count; ++i) {
    if (points[i] == wanted) return static_cast<int64_t>(i);
  }
  return -1;
}

}  // namespace

// Finds the first or last of the equal points at or above an index without a scan. Open addressing;
// a slot names a point, or the ascending list of points when several are equal. Points with a
// coordinate that is not a number equal much else and stand in a list of their own.
class P3A::Index {
 public:
  // Takes in the points that were appended since the last call.
  void CatchUp(const std::vector<P3>& points) {
    if ((points.size() - strays_.size()) * 2 > slots_.size()) Rehash(points);
    for (; taken_ < points.size(); ++taken_) Add(points, static_cast<uint32_t>(taken_));
  }

  int64_t FindLast(const std::vector<P3>& points, size_t lowest, const P3& wanted) const {
    int64_t found = -1;
    const uint32_t slot = slots_[SlotOf(points, wanted)];
    if (slot != kFree) found = IsList(slot) ? lists_[slot & ~kList].back() : slot;
    for (size_t i = strays_.size(); i-- > 0 && strays_[i] > found;) {
      if (points[strays_[i]] == wanted) found = strays_[i];
    }
    return found >= static_cast<int64_t>(lowest) ? found : -1;
  }

  int64_t FindFirst(const std::vector<P3>& points, size_t lowest, const P3& wanted) const {
    int64_t found = -1;
    const uint32_t slot = slots_[SlotOf(points, wanted)];
    if (slot != kFree && IsList(slot)) {
      const auto& list = lists_[slot & ~kList];
      const auto first = std::lower_bound(list.begin(), list.end(), lowest);
      if (first != list.end()) found = *first;
    } else if (slot != kFree && slot >= lowest) {
      found = slot;
    }
    for (auto stray = std::lower_bound(strays_.begin(), strays_.end(), lowest);
         stray != strays_.end() && (found < 0 || *stray < found); ++stray) {
      if (points[*stray] == wanted) return *stray;
    }
    return found;
  }

 private:
  static constexpr uint32_t kFree = 0xFFFFFFFF;
  static constexpr uint32_t kList = 0x80000000;
  static bool IsList(uint32_t slot) { return (slot & kList) != 0; }

  // The slot that names the points equal to `wanted`, or the free one where they would go.
  size_t SlotOf(const std::vector<P3>& points, const P3& wanted) const {
    const size_t mask = slots_.size() - 1;
    for (size_t at = Hash(wanted) & mask;; at = (at + 1) & mask) {
      const uint32_t slot = slots_[at];
      if (slot == kFree) return at;
      const uint32_t one = IsList(slot) ? lists_[slot & ~kList].front() : slot;
      if (points[one] == wanted) return at;
    }
  }

  void Add(const std::vector<P3>& points, uint32_t i) {
    if (HasNan(points[i])) {
      strays_.push_back(i);
      return;
    }
    uint32_t& slot = slots_[SlotOf(points, points[i])];
    if (slot == kFree) {
      slot = i;
    } else if (IsList(slot)) {
      lists_[slot & ~kList].push_back(i);
    } else {
      lists_.push_back({slot, i});
      slot = kList | static_cast<uint32_t>(lists_.size() - 1);
    }
  }

  void Rehash(const std::vector<P3>& points) {
    slots_.assign(std::bit_ceil(points.size() * 4), kFree);
    lists_.clear();
    strays_.clear();
    taken_ = 0;
    for (; taken_ < points.size(); ++taken_) Add(points, static_cast<uint32_t>(taken_));
  }

  std::vector<uint32_t> slots_;  // power of two, at least twice the points in it
  std::vector<std::vector<uint32_t>> lists_;
  std::vector<uint32_t> strays_;
  size_t taken_ = 0;
};

P3A::P3A() noexcept = default;
P3A::~P3A() = default;
P3A::P3A(P3A&&) noexcept = default;
P3A& P3A::operator=(P3A&&) noexcept = default;
P3A::P3A(const P3A& other) : id(other.id), points_(other.points_) {}

P3A& P3A::operator=(const P3A& other) {
  if (this == &other) return *this;
  id = other.id;
  points_ = other.points_;
  index_.reset();
  return *this;
}

void P3A::Clear() {
  Resize(0);
}

void P3A::Resize(size_t count) {
  points_.resize(count);
  index_.reset();
}

void P3A::Set(size_t i, const P3& point) {
  points_[i] = point;
  index_.reset();
}

void P3A::Append(const P3& point) {
  points_.push_back(point);
}

int32_t P3A::Search(const P3& point) const {
  const size_t count = points_.size();
  const size_t lowest = LowestSearched(count);
  int64_t found = -1;
  if (lowest < count && state.backward && points_.back() == point) {
    found = static_cast<int64_t>(count) - 1;  // what a chain of lines asks for
  } else if (count <= kScanned || HasNan(point)) {
    found = state.backward ? ScanBackward(points_.data(), lowest, count, point)
                           : ScanForward(points_.data(), lowest, count, point);
  } else {
    if (!index_) index_ = std::make_unique<Index>();
    index_->CatchUp(points_);
    found = state.backward ? index_->FindLast(points_, lowest, point)
                           : index_->FindFirst(points_, lowest, point);
  }
  if (found < 0) return -1;
  const auto middle = static_cast<int64_t>(count / 2);
  if (state.backward ? found < middle : found > middle) state.backward = !state.backward;
  return static_cast<int32_t>(found);
}

int32_t P3A::FindOrAddPoint(const P3& point) {
  const int32_t found = Search(point);
  if (found >= 0) return found;
  Append(point);
  return static_cast<int32_t>(points_.size() - 1);
}

bool P3A::FillWithChain(std::span<const P3> corners) {
  const size_t count = corners.size();
  if (!points_.empty() || count < 2 || count > DistinctTest::kMostPoints) return false;
  // Both ends of each line are searched for: two searches at each pool size from kLimitApplies on,
  // and those of the closing line.
  const size_t limited = count < kLimitApplies ? 0 : 2 * (count - kLimitApplies) + 2;
  if (limited > 0 && !NoLimitFor(limited)) return false;
  if (!distinct_test.AllDistinct(corners)) return false;
  points_.assign(corners.begin(), corners.end());
  index_.reset();
  state.limited_calls += static_cast<uint32_t>(limited);
  state.backward = false;  // the chain ends with its first corner, found in the near half
  return true;
}

void ResetVertexSearch() {
  state = SearchState();
}

}  // namespace kerno
