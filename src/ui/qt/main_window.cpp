#include "ui/qt/main_window.h"

#include <QActionGroup>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QGridLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QUrl>
#include <QVBoxLayout>
#include <set>

#include "app/scoped_flag.h"
#include "ui/qt/combos.h"
#include "ui/qt/preview_frame.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/text_box.h"

namespace kerno {
namespace {

constexpr QSize kFirstSize(860, 680);

// Of the height that the lines leave free.
int ShareOfHeight(WindowLine line) {
  return line == WindowLine::kPreview ? 5 : line == WindowLine::kText ? 2 : 0;
}

}  // namespace

MainWindow::MainWindow(DialogServices& services) {
  setWindowTitle(ToQString(kWindowTitle));
  setAcceptDrops(true);
  resize(kFirstSize);
  MakeControls();
  LayOut();
  DialogView& view = *this;
  presenter_ = std::make_unique<DialogPresenter>(view, services);
  preview_->SetPresenter(presenter_.get());
  due_.setSingleShot(true);
  connect(&due_, &QTimer::timeout, this, [this] { presenter_->Due(); });
  presenter_->Open();
  text_->setFocus();
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
    control->setAccessibleName(ToQString(row.name));
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
  }
  return nullptr;
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
  outer->setMenuBar(MakeMenu());
  std::map<WindowLine, QHBoxLayout*> lines;
  std::set<QHBoxLayout*> filled;
  for (const ControlRow& row : Controls()) {
    QWidget* control = controls_[row.id];
    if (!control || control->parentWidget() != this) continue;  // the edit stands in its control
    QHBoxLayout*& line = lines[row.line];
    if (!line) outer->addLayout(line = new QHBoxLayout, ShareOfHeight(row.line));
    if (row.at_end) line->addStretch(1);
    const bool takes_rest = row.width == kRestOfLine;
    const bool is_button = row.kind == ControlKind::kButton;
    line->addWidget(control, takes_rest ? 1 : 0, is_button ? Qt::AlignTop : Qt::Alignment());
    if (takes_rest || row.at_end) filled.insert(line);
  }
  for (const auto& [name, line] : lines) {
    if (!filled.contains(line)) line->addStretch(1);
  }
}

QMenuBar* MainWindow::MakeMenu() {
  auto* bar = new QMenuBar(this);
  for (const MenuColumn& column : Menu()) {  // NOLINT: the window owns its groups
    QMenu* menu = bar->addMenu(ToQString(column.caption));
    QActionGroup* group = nullptr;
    for (const MenuRow& row : column.rows) {
      if (row.separator_before) menu->addSeparator();
      if (row.separator_before || !group) group = new QActionGroup(this);
      QAction* action = menu->addAction(ToQString(row.caption));
      action->setShortcut(ToKeys(row.shortcut));
      action->setCheckable(row.checkable);
      if (row.checkable) group->addAction(action);
      actions_[row.command] = action;
      connect(action, &QAction::triggered, this,
              [this, command = row.command] { presenter_->Chosen(command); });
    }
  }
  return bar;
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

void MainWindow::closeEvent(QCloseEvent* event) {
  event->setAccepted(presenter_->Close());
}

void MainWindow::showEvent(QShowEvent* event) {
  QWidget::showEvent(event);
  if (was_shown_) return;
  was_shown_ = true;
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
