#include "ui/qt/combos.h"

#include <QAbstractItemView>
#include <QLineEdit>
#include <QPainter>
#include <QStringListModel>
#include <limits>

#include "app/controls.h"
#include "app/height_text.h"
#include "ui/qt/face_suggestions.h"
#include "ui/qt/fields.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

QIcon Swatch(const QColor& color, const QWidget& widget) {
  constexpr int kSide = 16;
  const double ratio = widget.devicePixelRatioF();
  QPixmap pixmap(static_cast<int>(kSide * ratio), static_cast<int>(kSide * ratio));
  pixmap.setDevicePixelRatio(ratio);
  pixmap.fill(Qt::transparent);
  QPainter painter(&pixmap);
  painter.setPen(widget.palette().color(QPalette::Mid));
  painter.setBrush(color);
  painter.drawRect(QRectF(1.5, 1.5, kSide - 3, kSide - 3));
  return QIcon(pixmap);
}

}  // namespace

void SizeDropDown(QComboBox* combo) {
  const QWidget* window = combo->window();
  const int top = combo->mapTo(window, QPoint(0, 0)).y();
  const int item =
      combo->count() > 0 ? combo->view()->sizeHintForRow(0) : combo->fontMetrics().height();
  combo->setMaxVisibleItems(DropDownRows(window->height(), top, item));
}

TextCombo::TextCombo(QWidget* parent) : QComboBox(parent) {
  setEditable(true);
  setInsertPolicy(QComboBox::NoInsert);
  setCompleter(nullptr);
  connect(this, &QComboBox::editTextChanged, this, [this](const QString& text) {
    const int row = findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (row >= 0) setCurrentIndex(row);
  });
}

void TextCombo::SetFault(bool at_fault) {
  at_fault_ = at_fault;
  update();
}

void TextCombo::paintEvent(QPaintEvent* event) {
  QComboBox::paintEvent(event);
  if (at_fault_) PaintFault(this);
}

FaceCombo::FaceCombo(QWidget* parent) : TextCombo(parent) {
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(18);
  setModel(new QStringListModel(this));
  setView(MakeFaceList(this));
  suggestions_ = new FaceSuggestions(lineEdit(), this);
  suggestions_->on_chosen = [this](const QString& face) { setEditText(face); };
}

void FaceCombo::ShowFaces(const std::vector<std::u16string>& faces) {
  QStringList names;
  names.reserve(static_cast<qsizetype>(faces.size()));
  for (const std::u16string& face : faces) names.append(ToQString(face));
  const QString text = currentText();
  static_cast<QStringListModel*>(model())->setStringList(names);
  ForgetFaces(view());
  suggestions_->SetFaces(names);
  setEditText(text);
  SizeDropDown(this);
}

void FaceCombo::showPopup() {
  suggestions_->Hide();
  // The list opens at the face in the edit, which may have been typed.
  const int index = findText(currentText(), Qt::MatchFixedString);
  if (index >= 0 && index != currentIndex()) {
    const QSignalBlocker blocker(this);
    setCurrentIndex(index);
  }
  QComboBox::showPopup();
  view()->scrollTo(view()->currentIndex(), QAbstractItemView::PositionAtCenter);
}

ColorCombo::ColorCombo(QWidget* parent) : QComboBox(parent) {
  setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

void ColorCombo::ShowColors(const std::vector<ColorChoice>& colors, size_t selected) {
  clear();
  for (const ColorChoice& choice : colors) {
    addItem(Swatch(ToQColor(choice.color), *this), ToQString(choice.name), choice.color);
  }
  setCurrentIndex(static_cast<int>(selected));
}

Color ColorCombo::SelectedColor() const {
  return currentData().toUInt();
}

HeightSpin::HeightSpin(QWidget* parent) : QAbstractSpinBox(parent) {
  connect(lineEdit(), &QLineEdit::textEdited, this, [this](const QString& text) {
    if (on_edited) on_edited(text);
  });
  TakeNumbersAsTyped(this);
  // What the toolkit tells assistive technology as the value.
  setProperty("maximum", std::numeric_limits<int>::max());
  connect(lineEdit(), &QLineEdit::textChanged, this,
          [this](const QString& text) { setProperty("value", text.toInt()); });
}

void HeightSpin::SetFault(bool at_fault) {
  at_fault_ = at_fault;
  update();
}

void HeightSpin::paintEvent(QPaintEvent* event) {
  QAbstractSpinBox::paintEvent(event);
  if (at_fault_) PaintFault(this);
}

void HeightSpin::stepBy(int steps) {
  if (on_stepped) on_stepped(steps);
  lineEdit()->selectAll();
}

QSize HeightSpin::sizeHint() const {
  QSize size = QAbstractSpinBox::sizeHint();
  size.setWidth(fontMetrics().horizontalAdvance(QString::number(kLowestHeight * 100)) + 36);
  return size;
}

}  // namespace kerno
