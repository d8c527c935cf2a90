// What the main window shows and asks of work that runs beside it, and the text box's commands.

#include <QAbstractSpinBox>
#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

#include "app/captions.h"
#include "ui/qt/main_window.h"
#include "ui/qt/qt_text.h"
#include "ui/qt/save_question.h"
#include "ui/qt/text_box.h"

namespace kerno {

// From 0 to 1 in steps that a progress window counts.
Continue MainWindow::Progressed(std::u16string_view text, double part) {
  progress_->setLabelText(ToQString(text));
  progress_->setValue(static_cast<int>(part * (kProgressSteps - 1)));
  return progress_->wasCanceled() ? Continue::kNo : Continue::kYes;
}

void MainWindow::MakeProgress(Qt::WindowModality modality, int delay) {
  progress_ = new QProgressDialog(this);
  progress_->setWindowTitle(windowTitle());
  progress_->setCancelButtonText(Said(u"Cancel"));
  progress_->setWindowModality(modality);
  progress_->setAttribute(Qt::WA_ShowWithoutActivating, modality == Qt::NonModal);
  progress_->setMinimumDuration(delay);
  progress_->setAutoReset(false);
  progress_->setAutoClose(false);
  progress_->setMaximum(kProgressSteps);
  progress_->setValue(0);
}

Continue MainWindow::ShowProgress(std::u16string_view text, double part) {
  if (!progress_) MakeProgress(Qt::WindowModal, kProgressDelay);
  return Progressed(text, part);
}

Continue MainWindow::ShowWork(std::u16string_view text, double part) {
  if (!progress_) MakeProgress(Qt::NonModal, 0);
  return Progressed(text, part);
}

void MainWindow::EndProgress() {
  delete progress_;
}

void MainWindow::AskAgain(std::u16string_view text, std::function<void(bool again)> answered) {
  auto* box = new QMessageBox(QMessageBox::Warning, windowTitle(), ToQString(text),
                              QMessageBox::Cancel, this);
  QPushButton* const again = box->addButton(Said(u"Try again"), QMessageBox::AcceptRole);
  box->setDefaultButton(again);
  box->setTextFormat(Qt::PlainText);
  box->setAttribute(Qt::WA_DeleteOnClose);
  connect(box, &QMessageBox::finished, this, [box, again, answered = std::move(answered)] {
    answered(box->clickedButton() == again);
  });
  box->open();
}

void MainWindow::WakeUp() {
  QMetaObject::invokeMethod(
      this,
      [this] {
        if (presenter_) presenter_->Awake();
      },
      Qt::QueuedConnection);
}

std::optional<std::filesystem::path> MainWindow::AskSave(const SaveQuestion& question) {
  return AskForFile(this, question);
}

// The edit of one line that has the keyboard, which its control may have for it.
QLineEdit* MainWindow::FocusedEdit() const {
  QWidget* const focused = focusWidget();
  if (auto* edit = qobject_cast<QLineEdit*>(focused)) return edit;
  if (auto* combo = qobject_cast<QComboBox*>(focused)) return combo->lineEdit();
  return qobject_cast<QAbstractSpinBox*>(focused) ? focused->findChild<QLineEdit*>() : nullptr;
}

void MainWindow::EnableEdits() {
  const QLineEdit* const edit = FocusedEdit();
  const TextBox* const box = TextOfPage();
  const bool selects = edit ? edit->hasSelectedText() : box->textCursor().hasSelection();
  const QTextDocument* const document = box->document();
  actions_[MenuCommand::kCut]->setEnabled(selects);
  actions_[MenuCommand::kCopy]->setEnabled(selects);
  actions_[MenuCommand::kUndo]->setEnabled(edit ? edit->isUndoAvailable()
                                                : document->isUndoAvailable());
  actions_[MenuCommand::kRedo]->setEnabled(edit ? edit->isRedoAvailable()
                                                : document->isRedoAvailable());
}

// In the edit that has the keyboard, else in the text box of the page that is shown.
void MainWindow::EditText(MenuCommand command) {
  const auto edit_in = [command](auto* box) {
    switch (command) {
      case MenuCommand::kUndo:
        return box->undo();
      case MenuCommand::kRedo:
        return box->redo();
      case MenuCommand::kCut:
        return box->cut();
      case MenuCommand::kCopy:
        return box->copy();
      case MenuCommand::kPaste:
        return box->paste();
      default:
        return box->selectAll();
    }
  };
  if (QLineEdit* const edit = FocusedEdit()) return edit_in(edit);
  edit_in(static_cast<QTextEdit*>(TextOfPage()));
  TextOfPage()->setFocus();
}

}  // namespace kerno
