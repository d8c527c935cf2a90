#include "ui/qt/cut_page.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <iterator>
#include <span>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "ui/qt/axis_sliders.h"
#include "ui/qt/combos.h"
#include "ui/qt/face_list.h"
#include "ui/qt/fields.h"
#include "ui/qt/preview_frame.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/text_box.h"
#include "ui/qt/wrapping_line.h"

namespace kerno {
namespace {

constexpr int kPanelWidth = 350;
constexpr int kNarrow = 680;  // of a window: panel and preview stand one above the other
constexpr int kGridColumns = 4;
constexpr int kLeastField = 72;
constexpr int kTextLines = 3;
constexpr int kTextRim = 12;

// The caption stands before a control that shows a value, and on all others.
bool HasCaptionBefore(const CutControlRow& row) {
  switch (row.kind) {
    case ControlKind::kField:
    case ControlKind::kChoice:
    case ControlKind::kColorCombo:
    case ControlKind::kFigure:
      return *row.caption != u'\0';
    default:
      return false;
  }
}

bool TakesWholeLine(const CutControlRow& row) {
  return row.width == kRestOfLine && !HasCaptionBefore(row);
}

// Two that have the same key would lose it both: the menu's entry presses the button then.
bool IsKeyOfMenu(std::u16string_view key) {
  for (const MenuColumn& column : Menu()) {
    const auto has_key = [key](const MenuRow& row) {
      return key == row.shortcut && !IsOfClassicAlone(row.command);
    };
    if (std::ranges::any_of(column.rows, has_key)) return true;
  }
  return false;
}

// A line of three controls or more that have no captions: they stand close together.
bool IsSmallLine(std::span<const CutControlRow> line) {
  return line.size() > 2 && std::ranges::none_of(line, HasCaptionBefore);
}

// The controls of a line of the table that begins there.
std::span<const CutControlRow> LineFrom(const CutControlRow& first) {
  const auto rows = CutControls();
  const auto from = rows.begin() + (&first - rows.data());
  return {from, std::ranges::find(from + 1, rows.end(), false, &CutControlRow::same_line)};
}

int WidthOf(const QWidget& widget, std::u16string_view text) {
  return widget.fontMetrics().horizontalAdvance(ToQString(text));
}

}  // namespace

CutPage::CutPage(QWidget* parent) : QWidget(parent) {
  MakeControls();
  LayOut();
  ShowCaptions();
  due_.setSingleShot(true);
  connect(&due_, &QTimer::timeout, this, [this] { presenter_->Due(); });
}

CutPage::~CutPage() = default;

void CutPage::SetPresenter(CutPresenter* presenter) {
  presenter_ = presenter;
  preview_->SetEvents(CutPreviewEvents());
}

// Controls

void CutPage::MakeControls() {
  const ScopedFlag writing(shows_);
  for (const CutControlRow& row : CutControls()) {
    if (HasCaptionBefore(row)) captions_[row.id] = new QLabel(this);
    QWidget* control = MakeControl(row);
    control->setObjectName(ObjectName(row.id));
    controls_[row.id] = control;
    if (const auto caption = captions_.find(row.id); caption != captions_.end()) {
      caption->second->setBuddy(control);
    }
  }
}

QWidget* CutPage::MakeControl(const CutControlRow& row) {
  switch (row.kind) {
    case ControlKind::kTextBox:
      text_ = new TextBox(this);
      text_->setMinimumHeight(kTextLines * text_->fontMetrics().lineSpacing() + kTextRim);
      connect(text_, &QTextEdit::textChanged, this,
              UnlessShown([this, id = row.id] { presenter_->TextChanged(id, text_->Text()); }));
      return text_;
    case ControlKind::kCheckBox: {
      auto* box = new QCheckBox(this);
      connect(box, &QCheckBox::toggled, this,
              UnlessShown([this, id = row.id](bool on) { presenter_->Checked(id, on); }));
      return box;
    }
    case ControlKind::kField:
    case ControlKind::kSearch:
      return MakeField(row);
    case ControlKind::kChoice:
    case ControlKind::kColorCombo:
      return MakeChoice(row);
    case ControlKind::kFaceList:
      return MakeFaceList(row);
    case ControlKind::kAxes:
      axes_ = new AxisSliders(this);
      axes_->on_moved = [this](size_t axis, double place) { presenter_->AxisMoved(axis, place); };
      return axes_;
    case ControlKind::kPreview:
      return preview_ = new PreviewFrame(this);
    case ControlKind::kFigure:
      return new Figure(this);
    case ControlKind::kLinks:
      status_ = new StatusLinks(this);
      status_->on_followed = [this](int number) { presenter_->LinkFollowed(number); };
      return status_;
    default:
      return MakeButton(row);
  }
}

QAbstractButton* CutPage::MakeButton(const CutControlRow& row) {
  QAbstractButton* button = nullptr;
  if (row.section == CutSection::kZoomBar || row.id == ControlId::kSaveMenu) {
    button = new QToolButton(this);
    button->setFocusPolicy(Qt::TabFocus);
  } else {
    auto* wide = new QPushButton(this);
    wide->setDefault(row.kind == ControlKind::kDefaultButton);
    button = wide;
  }
  if (row.kind == ControlKind::kToggle) {
    button->setCheckable(true);
    connect(button, &QAbstractButton::toggled, this, UnlessShown([this, id = row.id](bool on) {
              if (id == ControlId::kMeasure) {
                preview_->SetPointer(on ? Qt::CrossCursor : Qt::OpenHandCursor);
              }
              presenter_->Checked(id, on);
            }));
  } else if (row.kind == ControlKind::kMenuButton) {
    auto* menu = new QMenu(button);
    connect(menu, &QMenu::triggered, this, [this, id = row.id](const QAction* action) {
      presenter_->Picked(id, action->data().toUInt());
    });
    if (auto* tool = qobject_cast<QToolButton*>(button)) {
      tool->setMenu(menu);
      tool->setPopupMode(QToolButton::InstantPopup);
    } else {
      static_cast<QPushButton*>(button)->setMenu(menu);
    }
  } else {
    connect(button, &QAbstractButton::clicked, this,
            [this, id = row.id] { presenter_->Pressed(id); });
  }
  return button;
}

QWidget* CutPage::MakeField(const CutControlRow& row) {
  auto* field = new Field(this);
  field->SetWantedWidth(row.width == kRestOfLine ? kPanelWidth / 3 : row.width);
  if (row.kind == ControlKind::kSearch) {
    field->setClearButtonEnabled(true);
    field->installEventFilter(this);
  } else if (row.id != ControlId::kLayerName && row.id != ControlId::kSeriesNames) {
    TakeNumbersAsTyped(field);
  }
  connect(field, &QLineEdit::textChanged, this,
          UnlessShown([this, id = row.id](const QString& text) {
            presenter_->TextChanged(id, FromQString(text));
          }));
  return field;
}

QWidget* CutPage::MakeChoice(const CutControlRow& row) {
  QComboBox* combo = nullptr;
  if (row.kind == ControlKind::kColorCombo) {
    combo = new ColorCombo(this);
    combo->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    combo->setMinimumContentsLength(6);
  } else {
    const bool any_length = row.width == kRestOfLine;
    combo = new Choice(any_length ? Choice::Width::kPlace : Choice::Width::kLongest, this);
  }
  LeaveWheelAlone(combo);
  connect(combo, &QComboBox::currentIndexChanged, this, UnlessShown([this, id = row.id](int index) {
            if (index >= 0) presenter_->Selected(id, static_cast<size_t>(index));
          }));
  return combo;
}

QWidget* CutPage::MakeFaceList(const CutControlRow& row) {
  faces_ = new FaceList(this);
  faces_->on_selected = [this, id = row.id](size_t face) { presenter_->Selected(id, face); };
  faces_->on_favourite = [this](size_t face) { presenter_->FavouriteToggled(face); };
  faces_->sample = [this](size_t face, int width, int height) {
    constexpr Color kBlack = RgbColor(0, 0, 0), kWhite = RgbColor(255, 255, 255);
    return presenter_->FaceSample(face, width, height, kBlack, kWhite);
  };
  return faces_;
}

PreviewEvents CutPage::CutPreviewEvents() {
  CutPresenter* user = presenter_;
  return {
      .picture = [user](double, Color paper) { return user->PreviewPicture(paper); },
      .resized = [user](double width, double height,
                        double density) { user->PreviewResized(width, height, density); },
      .zoomed = [user](double x, double y, double steps) { user->PreviewZoomed(x, y, steps); },
      .grabbed = [user](double x, double y) { user->PreviewGrabbed(x, y); },
      .pointed_at = [user](double x, double y) { user->PreviewPointedAt(x, y); },
      .released = [user] { user->PreviewReleased(); },
      .double_clicked = [user] { user->PreviewDoubleClicked(); },
      .key_pressed = [user](char16_t key) { return user->PreviewKeyPressed(key); },
      .file_to_drag = [user] { return user->FileToDrag(); },
      .copied = [user] { user->Pressed(ControlId::kCopySvg); },
  };
}

bool CutPage::TakesKey(const QKeySequence& key) const {
  for (const CutControlRow& row : CutControls()) {
    auto* button = qobject_cast<QAbstractButton*>(controls_.at(row.id));
    if (!button || !button->isVisible() || !*row.shortcut || ToKeys(row.shortcut) != key) continue;
    auto* tool = qobject_cast<QToolButton*>(button);
    if (tool && tool->menu()) {
      tool->showMenu();
    } else {
      button->click();
    }
    return true;
  }
  return false;
}

// Captions

void CutPage::ShowCaptions() {
  for (const CutControlRow& row : CutControls()) ShowCaption(row);
  for (auto& [id, section] : sections_) section.title->setText(Said(TitleOf(id)));
  cancel_->setText(Said(u"Cancel"));
}

// After each change of the button's text, which takes its key away.
void CutPage::SetKey(QAbstractButton* button, const CutControlRow& row) {
  if (*row.shortcut && !IsKeyOfMenu(row.shortcut)) button->setShortcut(ToKeys(row.shortcut));
}

void CutPage::ShowCaption(const CutControlRow& row) {
  QWidget* control = controls_.at(row.id);
  const QString caption = Said(row.caption);
  const QString hint = Said(row.hint);
  const QString name = ToQString(WithoutMnemonic(FromQString(Said(NameOf(row)))));
  const auto before = captions_.find(row.id);
  if (before != captions_.end()) {
    before->second->setText(caption);
    before->second->setToolTip(hint);
  }
  if (auto* button = qobject_cast<QAbstractButton*>(control)) {
    // The presenter names the main button's format.
    if (row.kind != ControlKind::kDefaultButton || button->text().isEmpty()) {
      button->setText(caption);
    }
    SetKey(button, row);
  }
  QString told = hint;
  if (*row.shortcut) {
    told += QStringLiteral(" (%1)").arg(ToKeys(row.shortcut).toString(QKeySequence::NativeText));
  }
  control->setToolTip(told);
  const bool is_sign = !name.isEmpty() && !name.front().isLetterOrNumber();
  const bool is_hint = name.isEmpty() || is_sign;
  if (row.kind == ControlKind::kFigure) {
    static_cast<Figure*>(control)->SetName(name);
  } else {
    control->setAccessibleName(is_hint ? hint : name);
  }
  if (!is_hint || row.kind == ControlKind::kFigure) control->setAccessibleDescription(hint);
  if (row.kind == ControlKind::kSearch) static_cast<Field*>(control)->setPlaceholderText(hint);
  if (row.kind == ControlKind::kTextBox) text_->setPlaceholderText(hint);
  if (row.kind == ControlKind::kSearch || row.kind == ControlKind::kTextBox)
    InkHint(control, *this);
  if (row.kind == ControlKind::kFigure && TakesWholeLine(row)) {
    static_cast<Figure*>(control)->SetPlaceholder(hint);
  }
}

// Layout

void CutPage::LayOut() {
  auto* page = new QVBoxLayout(this);
  page->setContentsMargins(0, 0, 0, 0);
  split_ = new QSplitter(this);
  split_->setChildrenCollapsible(false);
  split_->addWidget(MakePanel());
  split_->addWidget(MakePreviewSide());
  split_->setStretchFactor(0, 0);
  split_->setStretchFactor(1, 1);
  split_->setSizes({kPanelWidth, 2 * kPanelWidth});
  page->addWidget(split_, 1);
  AddProgress(page);
  AddOutputs(page);
  // Assistive technology meets them in the order of their making or raising.
  split_->raise();
  progress_->raise();
  for (const CutControlRow& row : CutControls()) {
    QWidget* control = controls_[row.id];
    QWidget* stands_in = control->parentWidget() == this ? control : control->parentWidget();
    if (row.section == CutSection::kOutput) stands_in->raise();
  }
  OrderTabs();
}

// From top to bottom, the preview after the panel. Sliders come and go.
void CutPage::OrderTabs() {
  std::vector<QWidget*> stops;
  for (const CutControlRow& row : CutControls()) {
    if (row.kind == ControlKind::kAxes) {
      std::ranges::copy(axes_->Stops(), std::back_inserter(stops));
    } else {
      if (row.kind == ControlKind::kLinks) stops.push_back(cancel_);
      stops.push_back(controls_[row.id]);
    }
  }
  for (size_t i = 1; i < stops.size(); ++i) setTabOrder(stops[i - 1], stops[i]);
}

QWidget* CutPage::MakePanel() {
  panel_ = new QWidget(this);  // the order of the Tab key is the window's
  grid_ = new QGridLayout(panel_);
  grid_->setContentsMargins(0, 0, 6, 0);
  grid_->setColumnStretch(1, 1);
  grid_->setColumnStretch(3, 1);
  grid_->setColumnMinimumWidth(3, kLeastField);
  for (const CutControlRow& row : CutControls()) {
    if (row.section >= CutSection::kPreview) continue;
    Section& section = sections_[row.section];
    if (!section.title) {
      section.title = new QLabel(panel_);
      QFont bold = section.title->font();
      bold.setBold(true);
      section.title->setFont(bold);
      section.title->setContentsMargins(0, sections_.size() == 1 ? 0 : 8, 0, 0);
      grid_->addWidget(section.title, grid_->rowCount(), 0, 1, kGridColumns);
    }
    section.controls.push_back(row.id);
    AddToPanel(row);
  }
  grid_->setRowStretch(grid_->rowCount(), 0);
  scroller_ = new QScrollArea(this);
  scroller_->setFrameShape(QFrame::NoFrame);
  scroller_->setWidgetResizable(true);
  scroller_->setFocusPolicy(Qt::NoFocus);
  scroller_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroller_->setWidget(panel_);
  ScrollToFocus(scroller_);
  panel_->installEventFilter(this);
  return scroller_;
}

// Two captions with their controls stand side by side, all under one another; a third control has
// the next line.
void CutPage::AddToPanel(const CutControlRow& row) {
  const bool joins = row.same_line && lines_.back().small;
  const bool is_beside = row.same_line && !joins && lines_.back().controls.size() < 2;
  if (!joins && !is_beside) AddLine();
  PanelLine& panel_line = lines_.back();
  panel_line.controls.push_back(row.id);
  const int line = grid_->rowCount() - 2;
  QWidget* control = controls_[row.id];
  const auto caption = captions_.find(row.id);
  if (!row.same_line && IsSmallLine(LineFrom(row))) {
    panel_line.small = new QHBoxLayout;
    panel_line.small->addStretch(1);
    grid_->addLayout(panel_line.small, line, 0, 1, kGridColumns);
  }
  if (panel_line.small) {
    panel_line.small->insertWidget(panel_line.small->count() - 1, control);
    control->setMaximumWidth(row.width == 0 ? QWIDGETSIZE_MAX : 2 * row.width);
    return panel_line.fault->raise();
  }
  if (row.kind == ControlKind::kFigure && caption != captions_.end()) {
    auto* together = new QHBoxLayout;
    together->addWidget(caption->second);
    together->addWidget(control, 1);
    return grid_->addLayout(together, line, 0, 1, kGridColumns);
  }
  int from = is_beside ? 2 : 0;
  const bool is_last = LineFrom(row).size() == 1;
  const bool is_wide = row.width == kRestOfLine || row.kind == ControlKind::kChoice;
  const int until = is_beside || (is_last && is_wide) ? kGridColumns : kGridColumns / 2;
  if (caption != captions_.end()) grid_->addWidget(caption->second, line, from++);
  grid_->addWidget(control, line, from, 1, until - from);
  // The list of faces takes the height that is free.
  if (row.kind == ControlKind::kFaceList) grid_->setRowStretch(line, 1);
  panel_line.fault->raise();  // read out after the controls
}

// A line of the panel, and one for what is wrong in it.
void CutPage::AddLine() {
  auto* fault = new QLabel(this);
  fault->setTextFormat(Qt::PlainText);
  fault->setWordWrap(true);
  fault->hide();
  grid_->addWidget(fault, grid_->rowCount() + 1, 0, 1, kGridColumns);
  lines_.push_back({.controls = {}, .fault = fault});
}

QWidget* CutPage::MakePreviewSide() {
  preview_side_ = new QWidget(this);
  auto* column = new QVBoxLayout(preview_side_);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(preview_, 1);
  auto* bar = new WrappingLine;
  bar->setSpacing(4);
  for (const CutControlRow& row : CutControls()) {
    if (row.section != CutSection::kZoomBar) continue;
    const bool takes_rest = row.width == kRestOfLine;
    QWidget* control = controls_[row.id];
    if (row.kind == ControlKind::kFigure) {
      static_cast<QLabel*>(control)->setAlignment(takes_rest ? Qt::AlignRight | Qt::AlignVCenter
                                                             : Qt::AlignCenter);
      control->setMinimumWidth(row.width);
      if (takes_rest) control->setMinimumWidth(WidthOf(*control, u"-1000.000, -1000.000 mm"));
    }
    bar->Add(control, takes_rest ? Place::kTakesRest : Place::kUsual);
  }
  column->addLayout(bar);
  return preview_side_;
}

void CutPage::AddOutputs(QVBoxLayout* page) {
  page->addWidget(status_);
  auto* buttons = new WrappingLine;
  // The main button and its menu are joined.
  auto* saving = new QWidget(this);
  auto* joined = new QHBoxLayout(saving);
  joined->setContentsMargins(0, 0, 0, 0);
  joined->setSpacing(0);
  for (const CutControlRow& row : CutControls()) {
    if (row.section != CutSection::kOutput || row.kind == ControlKind::kLinks) continue;
    QWidget* control = controls_[row.id];
    if (row.id == ControlId::kSave || row.id == ControlId::kSaveMenu) {
      joined->addWidget(control);
      control->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
      control->setMinimumHeight(control->sizeHint().height());
    } else {
      buttons->Add(control);
    }
  }
  auto* save = controls_[ControlId::kSave];
  save->setMinimumWidth(FindCutControl(ControlId::kSave)->width);
  auto* menu = static_cast<QToolButton*>(controls_[ControlId::kSaveMenu]);
  menu->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
  menu->setMinimumHeight(save->sizeHint().height());
  buttons->Add(saving, Place::kAtEnd);
  page->addLayout(buttons);
}

void CutPage::AddProgress(QVBoxLayout* page) {
  progress_ = new QWidget(this);
  auto* line = new QHBoxLayout(progress_);
  line->setContentsMargins(0, 0, 0, 0);
  line->addWidget(progress_text_ = new QLabel(progress_), 1);
  line->addWidget(progress_bar_ = new QProgressBar(progress_), 2);
  line->addWidget(cancel_ = new QPushButton(progress_));
  connect(cancel_, &QAbstractButton::clicked, this, [this] { presenter_->Cancelled(); });
  progress_->hide();
  page->addWidget(progress_);
}

// In a narrow page the preview stands over the panel.
void CutPage::ArrangeForWidth() {
  const bool narrow = width() < kNarrow;
  if (narrow == is_narrow_) return;
  is_narrow_ = narrow;
  split_->setOrientation(narrow ? Qt::Vertical : Qt::Horizontal);
  split_->insertWidget(0, narrow ? preview_side_ : scroller_);
  split_->setStretchFactor(split_->indexOf(scroller_), narrow ? 1 : 0);
  split_->setStretchFactor(split_->indexOf(preview_side_), 1);
  split_->setSizes(narrow ? QList<int>{height(), height()}
                          : QList<int>{kPanelWidth, width() - kPanelWidth});
}

// A section without controls has no title.
void CutPage::ShowTitles() {
  for (auto& [id, section] : sections_) {
    section.title->setHidden(std::ranges::all_of(
        section.controls, [this](ControlId control) { return controls_[control]->isHidden(); }));
  }
}

// Events

void CutPage::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  ArrangeForWidth();
}

bool CutPage::eventFilter(QObject* object, QEvent* event) {
  if (object == panel_ && event->type() == QEvent::LayoutRequest) {
    // Nothing of the panel lies under its scroll bar.
    scroller_->setMinimumWidth(panel_->minimumSizeHint().width() +
                               scroller_->verticalScrollBar()->sizeHint().width());
  }
  if (event->type() == QEvent::KeyPress && object == controls_[ControlId::kFaceSearch]) {
    // From the words that are searched straight into what was found.
    switch (static_cast<QKeyEvent*>(event)->key()) {
      case Qt::Key_Up:
      case Qt::Key_Down:
      case Qt::Key_PageUp:
      case Qt::Key_PageDown:
        QCoreApplication::sendEvent(faces_, event);
        return true;
      default:
        return false;
    }
  }
  return QWidget::eventFilter(object, event);
}

}  // namespace kerno
