// What the Cut page's buttons, menus, links and drops do.

#include <algorithm>
#include <chrono>
#include <future>
#include <utility>

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "app/cut_services.h"
#include "app/dialog_presenter.h"
#include "app/dropped_file.h"
#include "app/output_name.h"
#include "app/text_coding.h"
#include "app/text_source.h"
#include "base/stop.h"
#include "base/text.h"
#include "base/text_file.h"
#include "platform/clock.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;
using Id = ControlId;

constexpr size_t kLongestProposal = 40;  // characters of the text in the name of a file
constexpr size_t kLongestMenuText = 40;  // of a recent text
constexpr size_t kLongestRecent = 2000;  // UTF-16 units; longer texts are not kept

std::u16string Upper(std::string_view extension) {
  std::u16string upper;
  for (const char c : extension) {
    upper += static_cast<char16_t>(c >= 'a' && c <= 'z' ? c - 'a' + 'A' : c);
  }
  return upper;
}

// The first line, shortened between characters.
std::u16string Shortened(std::u16string_view text, size_t most) {
  std::u16string shortened;
  size_t count = 0;
  for (size_t at = 0; at < text.size() && text[at] != u'\n'; ++count) {
    if (count == most) return shortened + u"…";
    AppendCharacter(&shortened, NextCharacter(text, &at));
  }
  return text.find(u'\n') == text.npos ? shortened : shortened + u" …";
}

bool IsTable(const fs::path& file) {
  const std::u16string extension = AsciiLower(Extension(PathText(file)));
  return extension == u"csv" || extension == u"tsv";
}

}  // namespace

void CutPresenter::Pressed(ControlId button) {
  switch (button) {
    case Id::kSave:
      return Save(FormatOfSave());
    case Id::kCopySvg:
      return CopySvg();
    case Id::kPrint:
      if (HasDrawing()) view_.Print(made_->drawing, NameOfFile());
      return;
    case Id::kOpenFont: {
      const auto file =
          view_.AskOpen({Say(u"Open a font file"),
                         services_.Documents(),
                         {{Say(u"Fonts"), {u"ttf", u"otf", u"ttc", u"otc", u"jhf", u"lff", u"svg"}},
                          {Say(u"All files"), {}}}});
      if (file) OpenFont(*file);
      return;
    }
    case Id::kOpenSeries: {
      const auto file = view_.AskOpen(
          {Say(u"Open a list"),
           memory_.folder.empty() ? services_.Documents() : TextPath(memory_.folder),
           {{Say(u"Tables and lists"), {u"csv", u"tsv", u"txt"}}, {Say(u"All files"), {}}}});
      if (file) OpenSeries(*file);
      return;
    }
    case Id::kCloseSeries:
      return CloseSeries();
    case Id::kSeriesBack:
      return StepTo(row_ > 1 ? row_ - 1 : 1);
    case Id::kSeriesForward:
      return StepTo(row_ + 1);
    case Id::kSeriesWrite:
      return WriteSeries(std::nullopt);
    case Id::kZoomOut:
      preview_.ZoomBy(-1);
      break;
    case Id::kZoomIn:
      preview_.ZoomBy(1);
      break;
    case Id::kZoomFit:
      preview_.ShowAll();
      break;
    case Id::kZoomTrue:
      preview_.ShowTrueSize(view_.PixelsPerMillimetre());
      break;
    default:
      return;
  }
  ShowZoom();
  view_.RepaintPreview();
}

// Menus

void CutPresenter::ShowMenus() {
  std::vector<MenuItem> formats;
  for (const Format& format : Formats()) {
    formats.push_back({.text = Say(u"Save {}...", {Upper(format.extension)}),
                       .checked = &format == &FormatOfSave()});
  }
  view_.ShowMenuItems(Id::kSaveMenu, formats);

  std::vector<MenuItem> presets;
  for (const CutPreset& preset : memory_.presets) {
    presets.push_back(
        {.text = preset.name,
         .checked = preset.name == preset_ && preset.texts == form_.Stored(StoredOf::kCut)});
  }
  presets.push_back(
      {.text = Say(u"Keep these settings as..."), .separator_before = !presets.empty()});
  if (!preset_.empty()) presets.push_back({.text = Say(u"Remove \"{}\"", {preset_})});
  presets.push_back({.text = Say(u"Standard settings"), .separator_before = true});
  view_.ShowMenuItems(Id::kPresets, presets);

  std::vector<MenuItem> texts;
  for (const std::u16string& text : memory_.recent_texts) {
    texts.push_back({.text = Shortened(text, kLongestMenuText)});
  }
  view_.ShowMenuItems(Id::kRecentTexts, texts);
  view_.Enable(Id::kRecentTexts, !texts.empty());

  std::vector<MenuItem> filters = {
      {.text = Say(u"Has all my characters"), .checked = has_all_},
      {.text = Say(u"Favourites only"), .checked = filter_.favourites},
      {.text = Say(u"Fonts of strokes only"), .checked = filter_.strokes},
      {.text = Say(u"All scripts"), .checked = filter_.script.empty(), .separator_before = true}};
  for (const std::string& script : catalogue_.Scripts()) {
    const std::u16string name(script.begin(), script.end());
    filters.push_back({.text = Say(name), .checked = script == filter_.script});
  }
  view_.ShowMenuItems(Id::kFaceFilter, filters);
}

void CutPresenter::Picked(ControlId menu, size_t index) {
  switch (menu) {
    case Id::kSaveMenu: {
      if (index >= Formats().size()) return;
      const Format& format = Formats()[index];
      memory_.format = std::u16string(format.extension.begin(), format.extension.end());
      ShowFormatOfSave();
      ShowMenus();
      return Save(format);
    }
    case Id::kPresets:
      return PickPreset(index);
    case Id::kRecentTexts:
      return PickRecentText(index);
    case Id::kFaceFilter:
      return PickFilter(index);
    default:
      return;
  }
}

void CutPresenter::PickFilter(size_t index) {
  const auto scripts = catalogue_.Scripts();
  if (index == 0) {
    has_all_ = !has_all_;
  } else if (index == 1) {
    filter_.favourites = !filter_.favourites;
  } else if (index == 2) {
    filter_.strokes = !filter_.strokes;
  } else if (index == 3) {
    filter_.script.clear();
  } else if (index - 4 < scripts.size()) {
    filter_.script = scripts[index - 4];
  }
  ShowMenus();
  ShowRows();
}

void CutPresenter::PickPreset(size_t index) {
  const size_t count = memory_.presets.size();
  if (index < count) {
    preset_ = memory_.presets[index].name;
    form_.Restore(memory_.presets[index].texts, StoredOf::kCut);
  } else if (index == count) {
    return SavePreset();
  } else if (index == count + 1 && !preset_.empty()) {
    std::erase_if(memory_.presets, [&](const CutPreset& p) { return p.name == preset_; });
    preset_.clear();
    return ShowMenus();
  } else {
    preset_.clear();
    const std::vector<FaceOption> face = form_.Face();
    form_.Restore({}, StoredOf::kCut);
    form_.SetFace(face);
  }
  pick_ = catalogue_.PickOf(form_.Face());
  ShowForm();
  ShowRows();
  ShowPick();
  view_.RepaintPreview();
  Changed();
}

void CutPresenter::SavePreset() {
  const auto name = view_.AskName(Say(u"Keep these settings as"), preset_);
  if (!name || name->empty()) return;
  const auto found = std::ranges::find(memory_.presets, *name, &CutPreset::name);
  if (found != memory_.presets.end()) {
    if (*name != preset_ &&
        !view_.AskWhether(Say(u"There are settings of this name already."), Say(u"Replace"))) {
      return;
    }
    found->texts = form_.Stored(StoredOf::kCut);
  } else {
    memory_.presets.push_back({*name, form_.Stored(StoredOf::kCut)});
    std::ranges::sort(memory_.presets, {}, &CutPreset::name);
  }
  preset_ = *name;
  ShowMenus();
  if (const Status kept = Keep(); !kept.ok()) Tell(SayStatus(kept), StatusKind::kFailure);
}

void CutPresenter::PickRecentText(size_t index) {
  if (index >= memory_.recent_texts.size()) return;
  text_ = memory_.recent_texts[index];
  has_sample_ = false;
  view_.ShowText(text_, TextChange::kUndoable);
  Changed();
}

// The text was written: it is the latest one.
void CutPresenter::NoteText(const std::u16string& text) {
  if (text.empty() || has_sample_ || text.size() > kLongestRecent) return;
  std::erase(memory_.recent_texts, text);
  memory_.recent_texts.insert(memory_.recent_texts.begin(), text);
  if (memory_.recent_texts.size() > CutMemory::kMostRecentTexts) memory_.recent_texts.pop_back();
  ShowMenus();
}

// Files

const Format& CutPresenter::FormatOfSave() const {
  const Format* const format = FindFormat(memory_.format);
  return format ? *format : Formats().front();
}

void CutPresenter::ShowFormatOfSave() {
  view_.ShowControlText(Id::kSave, Say(u"Save {}...", {Upper(FormatOfSave().extension)}));
}

// Whether there is a drawing of what stands in the fields; the status says why not.
bool CutPresenter::HasDrawing() {
  if (is_making_) {
    Tell(Say(u"Still drawing. Press again when that is done."), StatusKind::kWarning);
    return false;
  }
  if (!failure_.empty()) {
    ShowStatus();
    return false;
  }
  if (made_ && !made_->drawing.placed.empty()) return true;
  Tell(Say(u"There is nothing to write: the drawing is empty"), StatusKind::kWarning);
  return false;
}

// The first line that is not blank, of the row in the preview.
std::u16string CutPresenter::FirstLine() const {
  const std::u16string& text = made_ && failure_.empty() ? job_.text : text_;
  const size_t first = text.find_first_not_of(u" \t\n");
  if (first == text.npos) return {};
  return text.substr(first, std::min(text.find(u'\n', first), text.size()) - first);
}

std::u16string CutPresenter::NameOfFile() const {
  std::u16string first = Shortened(FirstLine(), kLongestProposal);
  while (first.ends_with(u'…')) first.pop_back();
  return CleanFileName(first);
}

void CutPresenter::Save(const Format& format) {
  if (!HasDrawing()) return;
  const auto kind_of = [](const Format& each) {
    return SaveQuestion::Kind{Upper(each.extension),
                              {each.extension.begin(), each.extension.end()}};
  };
  SaveQuestion question;
  question.title = Say(u"Save the drawing");
  question.folder = memory_.folder.empty() ? services_.Documents() : TextPath(memory_.folder);
  question.kinds.push_back(kind_of(format));
  question.name = NameOfFile() + u"." + question.kinds.front().extension;
  for (const Format& each : Formats()) {
    if (&each != &format) question.kinds.push_back(kind_of(each));
  }
  const auto chosen = view_.AskSave(question);
  if (!chosen) return;
  fs::path file = *chosen;
  const Format* named = FindFormat(AsciiLower(Extension(PathText(file))));
  if (!named) {
    // The question was about the name without the extension.
    named = &format;
    file += "." + std::string(format.extension);
    if (PathExists(file) &&
        !view_.AskWhether(Say(u"{} is there already.", {PathText(file)}), Say(u"Replace"))) {
      return;
    }
  }
  memory_.folder = PathText(file.parent_path());
  Write(*named, file);
}

// What is written is the drawing of this moment; the user may type on. A file that another program
// holds is asked about while it is written.
void CutPresenter::Write(const Format& format, const fs::path& file) {
  Tell(Say(u"Writing {}", {PathText(file.filename())}), StatusKind::kNormal);
  WriteBeside(format, file,
              [this, file, text = text_](const Status& status) { Written(status, file, text); });
}

// Cancel stops the writing between two pieces; what stood there before stays then.
std::shared_future<Status> CutPresenter::WriteBeside(const Format& format, const fs::path& file,
                                                     std::function<void(const Status&)> done) {
  const auto promise = std::make_shared<std::promise<Status>>();
  std::shared_future<Status> written = promise->get_future();
  const auto write = [this, promise, made = made_, job = job_, style = style_, &format, file] {
    promise->set_value(
        RunStoppable([this] { return background_.IsCancelled(); }, PathText(file),
                     [&] { return services_.WriteDrawing(*made, job, style, format, file); }));
  };
  writes_ = Say(u"Writing {}", {PathText(file.filename())});
  wrote_since_ = CurrentClock().Ticks();
  background_.Run(write, [this, written, done = std::move(done)] {
    if (!writes_series_) view_.ShowProgress(u"", -1);
    done(written.get());
  });
  view_.CallWhenDue(kProgressDelay);
  return written;
}

void CutPresenter::Written(const Status& status, const fs::path& file, const std::u16string& text) {
  if (!status.ok()) return Tell(SayStatus(status), StatusKind::kFailure);
  if (pick_) catalogue_.NoteUse(pick_->entry);
  NoteText(text);
  SayWritten(file);
}

// Past half a second, what is written has its progress.
void CutPresenter::ShowWriting() {
  if (!background_.IsBusy() || writes_series_) return;
  if (CurrentClock().Ticks() - wrote_since_ < static_cast<uint32_t>(kProgressDelay)) return;
  const WorkShown shown = background_.Look();
  view_.ShowProgress(shown.progress.empty() ? writes_ : shown.progress, shown.part);
}

void CutPresenter::SayWritten(const fs::path& file) {
  done_ = {Say(u"Wrote {}", {PathText(file.filename())}), StatusKind::kNormal, file};
  ShowStatus();
}

void CutPresenter::LinkFollowed(int number) {
  const fs::path file = done_.file;
  if (file.empty()) return;
  if (number == kCopyPath) return view_.CopyText(PathText(file));
  const fs::path what = number == kShowFolder ? file.parent_path() / "" : file;
  if (!services_.OpenPath(what)) {
    Tell(Say(u"{} cannot be opened", {PathText(what)}), StatusKind::kFailure);
  }
}

void CutPresenter::CopySvg() {
  if (!HasDrawing()) return;
  const fs::path folder = services_.ScratchFolder();
  if (folder.empty()) return Tell(Say(u"there is no temporary folder"), StatusKind::kFailure);
  const fs::path file = folder / "copy.svg";
  WriteBeside(*FindFormat(u"svg"), file, [this, file](Status status) {
    std::string svg;
    if (status.ok()) status = ReadFileBytes(file, &svg);
    if (!status.ok()) return Tell(SayStatus(status), StatusKind::kFailure);
    view_.CopySvg(svg);
    Tell(Say(u"Copied as SVG"), StatusKind::kNormal);
  });
}

bool CutPresenter::HasFailed(const std::shared_future<Status>& written) {
  return written.valid() &&
         written.wait_for(std::chrono::seconds(0)) == std::future_status::ready &&
         !written.get().ok();
}

// A drag waits for its file no longer than the eye does. A file that takes longer is there for the
// next drag of the same drawing.
fs::path CutPresenter::FileToDrag() {
  if (!HasDrawing()) return {};
  const fs::path folder = services_.ScratchFolder();
  if (folder.empty()) return {};
  const Format& format = FormatOfSave();
  fs::path file = folder / TextPath(NameOfFile());
  file += "." + std::string(format.extension);
  const bool is_on_its_way =
      late_drag_.file == file && late_drag_.made == made_ && !HasFailed(late_drag_.written);
  LateDrag drag = is_on_its_way ? std::exchange(late_drag_, {}) : LateDrag{file, made_, {}};
  if (!is_on_its_way) {
    drag.written = WriteBeside(format, file, [this, file, made = made_](const Status& written) {
      if (!written.ok()) return Tell(SayStatus(written), StatusKind::kFailure);
      if (late_drag_.file != file || late_drag_.made != made) return;  // it is dragged already
      Tell(Say(u"The file can be dragged now"), StatusKind::kNormal);
    });
  }
  if (drag.written.wait_for(std::chrono::milliseconds(drag_patience)) ==
      std::future_status::ready) {
    return drag.written.get().ok() ? file : fs::path();
  }
  late_drag_ = std::move(drag);
  Tell(Say(u"Writing the file to drag. Drag again when that is done."), StatusKind::kWarning);
  return {};
}

// Drops

void CutPresenter::Dropped(const std::vector<fs::path>& files) {
  for (const fs::path& file : files) {
    if (IsTable(file)) {
      OpenSeries(file);
      continue;
    }
    switch (KindOfDropped(file)) {
      case DroppedKind::kFont:
        OpenFont(file);
        break;
      case DroppedKind::kText: {
        std::string bytes;
        const Status read = FactsOfPath(file).size > kLargestDroppedText
                                ? Status::Error(Failure::kOther, PathText(file),
                                                u"is larger than 4 MiB, too much for one drawing")
                                : ReadFileBytes(file, &bytes);
        if (!read.ok()) {
          Tell(SayStatus(read), StatusKind::kFailure);
          break;
        }
        std::u16string text;
        if (!LoadText(file, &text).ok()) text = DecodeText(bytes);
        text_ = LinesOf(text);
        has_sample_ = false;
        view_.ShowText(text_, TextChange::kUndoable);
        Changed();
        break;
      }
      default:
        Tell(PathExists(file) ? Say(u"{}: the page takes tables, text files and font files",
                                    {PathText(file.filename())})
                              : Say(u"{}: there is no such file", {PathText(file)}),
             StatusKind::kWarning);
    }
  }
}

void CutPresenter::OpenFont(const fs::path& file) {
  size_t entry = 0;
  const Status added = catalogue_.AddFile(file, &entry);
  if (!added.ok()) return Tell(SayStatus(added), StatusKind::kFailure);
  filter_ = {};
  has_all_ = false;
  PickFace({entry, catalogue_.RegularStyleOf(entry), {}});
  ShowMenus();
  ShowRows();
}

// Beside the window

void CutPresenter::Cancelled() {
  if (background_.IsBusy()) background_.Cancel();
  if (writes_series_) series_.Cancel();
}

void CutPresenter::TellClosing() {
  Tell(Say(u"Still writing. The window closes when that is done."), StatusKind::kWarning);
}

void CutPresenter::Awake() {
  maker_.Finish();
  const WorkShown shown = background_.Look();
  if (!shown.question.empty() && !asks_) {
    asks_ = true;
    background_.Answer(view_.AskWhether(shown.question, Say(u"Try again")));
    asks_ = false;
  }
  if (!shown.wait.empty()) view_.ShowStatus(shown.wait, StatusKind::kWarning, {});
  background_.Finish();
  if (writes_series_) ShowSeriesProgress();
  if (series_.is_open()) ShowSeries();
  if (on_idle && !IsWriting()) on_idle();
}

}  // namespace kerno
