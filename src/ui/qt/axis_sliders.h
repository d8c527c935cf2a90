// A slider with a figure for each axis of a variable font.
#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "app/cut_view.h"

class QDoubleSpinBox;
class QGridLayout;
class QLabel;
class QSlider;

namespace kerno {

class AxisSliders final : public QWidget {
 public:
  explicit AxisSliders(QWidget* parent = nullptr);

  std::function<void(size_t axis, double place)> on_moved;

  // Axes that are the same as before keep their controls, so that a slider can be dragged on.
  void Show(const std::vector<AxisRow>& axes);

  // What the Tab key stops at, in its order.
  std::vector<QWidget*> Stops() const;

 private:
  struct Line {
    QLabel* name;
    QSlider* slider;
    QDoubleSpinBox* figure;
  };
  void Make(const std::vector<AxisRow>& axes);
  void Place(const Line& line, const AxisRow& axis);
  void Move(size_t axis, double place);

  QGridLayout* grid_;
  std::vector<AxisRow> axes_;
  std::vector<Line> lines_;
  bool shows_ = false;
};

}  // namespace kerno
