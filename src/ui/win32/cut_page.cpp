#include "ui/win32/cut_page.h"

#include <algorithm>
#include <iterator>
#include <string>

#include "app/captions.h"
#include "app/scoped_flag.h"
#include "platform/win32/wide_text.h"
#include "ui/win32/control_hints.h"
#include "ui/win32/key_table.h"
#include "ui/win32/windows_controls.h"

namespace kerno {
namespace {

constexpr wchar_t kPageClass[] = L"KernoCutPage";
constexpr UINT_PTR kSubclass = 2;

struct KindOfWindow {
  ControlKind kind;
  const wchar_t* class_name;
  DWORD style;
  DWORD more_style = 0;
};
constexpr DWORD kListStyle = WS_VSCROLL | WS_TABSTOP | static_cast<DWORD>(CBS_DROPDOWNLIST);
constexpr KindOfWindow kKinds[] = {
    {ControlKind::kButton, L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP},
    {ControlKind::kMenuButton, L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP},
    {ControlKind::kDefaultButton, L"BUTTON", BS_DEFPUSHBUTTON | WS_TABSTOP},
    {ControlKind::kCheckBox, L"BUTTON", BS_AUTOCHECKBOX | WS_TABSTOP},
    {ControlKind::kToggle, L"BUTTON", BS_AUTOCHECKBOX | BS_PUSHLIKE | WS_TABSTOP},
    {ControlKind::kTextBox, L"RICHEDIT50W",
     WS_VSCROLL | WS_TABSTOP | ES_MULTILINE | ES_WANTRETURN | ES_AUTOVSCROLL | ES_NOHIDESEL |
         ES_NOOLEDRAGDROP,
     WS_EX_CLIENTEDGE},
    {ControlKind::kChoice, L"COMBOBOX", kListStyle},
    {ControlKind::kColorCombo, L"COMBOBOX",
     kListStyle | static_cast<DWORD>(CBS_OWNERDRAWFIXED | CBS_HASSTRINGS)},
    {ControlKind::kField, L"EDIT", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE},
    {ControlKind::kSearch, L"EDIT", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE},
    {ControlKind::kFaceList, L"LISTBOX",
     WS_VSCROLL | WS_TABSTOP |
         static_cast<DWORD>(LBS_OWNERDRAWFIXED | LBS_NODATA | LBS_NOTIFY | LBS_NOINTEGRALHEIGHT),
     WS_EX_CLIENTEDGE},
    {ControlKind::kAxes, kPageClass, WS_CLIPCHILDREN, WS_EX_CONTROLPARENT},
    {ControlKind::kPreview, L"STATIC", SS_NOTIFY | WS_TABSTOP, WS_EX_CLIENTEDGE},
    {ControlKind::kFigure, L"STATIC", SS_CENTERIMAGE | SS_NOPREFIX | SS_ENDELLIPSIS},
    {ControlKind::kLinks, L"STATIC", SS_LEFT | SS_NOPREFIX | SS_NOTIFY},
};

const KindOfWindow& KindOf(ControlKind kind) {
  return *std::ranges::find(kKinds, kind, &KindOfWindow::kind);
}

bool CaptionStandsBefore(ControlKind kind) {
  return kind == ControlKind::kField || kind == ControlKind::kChoice ||
         kind == ControlKind::kColorCombo || kind == ControlKind::kFigure;
}

bool IsButton(ControlKind kind) {
  return kind == ControlKind::kButton || kind == ControlKind::kMenuButton ||
         kind == ControlKind::kDefaultButton || kind == ControlKind::kCheckBox ||
         kind == ControlKind::kToggle;
}

constexpr CutSection kPanelSections[] = {CutSection::kText, CutSection::kFace, CutSection::kSize,
                                         CutSection::kPaths, CutSection::kSeries};

// What stands for a sign that the interface's font lacks, the best first.
struct Sign {
  wchar_t sign;
  std::wstring_view others;
};
constexpr Sign kSigns[] = {{L'▾', L"▼v"}, {L'◀', L"◄<"}, {L'▶', L"►>"}, {L'−', L"-"}};
constexpr WORD kNoGlyph = 0xFFFF;

void SetText(HWND window, std::u16string_view text) {
  if (window != nullptr) SetWindowTextW(window, ToWide(text).c_str());
}

}  // namespace

CutPage::CutPage(HINSTANCE instance, HWND parent, CutServices& services)
    : instance_(instance), parent_(parent) {
  MakeWindows();
  SetWindowLongPtrW(Of(ControlId::kZoomFigure).window, GWL_STYLE,
                    GetWindowLongPtrW(Of(ControlId::kZoomFigure).window, GWL_STYLE) | SS_CENTER);
  MakeAccelerators();
  ShowCaptions();
  CutView& view = *this;
  presenter_ = std::make_unique<CutPresenter>(view, services);
}

CutPage::~CutPage() {
  presenter_.reset();
  DestroyWindow(window_);
  faces_.reset();
  if (accelerators_ != nullptr) DestroyAcceleratorTable(accelerators_);
  for (const HFONT font : {font_, bold_}) {
    if (font != nullptr) DeleteObject(font);
  }
}

int CutPage::Scaled(int units) const {
  return MulDiv(units, dpi_, USER_DEFAULT_SCREEN_DPI);
}

HWND CutPage::control(ControlId id) const {
  const auto made = made_.find(id);
  return made == made_.end() ? nullptr : made->second.window;
}

HWND CutPage::ParentOf(CutSection section) const {
  return *TitleOf(section) != u'\0' ? sheet_ : window_;
}

HWND CutPage::MakeWindow(HWND parent, DWORD style, int id) {
  return CreateWindowExW(WS_EX_CONTROLPARENT, kPageClass, L"", style | WS_CHILD | WS_CLIPCHILDREN,
                         0, 0, 0, 0, parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)),
                         instance_, this);
}

void CutPage::MakeWindows() {
  WNDCLASSEXW page{};
  page.cbSize = sizeof page;
  page.lpfnWndProc = PageProc;
  page.hInstance = instance_;
  page.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  page.lpszClassName = kPageClass;
  RegisterClassExW(&page);  // once; later pages find it registered
  window_ = MakeWindow(parent_, 0, 0);
  panel_ = MakeWindow(window_, WS_VISIBLE | WS_VSCROLL, 0);
  sheet_ = MakeWindow(panel_, WS_VISIBLE, 0);
  hints_ = MakeHints(instance_, window_);
  for (const CutSection section : kPanelSections) {
    titles_[section] = CreateWindowExW(0, L"STATIC", L"", WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 0, 0,
                                       0, 0, sheet_, nullptr, instance_, nullptr);
    for (const CutControlRow& row : CutControls()) {
      if (row.section == section) MakeControl(row);
    }
  }
  for (const CutControlRow& row : CutControls()) {
    if (ParentOf(row.section) == window_) MakeControl(row);
  }
  const auto make = [this](const wchar_t* name, DWORD style, int id) {
    return CreateWindowExW(0, name, L"", style | WS_CHILD, 0, 0, 0, 0, window_,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance_, nullptr);
  };
  progress_text_ = make(L"STATIC", SS_NOPREFIX | SS_CENTERIMAGE | SS_ENDELLIPSIS, 0);
  progress_bar_ = make(PROGRESS_CLASSW, 0, 0);
  cancel_ = make(L"BUTTON", BS_PUSHBUTTON | WS_TABSTOP, kCancel);
  SetWindowSubclass(Of(ControlId::kCutPreview).window, PreviewProc, kSubclass,
                    reinterpret_cast<DWORD_PTR>(this));
}

void CutPage::MakeControl(const CutControlRow& row) {
  const KindOfWindow& kind = KindOf(row.kind);
  const HWND parent = ParentOf(row.section);
  Made made;
  made.row = &row;
  const auto make = [&](const wchar_t* name, DWORD style, DWORD more, int id) {
    return CreateWindowExW(more, name, L"", style | WS_CHILD | WS_VISIBLE, 0, 0, 0, 0, parent,
                           reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), instance_, this);
  };
  if (*row.caption != u'\0' && CaptionStandsBefore(row.kind)) {
    made.caption = make(L"STATIC", SS_CENTERIMAGE | SS_NOPREFIX, 0, 0);
  }
  made.window = make(kind.class_name, kind.style, kind.more_style, static_cast<int>(row.id));
  SetWindowSubclass(made.window, ChildProc, kSubclass, reinterpret_cast<DWORD_PTR>(this));
  switch (row.kind) {
    case ControlKind::kTextBox:
      text_.emplace(made.window);
      break;
    case ControlKind::kFaceList:
      faces_.emplace(made.window);
      faces_->sample = [this](size_t face, int width, int height, Color ink, Color paper) {
        return presenter_->FaceSample(face, width, height, ink, paper);
      };
      faces_->on_star = [this](size_t face) { presenter_->FavouriteToggled(face); };
      break;
    case ControlKind::kAxes:
      axes_host_ = made.window;
      axes_.emplace(instance_, made.window);
      axes_->on_moved = [this](size_t axis, double place) { presenter_->AxisMoved(axis, place); };
      break;
    case ControlKind::kSearch:
      empty_search_ = make(L"BUTTON", BS_PUSHBUTTON, 0, kEmptySearch);
      SetText(empty_search_, u"×");
      ShowWindow(empty_search_, SW_HIDE);
      break;
    default:
      break;
  }
  made_[row.id] = std::move(made);
}

void CutPage::MakeAccelerators() {
  std::vector<ACCEL> keys;
  for (const CutControlRow& row : CutControls()) {
    AppendKeys(row.shortcut, static_cast<int>(row.id), &keys);
  }
  accelerators_ = CreateAcceleratorTableW(keys.data(), static_cast<int>(keys.size()));
}

// A sign is spoken as what it does. Empty where the control's own text is its name.
std::u16string CutPage::SpokenName(const CutControlRow& row) {
  if (row.kind == ControlKind::kFigure || row.kind == ControlKind::kLinks) return {};
  std::u16string name = WithoutMnemonic(Say(NameOf(row)));
  const bool is_word = !name.empty() && IsCharAlphaNumericW(ToWide(name)[0]);
  if (!is_word) return Say(row.hint);
  return IsButton(row.kind) ? std::u16string() : name;
}

// Signs of buttons as the font has them: it is not asked of others what it lacks.
void CutPage::ShowSigns() {
  const HDC dc = GetDC(window_);
  const HGDIOBJ before = SelectObject(dc, font_);
  for (const auto& [sign, others] : kSigns) {
    std::wstring shown(1, sign);
    for (const wchar_t other : others) {
      WORD glyph = 0;
      GetGlyphIndicesW(dc, shown.c_str(), 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS);
      if (glyph != kNoGlyph) break;
      shown.assign(1, other);
    }
    for (const auto& [id, made] : made_) {
      if (IsButton(made.row->kind) && FromWide(std::wstring(1, sign)) == made.row->caption) {
        SetWindowTextW(made.window, shown.c_str());
      }
    }
  }
  SelectObject(dc, before);
  ReleaseDC(window_, dc);
}

void CutPage::Show(bool shown) {
  ShowWindow(window_, shown ? SW_SHOW : SW_HIDE);
}

void CutPage::Place(const RECT& place) {
  SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
               place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
  LayOut();
}

void CutPage::ShowCaptions() {
  const ScopedFlag writing(shows_);
  for (const auto& [section, title] : titles_) SetText(title, Say(TitleOf(section)));
  for (const auto& [id, made] : made_) {
    const CutControlRow& row = *made.row;
    const std::u16string caption = Say(row.caption);
    const std::u16string hint = Say(row.hint);
    SetText(made.caption, caption);
    if (IsButton(row.kind) && made.own_text.empty()) SetText(made.window, caption);
    ShowHint(hints_, GetParent(made.window), made.window, hint);
    const bool is_edit = row.kind == ControlKind::kSearch || row.kind == ControlKind::kField;
    if (is_edit && row.width == kRestOfLine) {  // narrow ones would show half of it
      SendMessageW(made.window, EM_SETCUEBANNER, FALSE,
                   reinterpret_cast<LPARAM>(ToWide(hint).c_str()));
    }
    const std::u16string name = SpokenName(row);
    if (!name.empty()) NameControl(made.window, name);
  }
  SetText(cancel_, Say(u"Cancel"));
  LayOutSoon();
}

void CutPage::ShowFont(const LOGFONTW& font, int dpi) {
  dpi_ = dpi;
  description_ = font;
  LOGFONTW strong = font;
  strong.lfWeight = FW_BOLD;
  const HFONT before[] = {font_, bold_};
  font_ = CreateFontIndirectW(&font);
  bold_ = CreateFontIndirectW(&strong);
  const auto set = [](HWND window, HFONT with) {
    SendMessageW(window, WM_SETFONT, reinterpret_cast<WPARAM>(with), TRUE);
  };
  for (const auto& [section, title] : titles_) set(title, bold_);
  for (const auto& [id, made] : made_) {
    if (made.row->kind == ControlKind::kTextBox || made.row->kind == ControlKind::kAxes) continue;
    for (const HWND window : {made.caption, made.window, made.reason}) {
      if (window != nullptr) set(window, font_);
    }
  }
  for (const HWND window : {progress_text_, cancel_, empty_search_}) set(window, font_);
  for (const LinkButton& link : links_) set(link.window, font_);
  axes_->SetFont(font_, dpi_);
  faces_->SetDensity(dpi_);
  for (const HFONT old : before) {
    if (old != nullptr) DeleteObject(old);
  }
  RECT field{};
  GetWindowRect(Of(ControlId::kAlign).window, &field);
  field_height_ = field.bottom - field.top;
  // A list that draws its own items stands in line with those that do not.
  const HWND colors = Of(ControlId::kCutColor).window;
  const LRESULT item =
      SendMessageW(Of(ControlId::kAlign).window, CB_GETITEMHEIGHT, static_cast<WPARAM>(-1), 0);
  SendMessageW(colors, CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), item);
  SendMessageW(colors, CB_SETITEMHEIGHT, 0, Scaled(20));
  ShowSigns();
  ShowLooks();
  LayOut();
}

}  // namespace kerno
