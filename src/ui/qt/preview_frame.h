// The frame in which the drawing is seen.
#pragma once

#include <QFrame>
#include <QImage>
#include <memory>

#include "platform/drawing.h"

namespace kerno {

class DialogPresenter;

// The wheel zooms, dragging moves, a double click shows all; with the keyboard "+" and "-", the
// arrows and "0". The painted drawing is kept until it changes.
class PreviewFrame final : public QFrame {
 public:
  explicit PreviewFrame(QWidget* parent = nullptr);

  void SetPresenter(DialogPresenter* presenter) { presenter_ = presenter; }
  // Paints the drawing again at the next paint event.
  void Repaint();

  QSize sizeHint() const override { return minimumSize(); }

 protected:
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

  DialogPresenter* presenter_ = nullptr;
  std::unique_ptr<BitmapSurface> surface_;
  QImage picture_;  // the surface's pixels
  bool is_stale_ = true;
};

}  // namespace kerno
