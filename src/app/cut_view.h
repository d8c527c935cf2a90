// What the Cut page asks of whatever draws it. A view shows and forwards; it decides nothing.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/color_choices.h"
#include "app/controls.h"
#include "app/dialog_view.h"
#include "drawing/drawing.h"

namespace kerno {

struct OpenQuestion {
  std::u16string title;
  std::filesystem::path folder;  // where the question begins
  struct Kind {
    std::u16string name;                     // "Tables"
    std::vector<std::u16string> extensions;  // "csv"; empty: any file
  };
  std::vector<Kind> kinds;
};

struct MenuItem {
  std::u16string text;
  bool checked = false;
  bool separator_before = false;
  bool enabled = true;
};

// An axis of a variable font, as a slider shows it.
struct AxisRow {
  std::u16string name;
  double least = 0, most = 0, place = 0;
};

// Words of a status that do something.
struct StatusLink {
  size_t first = 0, count = 0;  // UTF-16 units of the status' text
  int number = 0;               // CutPresenter::LinkFollowed gets it
};

// A row of the list of faces. Its sample is asked for when the row is painted
// (CutPresenter::FaceSample).
struct FaceListRow {
  std::u16string name;  // in the interface's font
  std::u16string note;  // what else there is to say of it
  bool favourite = false;
};

// Nothing that is called here may come back as an event of the page.
class CutView {
 public:
  virtual ~CutView() = default;

  // The text box; lines end in U+000A.
  virtual void ShowText(std::u16string_view text, TextChange change) = 0;
  // The text of a field or a figure; the caption of a button, where it changes.
  virtual void ShowControlText(ControlId id, std::u16string_view text) = 0;
  virtual void ShowChecked(ControlId id, bool checked) = 0;
  virtual void ShowChoices(ControlId id, const std::vector<std::u16string>& items,
                           size_t selected) = 0;
  virtual void ShowColors(ControlId id, const std::vector<ColorChoice>& colors,
                          size_t selected) = 0;
  virtual void ShowMenuItems(ControlId id, const std::vector<MenuItem>& items) = 0;
  // Marks a field whose text cannot be used, with the reason; empty: nothing is wrong.
  virtual void ShowFault(ControlId id, std::u16string_view why) = 0;
  virtual void Enable(ControlId id, bool enabled) = 0;
  // A control that is not shown takes no room, nor does its caption.
  virtual void ShowControl(ControlId id, bool visible) = 0;

  virtual void ShowFaceRows(const std::vector<FaceListRow>& rows,
                            std::optional<size_t> selected) = 0;
  // Samples are there that were not: the rows in sight are painted again.
  virtual void RepaintFaceRows() = 0;
  virtual void ShowAxes(const std::vector<AxisRow>& axes) = 0;

  // Makes the preview paint itself again, soon.
  virtual void RepaintPreview() = 0;
  // Of the screen that the preview is on, in the preview's frame pixels.
  virtual double PixelsPerMillimetre() const = 0;

  virtual void ShowStatus(std::u16string_view text, StatusKind kind,
                          const std::vector<StatusLink>& links) = 0;

  // Questions; nothing when they are cancelled.
  virtual std::optional<std::filesystem::path> AskSave(const SaveQuestion& question) = 0;
  virtual std::optional<std::filesystem::path> AskOpen(const OpenQuestion& question) = 0;
  virtual std::optional<std::filesystem::path> AskFolder(const std::filesystem::path& start) = 0;
  virtual std::optional<std::u16string> AskName(std::u16string_view title,
                                                std::u16string_view proposed) = 0;
  // A question with the buttons named and Cancel, which is the one that Enter presses.
  virtual std::optional<size_t> AskWhich(std::u16string_view text,
                                         const std::vector<std::u16string>& buttons) = 0;
  bool AskWhether(std::u16string_view text, std::u16string_view button) {
    return AskWhich(text, {std::u16string(button)}).has_value();
  }

  virtual void CopyText(std::u16string_view text) = 0;
  // A picture for other programs, as text and as image/svg+xml.
  virtual void CopySvg(std::string_view svg) = 0;
  // Asks for a printer and draws in true size; `title` names the job. The view tells failures, and
  // asks where the drawing is larger than the page.
  virtual void Print(const Drawing& drawing, std::u16string_view title) = 0;

  // Progress of something that runs beside the window, from 0 to 1, with a button to cancel it
  // (CutPresenter::Cancelled); below 0: there is none any more.
  virtual void ShowProgress(std::u16string_view text, double part) = 0;

  // May be called by any thread: CutPresenter::Awake is called soon by the window's thread.
  virtual void WakeUp() = 0;
  // CutPresenter::Due is called after some milliseconds, once; a call before that starts again.
  virtual void CallWhenDue(int milliseconds) = 0;
};

}  // namespace kerno
