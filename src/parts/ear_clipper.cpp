// An ear is a convex corner whose triangle with its neighbours holds nothing of the loop. Only
// corners that are not convex can stand in the way; a tree over the plane finds one quickly. A
// corner that is in somebody's way keeps a list of those who wait for it.
#include "parts/ear_clipper.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <numeric>

namespace kerno::internal {
namespace {

constexpr double kRounding = 1e-15;  // of a cross product of coordinates within one unit
constexpr size_t kLeafSize = 8;
constexpr int kMaxStuck = 64;

struct Triangle {
  PlanePoint a, b, c;

  bool Misses(double left, double right, double bottom, double top) const {
    if (std::max({a.x, b.x, c.x}) < left || std::min({a.x, b.x, c.x}) > right) return true;
    if (std::max({a.y, b.y, c.y}) < bottom || std::min({a.y, b.y, c.y}) > top) return true;
    const auto outside = [&](const PlanePoint& p, const PlanePoint& q) {
      // The corner of the box that lies furthest to the left of the edge.
      const PlanePoint furthest = {q.y > p.y ? left : right, q.x > p.x ? top : bottom, 0};
      return Cross(p, q, furthest) < -kRounding;
    };
    return outside(a, b) || outside(b, c) || outside(c, a);
  }
};

// A balanced tree over the loop's points that knows which of them are switched on.
class PointTree {
 public:
  explicit PointTree(const std::vector<PlanePoint>& points)
      : points_(points), order_(points.size()), leaf_of_(points.size()), on_(points.size()) {
    std::iota(order_.begin(), order_.end(), size_t{0});
    Build(0, points.size(), 0);
  }

  void Switch(size_t point, bool on) {
    if (on_[point] == on) return;
    on_[point] = on;
    for (size_t node = leaf_of_[point];; node = nodes_[node].parent) {
      nodes_[node].on += on ? 1 : size_t{0} - 1;
      if (node == 0) break;
    }
  }

  // The first point found that is on, lies in a box that meets the triangle, and satisfies
  // `wanted`; the number of points when there is none.
  template <class Wanted>
  size_t Find(const Triangle& triangle, const Wanted& wanted) const {
    std::vector<size_t> open = {0};
    while (!open.empty()) {
      const Node& node = nodes_[open.back()];
      open.pop_back();
      if (node.on == 0 || triangle.Misses(node.left, node.right, node.bottom, node.top)) continue;
      if (node.children != 0) {
        open.push_back(node.children);
        open.push_back(node.second_child);
        continue;
      }
      for (size_t i = node.first; i < node.last; ++i) {
        if (on_[order_[i]] && wanted(order_[i])) return order_[i];
      }
    }
    return points_.size();
  }

 private:
  struct Node {
    double left, right, bottom, top;
    size_t first, last;  // range of order_
    size_t parent;
    size_t children = 0;  // 0: a leaf
    size_t second_child = 0;
    size_t on = 0;
  };

  size_t Build(size_t first, size_t last, size_t parent) {
    const size_t self = nodes_.size();
    const PlanePoint& any = points_[order_[first]];
    nodes_.push_back({any.x, any.x, any.y, any.y, first, last, parent});
    Node& node = nodes_.back();
    for (size_t i = first; i < last; ++i) {
      const PlanePoint& p = points_[order_[i]];
      node.left = std::min(node.left, p.x);
      node.right = std::max(node.right, p.x);
      node.bottom = std::min(node.bottom, p.y);
      node.top = std::max(node.top, p.y);
    }
    if (last - first <= kLeafSize) {
      for (size_t i = first; i < last; ++i) leaf_of_[order_[i]] = self;
      return self;
    }
    const bool by_x = node.right - node.left > node.top - node.bottom;
    const size_t middle = first + (last - first) / 2;
    const auto at = [&](size_t i) { return order_.begin() + static_cast<std::ptrdiff_t>(i); };
    std::nth_element(at(first), at(middle), at(last), [&](size_t a, size_t b) {
      return by_x ? points_[a].x < points_[b].x : points_[a].y < points_[b].y;
    });
    const size_t lower = Build(first, middle, self);
    const size_t upper = Build(middle, last, self);
    nodes_[self].children = lower;
    nodes_[self].second_child = upper;
    return self;
  }

  const std::vector<PlanePoint>& points_;
  std::vector<size_t> order_;
  std::vector<size_t> leaf_of_;
  std::vector<bool> on_;
  std::vector<Node> nodes_;
};

class Clipper {
 public:
  Clipper(const std::vector<PlanePoint>& loop, std::vector<std::array<int32_t, 3>>* triangles)
      : points_(loop),
        triangles_(triangles),
        tree_(loop),
        corners_(loop.size()),
        left_(loop.size()) {
    for (size_t i = 0; i < left_; ++i) {
      corners_[i].previous = i == 0 ? left_ - 1 : i - 1;
      corners_[i].next = i + 1 == left_ ? 0 : i + 1;
    }
    for (size_t i = 0; i < left_; ++i) {
      tree_.Switch(i, Turn(i) <= 0);
      Enqueue(i);
    }
  }

  void Run() {
    while (left_ >= 3) {
      if (queue_.empty() && !ClipAnyConvexCorner()) return;
      if (queue_.empty()) continue;
      const size_t corner = queue_.front();
      queue_.pop_front();
      corners_[corner].queued = false;
      if (corners_[corner].alive) TryCorner(corner);
    }
  }

 private:
  struct Corner {
    size_t previous = 0, next = 0;
    bool alive = true;
    bool queued = false;
    std::vector<size_t> waiting_inside;  // ears that this corner lies in
    std::vector<size_t> waiting_beside;  // ears that it touches with an edge that goes in
  };

  const PlanePoint& At(size_t corner) const { return points_[corner]; }

  double Turn(size_t corner) const {
    const Corner& c = corners_[corner];
    return Cross(At(c.previous), At(corner), At(c.next));
  }

  void Enqueue(size_t corner) {
    if (corners_[corner].queued || !corners_[corner].alive) return;
    corners_[corner].queued = true;
    queue_.push_back(corner);
  }

  void Wake(std::vector<size_t>* waiting) {
    for (const size_t corner : *waiting) Enqueue(corner);
    waiting->clear();
  }

  void TryCorner(size_t corner) {
    const double turn = Turn(corner);
    if (turn < 0) return;  // a neighbour's end brings it back
    if (turn > 0) {
      const size_t blocker = careless_ ? points_.size() : FindBlocker(corner);
      if (blocker != points_.size()) return;
      Emit(corner);
    }
    Remove(corner);
  }

  void Emit(size_t corner) {
    const Corner& c = corners_[corner];
    triangles_->push_back({At(c.previous).index, At(corner).index, At(c.next).index});
  }

  void Remove(size_t corner) {
    Corner& gone = corners_[corner];
    gone.alive = false;
    tree_.Switch(corner, false);
    --left_;
    corners_[gone.previous].next = gone.next;
    corners_[gone.next].previous = gone.previous;
    Wake(&gone.waiting_inside);
    Wake(&gone.waiting_beside);
    for (const size_t neighbour : {gone.previous, gone.next}) {
      const bool convex = Turn(neighbour) > 0;
      tree_.Switch(neighbour, !convex);
      if (convex) Wake(&corners_[neighbour].waiting_inside);
      Wake(&corners_[neighbour].waiting_beside);
      Enqueue(neighbour);
    }
  }

  // A corner that keeps `corner` from being an ear, now waited for; the number of points when there
  // is none.
  size_t FindBlocker(size_t corner) {
    const Corner& c = corners_[corner];
    const Triangle triangle = {At(c.previous), At(corner), At(c.next)};
    bool inside = false;
    const size_t blocker = tree_.Find(triangle, [&](size_t other) {
      if (other == c.previous || other == corner || other == c.next) return false;
      return Blocks(triangle, other, &inside);
    });
    if (blocker != points_.size()) {
      Corner& b = corners_[blocker];
      (inside ? b.waiting_inside : b.waiting_beside).push_back(corner);
    }
    return blocker;
  }

  bool Blocks(const Triangle& t, size_t other, bool* inside) const {
    const PlanePoint& p = At(other);
    const PlanePoint* edges[3][2] = {{&t.a, &t.b}, {&t.b, &t.c}, {&t.c, &t.a}};
    double side[3];
    for (int i = 0; i < 3; ++i) {
      side[i] = Cross(*edges[i][0], *edges[i][1], p);
      if (side[i] < 0) return false;
    }
    *inside = side[0] > 0 && side[1] > 0 && side[2] > 0;
    if (*inside) return true;
    const auto goes_in = [&](size_t neighbour) {
      const PlanePoint& q = At(neighbour);
      for (int i = 0; i < 3; ++i) {
        const PlanePoint& from = *edges[i][0];
        const PlanePoint& to = *edges[i][1];
        if (side[i] == 0 && (to.x - from.x) * (q.y - p.y) - (to.y - from.y) * (q.x - p.x) <= 0) {
          return false;
        }
      }
      return true;
    };
    return goes_in(corners_[other].previous) || goes_in(corners_[other].next);
  }

  // A loop that crosses itself can run out of ears: then any convex corner goes, and after too many
  // of them all do.
  bool ClipAnyConvexCorner() {
    if (++stuck_ > kMaxStuck) careless_ = true;
    bool found = false;
    for (size_t i = 0; i < points_.size() && !(found && !careless_); ++i) {
      if (!corners_[i].alive || Turn(i) <= 0) continue;
      found = true;
      if (careless_) {
        Enqueue(i);
        continue;
      }
      Emit(i);
      Remove(i);
    }
    return found && (!careless_ || ++careless_rounds_ < kMaxStuck);
  }

  const std::vector<PlanePoint>& points_;
  std::vector<std::array<int32_t, 3>>* triangles_;
  PointTree tree_;
  std::vector<Corner> corners_;
  std::deque<size_t> queue_;
  size_t left_;
  int stuck_ = 0;
  int careless_rounds_ = 0;
  bool careless_ = false;
};

}  // namespace

void ClipEars(const std::vector<PlanePoint>& loop, std::vector<std::array<int32_t, 3>>* triangles) {
  if (loop.size() >= 3) Clipper(loop, triangles).Run();
}

}  // namespace kerno::internal
