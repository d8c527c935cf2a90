#include "ui/qt/axis_sliders.h"

#include <QDoubleSpinBox>
#include <QGridLayout>
#include <QLabel>
#include <QSlider>
#include <algorithm>
#include <cmath>

#include "app/scoped_flag.h"
#include "ui/qt/fields.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr int kSteps = 1000;    // of a slider
constexpr double kNarrow = 20;  // an axis of less has figures with decimals

bool IsSameAxis(const AxisRow& a, const AxisRow& b) {
  return a.name == b.name && a.least == b.least && a.most == b.most;
}

int StepOf(const AxisRow& axis) {
  const double width = axis.most - axis.least;
  return width > 0 ? static_cast<int>(std::lround((axis.place - axis.least) / width * kSteps)) : 0;
}

}  // namespace

AxisSliders::AxisSliders(QWidget* parent) : QWidget(parent), grid_(new QGridLayout(this)) {
  grid_->setContentsMargins(0, 0, 0, 0);
  grid_->setColumnStretch(1, 1);
}

void AxisSliders::Show(const std::vector<AxisRow>& axes) {
  const ScopedFlag writing(shows_);
  if (!std::ranges::equal(axes, axes_, IsSameAxis)) Make(axes);
  axes_ = axes;
  for (size_t i = 0; i < axes.size(); ++i) Place(lines_[i], axes[i]);
}

void AxisSliders::Make(const std::vector<AxisRow>& axes) {
  for (const Line& line : lines_) {
    for (QWidget* widget : {static_cast<QWidget*>(line.name), static_cast<QWidget*>(line.slider),
                            static_cast<QWidget*>(line.figure)}) {
      widget->hide();
      widget->deleteLater();  // one of them may be what told of the change
    }
  }
  lines_.clear();
  for (size_t i = 0; i < axes.size(); ++i) {
    const AxisRow& axis = axes[i];
    const QString name = ToQString(axis.name);
    const Line line = {new QLabel(name, this), new QSlider(Qt::Horizontal, this),
                       new QDoubleSpinBox(this)};
    line.slider->setRange(0, kSteps);
    line.slider->setPageStep(kSteps / 10);
    line.slider->setAccessibleName(name);
    LeaveWheelAlone(line.slider);
    line.figure->setRange(axis.least, axis.most);
    line.figure->setDecimals(axis.most - axis.least < kNarrow ? 2 : 0);
    line.figure->setAccessibleName(name);
    LeaveWheelAlone(line.figure);
    TakeNumbersAsTyped(line.figure);
    line.name->setBuddy(line.figure);
    connect(line.slider, &QSlider::valueChanged, this, [this, i](int step) {
      Move(i, axes_[i].least + (axes_[i].most - axes_[i].least) * step / kSteps);
    });
    connect(line.figure, &QDoubleSpinBox::valueChanged, this,
            [this, i](double place) { Move(i, place); });
    const int row = static_cast<int>(i);
    grid_->addWidget(line.name, row, 0);
    grid_->addWidget(line.slider, row, 1);
    grid_->addWidget(line.figure, row, 2);
    lines_.push_back(line);
  }
}

std::vector<QWidget*> AxisSliders::Stops() const {
  std::vector<QWidget*> stops;
  for (const Line& line : lines_) {
    stops.push_back(line.slider);
    stops.push_back(line.figure);
  }
  return stops;
}

void AxisSliders::Place(const Line& line, const AxisRow& axis) {
  if (line.slider->value() != StepOf(axis)) line.slider->setValue(StepOf(axis));
  if (line.figure->value() != axis.place) line.figure->setValue(axis.place);
}

void AxisSliders::Move(size_t axis, double place) {
  if (shows_) return;
  const ScopedFlag writing(shows_);
  axes_[axis].place = place;
  Place(lines_[axis], axes_[axis]);
  if (on_moved) on_moved(axis, place);
}

}  // namespace kerno
