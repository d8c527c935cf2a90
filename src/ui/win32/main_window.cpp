#include "ui/win32/main_window.h"

#include <algorithm>
#include <array>

#include "app/controls.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_drawing.h"
#include "ui/win32/resource.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr UINT kShowMessages = WM_APP + 1;  // messages wait to be shown
constexpr UINT kFillFaces = WM_APP + 2;     // the window stands
constexpr UINT kDropped = WM_APP + 3;       // the drag's source has its answer
constexpr UINT_PTR kDueTimer = 1;
constexpr UINT_PTR kPreviewSubclass = 1;
// The up-down control's range in one number: the upper end 10,000 in the low half, the lower end
// -1,000 in the high half.
constexpr LPARAM kHeightRange = static_cast<LPARAM>(0xFC182710);

const wchar_t* Wide(const char16_t* text) {
  return reinterpret_cast<const wchar_t*>(text);
}

// Events of edits and lists that tell of a change by the user.
bool IsComboChange(int notification) {
  return notification == CBN_EDITCHANGE || notification == CBN_SELCHANGE;
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
  for (bool more = true; more;) {
    more = true;
    if (take(u"Ctrl+")) {
      accelerator.fVirt |= FCONTROL;
    } else if (take(u"Alt+")) {
      accelerator.fVirt |= FALT;
    } else if (take(u"Shift+")) {
      accelerator.fVirt |= FSHIFT;
    } else {
      more = false;
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
  dialog_ = std::make_unique<Dialog>(view, services);
  LayOut();
  dialog_->Open();
  SizeDropDowns();
}

MainWindow::~MainWindow() {
  dialog_.reset();
  if (window_ != nullptr) DestroyWindow(window_);
  if (accelerators_ != nullptr) DestroyAcceleratorTable(accelerators_);
}

int MainWindow::Run(int show, const std::vector<std::filesystem::path>& files) {
  if (window_ == nullptr) return 1;
  ShowWindow(window_, show);
  SetFocus(text_->control());
  PostMessageW(window_, kFillFaces, 0, 0);
  if (!files.empty()) dialog_->Dropped(files);
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (SwallowsEscape(message)) continue;
    if (TranslateAcceleratorW(window_, accelerators_, &message) != 0) continue;
    if (IsDialogMessageW(window_, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

// A dialog closes by the Escape key; this one would take the user's work with it.
bool MainWindow::SwallowsEscape(const MSG& message) const {
  if (message.message != WM_KEYDOWN || message.wParam != VK_ESCAPE) return false;
  if (message.hwnd != window_ && !IsChild(window_, message.hwnd)) return false;
  for (const ControlId id : {ControlId::kFace, ControlId::kHeightList, ControlId::kFirstColor,
                             ControlId::kSecondColor}) {
    if (SendMessageW(Item(id), CB_GETDROPPEDSTATE, 0, 0) != 0) return false;  // closes the list
  }
  return true;
}

int MainWindow::Scaled(int units) const {
  return MulDiv(units, static_cast<int>(GetDpiForWindow(window_)), USER_DEFAULT_SCREEN_DPI);
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

void MainWindow::InitDialog() {
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
    SendMessageW(Item(ControlId::kHeightList), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(height));
  }
  const HWND spin = Item(ControlId::kHeightSpin);
  SendMessageW(spin, UDM_SETBUDDY, reinterpret_cast<WPARAM>(Item(ControlId::kHeightEdit)), 0);
  SendMessageW(spin, UDM_SETRANGE, 0, kHeightRange);
  SetWindowSubclass(Item(ControlId::kPreview), PreviewProc, kPreviewSubclass,
                    reinterpret_cast<DWORD_PTR>(this));
  DragAcceptFiles(window_, TRUE);
  ready_ = true;
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

INT_PTR MainWindow::Receive(UINT message, WPARAM wparam, LPARAM lparam) {
  if (!dialog_) return FALSE;
  switch (message) {
    case WM_SYSCOMMAND:
      if (static_cast<int>(wparam & 0xFFF0) != static_cast<int>(MenuCommand::kAbout)) return FALSE;
      dialog_->Chosen(MenuCommand::kAbout);
      return TRUE;
    case WM_PAINT:
      if (!IsIconic(window_)) return FALSE;
      PaintIcon();
      return TRUE;
    case WM_QUERYDRAGICON:
      SetWindowLongPtrW(window_, DWLP_MSGRESULT, reinterpret_cast<LONG_PTR>(icon_));
      return TRUE;
    case WM_DROPFILES:
      PostMessageW(window_, kDropped, wparam, 0);
      return TRUE;
    case WM_SIZE:
      LayOut();
      SizeDropDowns();
      return TRUE;
    case WM_GETMINMAXINFO:
      reinterpret_cast<MINMAXINFO*>(lparam)->ptMinTrackSize = {Scaled(560), Scaled(420)};
      return TRUE;
    case WM_COMMAND:
      return Command(LOWORD(wparam), HIWORD(wparam)) ? TRUE : FALSE;
    case WM_NOTIFY:
      return Notify(*reinterpret_cast<const NMHDR*>(lparam)) ? TRUE : FALSE;
    case WM_MEASUREITEM:
      reinterpret_cast<MEASUREITEMSTRUCT*>(lparam)->itemHeight = static_cast<UINT>(Scaled(20));
      return TRUE;
    case WM_DRAWITEM:
      DrawItem(*reinterpret_cast<const DRAWITEMSTRUCT*>(lparam));
      return TRUE;
    case WM_CTLCOLORSTATIC:
      if (reinterpret_cast<HWND>(lparam) != Item(ControlId::kStatus)) return FALSE;
      return reinterpret_cast<INT_PTR>(StatusBrush(reinterpret_cast<HDC>(wparam), status_kind_));
    case WM_TIMER:
      if (wparam != kDueTimer) return FALSE;
      KillTimer(window_, kDueTimer);
      dialog_->Due();
      return TRUE;
    case WM_SYSCOLORCHANGE:
      RepaintPreview();
      return FALSE;
    case WM_CLOSE:
    case WM_ENDSESSION:
      if (message == WM_ENDSESSION && wparam == FALSE) return FALSE;
      closing_ = true;
      dialog_->Close();
      PostQuitMessage(0);
      return TRUE;
    case kFillFaces:
      dialog_->FillFaces();
      SizeDropDowns();
      return TRUE;
    case kDropped:
      Dropped(reinterpret_cast<HDROP>(wparam));
      return TRUE;
    case kShowMessages:
      ShowWaitingMessages();
      return TRUE;
    default:
      return FALSE;
  }
}

void MainWindow::PaintIcon() {
  PAINTSTRUCT paint{};
  const HDC dc = BeginPaint(window_, &paint);
  RECT client{};
  GetClientRect(window_, &client);
  DrawIcon(dc, (client.right - GetSystemMetrics(SM_CXICON) + 1) / 2,
           (client.bottom - GetSystemMetrics(SM_CYICON) + 1) / 2, icon_);
  EndPaint(window_, &paint);
}

std::u16string MainWindow::TextOf(ControlId id) const {
  const HWND item = Item(id);
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(item)) + 1, L'\0');
  const int length = GetWindowTextW(item, text.data(), static_cast<int>(text.size()));
  text.resize(static_cast<size_t>(length));
  return FromWide(text);
}

// While a selection is told the combo's edit still holds what was in it before.
std::u16string MainWindow::ComboText(ControlId id, int notification) const {
  const HWND combo = Item(id);
  const LRESULT selected = SendMessageW(combo, CB_GETCURSEL, 0, 0);
  if (notification != CBN_SELCHANGE || selected == CB_ERR) return TextOf(id);
  const auto index = static_cast<WPARAM>(selected);
  const LRESULT length = SendMessageW(combo, CB_GETLBTEXTLEN, index, 0);
  std::wstring text(static_cast<size_t>(std::max<LRESULT>(length, 0)) + 1, L'\0');
  SendMessageW(combo, CB_GETLBTEXT, index, reinterpret_cast<LPARAM>(text.data()));
  text.resize(text.size() - 1);
  return FromWide(text);
}

void MainWindow::ComboChanged(ControlId id, int notification) {
  const LRESULT selected = SendMessageW(Item(id), CB_GETCURSEL, 0, 0);
  switch (id) {
    case ControlId::kFace:
      return dialog_->FaceChanged(ComboText(id, notification));
    case ControlId::kHeightList:
      return dialog_->HeightListChanged(ComboText(id, notification));
    case ControlId::kFirstColor:
      if (selected >= 0) dialog_->FirstColorSelected(static_cast<size_t>(selected));
      return;
    default:
      if (selected >= 0) dialog_->SecondColorSelected(static_cast<size_t>(selected));
  }
}

bool MainWindow::Command(int number, int notification) {
  const auto id = static_cast<ControlId>(number);
  switch (id) {
    case ControlId::kOk:
      return true;  // Enter in a field presses it, and it does nothing
    case ControlId::kText:
      if (notification != EN_CHANGE) return false;
      if (!shows_ && !text_->IsComposing()) dialog_->TextChanged(text_->Text());
      return true;
    case ControlId::kFace:
    case ControlId::kHeightList:
    case ControlId::kFirstColor:
    case ControlId::kSecondColor:
      if (!IsComboChange(notification)) return false;
      if (!shows_) ComboChanged(id, notification);
      return true;
    case ControlId::kHeightEdit:
      if (notification != EN_CHANGE) return false;
      if (!shows_) dialog_->HeightEditChanged(TextOf(id));
      return true;
    case ControlId::kVertical:
      dialog_->VerticalClicked(IsDlgButtonChecked(window_, number) == BST_CHECKED);
      return true;
    case ControlId::kPolyPolygon:
      dialog_->PolyPolygonClicked(IsDlgButtonChecked(window_, number) == BST_CHECKED);
      return true;
    case ControlId::kPreview:
    case ControlId::kStatus:
    case ControlId::kFaceLabel:
    case ControlId::kHeightLabel:
      return false;
    default:
      break;
  }
  for (const MenuColumn& column : Menu()) {
    for (const MenuRow& row : column.rows) {
      if (static_cast<int>(row.command) != number) continue;
      dialog_->Chosen(row.command);
      return true;
    }
  }
  for (const ControlRow& row : Controls()) {
    if (row.id == id) dialog_->Pressed(id);
  }
  return true;
}

bool MainWindow::Notify(const NMHDR& header) {
  if (header.code != static_cast<UINT>(UDN_DELTAPOS) ||
      header.idFrom != static_cast<UINT_PTR>(ControlId::kHeightSpin)) {
    return false;
  }
  dialog_->HeightStepped(reinterpret_cast<const NMUPDOWN&>(header).iDelta);
  SetWindowLongPtrW(window_, DWLP_MSGRESULT, TRUE);  // the edit holds the number, not the control
  return true;
}

void MainWindow::DrawItem(const DRAWITEMSTRUCT& item) {
  if (item.CtlID == static_cast<UINT>(ControlId::kFace)) {
    DrawFaceItem(item);
  } else {
    DrawColorItem(item);
  }
}

void MainWindow::Dropped(HDROP drop) {
  std::vector<std::filesystem::path> files;
  const UINT count = DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0);
  for (UINT i = 0; i < count; ++i) {
    std::wstring name(static_cast<size_t>(DragQueryFileW(drop, i, nullptr, 0)) + 1, L'\0');
    const UINT length = DragQueryFileW(drop, i, name.data(), static_cast<UINT>(name.size()));
    name.resize(length);
    files.emplace_back(name);
  }
  DragFinish(drop);
  dialog_->Dropped(files);
}

}  // namespace kerno
