// The main window's buttons, menu and drops, and what it says of their results.

#include <algorithm>
#include <chrono>
#include <mutex>
#include <thread>
#include <utility>

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "app/dialog_presenter.h"
#include "app/dropped_file.h"
#include "app/output_name.h"
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

// Attempts, 100 ms apart, after which the user is asked about a file that another program holds.
constexpr int kAttemptsUnasked = 3;

// The formats of drawings, `first` at the head.
std::vector<SaveQuestion::Kind> CopyKinds(std::string_view first) {
  std::vector<SaveQuestion::Kind> kinds;
  for (const Format& format : Formats()) {
    SaveQuestion::Kind kind = {Say(Utf8ToUtf16Lossy(format.name)),
                               Utf8ToUtf16Lossy(format.extension)};
    kinds.insert(format.extension == first ? kinds.begin() : kinds.end(), std::move(kind));
  }
  return kinds;
}

// Whether fonts are needed to write it, which are for one thread at a time.
bool HasTexts(const PartsA& parts) {
  return std::ranges::any_of(parts.parts, [](const PartsElement& part) {
    return !part.horizontal_texts.items.empty() || !part.vertical_texts.items.empty();
  });
}

}  // namespace

void DialogPresenter::Pressed(ControlId button) {
  if (const Format* format = FormatOfButton(static_cast<int>(button))) return WriteOutput(*format);
  switch (button) {
    case ControlId::kUpload:
      return Upload();
    case ControlId::kPaste:
      return view_.EditText(MenuCommand::kPaste);
    case ControlId::kQuit:
      return view_.CloseWindow();
    default:
      return;  // the hidden default button does nothing
  }
}

void DialogPresenter::Chosen(MenuCommand command) {
  if (IsEditCommand(command)) return view_.EditText(command);
  if (memory_.mode == WindowMode::kCut && IsOfClassicAlone(command)) return;
  switch (command) {
    case MenuCommand::kAbout: {
      std::u16string version, copyright;
      services_.AboutTexts(&version, &copyright);
      return view_.ShowAbout(version, copyright);
    }
    case MenuCommand::kOpenFolder: {
      (void)MakeFolders(folder_);  // opening it tells
      if (!services_.OpenFolder(folder_)) {
        ShowStatus(Say(u"{}: cannot be opened", {PathText(folder_)}), StatusKind::kFailure);
      }
      return;
    }
    case MenuCommand::kChooseFolder: {
      if (const auto folder = view_.AskFolder(folder_)) {
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
    case MenuCommand::kSaveCopy:
      return SaveCopy();
    case MenuCommand::kLanguageSystem:
      memory_.language = LanguageChoice::kSystem;
      return ShowLanguage();
    case MenuCommand::kLanguageJapanese:
      memory_.language = LanguageChoice::kJapanese;
      return ShowLanguage();
    case MenuCommand::kLanguageEnglish:
      memory_.language = LanguageChoice::kEnglish;
      return ShowLanguage();
    case MenuCommand::kLanguageGerman:
      memory_.language = LanguageChoice::kGerman;
      return ShowLanguage();
    default:
      return;
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
  view_.ShowMenuChecked(kLanguageSystem, memory_.language == LanguageChoice::kSystem);
  view_.ShowMenuChecked(kLanguageJapanese, memory_.language == LanguageChoice::kJapanese);
  view_.ShowMenuChecked(kLanguageEnglish, memory_.language == LanguageChoice::kEnglish);
  view_.ShowMenuChecked(kLanguageGerman, memory_.language == LanguageChoice::kGerman);
}

// What is being written goes on where it began.
void DialogPresenter::SetOutputFolder(const fs::path& folder) {
  folder_ = folder;
  if (IsWriting()) {
    RunBeside([this, folder] { outputs_.SetFolder(folder); }, [](const WorkReport&) {});
  } else {
    outputs_.SetFolder(folder);
  }
  ShowStatus(Say(u"Outputs go to {}", {PathText(folder)}), StatusKind::kNormal);
}

// Outputs

OutputSubject DialogPresenter::Subject() const {
  return {.face = SystemFaceName(Face()),
          .height = memory_.height,
          .text = text_,
          .made_of = dropped_.empty() ? text_ : dropped_,
          .color = FirstColor()};
}

OutputOptions DialogPresenter::Options() const {
  OutputOptions options;
  options.dxf.aci = memory_.aci;
  return options;
}

// The drawing as it is now, which the window goes on changing. Parts that are made when they are
// looked at are looked at by one thread alone.
std::shared_ptr<const PartsA> DialogPresenter::Snapshot() {
  const PartsA& now = parts();
  return std::make_shared<const PartsA>(
      now.made ? DrawingOf(contours_, {.elements = memory_.elements}) : PartsA(now));
}

// The piece after it may run before `done` does, so each has a report of its own.
void DialogPresenter::RunBeside(std::function<void()> work, WorkDone done) {
  const auto report = std::make_shared<WorkReport>();
  const auto piece = [this, report, work = std::move(work)] {
    report_ = report.get();
    work();
    report_ = nullptr;
    report->base_path = outputs_.base_path();
    report->folder = outputs_.folder();
    report->replaced_another = outputs_.replaced_another();
  };
  background_.Run(piece, [report, done = std::move(done)] { done(*report); });
  if (!is_pending_) view_.CallWhenDue(kProgressDelay);
}

void DialogPresenter::WriteDrawing(const std::function<void(const PartsA& drawing)>& write,
                                   WorkDone done) {
  auto drawing = Snapshot();
  const bool has_texts = HasTexts(*drawing);
  if (has_texts && IsWriting()) {
    return ShowStatus(Say(u"Still writing. Press again when that is done."), StatusKind::kWarning);
  }
  const bool is_empty = PartsView(*drawing).empty();
  const auto work = [this, write, drawing, is_empty] {
    report_->is_empty = is_empty;
    write(*drawing);
  };
  RunBeside(work, std::move(done));
  if (has_texts) WaitForWriting();
}

void DialogPresenter::WaitForWriting() {
  window_waits_ = true;
  while (IsWriting()) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
    Awake();
  }
  window_waits_ = false;
}

void DialogPresenter::WriteOutput(const Format& format) {
  const auto write = [this, &format, options = Options(),
                      subject = Subject()](const PartsA& drawing) {
    outputs_.Write(format, drawing, options, subject);
  };
  WriteDrawing(write, [this](const WorkReport& report) { ReportOutputs(report); });
}

void DialogPresenter::SaveCopy() {
  const OutputSubject subject = Subject();
  std::u16string title = WithoutMnemonic(Say(u"Save a copy &as..."));
  title.erase(title.find_last_not_of(u'.') + 1);
  SaveQuestion question = {.title = std::move(title),
                           .folder = copy_folder_.empty() ? folder_ : copy_folder_,
                           .name = OutputBaseName(subject.face, subject.height, subject.text),
                           .kinds = CopyKinds("dxf")};
  question.name += u"." + question.kinds.front().extension;
  const std::optional<fs::path> file = view_.AskSave(question);
  if (!file) return;
  const Format* const format = FindFormat(Extension(PathText(file->filename())));
  if (!format) {
    const std::u16string told = Say(u"{}: no format has this extension", {PathText(*file)});
    ShowStatus(told, StatusKind::kFailure);
    return view_.ShowMessage(told);
  }
  copy_folder_ = file->parent_path();
  const auto write = [this, format, file = *file, options = Options()](const PartsA& drawing) {
    FileWritten(file, services_.Write(*format, drawing, options, file));
  };
  WriteDrawing(write, [this, file = *file](const WorkReport& report) { CopySaved(file, report); });
}

void DialogPresenter::CopySaved(const fs::path& file, const WorkReport& report) {
  EndProgress();
  if (ReportFailures(report)) return;
  ShowStatus(Say(u"Wrote {} in {}", {PathText(file.filename()), PathText(file.parent_path())}),
             StatusKind::kNormal);
}

void DialogPresenter::Upload() {
  if (is_pending_) Rebuild();
  const auto answer = std::make_shared<std::u16string>();
  const auto send = [this, answer, subject = Subject()] {
    if (!outputs_.WritePage(subject)) return;
    const Status sent = services_.Upload(outputs_.written(), answer.get());
    if (!sent.ok()) report_->failures += SayStatus(sent) + u"\n";
  };
  RunBeside(send, [this, answer](const WorkReport& report) {
    ReportOutputs(report);
    if (report.failures.empty()) ShowStatus(Say(u"Sent. {}", {*answer}), StatusKind::kNormal);
  });
}

// Tells what went wrong and what the user is to answer. Whether something went wrong.
bool DialogPresenter::ReportFailures(const WorkReport& report) {
  const auto closed = [answers = report.answers] {
    for (const auto& answered : answers) answered(kOkButton);
  };
  if (report.failures.empty()) {
    closed();
    return false;
  }
  std::u16string told = report.failures + report.messages;
  told.pop_back();
  view_.ShowMessage(told, closed);
  ShowStatus(report.failures.substr(0, report.failures.find(u'\n')), StatusKind::kFailure);
  return true;
}

void DialogPresenter::ReportOutputs(const WorkReport& report) {
  EndProgress();
  if (open_folder_on_first_save && !report.base_path.empty()) {
    open_folder_on_first_save = false;
    (void)services_.OpenFolder(report.folder);  // a refusal is told
  }
  if (ReportFailures(report) || report.written.empty()) return;
  std::u16string names;
  for (const fs::path& file : report.written) {
    if (!names.empty()) names += u", ";
    names += PathText(file.extension());
  }
  std::u16string status = Say(u"Wrote {} of {} in {}",
                              {names, PathText(report.base_path.stem()), PathText(report.folder)});
  if (report.is_empty) status = Say(u"The drawing is empty. {}", {status});
  if (report.replaced_another) {
    status += u"  ·  " + Say(u"it replaces that of another text; the File menu saves copies");
  }
  const std::u16string& messages = report.messages;
  if (!messages.empty()) status += u"  ·  " + messages.substr(0, messages.find(u'\n'));
  const bool warns = !messages.empty() || report.is_empty || report.replaced_another;
  ShowStatus(std::move(status), warns ? StatusKind::kWarning : StatusKind::kNormal);
}

void DialogPresenter::Awake() {
  std::vector<std::u16string> told;
  {
    const std::lock_guard lock(strangers_);
    told.swap(told_by_strangers_);
  }
  for (const std::u16string& text : told) view_.ShowMessage(text);
  const WorkShown work = background_.Look();
  if (!work.question.empty() && !asks_again_) {
    asks_again_ = true;
    view_.AskAgain(work.question, [this](bool again) {
      asks_again_ = false;
      background_.Answer(again);
    });
  }
  if (!work.wait.empty()) view_.ShowStatus(work.wait, StatusKind::kWarning);
  background_.Finish();
  CloseWhenIdle();
}

void DialogPresenter::MetafileWritten(const fs::path& metafile, const Status& result) {
  FileWritten(metafile, result);
}

void DialogPresenter::FileWritten(const fs::path& file, const Status& result) {
  if (result.ok()) {
    report_->written.push_back(file);
  } else {
    report_->failures += SayStatus(result) + u"\n";
  }
}

// Notices

// They come from the window's thread, from its worker, and from threads of others who write.

void DialogPresenter::Message(std::u16string_view text) {
  if (background_.IsWorker()) {
    report_->messages += text;
    report_->messages += u"\n";
  } else if (!IsWindowThread()) {
    const std::lock_guard lock(strangers_);
    told_by_strangers_.emplace_back(text);
    view_.WakeUp();
  } else if (!is_quiet_) {
    view_.ShowMessage(text);
  }
}

void DialogPresenter::Ask(std::u16string_view text,
                          const std::function<void(int button)>& answered) {
  if (IsWindowThread()) return view_.ShowMessage(text, [answered] { answered(kOkButton); });
  Message(text);
  if (background_.IsWorker()) {
    report_->answers.push_back(answered);
  } else {
    answered(kOkButton);
  }
}

void DialogPresenter::ShowWait(std::u16string_view text) {
  if (Background* const work = Background::OfThisThread()) return work->ShowWait(text);
  if (IsWindowThread()) view_.ShowStatus(text, StatusKind::kWarning);
}

void DialogPresenter::ClearWait() {
  if (Background* const work = Background::OfThisThread()) return work->ShowWait({});
  if (IsWindowThread()) ShowStatusAgain();
}

Continue DialogPresenter::KeepWaiting(std::u16string_view path, int attempts) {
  Background* const work = Background::OfThisThread();
  if (!work || window_waits_ || attempts % kAttemptsUnasked != 0) return Continue::kYes;
  const bool again = work->Ask(Say(u"{}: another program holds this file.", {path}));
  return again ? Continue::kYes : Continue::kNo;
}

Continue DialogPresenter::Progress(std::u16string_view text, int64_t done, int64_t total) {
  const double part = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0;
  if (Background* const work = Background::OfThisThread()) return work->Progress(text, part);
  if (!IsWindowThread()) return Continue::kYes;
  shows_progress_ = true;
  return view_.ShowProgress(text, part);
}

void DialogPresenter::EndProgress() {
  if (shows_progress_) view_.EndProgress();
  shows_progress_ = false;
}

// Drops

void DialogPresenter::Dropped(const std::vector<fs::path>& files) {
  if (memory_.mode == WindowMode::kCut) return cut_->Dropped(files);
  for (const fs::path& file : files) {
    const bool taken = DropOne(file);
    EndProgress();
    if (taken) continue;
    const std::u16string text =
        PathExists(file) ? Say(u"{}: Kerno takes text files, parts files (.ipx) and font files.",
                               {PathText(file)})
                         : Say(u"{}: there is no such file.", {PathText(file)});
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
    view_.ShowMessage(Say(u"{}: is larger than 4 MiB, too much for one drawing", {PathText(file)}));
    return;
  }
  std::u16string text;
  // What is neither UTF-16 nor UTF-8 is taken for the 8-bit code page.
  if (!LoadText(file, &text).ok()) {
    std::string bytes;
    const Status read = ReadFileBytes(file, &bytes);
    if (!read.ok()) return view_.ShowMessage(SayStatus(read));
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
    ShowStatus(SayStatus(status), StatusKind::kFailure);
    view_.ShowMessage(SayStatus(status));
    return;
  }
  is_pending_ = false;
  unseen_.clear();
  warnings_.clear();
  dropped_ = PathText(file.filename());
  contours_ = NoContours();
  parts_ = std::move(read);
  parts_are_stale_ = false;
  item_count_ = PartsView(parts_).size();
  ShowStatus(DescribeParts(parts_, dropped_, DrawingBox()), StatusKind::kNormal);
  preview_.ShowAll();
  ShowDrawing();
}

void DialogPresenter::DropFont(const fs::path& file) {
  std::vector<std::u16string> faces;
  const Status status = services_.LoadFontFile(file, &faces);
  if (!status.ok() || faces.empty()) {
    const std::u16string why = status.ok()
                                   ? Say(u"{}: holds no face that can be used", {PathText(file)})
                                   : SayStatus(status);
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
