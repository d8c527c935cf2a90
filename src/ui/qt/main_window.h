// The main window: lays the controls out, forwards what the user does, shows what it is told.
#pragma once

#include <QPointer>
#include <QProgressDialog>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <map>
#include <memory>

#include "app/dialog_presenter.h"

class QAction;
class QComboBox;
class QLabel;
class QLineEdit;
class QMenuBar;
class QPushButton;
class QStackedWidget;

namespace kerno {

class CutPage;
class CutPresenter;
class CutServices;
class FaceCombo;
class HeightSpin;
class PreviewFrame;
struct PreviewEvents;
class TextBox;

class MainWindow final : public QWidget, private DialogView {
 public:
  // Both outlive the window.
  MainWindow(DialogServices& services, CutServices& cut_services);
  ~MainWindow() override;

  // Takes files as if they had been dropped.
  void OpenFiles(const QStringList& files);

  // Keeps settings and text for the next run: this one ends.
  void SaveNow();

  DialogPresenter& presenter() { return *presenter_; }
  CutPresenter& cut_presenter() { return *cut_presenter_; }

 protected:
  void closeEvent(QCloseEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void changeEvent(QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  // DialogView
  void ShowText(std::u16string_view text, TextChange change) override;
  void ShowTextFormat(std::u16string_view face, Color color) override;
  void ShowFaces(const std::vector<std::u16string>& faces) override;
  void ShowControlText(ControlId id, std::u16string_view text) override;
  void ShowChecked(ControlId id, bool checked) override;
  void ShowColors(ControlId id, const std::vector<ColorChoice>& colors, size_t selected) override;
  void ShowFault(ControlId id, std::u16string_view why) override;
  void ShowMode(WindowMode mode) override;
  void ShowCaptions() override;
  void Enable(ControlId id, bool enabled) override;
  void ShowControl(ControlId id, bool visible) override;
  void ShowMenuChecked(MenuCommand command, bool checked) override;
  void ShowStatus(std::u16string_view text, StatusKind kind) override;
  void RepaintPreview() override;
  void ShowMessage(std::u16string_view text, std::function<void()> closed) override;
  Continue ShowProgress(std::u16string_view text, double part) override;
  Continue ShowWork(std::u16string_view text, double part) override;
  void EndProgress() override;
  void AskAgain(std::u16string_view text, std::function<void(bool again)> answered) override;
  void WakeUp() override;
  void ShowAbout(std::u16string_view version, std::u16string_view copyright) override;
  std::optional<std::filesystem::path> AskFolder(const std::filesystem::path& start) override;
  std::optional<std::filesystem::path> AskSave(const SaveQuestion& question) override;
  void EditText(MenuCommand command) override;
  bool LoadFontFile(const std::filesystem::path& file) override;
  void CallWhenDue(int milliseconds) override;
  WindowPlace PlaceOfWindow() const override;
  void PlaceWindow(const WindowPlace& place) override;
  std::vector<WindowRect> Screens() const override;
  void CloseWindow() override;

  static constexpr int kProgressSteps = 1000;

  // A control's event for the presenter, unless the view's own writing has caused it.
  template <class Event>
  auto UnlessShown(Event event) {
    return [this, event](auto&&... arguments) {
      if (!shows_) event(std::forward<decltype(arguments)>(arguments)...);
    };
  }
  void MakeControls();
  QWidget* MakeControl(const ControlRow& row);
  QPushButton* MakeButton(const ControlRow& row);
  QComboBox* ConnectEdit(QComboBox* combo, ControlId id);
  QLabel* MakeStatus();
  TextBox* TextOfPage() const;
  QWidget* MakeClassicPage();
  QWidget* MakeTopBar();
  QWidget* MakeModeSwitch();
  void LayOut();
  PreviewEvents ClassicPreviewEvents();
  QMenuBar* MakeMenu(QWidget* parent);
  void ChooseFromMenu(const MenuRow& row);
  void EnableMenu(WindowMode mode);
  void EnableEdits();
  QLineEdit* FocusedEdit() const;
  void SizeDropDowns();
  void LearnFrame();
  void MakeProgress(Qt::WindowModality modality, int delay);
  Continue Progressed(std::u16string_view text, double part);

  std::map<ControlId, QWidget*> controls_;
  std::map<MenuCommand, QAction*> actions_;
  TextBox* text_ = nullptr;
  FaceCombo* face_ = nullptr;
  HeightSpin* spin_ = nullptr;
  PreviewFrame* preview_ = nullptr;
  QLabel* status_ = nullptr;
  QPointer<QProgressDialog> progress_;
  QTimer due_;
  bool shows_ = false;  // controls are being written: nothing is an event
  bool was_shown_ = false;
  QPoint frame_;  // from the corner of the frame to that of its content, as the window last was
  QMenuBar* menu_ = nullptr;
  QStackedWidget* pages_ = nullptr;
  QWidget* classic_page_ = nullptr;
  CutPage* cut_page_ = nullptr;
  std::unique_ptr<DialogPresenter> presenter_;
  std::unique_ptr<CutPresenter> cut_presenter_;
};

}  // namespace kerno
