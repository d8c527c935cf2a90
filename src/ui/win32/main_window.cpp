#include "ui/win32/main_window.h"

#include <memory>
#include <string_view>
#include <utility>

#include "app/controls.h"
#include "ui/win32/control_hints.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr UINT_PTR kPreviewSubclass = 1;
// The up-down control's range in one number: the upper end 10,000 in the low half, the lower end
// -1,000 in the high half.
constexpr LPARAM kHeightRange = static_cast<LPARAM>(0xFC182710);

const wchar_t* Wide(const char16_t* text) {
  return reinterpret_cast<const wchar_t*>(text);
}

// The key and modifiers of "Ctrl+O", "Alt+B", "F1".
ACCEL ParseShortcut(std::u16string_view shortcut, int command) {
  ACCEL accelerator{};
  accelerator.fVirt = FVIRTKEY;
  accelerator.cmd = static_cast<WORD>(command);
  const auto take = [&shortcut](std::u16string_view prefix) {
    if (!shortcut.starts_with(prefix)) return false;
    shortcut.remove_prefix(prefix.size());
    return true;
  };
  for (;;) {
    if (take(u"Ctrl+")) {
      accelerator.fVirt |= FCONTROL;
    } else if (take(u"Alt+")) {
      accelerator.fVirt |= FALT;
    } else if (take(u"Shift+")) {
      accelerator.fVirt |= FSHIFT;
    } else {
      break;
    }
  }
  if (shortcut.size() == 1) {
    accelerator.key = shortcut[0];
  } else if (shortcut.size() == 2 && shortcut[0] == u'F') {
    accelerator.key = static_cast<WORD>(VK_F1 + (shortcut[1] - u'1'));
  }
  return accelerator;
}

}  // namespace

MainWindow::MainWindow(HINSTANCE instance, DialogServices& services) : instance_(instance) {
  CreateDialogParamW(instance_, MAKEINTRESOURCEW(KERNO_MAIN_DIALOG), nullptr, DialogProc,
                     reinterpret_cast<LPARAM>(this));
  if (window_ == nullptr) return;
  DialogView& view = *this;
  presenter_ = std::make_unique<DialogPresenter>(view, services);
  LayOut();
  presenter_->Open();
  SizeDropDowns();
}

MainWindow::~MainWindow() {
  presenter_.reset();
  suggestions_.reset();
  if (window_ != nullptr) DestroyWindow(window_);
  if (accelerators_ != nullptr) DestroyAcceleratorTable(accelerators_);
  if (font_ != nullptr) DeleteObject(font_);
}

int MainWindow::Run(int show, const std::vector<std::filesystem::path>& files) {
  if (window_ == nullptr) {
    MessageBoxW(nullptr, L"The window cannot be created.", L"Kerno", MB_OK | MB_ICONERROR);
    return 1;
  }
  ShowWindow(window_, show);
  SetFocus(text_->control());
  PostMessageW(window_, kFillFaces, 0, 0);
  if (!files.empty()) presenter_->Dropped(files);
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) Dispatch(message);
  return static_cast<int>(message.wParam);
}

void MainWindow::Dispatch(MSG& message) {
  if (suggestions_->TakesKey(message) || SwallowsEscape(message)) return;
  if (EndsShortcut(message)) return;
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
  for (const ControlId id : {ControlId::kFace, ControlId::kHeightList, ControlId::kFirstColor,
                             ControlId::kSecondColor}) {
    if (Send(id, CB_GETDROPPEDSTATE) != 0) return false;  // closes the list
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
  first_dpi_ = dpi_ = static_cast<int>(GetDpiForWindow(window_));
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window_, WM_GETFONT, 0, 0)), sizeof first_font_,
             &first_font_);
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
  MakeMenu();
  MakeAccelerators();
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
    presenter_->FaceChanged(face);
  };
  hints_ = AddControlHints(instance_, window_);
  AddControlNames(window_);
  DragAcceptFiles(window_, TRUE);
  ready_ = true;
  SizeItems();
}

void MainWindow::AddSystemMenuEntry() {
  const HMENU menu = GetSystemMenu(window_, FALSE);
  for (const MenuColumn& column : Menu()) {
    for (const MenuRow& row : column.rows) {
      if (row.command != MenuCommand::kAbout) continue;
      AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
      AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(row.command), Wide(row.caption));
    }
  }
}

void MainWindow::MakeMenu() {
  menu_ = CreateMenu();
  for (const MenuColumn& column : Menu()) {
    const HMENU popup = CreatePopupMenu();
    for (const MenuRow& row : column.rows) {
      if (row.separator_before) AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
      std::wstring caption = Wide(row.caption);
      if (*row.shortcut != u'\0') caption += std::wstring(L"\t") + Wide(row.shortcut);
      AppendMenuW(popup, MF_STRING, static_cast<UINT_PTR>(row.command), caption.c_str());
    }
    AppendMenuW(menu_, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), Wide(column.caption));
  }
  SetMenu(window_, menu_);
}

void MainWindow::MakeAccelerators() {
  std::vector<ACCEL> keys;
  for (const MenuColumn& column : Menu()) {
    for (const MenuRow& row : column.rows) {
      if (*row.shortcut == u'\0') continue;
      keys.push_back(ParseShortcut(row.shortcut, static_cast<int>(row.command)));
    }
  }
  for (const ControlRow& row : Controls()) {
    if (*row.shortcut != u'\0')
      keys.push_back(ParseShortcut(row.shortcut, static_cast<int>(row.id)));
  }
  accelerators_ = CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
}

}  // namespace kerno
