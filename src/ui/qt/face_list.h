// The list of families on the Cut page: each row the family's name and the user's own text in it.
#pragma once

#include <QListView>
#include <functional>
#include <optional>
#include <vector>

#include "app/cut_view.h"
#include "parts/color.h"
#include "platform/drawing.h"

namespace kerno {

// The arrow keys select, F and the star mark a favourite.
class FaceList final : public QListView {
 public:
  explicit FaceList(QWidget* parent = nullptr);
  ~FaceList() override;

  std::function<void(size_t row)> on_selected, on_favourite;
  // Black on white, in pixels of the device; null while there is no sample yet.
  std::function<const BitmapSurface*(size_t row, int width, int height)> sample;

  void ShowRows(const std::vector<FaceListRow>& rows, std::optional<size_t> selected);

  QSize minimumSizeHint() const override;
  QSize sizeHint() const override { return minimumSizeHint(); }

 protected:
  void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;

 private:
  class Rows;
  class RowPainter;

  Rows* rows_;
  bool shows_ = false;
};

}  // namespace kerno
