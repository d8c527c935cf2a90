// The Cut page of the window: a panel of sections that scrolls, the preview with a bar under it,
// and a line of outputs. It shows and forwards; the decisions are CutPresenter's.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/cut_presenter.h"
#include "platform/drawing.h"
#include "platform/win32/windows_api.h"
#include "ui/win32/axis_sliders.h"
#include "ui/win32/face_rows.h"
#include "ui/win32/text_box.h"

namespace kerno {

class CutPage final : public CutView {
 public:
  // Makes the page in `parent`, hidden. `services` outlives it.
  CutPage(HINSTANCE instance, HWND parent, CutServices& services);
  ~CutPage() override;
  CutPage(const CutPage&) = delete;
  CutPage& operator=(const CutPage&) = delete;

  HWND window() const { return window_; }
  HWND control(ControlId id) const;
  CutPresenter& presenter() { return *presenter_; }
  // Why a field is marked; empty where it is not.
  std::u16string ReasonOf(ControlId id) const;

  void Show(bool shown);
  void Place(const RECT& place);
  // The least client area in which it can be used, in pixels of the first density.
  static constexpr SIZE kLeast = {620, 330};
  void ShowFont(const LOGFONTW& font, int dpi);
  void ShowCaptions();
  void ShowLooks();
  void FocusText() const { SetFocus(text_->control()); }

  // The keys of the page's controls, and what they press.
  HACCEL accelerators() const { return accelerators_; }
  bool Command(int id, int notification);
  // Escape empties the search. Whether the message was that.
  bool TakesKey(const MSG& message);

 private:
  // CutView
  void ShowText(std::u16string_view text, TextChange change) override;
  void ShowControlText(ControlId id, std::u16string_view text) override;
  void ShowChecked(ControlId id, bool checked) override;
  void ShowChoices(ControlId id, const std::vector<std::u16string>& items,
                   size_t selected) override;
  void ShowColors(ControlId id, const std::vector<ColorChoice>& colors, size_t selected) override;
  void ShowMenuItems(ControlId id, const std::vector<MenuItem>& items) override;
  void ShowFault(ControlId id, std::u16string_view why) override;
  void Enable(ControlId id, bool enabled) override;
  void ShowControl(ControlId id, bool visible) override;
  void ShowFaceRows(const std::vector<FaceListRow>& rows, std::optional<size_t> selected) override;
  void RepaintFaceRows() override;
  void ShowAxes(const std::vector<AxisRow>& axes) override;
  void RepaintPreview() override;
  double PixelsPerMillimetre() const override;
  void ShowStatus(std::u16string_view text, StatusKind kind,
                  const std::vector<StatusLink>& links) override;
  std::optional<std::filesystem::path> AskSave(const SaveQuestion& question) override;
  std::optional<std::filesystem::path> AskOpen(const OpenQuestion& question) override;
  std::optional<std::filesystem::path> AskFolder(const std::filesystem::path& start) override;
  std::optional<std::u16string> AskName(std::u16string_view title,
                                        std::u16string_view proposed) override;
  std::optional<size_t> AskWhich(std::u16string_view text,
                                 const std::vector<std::u16string>& buttons) override;
  void CopyText(std::u16string_view text) override;
  void CopySvg(std::string_view svg) override;
  void Print(const Drawing& drawing, std::u16string_view title) override;
  void ShowProgress(std::u16string_view text, double part) override;
  void WakeUp() override;
  void CallWhenDue(int milliseconds) override;

  static constexpr UINT kAwake = WM_APP + 1;
  static constexpr UINT kLayOut = WM_APP + 2;  // soon, once for many changes
  static constexpr UINT_PTR kDueTimer = 1;
  static constexpr int kCancel = 3900;       // the button beside the progress
  static constexpr int kEmptySearch = 3901;  // the mark that empties the search
  static constexpr int kFirstLink = 3910;

  // A control of the table with what belongs to it.
  struct Made {
    const CutControlRow* row = nullptr;
    HWND window = nullptr;
    HWND caption = nullptr;  // before it, where it has one
    HWND reason = nullptr;   // of its fault, below it
    bool shown = true;
    std::u16string own_text;      // a button's, where the presenter has set one
    std::vector<MenuItem> items;  // of a menu button
  };
  struct Cell {
    const Made* made = nullptr;
    int caption = 0;  // widths
    int width = 0;
    bool grows = false;
  };
  enum class Pass { kMeasure, kPlace };

  // cut_page.cpp
  void MakeWindows();
  HWND MakeWindow(HWND parent, DWORD style, int id);
  void MakeControl(const CutControlRow& row);
  void MakeAccelerators();
  static std::u16string SpokenName(const CutControlRow& row);
  void ShowSigns();
  const Made& Of(ControlId id) const { return made_.at(id); }
  Made& Of(ControlId id) { return made_.at(id); }
  HWND ParentOf(CutSection section) const;
  int Scaled(int units) const;

  // cut_page_events.cpp
  static LRESULT CALLBACK PageProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  static LRESULT CALLBACK ChildProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                    UINT_PTR id, DWORD_PTR self);
  static LRESULT CALLBACK PreviewProc(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                      UINT_PTR id, DWORD_PTR self);
  LRESULT Receive(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
  LRESULT ReceiveInPreview(UINT message, WPARAM wparam, LPARAM lparam);
  void GrabPreview(POINT at, WPARAM keys);
  bool FollowLink(int id);
  LRESULT Notify(const NMHDR& header);
  void DrawItem(const DRAWITEMSTRUCT& item);
  HBRUSH GroundOf(UINT message, HDC dc, HWND control) const;
  void OpenMenu(ControlId id);
  void PaintPreview(HDC dc);
  void PaintPlaceholder() const;
  double Density() const { return static_cast<double>(dpi_) / USER_DEFAULT_SCREEN_DPI; }

  // cut_page_layout.cpp
  void LayOut();
  void LayOutSoon();
  void LayOutPanel(int width, int height);
  int LayOutSection(CutSection section, int left, int top, int width, Pass pass) const;
  int LayOutLine(const std::vector<Cell>& line, int left, int top, int width, int captions,
                 Pass pass) const;
  int LayOutReasons(const std::vector<Cell>& line, int left, int top, int width, Pass pass) const;
  void PlaceCell(const Cell& cell, int left, int top, int width, int height) const;
  void LayOutLinks(int left, int top, int width, int height) const;
  void LayOutProgress(int left, int top, int width) const;
  Cell CellOf(const Made& made) const;
  int HeightOf(const Made& made) const;
  int CaptionColumn(CutSection section) const;
  int TextWidth(std::u16string_view text) const;
  void ScrollTo(int top);
  void ScrollBy(int pixels) { ScrollTo(scroll_ + pixels); }
  void ScrollByBar(int request);
  void ShowWhole(HWND control);

  HINSTANCE instance_;
  HWND parent_;
  HWND window_ = nullptr;
  HWND panel_ = nullptr;  // shows a part of the sheet
  HWND sheet_ = nullptr;  // holds the sections
  HWND axes_host_ = nullptr;
  HWND hints_ = nullptr;
  HWND progress_text_ = nullptr, progress_bar_ = nullptr, cancel_ = nullptr;
  HWND empty_search_ = nullptr;
  std::map<ControlId, Made> made_;
  std::map<CutSection, HWND> titles_;
  HACCEL accelerators_ = nullptr;
  HFONT font_ = nullptr, bold_ = nullptr;
  LOGFONTW description_{};
  int dpi_ = USER_DEFAULT_SCREEN_DPI;
  int field_height_ = 0;
  int scroll_ = 0;
  std::optional<TextBox> text_;
  std::optional<FaceRowList> faces_;
  std::optional<AxisSliders> axes_;
  std::unique_ptr<BitmapSurface> picture_;
  bool picture_is_stale_ = true;
  HMENU popup_ = nullptr;  // while a menu is open
  StatusKind status_kind_ = StatusKind::kNormal;
  struct LinkButton {
    HWND window;
    int number;
  };
  std::vector<LinkButton> links_;  // words of the status that do something
  bool shows_ = false;             // what comes from the controls meanwhile is an echo
  bool layout_waits_ = false;
  bool shows_progress_ = false;
  std::unique_ptr<CutPresenter> presenter_;
};

}  // namespace kerno
