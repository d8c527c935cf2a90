// The frame in which the drawing is seen, in both ways of working.
#pragma once

#include <QFrame>
#include <QImage>
#include <filesystem>
#include <functional>
#include <memory>

#include "parts/color.h"
#include "platform/drawing.h"

namespace kerno {

// What a page does with what happens in its preview. Places are pixels from the upper left corner
// of the picture.
struct PreviewEvents {
  std::function<std::unique_ptr<BitmapSurface>(double density, Color paper)> picture;
  std::function<void(double width, double height, double density)> resized;
  std::function<void(double x, double y, double steps)> zoomed;
  std::function<void(double x, double y)> grabbed, pointed_at;
  std::function<void()> released, double_clicked;
  std::function<bool(char16_t key)> key_pressed;
  // Empty functions: not in this page.
  std::function<std::filesystem::path()> file_to_drag;
  std::function<void()> copied;
};

// The wheel zooms, dragging moves, a double click shows all; with the keyboard "+" and "-", the
// arrows and "0". With Ctrl the drawing itself is dragged, as a file. The painted drawing is kept
// until it changes.
class PreviewFrame final : public QFrame {
 public:
  explicit PreviewFrame(QWidget* parent = nullptr);

  void SetEvents(PreviewEvents events);
  // Paints the drawing again at the next paint event.
  void Repaint();

  // The pointer over the drawing: a hand that moves it, or a cross that points at it.
  void SetPointer(Qt::CursorShape shape);

  QSize sizeHint() const override { return minimumSize(); }

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void PaintPicture();
  void TellSize();
  QPointF Inside(QPointF place) const { return place - contentsRect().topLeft(); }
  void DragFile();

  PreviewEvents events_;
  std::unique_ptr<BitmapSurface> surface_;
  QImage picture_;  // the surface's pixels
  bool is_stale_ = true;
  double told_density_ = 0;
  Qt::CursorShape pointer_ = Qt::OpenHandCursor;
  QPoint pressed_at_;
  bool may_drag_ = false;
};

}  // namespace kerno
