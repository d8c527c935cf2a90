#include "ui/qt/wrapping_line.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace kerno {

WrappingLine::WrappingLine(QWidget* parent) : QLayout(parent) {
  setContentsMargins(0, 0, 0, 0);
}

WrappingLine::~WrappingLine() {
  for (const Cell& cell : cells_) delete cell.item;
}

void WrappingLine::Add(QWidget* widget, Place place) {
  addWidget(widget);
  cells_.back().place = place;
}

void WrappingLine::addItem(QLayoutItem* item) {
  cells_.push_back({item, Place::kUsual});
}

QLayoutItem* WrappingLine::itemAt(int index) const {
  return index >= 0 && index < count() ? cells_[static_cast<size_t>(index)].item : nullptr;
}

QLayoutItem* WrappingLine::takeAt(int index) {
  QLayoutItem* item = itemAt(index);
  if (item) cells_.erase(cells_.begin() + index);
  return item;
}

int WrappingLine::Space() const {
  if (spacing() >= 0) return spacing();
  const QWidget* parent = parentWidget();
  return parent ? parent->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing) : 6;
}

int WrappingLine::WantedWidth(const Cell& cell) {
  return cell.place == Place::kTakesRest ? cell.item->minimumSize().width()
                                         : cell.item->sizeHint().width();
}

// What belongs together is added to a line together.
std::vector<WrappingLine::Line> WrappingLine::Lines(int width) const {
  std::vector<Line> lines;
  Line together;
  int used = 0, wanted = 0;
  for (const Cell& cell : cells_) {
    if (cell.item->isEmpty()) continue;
    together.push_back(&cell);
    wanted += WantedWidth(cell) + Space();
    if (cell.place == Place::kWithNext) continue;
    if (lines.empty() || used + wanted - Space() > width) {
      lines.emplace_back();
      used = 0;
    }
    lines.back().insert(lines.back().end(), together.begin(), together.end());
    used += wanted;
    wanted = 0;
    together.clear();
  }
  return lines;
}

int WrappingLine::LayOut(const QRect& rect, Act act) const {
  const QMargins rim = contentsMargins();
  const QRect inner = rect.marginsRemoved(rim);
  int y = inner.top();
  for (const Line& line : Lines(inner.width())) {
    int height = 0;
    for (const Cell* cell : line) height = std::max(height, cell->item->sizeHint().height());
    if (act == Act::kPlace) PlaceLine(line, {inner.left(), y, inner.width(), height});
    y += height + Space();
  }
  return std::max(0, y - inner.top() - Space()) + rim.top() + rim.bottom();
}

void WrappingLine::PlaceLine(const Line& line, const QRect& rect) const {
  int rest = rect.width() + Space(), sharing = 0;
  for (const Cell* cell : line) {
    rest -= WantedWidth(*cell) + Space();
    sharing += cell->place == Place::kTakesRest;
  }
  int x = rect.left();
  for (const Cell* cell : line) {
    int width = WantedWidth(*cell);
    if (cell->place == Place::kTakesRest) {
      const int share = std::max(rest, 0) / sharing--;
      width += share;
      rest -= share;
    } else if (cell->place == Place::kAtEnd) {
      x += std::max(rest, 0);
      rest = 0;
    }
    width = std::min(width, rect.width());
    const QRect place(x, rect.top(), width, rect.height());
    cell->item->setGeometry(QStyle::visualRect(parentWidget()->layoutDirection(), rect, place));
    x += width + Space();
  }
}

QSize WrappingLine::minimumSize() const {
  QSize size;
  for (const Cell& cell : cells_) {
    if (!cell.item->isEmpty()) size = size.expandedTo(cell.item->minimumSize());
  }
  return size.grownBy(contentsMargins());
}

QSize WrappingLine::sizeHint() const {
  int width = -Space(), height = 0;
  for (const Cell& cell : cells_) {
    if (cell.item->isEmpty()) continue;
    width += cell.item->sizeHint().width() + Space();
    height = std::max(height, cell.item->sizeHint().height());
  }
  return QSize(std::max(width, 0), height).grownBy(contentsMargins());
}

void WrappingLine::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  LayOut(rect, Act::kPlace);
}

}  // namespace kerno
