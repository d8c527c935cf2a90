// The main window as a dialog of the system: controls from a resource, no toolkit. It shows and
// forwards; the decisions are DialogPresenter's.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/dialog_presenter.h"
#include "platform/drawing.h"
#include "platform/win32/windows_api.h"
#include "ui/win32/cut_page.h"
#include "ui/win32/face_suggestions.h"
#include "ui/win32/progress_window.h"
#include "ui/win32/text_box.h"
#include "ui/win32/window_text.h"

namespace kerno {

class MainWindow final : private DialogView {
 public:
  // Makes the window, hidden. Both services outlive it.
  MainWindow(HINSTANCE instance, DialogServices& services, CutServices& cut_services);
  ~MainWindow() override;
  MainWindow(const MainWindow&) = delete;
  MainWindow& operator=(const MainWindow&) = delete;

  // Shows it, maximised where it was so when it was closed last.
  void Show(int show);

  // Shows it, opens the files, and runs until it is closed. The program's exit status.
  int Run(int show, const std::vector<std::filesystem::path>& files);

  // Gives one message of the loop to the lists, keys and controls of the window.
  void Dispatch(MSG& message);

  HWND window() const { return window_; }
  DialogPresenter& presenter() { return *presenter_; }
  CutPage& cut_page() { return *cut_page_; }

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

  static constexpr UINT kShowMessages = WM_APP + 1;  // messages wait to be shown
  static constexpr UINT kFillFaces = WM_APP + 2;     // the window stands
  static constexpr UINT kDropped = WM_APP + 3;       // the drag's source has its answer
  static constexpr UINT kReadCombo = WM_APP + 4;     // a list has opened or closed
  static constexpr UINT kAwake = WM_APP + 5;         // work beside the window has news
  static constexpr UINT_PTR kDueTimer = 1;
  static constexpr int kListRow = 20;  // of the lists with pictures, in pixels of the first density

  // A message box that waits; `closed` gets the button that was pressed.
  struct WaitingMessage {
    std::wstring text;
    UINT buttons = MB_OK;
    std::function<void(int button)> closed;
  };

  // Messages
  static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  static LRESULT CALLBACK PreviewProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                      UINT_PTR id, DWORD_PTR self);
  INT_PTR Receive(UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT ReceiveInPreview(UINT message, WPARAM wparam, LPARAM lparam);
  void InitDialog();
  void LearnDensity();
  void MakeControls();
  void AddSystemMenuEntry();
  void MakeAccelerators();
  bool Command(int id, int notification);
  void ComboCommand(const ControlRow& row, int notification);
  void ReadCombo(const ControlRow& row, int notification);
  bool Notify(const NMHDR& header);
  void DrawItem(const DRAWITEMSTRUCT& item);
  void Dropped(HDROP drop);
  void OfferFaces(int notification);
  struct Group;
  struct Heights {
    int field = 0;    // of one control
    int fields = 0;   // of the lines between text and preview, gaps included
    int outputs = 0;  // of the buttons, gaps included
    int rest = 0;     // of all but text and preview
  };
  int LeastWidth(const ControlRow& row) const;
  std::vector<std::vector<Group>> Wrapped(WindowLine line, int width) const;
  Heights HeightsFor(int width) const;
  int LeastHeight(int width) const;
  void LayOut();
  int LayOutLine(WindowLine line, int top, int height, int between);
  void BoundSize(MINMAXINFO& bounds) const;
  void KeepRoom(WINDOWPOS& place) const;
  SIZE LeastSize(int width) const;
  void ShowFont();
  void ShowHints();
  void ShowLooks();
  void ShowCurrentFace();
  void MakeModeSwitch();
  void ShowModeCaptions() const;
  int LayOutModeSwitch() const;
  void FocusText() const;
  bool IsOffered(ControlId id) const;
  bool ChooseFromMenu(const MenuRow& row);
  void SizeItems();
  void SizeDropDowns();
  int RowsBelow(ControlId combo) const;
  void DensityChanged(int dpi, const RECT& place);
  HBRUSH GroundOf(UINT message, HDC dc, HWND control) const;
  void PaintIcon();
  void PaintPreview(HDC dc);
  void QueueMessage(WaitingMessage message);
  void ShowWaitingMessages();
  WindowRect FirstPlace() const;
  bool EndsShortcut(const MSG& message);
  bool SwallowsEscape(const MSG& message) const;

  HWND Item(ControlId id) const { return GetDlgItem(window_, static_cast<int>(id)); }
  LRESULT Send(ControlId id, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) const {
    return SendMessageW(Item(id), message, wparam, lparam);
  }
  int Scaled(int units) const;
  std::u16string TextOf(ControlId id) const { return TextOfWindow(Item(id)); }
  std::u16string ComboText(ControlId id, int notification) const;

  HINSTANCE instance_;
  HWND window_ = nullptr;
  HWND hints_ = nullptr;
  HMENU menu_ = nullptr;
  HACCEL accelerators_ = nullptr;
  HICON icon_ = nullptr;
  HICON small_icon_ = nullptr;
  int dpi_ = USER_DEFAULT_SCREEN_DPI;
  HFONT font_ = nullptr;  // of the captions
  std::optional<TextBox> text_;
  std::optional<FaceSuggestions> suggestions_;
  std::optional<ProgressWindow> progress_;
  std::unique_ptr<CutPage> cut_page_;
  std::unique_ptr<DialogPresenter> presenter_;
  std::unique_ptr<BitmapSurface> picture_;  // of the preview
  bool picture_is_stale_ = true;
  bool shows_ = false;          // what comes from the controls meanwhile is an echo
  bool shows_message_ = false;  // a message box stands
  bool alt_was_used_ = false;   // with another key, since it went down
  bool ready_ = false;          // the controls are there
  bool is_placed_ = false;      // no longer where the system has put it
  bool opens_maximised_ = false;
  std::set<ControlId> hidden_;  // controls of Classic that are not offered
  WindowMode mode_ = WindowMode::kClassic;
  StatusKind status_kind_ = StatusKind::kNormal;
  std::vector<WaitingMessage> messages_;  // to be shown when the event under way is over
};

}  // namespace kerno
