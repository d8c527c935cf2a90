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

#include "ui/qt/combos.h"
#include "ui/qt/preview_frame.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/text_box.h"

namespace kerno {
namespace {

constexpr QSize kFirstSize(860, 680);

}  // namespace

MainWindow::MainWindow(DialogServices& services) {
  setWindowTitle(QStringLiteral("Kerno"));
  setAcceptDrops(true);
  resize(kFirstSize);
  MakeControls();
  LayOut();
  SetTabOrder();
  DialogView& view = *this;
  presenter_ = std::make_unique<DialogPresenter>(view, services);
  preview_->SetPresenter(presenter_.get());
  ConnectControls();
  due_.setSingleShot(true);
  connect(&due_, &QTimer::timeout, this, [this] { presenter_->Due(); });
  presenter_->Open();
  text_->setFocus();
}

MainWindow::~MainWindow() = default;

template <class Control>
Control* MainWindow::Add(Control* control, ControlId id) {
  const ControlRow& row = kerno::Control(id);
  control->setObjectName(ObjectName(id));
  control->setAccessibleName(ToQString(row.name));
  control->setToolTip(ToQString(row.hint));
  control->setVisible(!row.hidden);
  controls_[id] = control;
  return control;
}

QPushButton* MainWindow::AddButton(ControlId id) {
  const ControlRow& row = kerno::Control(id);
  auto* button = Add(new QPushButton(ToQString(row.caption), this), id);
  button->setAutoDefault(false);
  if (*row.shortcut) {
    button->setShortcut(
        QKeySequence::fromString(ToQString(row.shortcut), QKeySequence::PortableText));
  }
  connect(button, &QPushButton::clicked, this, [this, id] { presenter_->Pressed(id); });
  return button;
}

QLabel* MainWindow::AddLabel(ControlId id, QWidget* buddy) {
  auto* label = Add(new QLabel(ToQString(kerno::Control(id).caption), this), id);
  label->setBuddy(buddy);
  return label;
}

void MainWindow::MakeControls() {
  text_ = Add(new TextBox(this), ControlId::kText);
  text_->setAccessibleDescription(tr("The text to convert. Ctrl+Tab types a tab."));
  face_ = Add(new FaceCombo(this), ControlId::kFace);
  height_list_ = Add(new QComboBox(this), ControlId::kHeightList);
  height_list_->setEditable(true);
  height_list_->setInsertPolicy(QComboBox::NoInsert);
  height_list_->setCompleter(nullptr);
  SelectRowOfText(height_list_);
  for (const char16_t* height : HeightChoices()) height_list_->addItem(ToQString(height));
  height_spin_ = Add(new HeightSpin(this), ControlId::kHeightSpin);
  Add(height_spin_->edit(), ControlId::kHeightEdit);
  vertical_ = Add(new QCheckBox(ToQString(Control(ControlId::kVertical).caption), this),
                  ControlId::kVertical);
  poly_polygon_ = Add(new QCheckBox(ToQString(Control(ControlId::kPolyPolygon).caption), this),
                      ControlId::kPolyPolygon);
  first_color_ = Add(new ColorCombo(this), ControlId::kFirstColor);
  second_color_ = Add(new ColorCombo(this), ControlId::kSecondColor);
  preview_ = Add(new PreviewFrame(this), ControlId::kPreview);
  status_ = Add(new QLabel(this), ControlId::kStatus);
  status_->setTextFormat(Qt::PlainText);
  status_->setWordWrap(true);
  status_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  status_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
  status_->setMinimumHeight(status_->fontMetrics().lineSpacing() * 2);
  status_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
  AddLabel(ControlId::kFaceLabel, face_);
  AddLabel(ControlId::kHeightLabel, height_list_);
  for (const ControlId id : OutputButtons()) AddButton(id);
  AddButton(ControlId::kQuit);
  AddButton(ControlId::kPaste);
  AddButton(ControlId::kOk);
}

void MainWindow::LayOut() {
  auto* outer = new QVBoxLayout(this);
  outer->setMenuBar(MakeMenu());
  auto* top = new QHBoxLayout;
  top->addWidget(text_, 1);
  top->addWidget(controls_[ControlId::kPaste], 0, Qt::AlignTop);
  outer->addLayout(top, 2);
  auto* settings = new QHBoxLayout;
  settings->addWidget(controls_[ControlId::kFaceLabel]);
  settings->addWidget(face_, 1);
  settings->addWidget(vertical_);
  settings->addSpacing(12);
  settings->addWidget(controls_[ControlId::kHeightLabel]);
  settings->addWidget(height_list_);
  settings->addWidget(height_spin_);
  outer->addLayout(settings);
  auto* colors = new QHBoxLayout;
  colors->addWidget(poly_polygon_);
  colors->addWidget(first_color_);
  colors->addWidget(second_color_);
  colors->addStretch(1);
  outer->addLayout(colors);
  outer->addWidget(preview_, 5);
  outer->addWidget(status_);
  auto* buttons = new QHBoxLayout;
  for (const ControlId id : OutputButtons()) buttons->addWidget(controls_[id]);
  buttons->addStretch(1);
  buttons->addWidget(controls_[ControlId::kQuit]);
  buttons->addWidget(controls_[ControlId::kOk]);
  outer->addLayout(buttons);
}

void MainWindow::SetTabOrder() {
  QWidget* before = text_;
  const auto next = [&](ControlId id) {
    setTabOrder(before, controls_[id]);
    before = controls_[id];
  };
  for (const ControlId id :
       {ControlId::kPaste, ControlId::kFace, ControlId::kVertical, ControlId::kHeightList,
        ControlId::kHeightSpin, ControlId::kPolyPolygon, ControlId::kFirstColor,
        ControlId::kSecondColor, ControlId::kPreview}) {
    next(id);
  }
  for (const ControlId id : OutputButtons()) next(id);
  next(ControlId::kQuit);
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
      action->setShortcut(
          QKeySequence::fromString(ToQString(row.shortcut), QKeySequence::PortableText));
      action->setCheckable(row.checkable);
      if (row.checkable) group->addAction(action);
      actions_[row.command] = action;
      connect(action, &QAction::triggered, this,
              [this, command = row.command] { presenter_->Chosen(command); });
    }
  }
  return bar;
}

void MainWindow::ConnectControls() {
  const auto unless_shown = [this](auto event) {
    return [this, event](auto&&... arguments) {
      if (!shows_) event(std::forward<decltype(arguments)>(arguments)...);
    };
  };
  connect(text_, &QTextEdit::textChanged, this,
          unless_shown([this] { presenter_->TextChanged(text_->Text()); }));
  connect(face_, &QComboBox::editTextChanged, this, unless_shown([this](const QString& text) {
            presenter_->FaceChanged(FromQString(text));
          }));
  connect(height_list_, &QComboBox::editTextChanged, this,
          unless_shown(
              [this](const QString& text) { presenter_->HeightListChanged(FromQString(text)); }));
  height_spin_->on_edited = [this](const QString& text) {
    presenter_->HeightEditChanged(FromQString(text));
  };
  height_spin_->on_stepped = [this](int steps) { presenter_->HeightStepped(steps); };
  connect(vertical_, &QCheckBox::toggled, this,
          unless_shown([this](bool on) { presenter_->VerticalClicked(on); }));
  connect(poly_polygon_, &QCheckBox::toggled, this,
          unless_shown([this](bool on) { presenter_->PolyPolygonClicked(on); }));
  connect(first_color_, &QComboBox::currentIndexChanged, this, unless_shown([this](int index) {
            if (index >= 0) presenter_->FirstColorSelected(static_cast<size_t>(index));
          }));
  connect(second_color_, &QComboBox::currentIndexChanged, this, unless_shown([this](int index) {
            if (index >= 0) presenter_->SecondColorSelected(static_cast<size_t>(index));
          }));
}

void MainWindow::SizeDropDowns() {
  for (QComboBox* combo :
       {height_list_, static_cast<QComboBox*>(face_), static_cast<QComboBox*>(first_color_),
        static_cast<QComboBox*>(second_color_)}) {
    SizeDropDown(combo);
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
  if (was_shown_) SizeDropDowns();
}

void MainWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || !presenter_) return;
  ShowTextColors();
  ShowStatusColor();
  preview_->Repaint();
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
