#include "ui/qt/fields.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QInputMethodQueryEvent>
#include <QPainter>
#include <QScrollArea>
#include <QWheelEvent>
#include <algorithm>

#include "ui/qt/combos.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

const QColor kFaultFrame(0xD0, 0x30, 0x30);

// The palettes of dark desktops often keep the link colour of light ones.
QColor LinkColor(const QPalette& colors) {
  const QColor paper = colors.color(QPalette::Window);
  const QColor link = colors.color(QPalette::Link);
  constexpr int kDark = 128;
  return paper.lightness() < kDark && link.lightness() <= kDark ? QColor(0x78, 0xB8, 0xFF) : link;
}

class WheelGuard final : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Wheel || static_cast<QWidget*>(object)->hasFocus()) return false;
    event->ignore();
    return true;
  }
};

// Edits answer that they want an input method, whatever their attribute says.
class InputMethodGuard final : public QObject {
 public:
  using QObject::QObject;
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::InputMethodQuery) return false;
    object->event(event);
    static_cast<QInputMethodQueryEvent*>(event)->setValue(Qt::ImEnabled, false);
    event->accept();
    return true;
  }
};

}  // namespace

void LeaveWheelAlone(QWidget* control) {
  control->setFocusPolicy(Qt::StrongFocus);
  control->installEventFilter(new WheelGuard(control));
}

// The toolkit scrolls for the Tab key alone, and only between two controls of the area.
void ScrollToFocus(QScrollArea* scroller) {
  QObject::connect(qApp, &QApplication::focusChanged, scroller,
                   [scroller](const QWidget* before, QWidget* now) {
                     // A window that becomes the active one gives the keyboard back, and moves
                     // nothing under the pointer that made it so.
                     const bool goes_on = before && now && before->window() == now->window();
                     const bool by_pointer = QGuiApplication::mouseButtons() != Qt::NoButton;
                     if (!goes_on || by_pointer || !scroller->isAncestorOf(now)) return;
                     scroller->ensureWidgetVisible(now);
                   });
}

// On X11 an input method knows nothing of hints: of a number it would make a word to be confirmed.
// On other systems keyboards on the screen come through input methods, and follow the hints.
void TakeNumbersAsTyped(QWidget* field) {
  field->setInputMethodHints(Qt::ImhPreferNumbers | Qt::ImhNoPredictiveText);
  if (QGuiApplication::platformName() == QLatin1String("xcb")) {
    field->installEventFilter(new InputMethodGuard(field));
  }
}

void InkHint(QWidget* field, const QWidget& page) {
  QColor ink = page.palette().color(QPalette::Text);
  ink.setAlphaF(0.5F);
  QPalette colors;
  colors.setColor(QPalette::PlaceholderText, ink);
  field->setPalette(colors);
}

void PaintFault(QWidget* control) {
  QPainter painter(control);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(kFaultFrame, 2));
  painter.drawRoundedRect(QRectF(control->rect()).adjusted(1, 1, -1, -1), 2, 2);
}

void Field::SetFault(bool at_fault) {
  at_fault_ = at_fault;
  update();
}

void Field::paintEvent(QPaintEvent* event) {
  QLineEdit::paintEvent(event);
  if (at_fault_) PaintFault(this);
}

Choice::Choice(Width width, QWidget* parent) : QComboBox(parent) {
  if (width == Width::kLongest) {
    setSizeAdjustPolicy(QComboBox::AdjustToContents);
  } else {
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(6);
  }
}

QSize Choice::minimumSizeHint() const {
  if (sizeAdjustPolicy() != QComboBox::AdjustToContents) return QComboBox::minimumSizeHint();
  constexpr int kMostCharacters = 20;  // what is longer does not widen all of the panel
  const QSize wanted = sizeHint();
  return {std::min(wanted.width(), kMostCharacters * fontMetrics().averageCharWidth()),
          wanted.height()};
}

void Choice::ShowItems(const std::vector<std::u16string>& items, size_t selected) {
  QStringList texts;
  for (const std::u16string& item : items) texts.append(ToQString(item));
  bool is_same = count() == texts.size();
  for (int i = 0; is_same && i < count(); ++i) is_same = itemText(i) == texts[i];
  if (!is_same) {
    clear();
    addItems(texts);
    int widest = 0;
    for (const QString& text : texts) {
      widest = std::max(widest, fontMetrics().horizontalAdvance(text));
    }
    view()->setMinimumWidth(widest + 2 * fontMetrics().averageCharWidth() + 16);
  }
  setCurrentIndex(static_cast<int>(selected));
}

Figure::Figure(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::PlainText);
  setTextInteractionFlags(Qt::TextSelectableByMouse);
}

void Figure::ShowText(const QString& text) {
  if (text == text_) return;
  text_ = text;
  ShowAgain();
}

void Figure::SetPlaceholder(const QString& text) {
  placeholder_ = text;
  setWordWrap(!text.isEmpty());
  ShowAgain();
}

void Figure::SetName(const QString& name) {
  name_ = name;
  ShowAgain();
}

void Figure::ShowAgain() {
  const QString shown = text_.isEmpty() ? placeholder_ : text_;
  setText(shown);
  setAccessibleName(name_.isEmpty() ? shown : name_ + QStringLiteral(": ") + shown);
  setForegroundRole(text_.isEmpty() ? QPalette::PlaceholderText : QPalette::WindowText);
}

StatusLinks::StatusLinks(QWidget* parent) : QLabel(parent) {
  setTextFormat(Qt::RichText);
  setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse |
                          Qt::LinksAccessibleByKeyboard);
  setWordWrap(true);
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  setMinimumHeight(fontMetrics().lineSpacing());
  connect(this, &QLabel::linkActivated, this, [this](const QString& link) {
    if (on_followed) on_followed(link.toInt());
  });
}

void StatusLinks::Show(std::u16string_view text, const std::vector<StatusLink>& links) {
  QString shown;
  const auto plain = [&](size_t from, size_t to) {
    const QString part = ToQString(text.substr(from, to - from)).toHtmlEscaped();
    return QString(part).replace(QLatin1Char('\n'), QStringLiteral("<br>"));
  };
  const QString color = LinkColor(palette()).name();
  size_t at = 0;
  for (const StatusLink& link : links) {
    shown += plain(at, link.first);
    at = link.first + link.count;
    shown += QStringLiteral("<a href=\"%1\" style=\"color:%2\">%3</a>")
                 .arg(QString::number(link.number), color, plain(link.first, at));
  }
  shown += plain(at, text.size());
  setText(shown);
  setFocusPolicy(links.empty() ? Qt::NoFocus : Qt::StrongFocus);
  setAccessibleName(ToQString(text));  // without the marks of its words
}

}  // namespace kerno
