// What the main window asks of whatever draws it. A view shows and forwards; it decides nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/color_choices.h"
#include "app/controls.h"
#include "base/notices.h"
#include "platform/shell.h"

namespace kerno {

enum class StatusKind { kNormal, kWarning, kFailure };

// A rectangle of the screen, frame and title bar included, in the units in which the view counts
// windows.
struct WindowRect {
  int32_t left = 0, top = 0, right = 0, bottom = 0;
  bool operator==(const WindowRect&) const = default;
};

// Where the window is when it is neither minimised nor maximised, and what it is now.
struct WindowPlace {
  WindowRect normal;  // empty: wherever the system puts it
  WindowShow show = WindowShow::kNormal;
  bool operator==(const WindowPlace&) const = default;
};

// The two ways of working.
enum class WindowMode { kClassic, kCut };

// What the user is asked before a file is written. The view asks before another file is replaced.
struct SaveQuestion {
  std::u16string title;
  std::filesystem::path folder;  // where the question begins
  std::u16string name;           // proposed, with its extension
  struct Kind {
    std::u16string name;       // "DXF drawing"
    std::u16string extension;  // "dxf"
  };
  std::vector<Kind> kinds;  // to choose from, the proposed one first
};

enum class TextChange {
  kFresh,     // nothing to undo
  kUndoable,  // a step that the user can undo
};

// Nothing that is called here may come back as an event of the dialog.
class DialogView {
 public:
  virtual ~DialogView() = default;

  // Replaces the text; lines end in U+000A.
  virtual void ShowText(std::u16string_view text, TextChange change) = 0;

  // Shows the text box in a face and a colour, leaving text, undo, caret, selection and an input
  // method's composition alone. A face of vertical writing has "@" in front; where fonts know no
  // such faces its plain family is shown.
  virtual void ShowTextFormat(std::u16string_view face, Color color) = 0;

  virtual void ShowFaces(const std::vector<std::u16string>& faces) = 0;

  // The text of an edit, a combo's edit or a static text.
  virtual void ShowControlText(ControlId id, std::u16string_view text) = 0;
  virtual void ShowChecked(ControlId id, bool checked) = 0;
  virtual void ShowColors(ControlId id, const std::vector<ColorChoice>& colors,
                          size_t selected) = 0;
  // Marks a field whose text cannot be used as it stands, with the reason; empty: all is well.
  virtual void ShowFault(ControlId id, std::u16string_view why) = 0;
  virtual void Enable(ControlId id, bool enabled) = 0;
  virtual void ShowControl(ControlId id, bool visible) = 0;
  virtual void ShowMenuChecked(MenuCommand command, bool checked) = 0;
  virtual void ShowStatus(std::u16string_view text, StatusKind kind) = 0;

  // Which of the two ways of working is there.
  virtual void ShowMode(WindowMode mode) = 0;

  // The language has changed: all captions, names and hints are set again (app/captions.h).
  virtual void ShowCaptions() = 0;

  // Makes the preview paint itself again, soon.
  virtual void RepaintPreview() = 0;

  // A message that the user closes.
  void ShowMessage(std::u16string_view text) {
    ShowMessage(text, [] {});
  }
  virtual void ShowMessage(std::u16string_view text, std::function<void()> closed) = 0;

  // Progress of something long, from 0 to 1; shown only when it takes kProgressDelay. kNo when the
  // user cancelled.
  virtual Continue ShowProgress(std::u16string_view text, double part) = 0;
  // The same, at once, of work beside the window, which goes on taking input.
  virtual Continue ShowWork(std::u16string_view text, double part) = 0;
  virtual void EndProgress() = 0;

  // Asks whether to try again or to cancel; `answered` is called when the user has chosen.
  virtual void AskAgain(std::u16string_view text, std::function<void(bool again)> answered) = 0;

  // Called by any thread: calls DialogPresenter::Awake soon, by the window's thread.
  virtual void WakeUp() = 0;

  // The About box, with the texts of controls kAboutVersion and kAboutCopyright.
  virtual void ShowAbout(std::u16string_view version, std::u16string_view copyright) = 0;

  // Lets the user choose a folder; nothing when cancelled.
  virtual std::optional<std::filesystem::path> AskFolder(const std::filesystem::path& start) = 0;

  // Lets the user choose a file to write; nothing when cancelled.
  virtual std::optional<std::filesystem::path> AskSave(const SaveQuestion& question) = 0;

  // Does one of the edit commands (IsEditCommand) to the text in the text box.
  virtual void EditText(MenuCommand command) = 0;

  // Makes the toolkit's own fonts know a font file for this run. Whether it did.
  virtual bool LoadFontFile(const std::filesystem::path& file) = 0;

  // Calls DialogPresenter::Due after some milliseconds, once; a call before that starts the time
  // again.
  virtual void CallWhenDue(int milliseconds) = 0;

  virtual WindowPlace PlaceOfWindow() const = 0;
  // Puts the window there. It is shown maximised if it was so, and as usual otherwise.
  virtual void PlaceWindow(const WindowPlace& place) = 0;
  virtual std::vector<WindowRect> Screens() const = 0;  // their work areas

  virtual void CloseWindow() = 0;
};

}  // namespace kerno
