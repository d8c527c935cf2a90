#include "ui/qt/combos.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QSet>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QTimer>

#include "app/controls.h"
#include "app/height_text.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr int kFaceRowPadding = 6;

// Paints names in their own faces. Loading a font may take long, so a face that was not painted
// before is first painted in the window's font and loaded between two events.
class FaceDelegate final : public QStyledItemDelegate {
 public:
  explicit FaceDelegate(QAbstractItemView* list) : QStyledItemDelegate(list), list_(list) {
    timer_.setSingleShot(true);
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, [this] { LoadOne(); });
  }

  // Forgets what was painted: the faces have changed.
  void Forget() { loaded_.clear(); }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return {1, option.fontMetrics.height() + kFaceRowPadding};
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const QString face = option->text;
    if (loaded_.contains(face)) {
      option->font.setFamilies({face});
      option->fontMetrics = QFontMetrics(option->font);
    } else if (!waiting_.contains(face)) {
      waiting_.append(face);
      timer_.start();
    }
  }

 private:
  void LoadOne() {
    if (waiting_.isEmpty()) return;
    const QString face = waiting_.takeFirst();
    QFont font = list_->font();
    font.setFamilies({face});
    (void)QFontMetrics(font).horizontalAdvance(face);
    loaded_.insert(face);
    list_->viewport()->update();
    if (!waiting_.isEmpty()) timer_.start();
  }

  QAbstractItemView* list_;
  mutable QTimer timer_;
  mutable QStringList waiting_;
  QSet<QString> loaded_;
};

QListView* MakeFaceList(QWidget* parent) {
  auto* list = new QListView(parent);
  list->setUniformItemSizes(true);
  list->setLayoutMode(QListView::Batched);
  list->setTextElideMode(Qt::ElideRight);
  list->setItemDelegate(new FaceDelegate(list));
  return list;
}

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
  const int item = combo->count() > 0 ? combo->view()->sizeHintForRow(0)
                                      : combo->fontMetrics().height() + kFaceRowPadding;
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

FaceCombo::FaceCombo(QWidget* parent) : TextCombo(parent) {
  setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  setMinimumContentsLength(18);
  setModel(new QStringListModel(this));
  setView(MakeFaceList(this));
  auto* completer = new QCompleter(model(), this);
  completer->setCaseSensitivity(Qt::CaseInsensitive);
  completer->setFilterMode(Qt::MatchContains);
  completer->setCompletionMode(QCompleter::PopupCompletion);
  completer->setPopup(MakeFaceList(nullptr));
  setCompleter(completer);
}

void FaceCombo::ShowFaces(const std::vector<std::u16string>& faces) {
  QStringList names;
  names.reserve(static_cast<qsizetype>(faces.size()));
  for (const std::u16string& face : faces) names.append(ToQString(face));
  const QString text = currentText();
  static_cast<QStringListModel*>(model())->setStringList(names);
  for (QAbstractItemView* list : {view(), completer()->popup()}) {
    if (auto* delegate = dynamic_cast<FaceDelegate*>(list->itemDelegate())) delegate->Forget();
  }
  setEditText(text);
  SizeDropDown(this);
}

void FaceCombo::showPopup() {
  // The list opens at the face in the edit, which may have been typed.
  const int index = findText(currentText(), Qt::MatchFixedString);
  if (index >= 0 && index != currentIndex()) {
    const QSignalBlocker blocker(this);
    setCurrentIndex(index);
  }
  QComboBox::showPopup();
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
