#include "ui/qt/face_suggestions.h"

#include <QApplication>
#include <QFontDatabase>
#include <QHash>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTimer>
#include <algorithm>

namespace kerno {
namespace {

constexpr int kFaceRowPadding = 6;
constexpr int kMostRows = 12;

// Loading a font may take long, so a face that was not painted before is first painted in the
// window's font and loaded between two events.
class FaceDelegate final : public QStyledItemDelegate {
 public:
  explicit FaceDelegate(QAbstractItemView* list) : QStyledItemDelegate(list), list_(list) {
    timer_.setSingleShot(true);
    timer_.setInterval(0);
    connect(&timer_, &QTimer::timeout, this, [this] { LoadOne(); });
  }

  void Forget() { loaded_.clear(); }

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    QStyledItemDelegate::paint(painter, option, index);
    const QString face = index.data().toString();
    if (loaded_.value(face) == Letters::kSymbols) PaintSample(painter, option, face);
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return {1, option.fontMetrics.height() + kFaceRowPadding};
  }

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
    QStyledItemDelegate::initStyleOption(option, index);
    const QString face = option->text;
    const auto letters = loaded_.constFind(face);
    if (letters != loaded_.constEnd()) {
      if (*letters == Letters::kSymbols) return;
      option->font.setFamilies({face});
      option->fontMetrics = QFontMetrics(option->font);
    } else if (!waiting_.contains(face)) {
      waiting_.append(face);
      timer_.start();
    }
  }

 private:
  // What the face shows for letters.
  enum class Letters { kUnknown, kLetters, kSymbols };

  // Faces of mathematics say that they have letters, and hang signs from the line instead.
  Letters LettersOf(const QFont& font) const {
    const QString face = font.families().front();
    const auto writes = [](QFontDatabase::WritingSystem system) {
      return system != QFontDatabase::Any && system != QFontDatabase::Symbol;
    };
    const QList<QFontDatabase::WritingSystem> systems = QFontDatabase::writingSystems(face);
    const bool says_so = systems.isEmpty() || std::ranges::any_of(systems, writes);
    const QRect ink = QFontMetrics(font).tightBoundingRect(face);
    const int most = 2 * list_->fontMetrics().height();
    const bool stands = !ink.isEmpty() && ink.top() < 0 && ink.height() < most;
    return says_so && stands ? Letters::kLetters : Letters::kSymbols;
  }

  // A name in symbols cannot be read: it stands in the window's font, and in symbols after that.
  static void PaintSample(QPainter* painter, const QStyleOptionViewItem& option,
                          const QString& face) {
    const int gap = 2 * option.fontMetrics.averageCharWidth();
    const int name = option.fontMetrics.horizontalAdvance(face) + 2 * gap;
    const QRect place = option.rect.adjusted(name, 0, -gap, 0);
    if (place.width() <= 0) return;
    const bool is_selected = (option.state & QStyle::State_Selected) != 0;
    QFont font = option.font;
    font.setFamilies({face});
    painter->save();
    painter->setFont(font);
    painter->setPen(option.palette.color(is_selected ? QPalette::HighlightedText : QPalette::Text));
    painter->drawText(place, Qt::AlignRight | Qt::AlignVCenter,
                      QFontMetrics(font).elidedText(face, Qt::ElideRight, place.width()));
    painter->restore();
  }

  void LoadOne() {
    if (waiting_.isEmpty()) return;
    const QString face = waiting_.takeFirst();
    QFont font = list_->font();
    font.setFamilies({face});
    loaded_.insert(face, LettersOf(font));
    list_->viewport()->update();
    if (!waiting_.isEmpty()) timer_.start();
  }

  QAbstractItemView* list_;
  mutable QTimer timer_;
  mutable QStringList waiting_;
  QHash<QString, Letters> loaded_;
};

}  // namespace

// All rows are laid out at once, which rows of one height make quick: a list laid out piece by
// piece cannot open at a row far below.
QListView* MakeFaceList(QWidget* parent) {
  auto* list = new QListView(parent);
  list->setUniformItemSizes(true);
  list->setTextElideMode(Qt::ElideRight);
  list->setEditTriggers(QAbstractItemView::NoEditTriggers);
  list->setItemDelegate(new FaceDelegate(list));
  return list;
}

void ForgetFaces(QAbstractItemView* list) {
  static_cast<FaceDelegate*>(list->itemDelegate())->Forget();
}

FaceSuggestions::FaceSuggestions(QLineEdit* edit, QWidget* under)
    : QObject(edit), edit_(edit), under_(under), list_(MakeFaceList(nullptr)) {
  names_ = new QStringListModel(list_);
  list_->setModel(names_);
  // No popup: that would take the next click for itself.
  list_->setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint);
  list_->setAttribute(Qt::WA_ShowWithoutActivating);
  list_->setFocusPolicy(Qt::NoFocus);
  list_->setFocusProxy(edit);
  list_->setMouseTracking(true);
  connect(edit, &QLineEdit::textEdited, this, [this](const QString& typed) { Offer(typed); });
  connect(list_, &QListView::clicked, this, [this](const QModelIndex& index) {
    GoTo(index.row());
    Hide();
  });
}

FaceSuggestions::~FaceSuggestions() {
  delete list_;
}

void FaceSuggestions::SetFaces(const QStringList& faces) {
  faces_ = faces;
  ForgetFaces(list_);
  Hide();
}

void FaceSuggestions::Offer(const QString& typed) {
  const QStringList found = faces_.filter(typed, Qt::CaseInsensitive);
  const bool is_chosen =
      found.size() == 1 && found.front().compare(typed, Qt::CaseInsensitive) == 0;
  if (typed.isEmpty() || found.isEmpty() || is_chosen) return Hide();
  names_->setStringList(found);
  list_->setCurrentIndex({});
  list_->scrollToTop();
  PlaceList();
  if (list_->isVisible()) return;
  list_->setPalette(edit_->palette());
  list_->winId();
  list_->show();
  QApplication::instance()->installEventFilter(this);
}

void FaceSuggestions::Hide() {
  if (!list_->isVisible()) return;
  QApplication::instance()->removeEventFilter(this);
  list_->hide();
}

void FaceSuggestions::PlaceList() {
  const int row = list_->sizeHintForRow(0);
  const int wanted = std::min<int>(kMostRows, names_->rowCount()) * row + 2 * list_->frameWidth();
  const QRect place(under_->mapToGlobal(QPoint(0, 0)), under_->size());
  const QRect screen = under_->screen()->availableGeometry();
  const int below = screen.bottom() - place.bottom();
  const int above = place.top() - screen.top();
  const bool goes_up = wanted > below && above > below;
  const int height = std::min(wanted, goes_up ? above : below);
  const int top = goes_up ? place.top() - height : place.bottom() + 1;
  list_->setGeometry(place.left(), top, place.width(), height);
}

bool FaceSuggestions::eventFilter(QObject* object, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
      return HasKeyboard(object) && TakesKey(static_cast<QKeyEvent*>(event)->key());
    case QEvent::ShortcutOverride: {
      // Escape closes the list alone.
      const bool is_escape = static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
      if (HasKeyboard(object) && is_escape) event->accept();
      return false;
    }
    case QEvent::MouseButtonPress:
    case QEvent::Wheel: {
      auto* widget = qobject_cast<QWidget*>(object);
      if (widget && widget != list_ && !list_->isAncestorOf(widget)) Hide();
      return false;
    }
    case QEvent::FocusOut:
    case QEvent::Hide:
      if (HasKeyboard(object)) Hide();
      return false;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::WindowDeactivate:
      if (object == edit_->window()) Hide();
      return false;
    default:
      return false;
  }
}

bool FaceSuggestions::TakesKey(int key) {
  const int row = list_->currentIndex().row();  // -1: none yet
  const int page = std::max(1, list_->height() / std::max(1, list_->sizeHintForRow(0)) - 1);
  switch (key) {
    case Qt::Key_Down:
      return GoTo(row + 1), true;
    case Qt::Key_Up:
      return GoTo(row - 1), true;
    case Qt::Key_PageDown:
      return GoTo(row + page), true;
    case Qt::Key_PageUp:
      return GoTo(row - page), true;
    case Qt::Key_Escape:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return Hide(), true;
    default:
      return false;
  }
}

void FaceSuggestions::GoTo(int row) {
  const QModelIndex index = names_->index(std::clamp(row, 0, names_->rowCount() - 1));
  list_->setCurrentIndex(index);
  list_->scrollTo(index);
  if (on_chosen) on_chosen(index.data().toString());
}

}  // namespace kerno
