// Controls side by side, in as many lines as the width asks for.
#pragma once

#include <QLayout>
#include <vector>

namespace kerno {

enum class Place {
  kUsual,
  kTakesRest,  // of its line, shared with others of this kind
  kAtEnd,      // of its line; what is free there stands before it
  kWithNext,   // in the line of the next control: a label
};

// Hidden controls take no place. The smallest width is that of the widest control alone.
class WrappingLine final : public QLayout {
 public:
  explicit WrappingLine(QWidget* parent = nullptr);
  ~WrappingLine() override;

  void Add(QWidget* widget, Place place = Place::kUsual);

  void addItem(QLayoutItem* item) override;
  int count() const override { return static_cast<int>(cells_.size()); }
  QLayoutItem* itemAt(int index) const override;
  QLayoutItem* takeAt(int index) override;
  Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override { return LayOut({0, 0, width, 0}, Act::kMeasure); }
  QSize minimumSize() const override;
  QSize sizeHint() const override;
  void setGeometry(const QRect& rect) override;

 private:
  struct Cell {
    QLayoutItem* item;
    Place place;
  };
  using Line = std::vector<const Cell*>;
  enum class Act { kMeasure, kPlace };

  int Space() const;
  static int WantedWidth(const Cell& cell);
  std::vector<Line> Lines(int width) const;
  int LayOut(const QRect& rect, Act act) const;
  void PlaceLine(const Line& line, const QRect& rect) const;

  std::vector<Cell> cells_;
};

}  // namespace kerno
