// The parts model: the one in-memory form of geometry. y points up, units are the producer's.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/geometry.h"
#include "parts/color.h"
#include "parts/elements.h"
#include "parts/vertex_pool.h"

namespace kerno {

struct Placement {
  P3 origin;
  int32_t code = 0;
};

// One drawing: a vertex pool and thirteen element arrays in the order of the parts file.
struct Parts {
  P3A vertices;
  TextA texts;
  LineA lines;
  CircleA circles;
  std::array<FaceA, 3> faces;
  EdgeA edges;
  PointA point_sets;
  TextA more_texts;
  TextHA horizontal_texts;
  TextVA vertical_texts;
  PointA more_point_sets;

  Placement placement;
  std::vector<int32_t> codes;
  int32_t keeps_order = 0;  // first trailing integer: non-zero keeps += from its shortcuts
  int32_t trailing = 0;     // second trailing integer, carried
  P3A more_vertices;        // not written to files
  std::unique_ptr<Parts> child;

  Parts() = default;
  Parts(const Parts& other);  // deep, the child included
  Parts& operator=(const Parts& other);
  Parts(Parts&&) noexcept = default;
  Parts& operator=(Parts&&) noexcept = default;
  ~Parts() = default;

  // Each adds one element, its points going through FindOrAddPoint. False when the element cannot
  // be placed: a face of no points, or a pool that has no index left for a vertex.
  bool AddText(const P3& anchor, std::u16string_view text);
  bool AddLine(const P3& start, const P3& end);
  // A closed chain: AddLine from each corner to the next and from the last to the first.
  bool AddClosedLines(std::span<const P3> corners);
  bool AddCircle(const P3& centre, double radius, int32_t attribute, const P3& first,
                 const P3& second);
  bool AddFace(std::span<const P3> loop, int32_t attribute);
  bool AddHorizontalText(const P3& anchor, const TextLine& line);  // line.anchor is not read
  bool AddVerticalText(const P3& anchor, const TextLine& line);
  bool AddPointSet(std::span<const P3> points, int32_t a, int32_t b, int32_t c);

  // Appends another part. Onto an empty part it is copied whole; a smaller part is appended to a
  // copy of the larger one (setting "Debug\Parts", "oprator+=...UseMerge", default 1), unless
  // keeps_order says otherwise.
  // Classic: the larger part's elements then stand first, for the sake of speed.
  Parts& operator+=(const Parts& other);

  // The box over all vertices of the pool; zero when there are none.
  Extent3 Extent() const { return ExtentOf(vertices); }
};

// The pen of a part: first attribute group of its header. Lengths are in model units; those who
// draw take their magnitude, and 0 for what is not finite.
struct PenAttributes {
  int32_t color = 0;       // Color
  double width = 0;        // 0: a hairline
  int32_t style = 0;       // 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot, 5 none
  double unit_width = 0;   // carried
  double unit_length = 0;  // length of the pen's dash pattern, 0: the writer's own
};

// The brush of a part: second attribute group.
struct BrushAttributes {
  int32_t color = 0;  // Color
  int32_t style = 0;  // 0 solid, 1 hollow, 2 hatched
  int32_t hatch = 0;  // index into the hatch names when hatched
};

// Third attribute group: carried and written.
struct ExtraAttributes {
  double first = 0;
  int32_t second = 0;
  double third = 0;
};

// One part inside the container: a Parts with the attributes of its header line.
struct PartsElement : Parts {
  int32_t header_first = 0;  // the two leading integers of the header line, carried
  int32_t header_second = 0;
  std::u16string name;         // the layer
  std::u16string second_text;  // carried
  PenAttributes pen;
  BrushAttributes brush;
  ExtraAttributes extra;
};

// Parts that are made when they are looked at, each time again, and so take no room.
class MadeParts {
 public:
  virtual ~MadeParts() = default;
  virtual size_t Count() const = 0;
  // Replaces *part by the one of this number, below Count.
  virtual void Make(size_t i, PartsElement* part) const = 0;
};

// An ordered array of parts. Copies are noted in the log when "Debug\Parts"/"CopyLog" asks for it.
// Who only looks at the parts uses a PartsView.
struct PartsA {
  int32_t id = 0;
  std::vector<PartsElement> parts;
  std::shared_ptr<const MadeParts> made;  // follow those of `parts`; null: none

  PartsA() = default;
  PartsA(const PartsA& other);
  PartsA& operator=(const PartsA& other);
  PartsA(PartsA&&) noexcept = default;
  PartsA& operator=(PartsA&&) noexcept = default;
  ~PartsA() = default;

  // The box over the vertices of all parts; zero when there are none.
  Extent3 Extent() const;
};

// All parts of a container one after the other, whether they are kept or made.
class PartsView {
 public:
  explicit PartsView(const PartsA& model);

  size_t size() const { return kept_.size() + (made_ ? made_->Count() : 0); }
  bool empty() const { return size() == 0; }
  // Lives until another part is asked for.
  const PartsElement& operator[](size_t i) const {
    return i < kept_.size() ? kept_[i] : Made(i - kept_.size());
  }

  class Iterator {
   public:
    using difference_type = std::ptrdiff_t;
    using value_type = PartsElement;
    Iterator() = default;
    const PartsElement& operator*() const { return (*view_)[at_]; }
    Iterator& operator++() {
      ++at_;
      return *this;
    }
    void operator++(int) { ++at_; }
    bool operator==(const Iterator& other) const { return at_ == other.at_; }

   private:
    friend class PartsView;
    Iterator(const PartsView* view, size_t at) : view_(view), at_(at) {}
    const PartsView* view_ = nullptr;
    size_t at_ = 0;
  };
  Iterator begin() const { return {this, 0}; }
  Iterator end() const { return {this, size()}; }

 private:
  const PartsElement& Made(size_t i) const;

  std::span<const PartsElement> kept_;
  const MadeParts* made_;
  mutable PartsElement part_;  // the last one that was made
  mutable size_t made_now_ = static_cast<size_t>(-1);
};

// The face name of a text element that names none: setting "Parts", "横書フェイス名" (horizontal)
// or "縦書フェイス名" (vertical).
enum class WritingDirection { kHorizontal, kVertical };
std::u16string DefaultFaceName(WritingDirection direction);

// Forgets the settings that the model keeps for the life of the process, the vertex search's
// included. For tests.
void ForgetPartsSettings();

}  // namespace kerno
