// What the main window shows when it is told.

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "app/status_text.h"
#include "ui/qt/combos.h"
#include "ui/qt/main_window.h"
#include "ui/qt/preview_frame.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/text_box.h"

namespace kerno {

void MainWindow::ShowText(std::u16string_view text, TextChange change) {
  const ScopedFlag writing(shows_);
  text_->ShowText(text, change);
}

// The toolkit turns text by itself: the plain family will do.
void MainWindow::ShowTextFormat(std::u16string_view face, Color color) {
  const ScopedFlag writing(shows_);
  const std::u16string_view family =
      face.substr(std::min(face.find_first_not_of(u'@'), face.size()));
  const Color paper = FromQColor(palette().color(QPalette::Base));
  text_->ShowFormat(family, color, PaperFor(color, paper));
}

void MainWindow::ShowFaces(const std::vector<std::u16string>& faces) {
  const ScopedFlag writing(shows_);
  face_->ShowFaces(faces);
}

void MainWindow::ShowControlText(ControlId id, std::u16string_view text) {
  const ScopedFlag writing(shows_);
  QWidget* control = controls_.at(id);
  const QString shown = ToQString(text);
  if (auto* combo = qobject_cast<QComboBox*>(control)) {
    if (combo->currentText() != shown) combo->setEditText(shown);
  } else if (auto* edit = qobject_cast<QLineEdit*>(control)) {
    if (edit->text() != shown) edit->setText(shown);
  }
}

void MainWindow::ShowChecked(ControlId id, bool checked) {
  const ScopedFlag writing(shows_);
  static_cast<QCheckBox*>(controls_.at(id))->setChecked(checked);
}

void MainWindow::ShowColors(ControlId id, const std::vector<ColorChoice>& colors, size_t selected) {
  const ScopedFlag writing(shows_);
  static_cast<ColorCombo*>(controls_.at(id))->ShowColors(colors, selected);
}

void MainWindow::Enable(ControlId id, bool enabled) {
  controls_.at(id)->setEnabled(enabled);
}

void MainWindow::ShowControl(ControlId id, bool visible) {
  controls_.at(id)->setVisible(visible);
}

void MainWindow::ShowMenuChecked(MenuCommand command, bool checked) {
  actions_.at(command)->setChecked(checked);
}

// In Cut, what is Classic's alone is disabled.
void MainWindow::EnableMenu(WindowMode mode) {
  for (const auto& [command, action] : actions_) {
    action->setEnabled(mode == WindowMode::kClassic || !IsOfClassicAlone(command));
  }
}

void MainWindow::ShowStatus(std::u16string_view text, StatusKind kind) {
  status_->setText(ToQString(text));
  status_->setAccessibleName(status_->text());
  preview_->setAccessibleDescription(status_->text());
  QPalette colors = palette();
  const Color paper = FromQColor(colors.color(QPalette::Window));
  const Color normal = FromQColor(colors.color(QPalette::WindowText));
  colors.setColor(QPalette::WindowText, ToQColor(StatusInk(kind, normal, paper)));
  if (colors != status_->palette()) status_->setPalette(colors);
}

void MainWindow::RepaintPreview() {
  preview_->Repaint();
}

void MainWindow::ShowMessage(std::u16string_view text, std::function<void()> closed) {
  auto* box =
      new QMessageBox(QMessageBox::Warning, windowTitle(), ToQString(text), QMessageBox::Ok, this);
  box->setTextFormat(Qt::PlainText);
  box->setAttribute(Qt::WA_DeleteOnClose);
  connect(box, &QMessageBox::finished, this, std::move(closed));
  box->open();
}

void MainWindow::ShowAbout(std::u16string_view version, std::u16string_view copyright) {
  auto* box = new QDialog(this);
  box->setAttribute(Qt::WA_DeleteOnClose);
  box->setWindowTitle(Said(u"About Kerno"));
  auto* layout = new QVBoxLayout(box);
  layout->setContentsMargins(24, 20, 24, 16);
  layout->setSpacing(10);
  auto* icon = new QLabel(box);
  icon->setPixmap(windowIcon().pixmap(QSize(64, 64), devicePixelRatioF()));
  icon->setAlignment(Qt::AlignCenter);
  layout->addWidget(icon);
  for (const auto& [id, text] : {std::pair(ControlId::kAboutVersion, version),
                                 std::pair(ControlId::kAboutCopyright, copyright)}) {
    auto* label = new QLabel(ToQString(text), box);
    label->setObjectName(ObjectName(id));
    label->setAccessibleName(ToQString(Say(kerno::Control(id).name)));
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(label);
  }
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok, box);
  connect(buttons, &QDialogButtonBox::accepted, box, &QDialog::accept);
  layout->addWidget(buttons, 0, Qt::AlignCenter);
  box->open();
}

std::optional<std::filesystem::path> MainWindow::AskFolder(const std::filesystem::path& start) {
  const QString folder =
      QFileDialog::getExistingDirectory(this, Said(u"Folder of the outputs"), PathToQString(start));
  if (folder.isEmpty()) return std::nullopt;
  return QStringToPath(folder);
}

bool MainWindow::LoadFontFile(const std::filesystem::path& file) {
  return QFontDatabase::addApplicationFont(PathToQString(file)) >= 0;
}

void MainWindow::CallWhenDue(int milliseconds) {
  due_.start(milliseconds);
}

// Toolkits know a maximised window's place as usual without its frame.
void MainWindow::LearnFrame() {
  constexpr auto kUnusual = Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen;
  if ((windowState() & kUnusual) == 0) frame_ = geometry().topLeft() - pos();
}

WindowPlace MainWindow::PlaceOfWindow() const {
  const WindowShow show = isMinimized()   ? WindowShow::kMinimised
                          : isMaximized() ? WindowShow::kMaximised
                                          : WindowShow::kNormal;
  const bool is_usual = show == WindowShow::kNormal && !isFullScreen();
  const QPoint at = is_usual ? pos() : normalGeometry().topLeft() - frame_;
  const QSize size = is_usual ? this->size() : normalGeometry().size();
  return {.normal = {at.x(), at.y(), at.x() + size.width(), at.y() + size.height()}, .show = show};
}

void MainWindow::PlaceWindow(const WindowPlace& place) {
  const WindowRect& rect = place.normal;
  if (rect != WindowRect{}) {
    resize(rect.right - rect.left, rect.bottom - rect.top);
    move(rect.left, rect.top);
  }
  if (place.show == WindowShow::kMaximised) setWindowState(windowState() | Qt::WindowMaximized);
}

std::vector<WindowRect> MainWindow::Screens() const {
  std::vector<WindowRect> screens;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect area = screen->availableGeometry();
    screens.push_back(
        {area.left(), area.top(), area.left() + area.width(), area.top() + area.height()});
  }
  return screens;
}

void MainWindow::CloseWindow() {
  close();
}

}  // namespace kerno
