#include "export/drawing_plt.h"

#include <map>
#include <string>
#include <vector>

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/number_text.h"
#include "base/text.h"
#include "drawing/flatten.h"
#include "export/fixed_number.h"

namespace kerno {
namespace {

constexpr double kUnitsPerMillimetre = 40;
constexpr size_t kPens = 8;
constexpr size_t kPointsPerMove = 200;  // longer instructions overrun the buffers of old plotters
constexpr size_t kBlock = 1 << 16;

class DrawingPlt {
 public:
  DrawingPlt(const LayerPaths& paths, double tolerance, const std::filesystem::path& file,
             FileReplacement* out)
      : paths_(paths),
        tolerance_(tolerance),
        scale_(paths.unit == LengthUnit::kInch ? kUnitsPerMillimetre * kMillimetresPerInch
                                               : kUnitsPerMillimetre),
        file_(file),
        out_(*out) {}

  Status Write() {
    text_ = "IN;PA;\n";
    for (size_t layer = 0; layer < paths_.layers.size(); ++layer) {
      text_ += "SP";
      AppendInteger(&text_, static_cast<int64_t>(layer % kPens + 1));
      text_ += ";\n";
      paths_.walk(layer, [&](const Path& path, const P2& at) { Draw(path, at); });
    }
    text_ += "SP0;\n";
    Flush();
    if (status_.ok()) Tell();
    return status_;
  }

 private:
  struct Units {
    int64_t x, y;
    bool operator==(const Units&) const = default;
  };

  void Draw(const Path& path, const P2& at);
  void Move(const char* instruction, size_t first, size_t last);
  void Flush() {
    if (status_.ok()) status_ = out_.Write(text_);
    text_.clear();
  }
  void Tell() const;

  const LayerPaths& paths_;
  double tolerance_;
  double scale_;
  const std::filesystem::path& file_;
  FileReplacement& out_;
  std::map<const Path*, std::vector<P2>> corners_;  // of paths that are kept, as they are needed
  std::vector<P2> corners_now_;                     // of others
  std::vector<Units> points_;                       // of the path that is drawn
  std::string text_;
  Status status_;
  size_t left_out_ = 0;
  bool below_zero_ = false;
};

void DrawingPlt::Draw(const Path& path, const P2& at) {
  std::vector<P2>& corners = paths_.are_kept ? corners_[&path] : corners_now_;
  if (corners.empty() || !paths_.are_kept) FlattenPath(path, tolerance_, &corners);
  points_.clear();
  for (const P2& corner : corners) {
    const Units point = {FixedUnits((at.x + corner.x) * scale_, 0),
                         FixedUnits((at.y + corner.y) * scale_, 0)};
    if (points_.empty() || point != points_.back()) points_.push_back(point);
    below_zero_ |= point.x < 0 || point.y < 0;
  }
  if (path.closed && points_.size() > 1 && points_.back() != points_.front()) {
    points_.push_back(points_.front());
  }
  if (points_.size() < 2) {
    ++left_out_;
    return;
  }
  Move("PU", 0, 1);
  for (size_t first = 1; first < points_.size(); first += kPointsPerMove) {
    Move("PD", first, std::min(first + kPointsPerMove, points_.size()));
  }
  text_ += "PU;\n";
  if (text_.size() >= kBlock) Flush();
}

void DrawingPlt::Move(const char* instruction, size_t first, size_t last) {
  text_ += instruction;
  for (size_t i = first; i < last; ++i) {
    if (i > first) text_.push_back(',');
    AppendInteger(&text_, points_[i].x);
    text_.push_back(',');
    AppendInteger(&text_, points_[i].y);
  }
  text_ += ";\n";
}

void DrawingPlt::Tell() const {
  const std::u16string name = PathText(file_);
  if (left_out_ > 0) {
    std::string count;
    AppendInteger(&count, static_cast<int64_t>(left_out_));
    CurrentNotices().Message(
        name + u": " + Utf8ToUtf16Lossy(count) +
        u" paths are smaller than a plotter's unit (0.025 mm) and are left out");
  }
  if (below_zero_) {
    CurrentNotices().Message(name +
                             u": the drawing reaches below 0, where many plotters cannot go");
  }
}

}  // namespace

Status WritePlt(const LayerPaths& paths, double tolerance, const std::filesystem::path& file) {
  return ReplaceWhenFree(
      file, [&](FileReplacement* out) { return DrawingPlt(paths, tolerance, file, out).Write(); });
}

Status WriteDrawingPlt(const Drawing& drawing, const DrawingStyle& style, double tolerance,
                       const std::filesystem::path& file) {
  return WritePlt(PathsOf(drawing, style), tolerance, file);
}

}  // namespace kerno
