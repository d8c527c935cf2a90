#include "parts/vertex_pool.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <sstream>

#include "parts/parts.h"
#include "support/fake_settings.h"

namespace kerno {
namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
const FakeSettings::Key kMaxSearch = {u"Parts", u"P3A::Search__MaxSearch"};

// The search as a plain scan, with a state of its own.
class PlainPool {
 public:
  explicit PlainPool(int max_search) : max_search_(max_search) {}

  int32_t Search(const P3& wanted) {
    const auto count = static_cast<int64_t>(points_.size());
    const int64_t lowest =
        count >= 101 && max_search_ >= 0 && max_search_ < count ? count - max_search_ : 0;
    if (backward_) {
      for (int64_t i = count - 1; i >= lowest; --i) {
        if (!Same(points_[static_cast<size_t>(i)], wanted)) continue;
        if (i < count / 2) backward_ = false;
        return static_cast<int32_t>(i);
      }
    } else {
      for (int64_t i = lowest; i < count; ++i) {
        if (!Same(points_[static_cast<size_t>(i)], wanted)) continue;
        if (i > count / 2) backward_ = true;
        return static_cast<int32_t>(i);
      }
    }
    return -1;
  }

  void Append(const P3& p) { points_.push_back(p); }
  size_t size() const { return points_.size(); }

 private:
  static bool Same(const P3& a, const P3& b) {
    const auto same = [](double u, double v) { return !(u < v || u > v); };
    return same(a.x, b.x) && same(a.y, b.y) && same(a.z, b.z);
  }

  std::vector<P3> points_;
  int max_search_;
  bool backward_ = true;
};

struct Sequence {
  const char* name;
  int max_search;
  std::vector<double> coordinates;  // every point takes its three coordinates from here
  int append_unsearched_percent;    // equal points that stand in the pool more than once
};

TEST(VertexPool, SearchAnswersWhatAPlainScanAnswers) {
  std::vector<double> grid;
  for (int i = 0; i < 40; ++i) grid.push_back(i / 64.0);
  const Sequence sequences[] = {
      {"few values, equal zeros", -1, {0.0, -0.0, 1, 2}, 0},
      {"grid with duplicates", -1, grid, 30},
      {"not-a-numbers", -1, {kNan, 0.0, 1, 2, 3, 4, 5, 6}, 5},
      {"extremes", -1, {kInf, -kInf, 5e-324, -5e-324, 1.7e308, -1.7e308, 0.0, 2.2e-308}, 10},
      {"limit 0", 0, {1, 2, 3}, 10},
      {"limit 150, not-a-numbers", 150, {kNan, 0.0, 1, 2, 3, 4, 5}, 30},
  };
  for (const Sequence& sequence : sequences) {
    for (unsigned seed = 0; seed < 6; ++seed) {
      FakeSettings settings;
      settings.ints[kMaxSearch] = sequence.max_search;
      ResetVertexSearch();
      std::mt19937 random(seed);
      const auto coordinate = [&] {
        return sequence.coordinates[random() % sequence.coordinates.size()];
      };
      P3A pool;
      PlainPool plain(sequence.max_search);
      for (int step = 0; step < 1500; ++step) {
        const P3 point = {coordinate(), coordinate(), seed % 2 ? 0.0 : coordinate()};
        const int32_t expected = plain.Search(point);
        ASSERT_EQ(expected, pool.Search(point)) << sequence.name << ", seed " << seed << ", step "
                                                << step << ", " << pool.size() << " points";
        const bool again = static_cast<int>(random() % 100) < sequence.append_unsearched_percent;
        if (expected < 0 || again) {
          plain.Append(point);
          pool.Append(point);
        }
      }
    }
  }
  ResetVertexSearch();
}

// The short cut for a closed chain must leave what line by line leaves: points, order, direction,
// and the count of searches that the limit goes by.
TEST(VertexPool, ChainEqualsItsLinesOneByOne) {
  std::mt19937 random(7);
  for (int round = 0; round < 400; ++round) {
    const size_t count = round % 40 == 0 ? 90 + random() % 900 : random() % 130;
    const auto range = round % 3 == 0 ? 12u : 100000u;  // with equal corners, or hardly
    std::vector<P3> corners;
    for (size_t i = 0; i < count; ++i) {
      corners.push_back({double(random() % range) / 64, double(random() % 50), 0});
    }
    if (round % 17 == 0 && count > 0) corners[random() % count].y = kNan;
    FakeSettings settings;
    if (round % 5 == 0) settings.ints[kMaxSearch] = 10;
    // What `add` leaves, three times over.
    const auto outcome = [&](const auto& add) {
      ResetVertexSearch();
      settings.reads = 0;
      std::ostringstream text;
      for (int i = 0; i < 3; ++i) {
        Parts part;
        add(&part);
        text << part.vertices.size();
        for (const LineItem& line : part.lines.items) text << " " << line.start << "-" << line.end;
      }
      text << " read " << settings.reads;
      return text.str();
    };
    ASSERT_EQ(outcome([&](Parts* part) { part->AddClosedLines(corners); }),
              outcome([&](Parts* part) {
                for (size_t i = 0; i < count; ++i) {
                  part->AddLine(corners[i], corners[(i + 1) % count]);
                }
              }))
        << round;
  }
  ResetVertexSearch();
}

TEST(VertexPool, IndexFollowsEveryChangeOfThePool) {
  ResetVertexSearch();
  P3A pool;
  for (int i = 0; i < 200; ++i) pool.FindOrAddPoint({double(i), 7, 0});
  pool.Set(150, {-1, -1, -1});
  EXPECT_EQ(150, pool.Search({-1, -1, -1}));
  EXPECT_EQ(-1, pool.Search({150, 7, 0}));
  const P3A copy = pool;
  pool.Resize(20);
  EXPECT_EQ(-1, pool.Search({100, 7, 0}));
  EXPECT_EQ(100, copy.Search({100, 7, 0}));
  pool = copy;
  EXPECT_EQ(199, pool.Search({199, 7, 0}));
}

}  // namespace
}  // namespace kerno
