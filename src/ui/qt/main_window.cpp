#include "ui/qt/main_window.h"

#include <QActionGroup>
#include <QButtonGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "app/window_place.h"
#include "ui/qt/combos.h"
#include "ui/qt/cut_page.h"
#include "ui/qt/fields.h"
#include "ui/qt/preview_frame.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/shown_children.h"
#include "ui/qt/text_box.h"
#include "ui/qt/told_controls.h"
#include "ui/qt/wrapping_line.h"

namespace kerno {
namespace {

constexpr QSize kSmallest(320, 240);

// Of the height that the lines leave free.
constexpr int kTextShare = 2;
constexpr int kPreviewShare = 5;

Place PlaceOf(const ControlRow& row) {
  if (row.kind == ControlKind::kLabel) return Place::kWithNext;
  if (row.at_end) return Place::kAtEnd;
  return row.width == kRestOfLine ? Place::kTakesRest : Place::kUsual;
}

}  // namespace

MainWindow::MainWindow(DialogServices& services, CutServices& cut_services) {
  OfferShownChildrenOnly();
  TellMoreOfControls();
  setWindowTitle(ToQString(kWindowTitle));
  setAcceptDrops(true);
  setMinimumSize(kSmallest);
  const QSize room = screen()->availableGeometry().size();
  const ContentSize first = FirstSize(room.width(), room.height());
  resize(first.width, first.height);
  MakeControls();
  LayOut();
  DialogView& view = *this;
  presenter_ = std::make_unique<DialogPresenter>(view, services);
  preview_->SetEvents(ClassicPreviewEvents());
  due_.setSingleShot(true);
  connect(&due_, &QTimer::timeout, this, [this] { presenter_->Due(); });
  cut_presenter_ = std::make_unique<CutPresenter>(*cut_page_, cut_services);
  cut_page_->SetPresenter(cut_presenter_.get());
  presenter_->UseCut(cut_presenter_.get());
  presenter_->Open();
}

MainWindow::~MainWindow() = default;

// The Tab key goes from one to the next in the order in which they are made.
void MainWindow::MakeControls() {
  const ScopedFlag writing(shows_);
  QLabel* label = nullptr;
  for (const ControlRow& row : Controls()) {
    if (row.line == WindowLine::kAboutBox) continue;
    QWidget* control = MakeControl(row);
    control->setObjectName(ObjectName(row.id));
    // The status is read out as what it says.
    if (row.kind == ControlKind::kStatus) {
      control->setAccessibleDescription(ToQString(row.name));
    } else {
      control->setAccessibleName(ToQString(row.name));
    }
    control->setToolTip(ToQString(row.hint));
    control->setVisible(!row.hidden);
    controls_[row.id] = control;
    if (label) label->setBuddy(control);
    label = row.kind == ControlKind::kLabel ? static_cast<QLabel*>(control) : nullptr;
  }
}

QWidget* MainWindow::MakeControl(const ControlRow& row) {
  const QString caption = ToQString(row.caption);
  switch (row.kind) {
    case ControlKind::kButton:
    case ControlKind::kDefaultButton:
      return MakeButton(row);
    case ControlKind::kCheckBox: {
      auto* box = new QCheckBox(caption, this);
      connect(box, &QCheckBox::toggled, this,
              UnlessShown([this, id = row.id](bool on) { presenter_->Checked(id, on); }));
      return box;
    }
    case ControlKind::kLabel:
      return new QLabel(caption, this);
    case ControlKind::kTextBox:
      text_ = new TextBox(this);
      connect(text_, &QTextEdit::textChanged, this,
              UnlessShown([this, id = row.id] { presenter_->TextChanged(id, text_->Text()); }));
      return text_;
    case ControlKind::kFaceCombo:
      face_ = new FaceCombo(this);
      return ConnectEdit(face_, row.id);
    case ControlKind::kTextCombo: {
      auto* combo = new TextCombo(this);
      for (const char16_t* height : HeightChoices()) combo->addItem(ToQString(height));
      TakeNumbersAsTyped(combo);
      return ConnectEdit(combo, row.id);
    }
    case ControlKind::kColorCombo: {
      auto* combo = new ColorCombo(this);
      connect(combo, &QComboBox::currentIndexChanged, this,
              UnlessShown([this, id = row.id](int index) {
                if (index >= 0) presenter_->Selected(id, static_cast<size_t>(index));
              }));
      return combo;
    }
    case ControlKind::kNumberEdit:
      spin_ = new HeightSpin(this);
      spin_->on_edited = [this, id = row.id](const QString& text) {
        presenter_->TextChanged(id, FromQString(text));
      };
      return spin_->edit();
    case ControlKind::kUpDown:
      spin_->on_stepped = [this, id = row.id](int steps) { presenter_->Stepped(id, steps); };
      return spin_;
    case ControlKind::kPreview:
      return preview_ = new PreviewFrame(this);
    case ControlKind::kStatus:
      return MakeStatus();
    default:
      return nullptr;  // of the other page
  }
}

QPushButton* MainWindow::MakeButton(const ControlRow& row) {
  auto* button = new QPushButton(ToQString(row.caption), this);
  if (*row.shortcut) button->setShortcut(ToKeys(row.shortcut));
  connect(button, &QPushButton::clicked, this, [this, id = row.id] { presenter_->Pressed(id); });
  return button;
}

QComboBox* MainWindow::ConnectEdit(QComboBox* combo, ControlId id) {
  connect(combo, &QComboBox::editTextChanged, this, UnlessShown([this, id](const QString& text) {
            presenter_->TextChanged(id, FromQString(text));
          }));
  return combo;
}

QLabel* MainWindow::MakeStatus() {
  status_ = new QLabel(this);
  status_->setTextFormat(Qt::PlainText);
  status_->setWordWrap(true);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  status_->setMinimumHeight(status_->fontMetrics().lineSpacing() * 2);
  status_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  return status_;
}

void MainWindow::LayOut() {
  auto* outer = new QVBoxLayout(this);
  outer->setMenuBar(MakeTopBar());
  pages_ = new QStackedWidget(this);
  pages_->addWidget(classic_page_ = MakeClassicPage());
  pages_->addWidget(cut_page_ = new CutPage(this));
  outer->addWidget(pages_);
}

// What does not fit into a small window scrolls; status and outputs stay in sight under it.
QWidget* MainWindow::MakeClassicPage() {
  auto* page = new QWidget(this);
  auto* outer = new QVBoxLayout(page);
  outer->setContentsMargins(0, 0, 0, 0);
  auto* content = new QWidget(page);
  auto* lines = new QVBoxLayout(content);
  lines->setContentsMargins(0, 0, 0, 0);
  auto* scroller = new QScrollArea(page);
  scroller->setFrameShape(QFrame::NoFrame);
  scroller->setWidgetResizable(true);
  scroller->setFocusPolicy(Qt::NoFocus);
  scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  outer->addWidget(scroller, 1);
  std::map<WindowLine, WrappingLine*> wrapping;
  QHBoxLayout* beside_text = nullptr;
  for (const ControlRow& row : Controls()) {
    if (row.line == WindowLine::kAboutBox) continue;
    QWidget* control = controls_.at(row.id);
    if (control->parentWidget() != this) continue;  // the edit stands in its control
    if (row.line == WindowLine::kText) {
      if (!beside_text) lines->addLayout(beside_text = new QHBoxLayout, kTextShare);
      const bool is_button = row.kind == ControlKind::kButton;
      beside_text->addWidget(control, 0, is_button ? Qt::AlignTop : Qt::Alignment());
    } else if (row.line == WindowLine::kPreview) {
      lines->addWidget(control, kPreviewShare);
    } else if (row.line == WindowLine::kStatus) {
      outer->addWidget(control);
    } else {
      WrappingLine*& line = wrapping[row.line];
      const bool stays = row.line == WindowLine::kOutputs;
      if (!line) (stays ? outer : lines)->addLayout(line = new WrappingLine);
      line->Add(control, PlaceOf(row));
    }
  }
  scroller->setWidget(content);
  ScrollToFocus(scroller);
  return page;
}

QWidget* MainWindow::MakeTopBar() {
  auto* bar = new QWidget(this);
  auto* line = new QHBoxLayout(bar);
  line->setContentsMargins(0, 0, 11, 0);
  line->addWidget(MakeMenu(bar), 1);
  line->addWidget(MakeModeSwitch());
  return bar;
}

// Two buttons that are one switch: the arrow keys go from one to the other.
QWidget* MainWindow::MakeModeSwitch() {
  auto* joined = new QWidget(this);
  auto* line = new QHBoxLayout(joined);
  line->setContentsMargins(0, 2, 0, 2);
  line->setSpacing(0);
  auto* group = new QButtonGroup(this);
  for (const auto& [id, mode] : {std::pair(ControlId::kModeClassic, WindowMode::kClassic),
                                 std::pair(ControlId::kModeCut, WindowMode::kCut)}) {
    auto* button = new QToolButton(joined);
    button->setObjectName(ObjectName(id));
    button->setCheckable(true);
    button->setFocusPolicy(Qt::StrongFocus);
    group->addButton(button);
    line->addWidget(button);
    controls_[id] = button;
    connect(button, &QAbstractButton::toggled, this, UnlessShown([this, wanted = mode](bool on) {
              if (on) presenter_->ChooseMode(wanted);
            }));
  }
  return joined;
}

void MainWindow::ShowMode(WindowMode mode) {
  const ScopedFlag writing(shows_);
  const bool is_cut = mode == WindowMode::kCut;
  static_cast<QToolButton*>(controls_[is_cut ? ControlId::kModeCut : ControlId::kModeClassic])
      ->setChecked(true);
  pages_->setCurrentWidget(is_cut ? static_cast<QWidget*>(cut_page_) : classic_page_);
  EnableMenu(mode);
  TextOfPage()->setFocus();
}

TextBox* MainWindow::TextOfPage() const {
  return pages_->currentWidget() == cut_page_ ? cut_page_->text() : text_;
}

PreviewEvents MainWindow::ClassicPreviewEvents() {
  DialogPresenter* user = presenter_.get();
  return {
      .picture = [user](double density,
                        Color paper) { return user->PreviewPicture(density, paper); },
      .resized = [user](double width, double height,
                        double) { user->PreviewResized(width, height); },
      .zoomed = [user](double x, double y, double steps) { user->PreviewZoomed(x, y, steps); },
      .grabbed = [user](double x, double y) { user->PreviewGrabbed(x, y); },
      .pointed_at = [user](double x, double y) { user->PreviewPointedAt(x, y); },
      .released = [user] { user->PreviewReleased(); },
      .double_clicked = [user] { user->PreviewDoubleClicked(); },
      .key_pressed = [user](char16_t key) { return user->PreviewKeyPressed(key); },
      .file_to_drag = {},
      .copied = {},
  };
}

QMenuBar* MainWindow::MakeMenu(QWidget* parent) {
  auto* bar = menu_ = new QMenuBar(parent);
  bar->setNativeMenuBar(false);              // stands beside the switch
  for (const MenuColumn& column : Menu()) {  // NOLINT: the window owns its groups
    QMenu* menu = bar->addMenu(ToQString(column.caption));
    if (IsEditCommand(column.rows.front().command)) {
      connect(menu, &QMenu::aboutToShow, this, &MainWindow::EnableEdits);
      // Keys work whatever the menu last showed.
      connect(menu, &QMenu::aboutToHide, this, [this] { EnableMenu(presenter_->mode()); });
    }
    QActionGroup* group = nullptr;
    for (const MenuRow& row : column.rows) {
      if (row.separator_before) menu->addSeparator();
      if (row.separator_before || !group) group = new QActionGroup(this);
      QAction* action = menu->addAction(ToQString(row.caption));
      action->setShortcut(ToKeys(row.shortcut));
      action->setCheckable(row.checkable);
      if (row.checkable) group->addAction(action);
      actions_[row.command] = action;
      connect(action, &QAction::triggered, this, [this, &row] { ChooseFromMenu(row); });
    }
  }
  return bar;
}

// A key that both the menu and a button of the Cut page have is the button's while that is shown.
void MainWindow::ChooseFromMenu(const MenuRow& row) {
  if (*row.shortcut && cut_page_->TakesKey(ToKeys(row.shortcut))) return;
  presenter_->Chosen(row.command);
}

void MainWindow::SizeDropDowns() {
  for (const ControlRow& row : Controls()) {
    if (HasDropDown(row.kind)) SizeDropDown(static_cast<QComboBox*>(controls_[row.id]));
  }
}

void MainWindow::OpenFiles(const QStringList& files) {
  std::vector<std::filesystem::path> paths;
  for (const QString& file : files) paths.push_back(QStringToPath(file));
  if (!paths.empty()) presenter_->Dropped(paths);
}

// Events

void MainWindow::SaveNow() {
  presenter_->SaveNow();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(presenter_->Close());
}

void MainWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (was_shown_) return;
  was_shown_ = true;
  TextOfPage()->setFocus();
  // The window stands before the faces are listed.
  QTimer::singleShot(0, this, [this] {
    presenter_->FillFaces();
    SizeDropDowns();
  });
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  LearnFrame();
  if (was_shown_) SizeDropDowns();
}

void MainWindow::moveEvent(QMoveEvent* event) {
  QWidget::moveEvent(event);
  LearnFrame();
}

void MainWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange && presenter_) presenter_->ShowLooksAgain();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event) {
  std::vector<std::filesystem::path> files;
  for (const QUrl& url : event->mimeData()->urls()) {
    files.push_back(QStringToPath(url.isLocalFile() ? url.toLocalFile() : url.toString()));
  }
  event->acceptProposedAction();
  // The drag's source waits for the answer; a message may stand long.
  QTimer::singleShot(0, this, [this, files] { presenter_->Dropped(files); });
}

}  // namespace kerno
