#include "ui/qt/face_list.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <algorithm>
#include <cmath>

#include "app/scoped_flag.h"
#include "ui/qt/qt_text.h"

namespace kerno {
namespace {

constexpr int kRim = 4;
constexpr int kSampleHeight = 26;
constexpr int kLeastRows = 4;

int RowHeight(const QFontMetrics& metrics) {
  return metrics.height() + kSampleHeight + 2 * kRim;
}

// All samples are black on white, whatever the colours of their rows: what is black becomes ink,
// what is white shows what lies under it.
QImage Inked(const BitmapSurface& sample, const QColor& ink) {
  QImage mask =
      QImage(sample.Pixels().data(), sample.Width(), sample.Height(), QImage::Format_RGB32)
          .convertToFormat(QImage::Format_Grayscale8);
  mask.invertPixels();
  mask.reinterpretAsFormat(QImage::Format_Alpha8);
  QImage inked(mask.size(), QImage::Format_ARGB32_Premultiplied);
  inked.fill(ink);
  QPainter painter(&inked);
  painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  painter.drawImage(0, 0, mask);
  return inked;
}

QRect StarPlace(const QRect& row, int side) {
  return {row.right() - kRim - side, row.top() + kRim, side, side};
}

}  // namespace

class FaceList::Rows final : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  void Set(const std::vector<FaceListRow>& rows) {
    beginResetModel();
    rows_ = rows;
    endResetModel();
  }
  // The same rows with other marks: the list stays where it is.
  bool Update(const std::vector<FaceListRow>& rows) {
    if (!std::ranges::equal(rows, rows_, {}, &FaceListRow::name, &FaceListRow::name)) return false;
    rows_ = rows;
    if (!rows_.empty()) emit dataChanged(index(0), index(rowCount() - 1));
    return true;
  }
  const FaceListRow& At(int row) const { return rows_[static_cast<size_t>(row)]; }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
  }
  // What assistive technology reads, and typing searches.
  QVariant data(const QModelIndex& index, int role) const override {
    const FaceListRow& row = At(index.row());
    if (role == Qt::DisplayRole) return ToQString(row.name);
    if (role == Qt::AccessibleDescriptionRole) {
      return (row.favourite ? QStringLiteral("★ ") : QString()) + ToQString(row.note);
    }
    return {};
  }

 private:
  std::vector<FaceListRow> rows_;
};

class FaceList::RowPainter final : public QStyledItemDelegate {
 public:
  explicit RowPainter(FaceList* list) : QStyledItemDelegate(list), list_(list) {}

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    return {1, RowHeight(option.fontMetrics)};
  }

  void paint(QPainter* painter, const QStyleOptionViewItem& option,
             const QModelIndex& index) const override {
    const FaceListRow& row = list_->rows_->At(index.row());
    const bool is_selected = (option.state & QStyle::State_Selected) != 0;
    const QPalette& colors = option.palette;
    const QColor ink = colors.color(is_selected ? QPalette::HighlightedText : QPalette::Text);
    const QColor paper = colors.color(is_selected ? QPalette::Highlight : QPalette::Base);
    painter->save();
    painter->fillRect(option.rect, paper);
    PaintName(painter, option, row, ink);
    PaintSample(painter, option.rect, index.row(), ink);
    painter->setPen(colors.color(QPalette::Midlight));
    if (!is_selected) painter->drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    painter->restore();
  }

 private:
  static void PaintName(QPainter* painter, const QStyleOptionViewItem& option,
                        const FaceListRow& row, const QColor& ink) {
    const QFontMetrics& metrics = option.fontMetrics;
    const QRect star = StarPlace(option.rect, metrics.height());
    QRect line(option.rect.left() + kRim, option.rect.top() + kRim,
               star.left() - option.rect.left() - 2 * kRim, metrics.height());
    QColor faint = ink;
    faint.setAlphaF(0.65F);
    painter->setPen(row.favourite ? ink : faint);
    painter->drawText(star, Qt::AlignCenter,
                      row.favourite ? QStringLiteral("★") : QStringLiteral("☆"));
    const QString name = metrics.elidedText(ToQString(row.name), Qt::ElideRight, line.width());
    painter->setPen(ink);
    painter->drawText(line, Qt::AlignLeft | Qt::AlignVCenter, name);
    line.setLeft(line.left() + metrics.horizontalAdvance(name) + 2 * kRim);
    if (line.width() <= 0) return;
    painter->setPen(faint);
    painter->drawText(line, Qt::AlignRight | Qt::AlignVCenter,
                      metrics.elidedText(ToQString(row.note), Qt::ElideRight, line.width()));
  }

  void PaintSample(QPainter* painter, const QRect& row_place, int row, const QColor& ink) const {
    if (!list_->sample) return;
    const QRect place(row_place.left() + kRim, row_place.bottom() - kRim - kSampleHeight + 1,
                      row_place.width() - 2 * kRim, kSampleHeight);
    const double ratio = list_->devicePixelRatioF();
    const auto pixels = [ratio](int length) {
      return static_cast<int>(std::lround(length * ratio));
    };
    const BitmapSurface* picture =
        list_->sample(static_cast<size_t>(row), pixels(place.width()), pixels(place.height()));
    if (!picture) return;
    QImage image = Inked(*picture, ink);
    image.setDevicePixelRatio(ratio);
    painter->drawImage(OnPixel(*painter, place.topLeft()), image);
  }

  FaceList* list_;
};

FaceList::FaceList(QWidget* parent) : QListView(parent), rows_(new Rows(this)) {
  setModel(rows_);
  setItemDelegate(new RowPainter(this));
  setUniformItemSizes(true);
  setEditTriggers(QAbstractItemView::NoEditTriggers);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

FaceList::~FaceList() = default;

QSize FaceList::minimumSizeHint() const {
  return {160, kLeastRows * RowHeight(fontMetrics()) + 2 * frameWidth()};
}

void FaceList::ShowRows(const std::vector<FaceListRow>& rows, std::optional<size_t> selected) {
  const ScopedFlag writing(shows_);
  if (!rows_->Update(rows)) rows_->Set(rows);
  const QModelIndex index = selected ? rows_->index(static_cast<int>(*selected)) : QModelIndex();
  if (index == currentIndex()) return;
  setCurrentIndex(index);
  if (index.isValid()) scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void FaceList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
  QListView::currentChanged(current, previous);
  if (!shows_ && current.isValid() && on_selected) on_selected(static_cast<size_t>(current.row()));
}

void FaceList::keyPressEvent(QKeyEvent* event) {
  const bool marks = event->key() == Qt::Key_F && event->modifiers() == Qt::NoModifier;
  if (!marks || !currentIndex().isValid()) return QListView::keyPressEvent(event);
  on_favourite(static_cast<size_t>(currentIndex().row()));
}

void FaceList::mousePressEvent(QMouseEvent* event) {
  const QModelIndex index = indexAt(event->pos());
  const QRect star = StarPlace(visualRect(index), fontMetrics().height());
  const bool on_star =
      index.isValid() && star.adjusted(-kRim, -kRim, kRim, kRim).contains(event->pos());
  if (!on_star || event->button() != Qt::LeftButton) return QListView::mousePressEvent(event);
  on_favourite(static_cast<size_t>(index.row()));
}

}  // namespace kerno
