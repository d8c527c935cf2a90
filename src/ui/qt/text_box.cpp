#include "ui/qt/text_box.h"

#include <QDragEnterEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QTextDocument>

#include "app/dialog_presenter.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr int kPointSize = 16;

}  // namespace

TextBox::TextBox(QWidget* parent) : QTextEdit(parent) {
  setAcceptRichText(false);
  setTabChangesFocus(true);
}

// Two lines; the window gives more where it has it.
QSize TextBox::minimumSizeHint() const {
  return {120, 2 * QFontMetrics(font()).height() + 2 * frameWidth() + 8};
}

std::u16string TextBox::Text() const {
  // Not the toolkit's plain text, which turns no-break spaces into blanks.
  return LinesOf(FromQString(document()->toRawText()));
}

void TextBox::ShowText(std::u16string_view text, TextChange change) {
  if (change == TextChange::kFresh) {
    setPlainText(ToQString(text));
    moveCursor(QTextCursor::End);
    return;
  }
  QTextCursor cursor(document());
  cursor.select(QTextCursor::Document);
  cursor.insertText(ToQString(text));
}

void TextBox::ShowFormat(std::u16string_view face, Color ink, Color paper) {
  QFont wanted = font();
  if (!face.empty()) wanted.setFamilies({ToQString(face)});
  wanted.setPointSize(kPointSize);
  if (wanted != font()) setFont(wanted);
  QPalette colors = palette();
  colors.setColor(QPalette::Text, ToQColor(ink));
  colors.setColor(QPalette::Base, ToQColor(paper));
  if (colors != palette()) setPalette(colors);
}

void TextBox::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Tab && event->modifiers() == Qt::ControlModifier) {
    textCursor().insertText(QStringLiteral("\t"));
    return;
  }
  QTextEdit::keyPressEvent(event);
}

bool TextBox::canInsertFromMimeData(const QMimeData* source) const {
  return source->hasText();
}

void TextBox::insertFromMimeData(const QMimeData* source) {
  textCursor().insertText(ToQString(LinesOf(FromQString(source->text()))));
  ensureCursorVisible();
}

void TextBox::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) return event->ignore();
  QTextEdit::dragEnterEvent(event);
}

void TextBox::dragMoveEvent(QDragMoveEvent* event) {
  if (event->mimeData()->hasUrls()) return event->ignore();
  QTextEdit::dragMoveEvent(event);
}

void TextBox::dropEvent(QDropEvent* event) {
  if (event->mimeData()->hasUrls()) return event->ignore();
  QTextEdit::dropEvent(event);
}

}  // namespace kerno
