// The Cut page: lays its controls out, forwards what the user does, shows what it is told.
#pragma once

#include <QTimer>
#include <QWidget>
#include <map>
#include <string>
#include <vector>

#include "app/cut_controls.h"
#include "app/cut_presenter.h"
#include "app/cut_view.h"

class QAbstractButton;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QProgressBar;
class QScrollArea;
class QSplitter;
class QVBoxLayout;

namespace kerno {

class AxisSliders;
class FaceList;
class PreviewFrame;
struct PreviewEvents;
class StatusLinks;
class TextBox;

class CutPage final : public QWidget, public CutView {
 public:
  explicit CutPage(QWidget* parent = nullptr);
  ~CutPage() override;

  // Before anything happens in the page; outlives what happens.
  void SetPresenter(CutPresenter* presenter);

  // The captions in the current language.
  void ShowCaptions();
  // Presses the button that a key belongs to; false where none is shown.
  bool TakesKey(const QKeySequence& key) const;
  TextBox* text() const { return text_; }

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;

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

  // A control's event for the presenter, unless the view's own writing has caused it.
  template <class Event>
  auto UnlessShown(Event event) {
    return [this, event](auto&&... arguments) {
      if (!shows_ && presenter_) event(std::forward<decltype(arguments)>(arguments)...);
    };
  }

  // A line of the panel: its controls, and what is wrong with one of them.
  struct PanelLine {
    std::vector<ControlId> controls;
    QLabel* fault;
    QHBoxLayout* small = nullptr;  // controls without captions, more than two of them
  };
  struct Section {
    QLabel* title = nullptr;
    std::vector<ControlId> controls;
  };

  void MakeControls();
  QWidget* MakeControl(const CutControlRow& row);
  QAbstractButton* MakeButton(const CutControlRow& row);
  QWidget* MakeField(const CutControlRow& row);
  QWidget* MakeChoice(const CutControlRow& row);
  QWidget* MakeFaceList(const CutControlRow& row);
  PreviewEvents CutPreviewEvents();
  static void SetKey(QAbstractButton* button, const CutControlRow& row);
  void ShowCaption(const CutControlRow& row);
  void LayOut();
  QWidget* MakePanel();
  void AddToPanel(const CutControlRow& row);
  void AddLine();
  QWidget* MakePreviewSide();
  void AddOutputs(QVBoxLayout* page);
  void AddProgress(QVBoxLayout* page);
  void ArrangeForWidth();
  void ShowTitles();
  void ShowInk(QLabel* label, StatusKind kind) const;
  void OrderTabs();
  template <class Widget>
  Widget* Find(ControlId id) const {
    return static_cast<Widget*>(controls_.at(id));
  }

  CutPresenter* presenter_ = nullptr;
  std::map<ControlId, QWidget*> controls_;
  std::map<ControlId, QLabel*> captions_;  // before their controls
  std::map<CutSection, Section> sections_;
  std::vector<PanelLine> lines_;
  std::map<ControlId, std::u16string> faults_;
  TextBox* text_ = nullptr;
  FaceList* faces_ = nullptr;
  AxisSliders* axes_ = nullptr;
  PreviewFrame* preview_ = nullptr;
  StatusLinks* status_ = nullptr;
  struct {
    std::u16string text;
    StatusKind kind = StatusKind::kNormal;
    std::vector<StatusLink> links;
  } status_shown_;
  QSplitter* split_ = nullptr;
  QWidget* panel_ = nullptr;
  QGridLayout* grid_ = nullptr;
  QScrollArea* scroller_ = nullptr;
  QWidget* preview_side_ = nullptr;
  QWidget* progress_ = nullptr;
  QLabel* progress_text_ = nullptr;
  QProgressBar* progress_bar_ = nullptr;
  QAbstractButton* cancel_ = nullptr;
  QTimer due_;
  bool shows_ = false;  // controls are being written: nothing is an event
  bool is_narrow_ = false;
};

}  // namespace kerno
