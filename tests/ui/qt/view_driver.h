// The Qt window as a user handles and sees it, without a display.
#pragma once

#include <gtest/gtest.h>

#include <QTest>
#include <QtWidgets>
#include <filesystem>

#include "shown.h"
#include "ui/qt/fields.h"
#include "ui/qt/main_window.h"
#include "ui/qt/qt_text.h"

namespace kerno::test {

enum class UserKey {
  kEnter = Qt::Key_Return,
  kEscape = Qt::Key_Escape,
  kUp = Qt::Key_Up,
  kDown = Qt::Key_Down,
  kPlus = Qt::Key_Plus,
  kMinus = Qt::Key_Minus,
  kZero = Qt::Key_0,
};

// Shows the window as the program does.
class ViewDriver {
 public:
  ViewDriver(DialogServices& services, CutServices& cut_services)
      : window(services, cut_services), palette_(QApplication::palette()) {
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    Settle();  // the faces are listed once the window stands
  }
  ~ViewDriver() { SetDarkColors(false); }

  DialogPresenter& presenter() { return window.presenter(); }
  CutPresenter& cut_presenter() { return window.cut_presenter(); }
  bool IsShown(ControlId id) const { return Find<QWidget>(id) && Find<QWidget>(id)->isVisible(); }
  bool IsEnabled(ControlId id) const { return Find<QWidget>(id)->isEnabled(); }
  std::u16string TextOf(ControlId id) const {
    for (const char* property : {"plainText", "currentText", "text"}) {
      const QVariant text = Find<QWidget>(id)->property(property);
      if (text.isValid()) return FromQString(text.toString());
    }
    return {};
  }
  ShownText LooksOf(ControlId id) const {
    const auto* widget = Find<QWidget>(id);
    const bool is_text = id == ControlId::kText;
    const auto color = [widget](QPalette::ColorRole role) {
      return FromQColor(widget->palette().color(role));
    };
    return {FromQString(widget->font().families().value(0)),
            color(is_text ? QPalette::Text : QPalette::WindowText),
            color(is_text ? QPalette::Base : QPalette::Window)};
  }
  // Why a field is marked; empty where it is not.
  std::u16string FaultOf(ControlId id) const {
    auto* field = static_cast<Field*>(Find<QLineEdit>(id));
    return field->at_fault() ? FromQString(field->accessibleDescription()) : std::u16string();
  }
  // The answer to the next question for a file to write.
  void AnswerSave(const std::filesystem::path& file) {
    QTimer::singleShot(1, &window, [this, file] {
      auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
      if (!dialog) return AnswerSave(file);
      dialog->selectFile(PathToQString(file));
      QMetaObject::invokeMethod(dialog, "accept");
    });
  }
  void Type(ControlId id, std::u16string_view text) {
    if (auto* box = Find<QTextEdit>(id)) box->moveCursor(QTextCursor::End);
    QTest::keyClicks(Edit(id), ToQString(text));
  }
  void TypeOver(ControlId id, std::u16string_view text) {
    QMetaObject::invokeMethod(Edit(id), "selectAll");
    QTest::keyClick(Edit(id), Qt::Key_Delete);
    QTest::keyClicks(Edit(id), ToQString(text));
  }
  void Press(ControlId id, UserKey key) {
    Find<QWidget>(id)->setFocus();
    QTest::keyClick(Find<QWidget>(id), static_cast<Qt::Key>(key));
  }
  void Click(ControlId id) { Find<QAbstractButton>(id)->click(); }
  void Select(ControlId id, int row) { Find<QComboBox>(id)->setCurrentIndex(row); }
  void SelectInText(int from, int to) {
    QTextCursor cursor = Text()->textCursor();
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    Text()->setTextCursor(cursor);
  }
  std::pair<int, int> SelectionInText() const {
    const QTextCursor cursor = Text()->textCursor();
    return {cursor.selectionStart(), cursor.selectionEnd()};
  }
  void UndoInText() { QTest::keyClick(Text(), Qt::Key_Z, Qt::ControlModifier); }
  void Copy(std::u16string_view text) { QGuiApplication::clipboard()->setText(ToQString(text)); }
  void DropOnText(const std::filesystem::path& file) {
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(PathToQString(file))});
    data.setText(QStringLiteral("the file's address"));
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Text()->viewport(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QApplication::sendEvent(Text()->viewport(), &drop);
    Settle();
  }
  void SetDarkColors(bool dark) {
    QPalette colors = palette_;
    if (dark) {
      colors.setColor(QPalette::Base, QColor(30, 30, 32));
      colors.setColor(QPalette::Window, QColor(45, 45, 48));
    }
    QApplication::setPalette(colors);
    Settle();
  }

  std::u16string TakeMessage() {
    QWidget* const box = QApplication::activeModalWidget();
    if (!box) return {};
    std::u16string all;
    for (const QLabel* label : box->findChildren<QLabel*>()) all += FromQString(label->text());
    box->close();
    return all;
  }
  bool CancelProgress() {
    auto* progress = window.findChild<QProgressDialog*>();
    if (!progress || !progress->isVisible()) return false;
    progress->cancel();
    return true;
  }

  void Place(const WindowRect& rect) {
    window.resize(rect.right - rect.left, rect.bottom - rect.top);
    window.move(rect.left, rect.top);
    Settle();
  }
  void Minimise() { ShowAs(Qt::WindowMinimized); }
  void Maximise() { ShowAs(Qt::WindowMaximized); }
  bool Close() { return window.close(); }

  template <class Control>
  Control* Find(ControlId id) const {
    return window.findChild<Control*>(ObjectName(id));
  }
  QTextEdit* Text() const { return Find<QTextEdit>(ControlId::kText); }
  QWidget* Edit(ControlId id) const {
    auto* combo = Find<QComboBox>(id);
    return combo ? combo->lineEdit() : Find<QWidget>(id);
  }
  static void Wait() { QTest::qWait(10); }
  static void Settle() { QTest::qWait(1); }

  MainWindow window;

 private:
  void ShowAs(Qt::WindowState state) {
    window.setWindowState(state);
    Settle();
  }

  QPalette palette_ = QApplication::palette();
};

}  // namespace kerno::test
