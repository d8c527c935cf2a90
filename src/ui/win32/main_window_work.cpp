// What the main window shows and asks of work that runs beside it, and the text box's commands.

#include <utility>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/file_questions.h"
#include "ui/win32/main_window.h"
#include "ui/win32/windows_controls.h"

namespace kerno {

void MainWindow::ShowMessage(std::u16string_view text, std::function<void()> closed) {
  QueueMessage({ToWide(text), MB_OK, [closed = std::move(closed)](int) { closed(); }});
}

void MainWindow::AskAgain(std::u16string_view text, std::function<void(bool again)> answered) {
  QueueMessage({ToWide(text), MB_RETRYCANCEL,
                [answered = std::move(answered)](int button) { answered(button == IDRETRY); }});
}

// A message box handles events while it stands: it waits until the one under way is over.
void MainWindow::QueueMessage(WaitingMessage message) {
  messages_.push_back(std::move(message));
  if (messages_.size() == 1 && !shows_message_) PostMessageW(window_, kShowMessages, 0, 0);
}

void MainWindow::ShowWaitingMessages() {
  const ScopedFlag writing(shows_message_);
  while (!messages_.empty()) {
    const WaitingMessage message = std::move(messages_.front());
    messages_.erase(messages_.begin());
    message.closed(
        MessageBoxW(window_, message.text.c_str(), L"Kerno", message.buttons | MB_ICONWARNING));
  }
}

Continue MainWindow::ShowProgress(std::u16string_view text, double part) {
  if (!progress_) progress_.emplace(instance_, window_, ProgressWindow::Owner::kBlocked);
  return progress_->Show(text, part);
}

Continue MainWindow::ShowWork(std::u16string_view text, double part) {
  if (!progress_) progress_.emplace(instance_, window_, ProgressWindow::Owner::kFree);
  return progress_->Show(text, part);
}

void MainWindow::EndProgress() {
  progress_.reset();
}

void MainWindow::WakeUp() {
  PostMessageW(window_, kAwake, 0, 0);
}

std::optional<std::filesystem::path> MainWindow::AskSave(const SaveQuestion& question) {
  return AskForSave(window_, question);
}

void MainWindow::EditText(MenuCommand command) {
  const HWND text =
      mode_ == WindowMode::kCut ? cut_page_->control(ControlId::kCutText) : text_->control();
  CHARRANGE all = {0, -1};
  switch (command) {
    case MenuCommand::kUndo:
      SendMessageW(text, EM_UNDO, 0, 0);
      break;
    case MenuCommand::kRedo:
      SendMessageW(text, EM_REDO, 0, 0);
      break;
    case MenuCommand::kCut:
      SendMessageW(text, WM_CUT, 0, 0);
      break;
    case MenuCommand::kCopy:
      SendMessageW(text, WM_COPY, 0, 0);
      break;
    case MenuCommand::kPaste:
      SendMessageW(text, WM_PASTE, 0, 0);
      break;
    default:
      SendMessageW(text, EM_EXSETSEL, 0, reinterpret_cast<LPARAM>(&all));
      break;
  }
  SetFocus(text);
}

}  // namespace kerno
