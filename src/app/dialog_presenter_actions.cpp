// The main window's buttons, menu and drops, and what it says of their results.

#include <utility>

#include "app/dialog_presenter.h"
#include "app/dropped_file.h"
#include "app/status_text.h"
#include "app/text_source.h"
#include "base/folders.h"
#include "base/text.h"
#include "base/text_file.h"
#include "export/draw_parts.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

std::u16string LineOf(const Status& status) {
  return status.why.empty() ? status.what : status.what + u": " + status.why;
}

}  // namespace

void DialogPresenter::Pressed(ControlId button) {
  if (const Format* format = FormatOfButton(static_cast<int>(button))) return WriteOutput(*format);
  switch (button) {
    case ControlId::kUpload:
      return Upload();
    case ControlId::kPaste:
      return view_.PasteIntoText();
    case ControlId::kQuit:
      return view_.CloseWindow();
    default:
      return;  // the hidden default button does nothing
  }
}

void DialogPresenter::Chosen(MenuCommand command) {
  switch (command) {
    case MenuCommand::kAbout: {
      std::u16string version, copyright;
      services_.AboutTexts(&version, &copyright);
      return view_.ShowAbout(version, copyright);
    }
    case MenuCommand::kOpenFolder: {
      (void)MakeFolders(outputs_.folder());  // opening it tells
      if (!services_.OpenFolder(outputs_.folder())) {
        ShowStatus(PathText(outputs_.folder()) + u": cannot be opened", StatusKind::kFailure);
      }
      return;
    }
    case MenuCommand::kChooseFolder: {
      if (const auto folder = view_.AskFolder(outputs_.folder())) {
        memory_.output_folder = PathText(*folder);
        SetOutputFolder(*folder);
      }
      return;
    }
    case MenuCommand::kDefaultFolder:
      memory_.output_folder.clear();
      return SetOutputFolder(services_.DefaultOutputFolder());
    case MenuCommand::kQuit:
      return view_.CloseWindow();
    case MenuCommand::kFitPreview:
      return PreviewDoubleClicked();
    case MenuCommand::kLines:
      memory_.elements = ContourElements::kLines;
      break;
    case MenuCommand::kFaces:
      memory_.elements = ContourElements::kFaces;
      break;
    case MenuCommand::kLinesAndFaces:
      memory_.elements = ContourElements::kBoth;
      break;
    case MenuCommand::kPitchClassic:
      memory_.pitch = VerticalPitch::kClassic;
      break;
    case MenuCommand::kPitchCell:
      memory_.pitch = VerticalPitch::kCell;
      break;
    case MenuCommand::kAciClassic:
      memory_.aci = AciRule::kClassic;
      return ShowMenu();
    case MenuCommand::kAciNearest:
      memory_.aci = AciRule::kNearest;
      return ShowMenu();
  }
  ShowMenu();
  Rebuild();
}

void DialogPresenter::ShowMenu() {
  using enum MenuCommand;
  view_.ShowMenuChecked(kLines, memory_.elements == ContourElements::kLines);
  view_.ShowMenuChecked(kFaces, memory_.elements == ContourElements::kFaces);
  view_.ShowMenuChecked(kLinesAndFaces, memory_.elements == ContourElements::kBoth);
  view_.ShowMenuChecked(kPitchClassic, memory_.pitch == VerticalPitch::kClassic);
  view_.ShowMenuChecked(kPitchCell, memory_.pitch == VerticalPitch::kCell);
  view_.ShowMenuChecked(kAciClassic, memory_.aci == AciRule::kClassic);
  view_.ShowMenuChecked(kAciNearest, memory_.aci == AciRule::kNearest);
}

void DialogPresenter::SetOutputFolder(const fs::path& folder) {
  outputs_.SetFolder(folder);
  ShowStatus(u"Outputs go to " + PathText(folder), StatusKind::kNormal);
}

// Outputs

OutputSubject DialogPresenter::Subject() const {
  return {.face = SystemFaceName(Face()),
          .height = memory_.height,
          .text = text_,
          .color = FirstColor()};
}

void DialogPresenter::WriteOutput(const Format& format) {
  const PartsA& drawing = parts();
  collects_ = true;
  OutputOptions options;
  options.dxf.aci = memory_.aci;
  outputs_.Write(format, drawing, options, Subject());
  ReportOutputs();
}

void DialogPresenter::Upload() {
  if (is_pending_) Rebuild();
  collects_ = true;
  std::u16string answer;
  if (outputs_.WritePage(Subject())) {
    const Status sent = services_.Upload(outputs_.written(), &answer);
    if (!sent.ok()) failures_ += LineOf(sent) + u"\n";
  }
  const bool failed = !failures_.empty();
  ReportOutputs();
  if (!failed) ShowStatus(u"Sent. " + answer, StatusKind::kNormal);
}

void DialogPresenter::ReportOutputs() {
  collects_ = false;
  EndProgress();
  std::u16string names;
  for (const fs::path& file : reported_) {
    if (!names.empty()) names += u", ";
    names += PathText(file.extension());
  }
  const std::u16string failures = std::exchange(failures_, {});
  const std::u16string messages = std::exchange(messages_, {});
  const bool wrote = !reported_.empty();
  reported_.clear();
  std::u16string told = failures + messages;
  if (!told.empty()) told.pop_back();
  const auto closed = [answers = std::exchange(answers_, {})] {
    for (const auto& answered : answers) answered(kOkButton);
  };
  if (!failures.empty() || (outputs_.folder_refused() && !told.empty())) {
    view_.ShowMessage(told, closed);
  } else {
    closed();
  }
  if (!failures.empty()) {
    return ShowStatus(failures.substr(0, failures.find(u'\n')), StatusKind::kFailure);
  }
  if (!wrote) return;
  std::u16string status = u"Wrote " + names + u" of " + PathText(outputs_.base_path().stem()) +
                          u" in " + PathText(outputs_.folder());
  if (PartsView(parts()).empty()) status = u"The drawing is empty. " + status;
  if (!messages.empty()) status += u"  ·  " + messages.substr(0, messages.find(u'\n'));
  const bool warns = !messages.empty() || PartsView(parts()).empty();
  ShowStatus(std::move(status), warns ? StatusKind::kWarning : StatusKind::kNormal);
}

void DialogPresenter::MetafileWritten(const fs::path& metafile, const Status& result) {
  FileWritten(metafile, result);
}

void DialogPresenter::FileWritten(const fs::path& file, const Status& result) {
  if (result.ok()) {
    reported_.push_back(file);
  } else {
    failures_ += LineOf(result) + u"\n";
  }
}

// Notices

void DialogPresenter::Message(std::u16string_view text) {
  if (!collects_) return view_.ShowMessage(text);
  messages_ += text;
  messages_ += u"\n";
}

void DialogPresenter::Ask(std::u16string_view text,
                          const std::function<void(int button)>& answered) {
  if (!collects_) return view_.ShowMessage(text, [answered] { answered(kOkButton); });
  Message(text);
  answers_.push_back(answered);
}

void DialogPresenter::ShowWait(std::u16string_view text) {
  view_.ShowStatus(text, StatusKind::kWarning);
}

void DialogPresenter::ClearWait() {
  ShowStatusAgain();
}

Continue DialogPresenter::Progress(std::u16string_view text, int64_t done, int64_t total) {
  shows_progress_ = true;
  return view_.ShowProgress(text,
                            total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0);
}

void DialogPresenter::EndProgress() {
  if (shows_progress_) view_.EndProgress();
  shows_progress_ = false;
}

// Drops

void DialogPresenter::Dropped(const std::vector<fs::path>& files) {
  for (const fs::path& file : files) {
    const bool taken = DropOne(file);
    EndProgress();
    if (taken) continue;
    const std::u16string text =
        PathText(file) + (PathExists(file)
                              ? u": Kerno takes text files, parts files (.ipx) and font files."
                              : u": there is no such file.");
    ShowStatus(text, StatusKind::kWarning);
    view_.ShowMessage(text);
  }
}

bool DialogPresenter::DropOne(const fs::path& file) {
  switch (KindOfDropped(file)) {
    case DroppedKind::kText:
      DropText(file);
      return true;
    case DroppedKind::kParts:
      DropParts(file);
      return true;
    case DroppedKind::kFont:
      DropFont(file);
      return true;
    default:
      return false;
  }
}

void DialogPresenter::DropText(const fs::path& file) {
  if (FactsOfPath(file).size > kLargestDroppedText) {
    view_.ShowMessage(PathText(file) + u": is larger than 4 MiB, too much for one drawing");
    return;
  }
  std::u16string text;
  // What is neither UTF-16 nor UTF-8 is taken for the 8-bit code page.
  if (!LoadText(file, &text).ok()) {
    std::string bytes;
    const Status read = ReadFileBytes(file, &bytes);
    if (!read.ok()) return view_.ShowMessage(LineOf(read));
    text = DecodeText(bytes);
  }
  text = LinesOf(text);
  view_.ShowText(text, TextChange::kUndoable);
  LinesChanged(text);
}

void DialogPresenter::DropParts(const fs::path& file) {
  PartsA read;
  const Status status = services_.ReadParts(file, &read);
  if (!status.ok()) {
    ShowStatus(LineOf(status), StatusKind::kFailure);
    view_.ShowMessage(LineOf(status));
    return;
  }
  is_pending_ = false;
  unseen_.clear();
  contours_ = NoContours();
  parts_ = std::move(read);
  parts_are_stale_ = false;
  item_count_ = PartsView(parts_).size();
  ShowStatus(DescribeParts(parts_, PathText(file.filename()), DrawingBox()), StatusKind::kNormal);
  preview_.ShowAll();
  ShowDrawing();
}

void DialogPresenter::DropFont(const fs::path& file) {
  std::vector<std::u16string> faces;
  const Status status = services_.LoadFontFile(file, &faces);
  if (!status.ok() || faces.empty()) {
    const std::u16string why =
        status.ok() ? PathText(file) + u": holds no face that can be used" : LineOf(status);
    ShowStatus(why, StatusKind::kFailure);
    view_.ShowMessage(why);
    return;
  }
  view_.LoadFontFile(file);  // the text box may lack it; the outlines do not
  view_.ShowFaces(services_.Faces());
  memory_.face = faces.front();
  view_.ShowControlText(ControlId::kFace, memory_.face);
  Rebuild();
}

}  // namespace kerno
