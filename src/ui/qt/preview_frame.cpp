#include "ui/qt/preview_frame.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include "app/dialog_presenter.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr double kKeyStep = 40;     // pixels by an arrow key
constexpr double kWheelStep = 120;  // units of the toolkit by one step of a wheel

}  // namespace

PreviewFrame::PreviewFrame(QWidget* parent) : QFrame(parent) {
  setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
  setFocusPolicy(Qt::StrongFocus);
  setMinimumSize(200, 120);
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
  const QSize size = contentsRect().size() * ratio;
  const Color base = FromQColor(palette().color(QPalette::Base));
  const Color paper = presenter_ ? presenter_->PaperBehind(base) : base;
  picture_ = {};
  surface_ = CreateBitmapSurface(size.width(), size.height(), paper);
  if (!surface_) return;
  if (presenter_) presenter_->PaintPreview(surface_->Context(), ratio);
  picture_ = QImage(surface_->Pixels().data(), size.width(), size.height(), QImage::Format_RGB32);
  picture_.setDevicePixelRatio(ratio);
}

void PreviewFrame::paintEvent(QPaintEvent*) {
  if (is_stale_ || picture_.devicePixelRatio() != devicePixelRatioF()) PaintPicture();
  QPainter painter(this);
  painter.drawImage(contentsRect().topLeft(), picture_);
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
  drags_ = true;
  drag_from_ = event->position();
  setCursor(Qt::ClosedHandCursor);
}

void PreviewFrame::mouseMoveEvent(QMouseEvent* event) {
  if (!drags_) return;
  const QPointF moved = event->position() - drag_from_;
  drag_from_ = event->position();
  presenter_->PreviewDragged(moved.x(), moved.y());
}

void PreviewFrame::mouseReleaseEvent(QMouseEvent*) {
  drags_ = false;
  setCursor(Qt::OpenHandCursor);
}

void PreviewFrame::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) presenter_->PreviewDoubleClicked();
}

void PreviewFrame::keyPressEvent(QKeyEvent* event) {
  const double x = contentsRect().width() / 2.0, y = contentsRect().height() / 2.0;
  switch (event->key()) {
    case Qt::Key_Plus:
      return presenter_->PreviewZoomed(x, y, 1);
    case Qt::Key_Minus:
      return presenter_->PreviewZoomed(x, y, -1);
    case Qt::Key_0:
      return presenter_->PreviewDoubleClicked();
    case Qt::Key_Left:
      return presenter_->PreviewDragged(kKeyStep, 0);
    case Qt::Key_Right:
      return presenter_->PreviewDragged(-kKeyStep, 0);
    case Qt::Key_Up:
      return presenter_->PreviewDragged(0, kKeyStep);
    case Qt::Key_Down:
      return presenter_->PreviewDragged(0, -kKeyStep);
    default:
      QFrame::keyPressEvent(event);
  }
}

}  // namespace kerno
