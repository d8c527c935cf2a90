#include "ui/win32/main_window.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include "app/captions.h"
#include "app/controls.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_hints.h"
#include "ui/win32/key_table.h"
#include "ui/win32/looks.h"
#include "ui/win32/resource.h"
#include "ui/win32/window_menu.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr UINT_PTR kPreviewSubclass = 1;
// The up-down control's range in one number: the upper end 10,000 in the low half, the lower end
// -1,000 in the high half.
constexpr LPARAM kHeightRange = static_cast<LPARAM>(0xFC182710);

// The system's window of each kind of control.
struct KindOfWindow {
  ControlKind kind;
  const wchar_t* class_name;
  DWORD style;
  DWORD more_style = 0;
};
constexpr DWORD kComboStyle =
    WS_VSCROLL | WS_TABSTOP | static_cast<DWORD>(CBS_OWNERDRAWFIXED | CBS_HASSTRINGS);
constexpr KindOfWindow kKinds[] = {
    {ControlKind::kButton, L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP},
    {ControlKind::kDefaultButton, L"BUTTON", BS_DEFPUSHBUTTON},
    {ControlKind::kCheckBox, L"BUTTON", BS_AUTOCHECKBOX | WS_TABSTOP},
    {ControlKind::kLabel, L"STATIC", SS_LEFT | SS_CENTERIMAGE | WS_GROUP},
    {ControlKind::kTextBox, L"RICHEDIT50W",
     WS_VSCROLL | WS_TABSTOP | ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL | ES_NOHIDESEL |
         ES_NOOLEDRAGDROP,
     WS_EX_CLIENTEDGE},
    {ControlKind::kFaceCombo, L"COMBOBOX", kComboStyle | CBS_DROPDOWN | CBS_SORT | CBS_AUTOHSCROLL},
    {ControlKind::kTextCombo, L"COMBOBOX",
     WS_VSCROLL | WS_TABSTOP | CBS_DROPDOWN | CBS_AUTOHSCROLL},
    {ControlKind::kColorCombo, L"COMBOBOX", kComboStyle | CBS_DROPDOWNLIST},
    {ControlKind::kNumberEdit, L"EDIT", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE},
    {ControlKind::kUpDown, L"msctls_updown32", UDS_ARROWKEYS | UDS_NOTHOUSANDS},
    {ControlKind::kPreview, L"STATIC", SS_NOTIFY | WS_TABSTOP, WS_EX_CLIENTEDGE},
    {ControlKind::kStatus, L"STATIC", SS_LEFT | SS_NOPREFIX | SS_NOTIFY | WS_GROUP},
};

}  // namespace

MainWindow::MainWindow(HINSTANCE instance, DialogServices& services, CutServices& cut_services)
    : instance_(instance) {
  CreateDialogParamW(instance_, MAKEINTRESOURCEW(KERNO_MAIN_DIALOG), nullptr, DialogProc,
                     reinterpret_cast<LPARAM>(this));
  if (window_ == nullptr) return;
  DialogView& view = *this;
  presenter_ = std::make_unique<DialogPresenter>(view, services);
  cut_page_ = std::make_unique<CutPage>(instance_, window_, cut_services);
  ShowFont();
  ShowLooks();
  LayOut();
  presenter_->UseCut(&cut_page_->presenter());
  presenter_->Open();
}

MainWindow::~MainWindow() {
  presenter_.reset();
  cut_page_.reset();
  suggestions_.reset();
  if (window_ != nullptr) DestroyWindow(window_);
  if (accelerators_ != nullptr) DestroyAcceleratorTable(accelerators_);
  if (font_ != nullptr) DeleteObject(font_);
}

void MainWindow::Show(int show) {
  const bool as_usual = show == SW_SHOWNORMAL || show == SW_SHOWDEFAULT;
  ShowWindow(window_, as_usual && opens_maximised_ ? SW_SHOWMAXIMIZED : show);
}

int MainWindow::Run(int show, const std::vector<std::filesystem::path>& files) {
  if (window_ == nullptr) {
    MessageBoxW(nullptr, ToWide(Say(u"The window cannot be created.")).c_str(), L"Kerno",
                MB_OK | MB_ICONERROR);
    return 1;
  }
  Show(show);
  FocusText();
  PostMessageW(window_, kFillFaces, 0, 0);
  if (!files.empty()) presenter_->Dropped(files);
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
  return static_cast<int>(message.wParam);
}

void MainWindow::Dispatch(MSG& message) {
  if (suggestions_->TakesKey(message) || EndsShortcut(message)) return;
  const bool is_cut = mode_ == WindowMode::kCut;
  if (is_cut && cut_page_->TakesKey(message)) return;
  if (is_cut && TranslateAcceleratorW(window_, cut_page_->accelerators(), &message) != 0) return;
  if (SwallowsEscape(message)) return;
  if (TranslateAcceleratorW(window_, accelerators_, &message) != 0) return;
  if (IsDialogMessageW(window_, &message)) return;
  TranslateMessage(&message);
  DispatchMessageW(&message);
}

// The Alt key that comes up after another key opens no menu, whoever took that key.
bool MainWindow::EndsShortcut(const MSG& message) {
  const bool goes_up = message.message == WM_SYSKEYUP || message.message == WM_KEYUP;
  if (goes_up && message.wParam == VK_MENU) return std::exchange(alt_was_used_, false);
  if (message.message == WM_SYSKEYDOWN) alt_was_used_ = message.wParam != VK_MENU;
  return false;
}

// A dialog closes by the Escape key; this one would take the user's work with it.
bool MainWindow::SwallowsEscape(const MSG& message) const {
  if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE) return false;
  if (message.hwnd != window_ && !IsChild(window_, message.hwnd)) return false;
  for (HWND part = message.hwnd; part != nullptr && part != window_; part = GetParent(part)) {
    if (SendMessageW(part, CB_GETDROPPEDSTATE, 0, 0) != 0) return false;  // closes the list
  }
  return true;
}

int MainWindow::Scaled(int units) const {
  return MulDiv(units, dpi_, USER_DEFAULT_SCREEN_DPI);
}

INT_PTR CALLBACK MainWindow::DialogProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(window, GWLP_USERDATA, lparam);
    auto* self = reinterpret_cast<MainWindow*>(lparam);
    self->window_ = window;
    self->InitDialog();
    return FALSE;  // the focus is set when the window is shown
  }
  auto* self = reinterpret_cast<MainWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  return self != nullptr ? self->Receive(message, wparam, lparam) : FALSE;
}

// The window scales itself, the same way on every system.
void MainWindow::LearnDensity() {
  using SetBehavior = BOOL(WINAPI*)(HWND, DIALOG_DPI_CHANGE_BEHAVIORS, DIALOG_DPI_CHANGE_BEHAVIORS);
  const auto set_behavior = reinterpret_cast<SetBehavior>(reinterpret_cast<void*>(
      GetProcAddress(GetModuleHandleW(L"user32.dll"), "SetDialogDpiChangeBehavior")));
  if (set_behavior != nullptr) set_behavior(window_, DDC_DISABLE_ALL, DDC_DISABLE_ALL);
  dpi_ = static_cast<int>(GetDpiForWindow(window_));
}

void MainWindow::InitDialog() {
  LearnDensity();
  icon_ = static_cast<HICON>(LoadImageW(instance_, MAKEINTRESOURCEW(KERNO_ICON), IMAGE_ICON,
                                        GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON),
                                        LR_SHARED));
  small_icon_ = static_cast<HICON>(LoadImageW(instance_, MAKEINTRESOURCEW(KERNO_ICON), IMAGE_ICON,
                                              GetSystemMetrics(SM_CXSMICON),
                                              GetSystemMetrics(SM_CYSMICON), LR_SHARED));
  SendMessageW(window_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon_));
  SendMessageW(window_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(small_icon_));
  AddSystemMenuEntry();
  menu_ = MakeWindowMenu();
  SetMenu(window_, menu_);
  MakeAccelerators();
  MakeModeSwitch();
  MakeControls();
  text_.emplace(Item(ControlId::kText));
  for (const char16_t* height : HeightChoices()) {
    Send(ControlId::kHeightList, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(height));
  }
  const HWND spin = Item(ControlId::kHeightSpin);
  SendMessageW(spin, UDM_SETBUDDY, reinterpret_cast<WPARAM>(Item(ControlId::kHeightEdit)), 0);
  SendMessageW(spin, UDM_SETRANGE, 0, kHeightRange);
  SetWindowSubclass(Item(ControlId::kPreview), PreviewProc, kPreviewSubclass,
                    reinterpret_cast<DWORD_PTR>(this));
  suggestions_.emplace(instance_, Item(ControlId::kFace));
  suggestions_->on_chosen = [this](std::u16string_view face) {
    ShowControlText(ControlId::kFace, face);
    presenter_->TextChanged(ControlId::kFace, face);
  };
  hints_ = MakeHints(instance_, window_);
  ShowHints();
  DragAcceptFiles(window_, TRUE);
  ready_ = true;
  ShowFont();
  LearnLooks();
  ShowLooks();
}

// The Tab key goes from one to the next in the order in which they are made.
void MainWindow::MakeControls() {
  for (const ControlRow& row : Controls()) {
    if (row.line == WindowLine::kAboutBox) continue;
    const auto* const kind =
        std::find_if(std::begin(kKinds), std::end(kKinds),
                     [&](const KindOfWindow& candidate) { return candidate.kind == row.kind; });
    const DWORD shown = row.hidden ? 0 : WS_VISIBLE;
    if (row.hidden) hidden_.insert(row.id);
    CreateWindowExW(kind->more_style | WS_EX_NOPARENTNOTIFY, kind->class_name,
                    ToWide(MarkedCaption(Say(row.caption), row.shortcut)).c_str(),
                    kind->style | WS_CHILD | shown, 0, 0, 0, 0, window_,
                    reinterpret_cast<HMENU>(static_cast<INT_PTR>(row.id)), instance_, nullptr);
  }
  SendMessageW(window_, DM_SETDEFID, static_cast<WPARAM>(ControlId::kOk), 0);
}

void MainWindow::ShowHints() {
  for (const ControlRow& row : Controls()) {
    const HWND control = Item(row.id);
    if (control == nullptr || row.id == ControlId::kStatus) continue;  // its text says all
    ShowHint(hints_, window_, control, Say(row.hint));
    if (*row.caption == u'\0' && *row.name != u'\0') NameControl(control, Say(row.name));
  }
}

void MainWindow::AddSystemMenuEntry() {
  const HMENU menu = GetSystemMenu(window_, FALSE);
  const MenuRow& about = *FindMenuRow(static_cast<int>(MenuCommand::kAbout));
  AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
  AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(about.command),
              ToWide(Say(about.caption)).c_str());
}

void MainWindow::MakeAccelerators() {
  std::vector<ACCEL> keys;
  for (const MenuColumn& column : Menu()) {
    for (const MenuRow& row : column.rows) {
      // The text box knows those of the edit commands by itself.
      if (!IsEditCommand(row.command))
        AppendKeys(row.shortcut, static_cast<int>(row.command), &keys);
    }
  }
  for (const ControlRow& row : Controls()) {
    AppendKeys(row.shortcut, static_cast<int>(row.id), &keys);
  }
  accelerators_ = CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
}

}  // namespace kerno
