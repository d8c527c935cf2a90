#include "ui/qt/preview_frame.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "app/dialog_presenter.h"
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

// The place moved onto a pixel of the device: between two the picture would be blurred.
QPointF OnPixel(const QPainter& painter, QPointF place) {
  const QTransform to_device = painter.deviceTransform();
  const QPointF pixel = to_device.map(place);
  return to_device.inverted().map(QPointF(std::round(pixel.x()), std::round(pixel.y())));
}

}  // namespace

PreviewFrame::PreviewFrame(QWidget* parent) : QFrame(parent) {
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(160, 100);
  setCursor(Qt::OpenHandCursor);
  setAttribute(Qt::WA_OpaquePaintEvent);
}

void PreviewFrame::Repaint() {
  is_stale_ = true;
  update();
}

void PreviewFrame::PaintPicture() {
  is_stale_ = false;
  const double ratio = devicePixelRatioF();
  picture_ = {};
  surface_ = presenter_->PreviewPicture(ratio, FromQColor(palette().color(QPalette::Base)));
  if (!surface_) return;
  picture_ = QImage(surface_->Pixels().data(), surface_->Width(), surface_->Height(),
                    QImage::Format_RGB32);
  picture_.setDevicePixelRatio(ratio);
}

void PreviewFrame::paintEvent(QPaintEvent*) {
  if (is_stale_ || picture_.devicePixelRatio() != devicePixelRatioF()) PaintPicture();
  QPainter painter(this);
  painter.drawImage(OnPixel(painter, contentsRect().topLeft()), picture_);
  drawFrame(&painter);
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

void PreviewFrame::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  if (presenter_) presenter_->PreviewResized(contentsRect().width(), contentsRect().height());
}

void PreviewFrame::changeEvent(QEvent* event) {
  QFrame::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) Repaint();
}

void PreviewFrame::wheelEvent(QWheelEvent* event) {
  const QPointF at = event->position() - contentsRect().topLeft();
  presenter_->PreviewZoomed(at.x(), at.y(), event->angleDelta().y() / kWheelStep);
  event->accept();
}

void PreviewFrame::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return;
  presenter_->PreviewGrabbed(event->position().x(), event->position().y());
  setCursor(Qt::ClosedHandCursor);
}

void PreviewFrame::mouseMoveEvent(QMouseEvent* event) {
  presenter_->PreviewPointedAt(event->position().x(), event->position().y());
}

void PreviewFrame::mouseReleaseEvent(QMouseEvent*) {
  presenter_->PreviewReleased();
  setCursor(Qt::OpenHandCursor);
}

void PreviewFrame::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) presenter_->PreviewDoubleClicked();
}

void PreviewFrame::keyPressEvent(QKeyEvent* event) {
  if (!presenter_->PreviewKeyPressed(NameOfKey(event->key()))) QFrame::keyPressEvent(event);
}

}  // namespace kerno
