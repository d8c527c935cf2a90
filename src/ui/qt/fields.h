// Small controls of the Cut page.
#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <functional>
#include <string_view>
#include <vector>

#include "app/cut_view.h"

class QScrollArea;

namespace kerno {

// The wheel scrolls what the control stands in; it changes a control only that has the keyboard.
void LeaveWheelAlone(QWidget* control);

// What gets the keyboard by a key comes into sight, also from outside of what scrolls.
void ScrollToFocus(QScrollArea* scroller);

// Digits and units go into the field as they are typed, whatever language the keyboard is set to.
// `field` is what has the keyboard.
void TakeNumbersAsTyped(QWidget* field);

// A red frame along the edge of a control.
void PaintFault(QWidget* control);
// Shows a field's hint in half of the ink of `page`: some themes have no colour of their own for
// it.
void InkHint(QWidget* field, const QWidget& page);

// An edit of one line, with a red frame while its text cannot be used.
class Field final : public QLineEdit {
 public:
  using QLineEdit::QLineEdit;

  void SetFault(bool at_fault);
  bool at_fault() const { return at_fault_; }
  QSize minimumSizeHint() const override {
    return {2 * width_ / 3, QLineEdit::minimumSizeHint().height()};
  }
  QSize sizeHint() const override { return {width_, QLineEdit::sizeHint().height()}; }
  void SetWantedWidth(int width) { width_ = width; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  bool at_fault_ = false;
  int width_ = 0;
};

// A drop-down list of texts, as wide as the longest of them or, where names of any length may come,
// no wider than its place.
class Choice final : public QComboBox {
 public:
  enum class Width { kLongest, kPlace };
  explicit Choice(Width width, QWidget* parent = nullptr);
  QSize minimumSizeHint() const override;
  void ShowItems(const std::vector<std::u16string>& items, size_t selected);
};

// A text that is not edited. While there is none, it may say what would stand there.
class Figure final : public QLabel {
 public:
  explicit Figure(QWidget* parent = nullptr);
  void ShowText(const QString& text);
  void SetPlaceholder(const QString& text);
  // What it is the figure of: read out with it. May be empty.
  void SetName(const QString& name);

 private:
  QString text_, placeholder_, name_;
  void ShowAgain();
};

// A status with words that do something, by the pointer and by the keyboard.
class StatusLinks final : public QLabel {
 public:
  explicit StatusLinks(QWidget* parent = nullptr);

  std::function<void(int number)> on_followed;

  void Show(std::u16string_view text, const std::vector<StatusLink>& links);
};

}  // namespace kerno
