#include "app/cut_presenter.h"

#include <algorithm>
#include <new>

#include "app/arithmetic.h"
#include "app/captions.h"
#include "app/cut_services.h"
#include "app/cut_status.h"
#include "app/dialog_presenter.h"
#include "base/text.h"
#include "platform/clock.h"

namespace kerno {
namespace {

using Id = ControlId;

constexpr uint32_t kSlowRebuild = 60;  // milliseconds from which changes are gathered
constexpr uint32_t kGatherFor = 250;   // milliseconds without a change until they are made

const char* LanguageTag() {
  switch (CurrentLanguage()) {
    case Language::kJapanese:
      return "ja";
    case Language::kGerman:
      return "de";
    default:
      return "en";
  }
}

}  // namespace

CutPresenter::CutPresenter(CutView& view, CutServices& services)
    : view_(view), services_(services), background_([this] { view_.WakeUp(); }) {}

CutPresenter::~CutPresenter() = default;

void CutPresenter::Open() {
  memory_ = services_.LoadCut();
  form_.Restore(memory_.form);
  catalogue_.SetStored(memory_.favourites, memory_.recent);
  preview_.SetRulers(true);
  ShowForm();
}

void CutPresenter::FillFaces() {
  catalogue_.Read(LanguageTag());
  samples_.Forget();
  pick_ = catalogue_.PickOf(form_.Face());
  ShowRows();
  ShowPick();
  Rebuild();
}

Status CutPresenter::Keep() {
  memory_.form = form_.Stored();
  memory_.favourites = catalogue_.StoredFavourites();
  memory_.recent = catalogue_.StoredRecent();
  const Status kept = services_.SaveCut(memory_);
  if (kept.ok()) memory_.was_used = true;
  return kept;
}

std::u16string CutPresenter::text() const {
  return has_sample_ ? std::u16string() : text_;
}

void CutPresenter::TakeText(std::u16string_view text) {
  has_sample_ = text.empty() && !memory_.was_used;
  text_ = has_sample_ ? Say(u"Opening hours\n9–17 h") : std::u16string(text);
  view_.ShowText(text_, TextChange::kFresh);
  Rebuild();
}

// The controls

void CutPresenter::ShowForm() {
  for (const CutControlRow& row : CutControls()) ShowField(row.id);
  ShowSizeFields();
  ShowFormatOfSave();
  ShowMenus();
  preview_.SetLook(static_cast<PreviewLook>(form_.ChosenOf(Id::kLook)));
  preview_.SetGrid(form_.IsOn(Id::kGrid));
}

void CutPresenter::ShowField(ControlId field) {
  switch (FindCutControl(field)->kind) {
    case ControlKind::kChoice: {
      std::vector<std::u16string> items;
      for (const ChoiceRow& row : ChoicesOf(field)) items.push_back(Say(row.caption));
      if (!items.empty()) view_.ShowChoices(field, items, form_.ChosenOf(field));
      return;
    }
    case ControlKind::kField:
      return view_.ShowControlText(field, form_.Text(field));
    case ControlKind::kCheckBox:
      return view_.ShowChecked(field, form_.IsOn(field));
    case ControlKind::kToggle:
      if (field == Id::kGrid) view_.ShowChecked(field, form_.IsOn(field));
      return;
    case ControlKind::kColorCombo: {
      std::vector<ColorChoice> colors;
      for (const char16_t* name : CutColors()) {
        colors.push_back({Say(name), ColorOnPaper(static_cast<int>(colors.size()) + 1)});
      }
      const int32_t index = std::atoi(Utf16ToUtf8(form_.Text(field)).c_str());
      const bool is_listed = index >= 1 && index <= static_cast<int32_t>(colors.size());
      return view_.ShowColors(field, colors, is_listed ? static_cast<size_t>(index - 1) : 0);
    }
    default:
      return;
  }
}

void CutPresenter::ShowSizeFields() {
  view_.ShowControl(Id::kSizeWidth, form_.HasWidth());
  view_.ShowControl(Id::kSizeHeight, form_.HasHeight());
  const bool strokes = form_.IsOfStrokes();
  for (const Id id : {Id::kDirection, Id::kWeld, Id::kOffset}) view_.Enable(id, !strokes);
  for (const Id id : {Id::kSheetSize, Id::kSheetGap, Id::kSheetMargin, Id::kSheetFrame,
                      Id::kSheetPack, Id::kSheetNumbers}) {
    view_.ShowControl(id, form_.IsOn(Id::kSheets));
  }
}

void CutPresenter::ShowMark(std::vector<FieldFault> faults) {
  for (const FieldFault& before : faults_) {
    if (std::ranges::find(faults, before.field, &FieldFault::field) == faults.end()) {
      view_.ShowFault(before.field, u"");
    }
  }
  for (const FieldFault& fault : faults) view_.ShowFault(fault.field, fault.why);
  faults_ = std::move(faults);
}

void CutPresenter::TextChanged(ControlId field, std::u16string_view text) {
  if (field == Id::kCutText) {
    std::u16string lines = LinesOf(text);
    if (lines == text_) return;
    text_ = std::move(lines);
    has_sample_ = false;
    view_.RepaintFaceRows();
    return Changed();
  }
  if (field == Id::kSeriesRow) {
    const auto row = Calculate(Utf16ToUtf8(text));
    if (row && *row >= 1 && *row <= static_cast<double>(series_.rows())) {
      StepTo(static_cast<uint64_t>(*row));
    }
    return;
  }
  if (field == Id::kFaceSearch) {
    filter_.search = text;
    return ShowRows();
  }
  if (form_.Text(field) == text) return;
  form_.Set(field, text);
  Changed();
}

void CutPresenter::Checked(ControlId box, bool checked) {
  if (box == Id::kMeasure) {
    measures_ = checked;
    preview_.EndMeasuring();
    view_.RepaintPreview();
    return;
  }
  if (box == Id::kFavourite) {
    if (pick_ && catalogue_.IsFavourite(pick_->entry) != checked) {
      catalogue_.ToggleFavourite(pick_->entry);
      ShowRows();
    }
    return;
  }
  form_.Turn(box, checked);
  if (box == Id::kGrid) {
    preview_.SetGrid(checked);
    return view_.RepaintPreview();
  }
  if (box == Id::kSheets) ShowSizeFields();
  Changed();
}

void CutPresenter::Selected(ControlId list, size_t index) {
  switch (list) {
    case Id::kFaceList:
      return PickRow(index);
    case Id::kStyle:
      if (!pick_) return;
      return PickFace({pick_->entry, index, {}});
    case Id::kSizeUnit:
      form_.ChangeUnit(index);
      for (const CutControlRow& row : CutControls()) {
        if (row.kind == ControlKind::kField) ShowField(row.id);
      }
      return Changed();
    case Id::kLook:
      form_.Choose(list, index);
      preview_.SetLook(static_cast<PreviewLook>(index));
      return view_.RepaintPreview();
    case Id::kCutColor:
      form_.Set(list, Utf8ToUtf16Lossy(std::to_string(index + 1)));
      return Changed();
    default:
      form_.Choose(list, index);
      if (list == Id::kSizeBy) ShowSizeFields();
      return Changed();
  }
}

void CutPresenter::AxisMoved(size_t axis, double place) {
  if (!pick_) return;
  const auto& axes = catalogue_.AxesOf(pick_->entry, pick_->style);
  if (axis >= axes.size()) return;
  if (pick_->places.empty()) {
    for (const FaceAxis& each : axes) pick_->places.push_back(each.place);
  }
  pick_->places[axis] = place;
  form_.SetFace(catalogue_.OptionsOf(*pick_));
  Changed();
}

void CutPresenter::ShowLooksAgain() {
  catalogue_.ShowNamesIn(LanguageTag());
  ShowForm();
  ShowRows();
  ShowPick();
  if (!faults_.empty()) Rebuild();  // reasons in the new language
  ShowStatus();
  view_.RepaintPreview();
}

// The drawing

void CutPresenter::Changed() {
  memory_.was_used = true;
  done_ = {};
  if (last_cost_ < kSlowRebuild) return Rebuild();
  is_pending_ = true;
  changed_at_ = CurrentClock().Ticks();
  view_.CallWhenDue(static_cast<int>(kGatherFor));
}

void CutPresenter::Due() {
  if (is_pending_ && CurrentClock().Ticks() - changed_at_ >= kGatherFor) Rebuild();
  const bool has_more = WorkBetweenEvents();
  if (is_pending_) {
    const uint32_t since = CurrentClock().Ticks() - changed_at_;
    view_.CallWhenDue(has_more ? 1 : static_cast<int>(kGatherFor - std::min(since, kGatherFor)));
  } else if (has_more) {
    view_.CallWhenDue(1);
  }
}

// What waits for changes is made of them now.
void CutPresenter::Settle() {
  if (is_pending_) Rebuild();
}

bool CutPresenter::ReadForm(CutJob* job, DrawingStyle* style) {
  std::vector<FieldFault> faults;
  std::u16string text = text_;
  CutTexts texts = form_.Texts();
  bool is_read = true;
  if (series_.is_open()) {
    std::vector<Message> messages;
    const HeldMessages held(&messages);
    is_read = series_.Fill(row_, text_, form_.Texts(), &text, &texts);
    if (!is_read && !messages.empty()) {
      const Message& first = messages.front();
      const bool of_text = !first.what.starts_with("--");
      faults.push_back({of_text ? Id::kCutText : FieldOf(first.what), ReasonOf(first)});
    }
  }
  is_read = is_read && form_.Read(texts, job, style, &faults);
  if (is_read) job->text = std::move(text);
  ShowMark(std::move(faults));
  return is_read;
}

void CutPresenter::Rebuild() {
  is_pending_ = false;
  failure_.clear();
  const uint32_t start = CurrentClock().Ticks();
  CutJob job;
  DrawingStyle style;
  if (!ReadForm(&job, &style)) {
    failure_ = faults_.empty() ? std::u16string() : faults_.front().why;
    return ShowStatus();
  }
  auto made = std::make_shared<CutDrawing>();
  Status status = Status::Ok();
  try {
    if (!job.text.empty()) status = workshop_.Make(job, made.get());
  } catch (const std::bad_alloc&) {
    status = Status::Error(Failure::kOther, u"", u"there is not enough memory for this text");
  }
  if (!status.ok()) {
    failure_ = SayStatus(status);
  } else {
    job_ = std::move(job);
    style_ = std::move(style);
    TakeDrawing(std::move(made));
  }
  last_cost_ = CurrentClock().Ticks() - start;
  ShowStatus();
}

void CutPresenter::TakeDrawing(std::shared_ptr<const CutDrawing> made) {
  made_ = std::move(made);
  const bool is_empty = made_->drawing.placed.empty();
  preview_.SetDrawing(is_empty ? nullptr : made_, style_);
  view_.ShowControlText(Id::kTrueSize, is_empty ? u"" : SizeOf(*made_));
  ShowZoom();
  view_.RepaintPreview();
  // A face that was left to the system is the one that it gave.
  if (!pick_ && !made_->faces.empty() && catalogue_.size() > 0 && !form_.IsOfStrokes()) {
    const FaceOption option = {"--face", made_->faces.front().family};
    pick_ = catalogue_.PickOf({&option, 1});
    if (pick_) ShowPick();
  }
}

void CutPresenter::Tell(std::u16string text, StatusKind kind) {
  done_ = {std::move(text), kind, {}};
  ShowStatus();
}

// What was done comes first; warnings of the drawing stay.
void CutPresenter::ShowStatus() {
  if (!failure_.empty()) return view_.ShowStatus(failure_, StatusKind::kFailure, {});
  std::u16string text = done_.text;
  std::vector<StatusLink> links;
  if (!done_.file.empty()) {
    const std::pair<Link, const char16_t*> words[] = {
        {kOpenFile, u"Open"}, {kShowFolder, u"Show in folder"}, {kCopyPath, u"Copy path"}};
    for (const auto& [link, word] : words) {
      text += u"  ·  ";
      const std::u16string said = Say(word);
      links.push_back({text.size(), said.size(), link});
      text += said;
    }
  }
  StatusKind kind = done_.kind;
  if (!made_ || text_.empty()) {
    if (text.empty()) text = Say(u"Type the text to cut");
    return view_.ShowStatus(text, kind, links);
  }
  if (text.empty()) text = SizeOf(*made_) + u"  ·  " + DescribeCut(*made_);
  for (const std::u16string& warning : WarningsOf(*made_)) {
    text += u"  ·  " + warning;
    if (kind == StatusKind::kNormal) kind = StatusKind::kWarning;
  }
  view_.ShowStatus(text, kind, links);
}

}  // namespace kerno
