#include "ui/qt/preview_frame.h"

#include <QApplication>
#include <QDrag>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QUrl>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr double kWheelStep = 120;  // units of the toolkit by one step of a wheel

// Keys of Latin characters have the characters' numbers.
char16_t NameOfKey(int key) {
  switch (key) {
    case Qt::Key_Left:
      return u'←';
    case Qt::Key_Right:
      return u'→';
    case Qt::Key_Up:
      return u'↑';
    case Qt::Key_Down:
      return u'↓';
    default:
      return static_cast<char16_t>(std::clamp(key, 0, 0xFFFF));
  }
}

}  // namespace

PreviewFrame::PreviewFrame(QWidget* parent) : QFrame(parent) {
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(160, 100);
  setCursor(pointer_);
}

void PreviewFrame::SetEvents(PreviewEvents events) {
  events_ = std::move(events);
}

void PreviewFrame::SetPointer(Qt::CursorShape shape) {
  pointer_ = shape;
  setCursor(shape);
}

void PreviewFrame::Repaint() {
  is_stale_ = true;
  update();
}

void PreviewFrame::TellSize() {
  told_density_ = devicePixelRatioF();
  // Between two pixels of the device the frame may begin anywhere: the picture reaches to its ends.
  const auto covering = [this](int length) {
    const double pixels = length * told_density_;
    const double whole = std::ceil(pixels);
    return (whole == pixels ? whole : whole + 1) / told_density_;
  };
  if (events_.resized) {
    const QSize inside = contentsRect().size();
    events_.resized(covering(inside.width()), covering(inside.height()), told_density_);
  }
}

void PreviewFrame::PaintPicture() {
  if (told_density_ != devicePixelRatioF()) TellSize();
  is_stale_ = false;
  picture_ = {};
  if (!events_.picture) return;
  surface_ = events_.picture(told_density_, FromQColor(palette().color(QPalette::Base)));
  if (!surface_) return;
  picture_ = QImage(surface_->Pixels().data(), surface_->Width(), surface_->Height(),
                    QImage::Format_RGB32);
  picture_.setDevicePixelRatio(told_density_);
}

void PreviewFrame::paintEvent(QPaintEvent*) {
  if (is_stale_ || told_density_ != devicePixelRatioF()) PaintPicture();
  QPainter painter(this);
  if (picture_.isNull()) painter.fillRect(rect(), palette().color(QPalette::Base));
  const QTransform to_device = painter.deviceTransform();
  const QPointF corner = to_device.map(QPointF(contentsRect().topLeft()));
  const QPointF pixel(std::floor(corner.x()), std::floor(corner.y()));
  painter.drawImage(to_device.inverted().map(pixel), picture_);
  drawFrame(&painter);
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

void PreviewFrame::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  TellSize();
}

void PreviewFrame::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Repaint();
}

void PreviewFrame::wheelEvent(QWheelEvent* event) {
  const QPointF at = Inside(event->position());
  events_.zoomed(at.x(), at.y(), event->angleDelta().y() / kWheelStep);
  event->accept();
}

void PreviewFrame::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  pressed_at_ = event->pos();
  may_drag_ = events_.file_to_drag && event->modifiers() == Qt::ControlModifier;
  if (may_drag_) return;
  const QPointF at = Inside(event->position());
  events_.grabbed(at.x(), at.y());
  if (pointer_ == Qt::OpenHandCursor) setCursor(Qt::ClosedHandCursor);
}

void PreviewFrame::mouseMoveEvent(QMouseEvent* event) {
  if (may_drag_) {
    const int way = (event->pos() - pressed_at_).manhattanLength();
    if (way >= QApplication::startDragDistance()) DragFile();
    return;
  }
  const QPointF at = Inside(event->position());
  events_.pointed_at(at.x(), at.y());
}

void PreviewFrame::mouseReleaseEvent(QMouseEvent*) {
  may_drag_ = false;
  events_.released();
  setCursor(pointer_);
}

void PreviewFrame::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) events_.double_clicked();
}

void PreviewFrame::DragFile() {
  may_drag_ = false;
  const std::filesystem::path file = events_.file_to_drag();
  if (file.empty()) return;
  auto* dragged = new QMimeData;
  dragged->setUrls({QUrl::fromLocalFile(PathToQString(file))});
  auto* drag = new QDrag(this);
  drag->setMimeData(dragged);
  drag->setPixmap(QPixmap::fromImage(picture_.scaledToHeight(64, Qt::SmoothTransformation)));
  drag->exec(Qt::CopyAction);
}

bool PreviewFrame::event(QEvent* event) {
  // The key copies the drawing here, whatever else it does elsewhere.
  if (event->type() == QEvent::ShortcutOverride && events_.copied &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy)) {
    event->accept();
    return true;
  }
  return QFrame::event(event);
}

void PreviewFrame::keyPressEvent(QKeyEvent* event) {
  if (events_.copied && event->matches(QKeySequence::Copy)) return events_.copied();
  const bool is_plain = (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
  if (is_plain && events_.key_pressed(NameOfKey(event->key()))) return;
  QFrame::keyPressEvent(event);
}

}  // namespace kerno
