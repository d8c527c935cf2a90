// The box for the text to convert.
#pragma once

#include <QTextEdit>
#include <string>
#include <string_view>

#include "app/dialog_view.h"

namespace kerno {

// Plain text in one face and colour, which are the box's own and no part of the text: changing them
// is nothing to undo. Tab moves on, Ctrl+Tab types a tab.
class TextBox final : public QTextEdit {
 public:
  explicit TextBox(QWidget* parent = nullptr);

  // The text without what an input method composes; lines end in U+000A.
  std::u16string Text() const;
  QSize minimumSizeHint() const override;
  QSize sizeHint() const override { return minimumSizeHint(); }
  void ShowText(std::u16string_view text, TextChange change);
  void ShowFormat(std::u16string_view face, Color ink, Color paper);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  bool canInsertFromMimeData(const QMimeData* source) const override;
  void insertFromMimeData(const QMimeData* source) override;
  // Files are the window's business.
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
};

}  // namespace kerno
