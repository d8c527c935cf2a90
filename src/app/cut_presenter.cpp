#include "app/cut_presenter.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <new>

#include "app/arithmetic.h"
#include "app/captions.h"
#include "app/cut_services.h"
#include "app/cut_status.h"
#include "app/dialog_presenter.h"
#include "base/stop.h"
#include "base/text.h"

namespace kerno {
namespace {

using Id = ControlId;

constexpr int kLook = 100;  // milliseconds between two looks at what runs beside the page

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
    : view_(view),
      services_(services),
      maker_([this] { view_.WakeUp(); }),
      background_([this] { view_.WakeUp(); }) {}

CutPresenter::~CutPresenter() {
  ++wanted_;  // no drawing is: what is on its way ends soon
}

void CutPresenter::Open() {
  said_in_ = CurrentLanguage();
  const Status loaded = services_.LoadCut(&memory_);
  form_.Restore(memory_.form, StoredOf::kPage);
  catalogue_.SetStored(memory_.favourites, memory_.recent);
  preview_.SetRulers(true);
  ShowForm();
  if (!loaded.ok()) Tell(SayStatus(loaded), StatusKind::kFailure);
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
  memory_.form = form_.Stored(StoredOf::kPage);
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
  if (has_text_ && text == this->text()) return;  // what can be undone in the text box stays
  has_text_ = true;
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
  ShowSeries();
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
      if (field != Id::kSeriesRow) view_.ShowControlText(field, form_.Text(field));
      return;
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
    Changed();
    if (has_all_) ShowRows();
    return;
  }
  if (field == Id::kSeriesRow) {
    const auto row = Calculate(Utf16ToUtf8(text));
    const bool is_there = row && *row >= 1 && *row <= static_cast<double>(series_.rows());
    view_.ShowFault(field, is_there ? u"" : Say(u"There is no such row"));
    if (is_there) StepTo(static_cast<uint64_t>(*row));
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
    view_.ShowControlText(Id::kPointer, u"");
    return view_.RepaintPreview();
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
  if (box == Id::kSheets) {
    // Names that nobody has changed fit what is written.
    const std::string proposed = series_.is_open() ? series_.ProposedNames(!checked) : "";
    if (Utf16ToUtf8(form_.Text(Id::kSeriesNames)) == proposed && !proposed.empty()) {
      form_.Set(Id::kSeriesNames, Utf8ToUtf16Lossy(series_.ProposedNames(checked)));
      ShowField(Id::kSeriesNames);
    }
    ShowSizeFields();
    ShowSeries();
  }
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
  view_.RepaintFaceRows();
  Changed();
}

void CutPresenter::ShowLooksAgain() {
  view_.RepaintPreview();
  if (said_in_ == CurrentLanguage()) return ShowStatus();
  said_in_ = CurrentLanguage();
  done_ = {};
  catalogue_.ShowNamesIn(LanguageTag());
  ShowForm();
  ShowRows();
  ShowPick();
  Rebuild();
}

// The drawing

void CutPresenter::Changed() {
  memory_.was_used = true;
  done_ = {};
  Rebuild();
}

void CutPresenter::Due() {
  ShowWriting();
  if (WorkBetweenEvents()) {
    view_.CallWhenDue(1);
  } else if (background_.IsBusy()) {
    view_.CallWhenDue(kLook);
  }
}

// Fills text and fields from the row in the preview.
bool CutPresenter::FillFromRow(std::u16string* text, CutTexts* texts,
                               std::vector<FieldFault>* faults) {
  std::vector<Message> messages;
  const HeldMessages held(&messages);
  if (series_.Fill(row_, text_, form_.Texts(), text, texts)) return true;
  for (const Message& message : messages) {
    const bool of_field = message.what.starts_with("--");
    faults->push_back({of_field ? FieldOf(message.what) : Id::kCutText, ReasonOf(message)});
  }
  return false;
}

// What is wrong with the sheets keeps the drawing of a row from nothing.
void CutPresenter::CheckSheets(const CutTexts& texts, std::vector<FieldFault>* faults) const {
  const auto sheets = form_.Sheets();
  if (!sheets || !series_.is_open()) return;
  std::vector<Message> messages;
  const HeldMessages held(&messages);
  SheetOptions options;
  int32_t copies = 1;
  const LengthUnit unit =
      form_.Text(Id::kSizeUnit) == u"in" ? LengthUnit::kInch : LengthUnit::kMillimetre;
  if (ReadSheets(*sheets, texts.given, unit, &options, &copies)) return;
  for (const Message& message : messages) {
    faults->push_back({FieldOf(message.what), ReasonOf(message)});
  }
}

bool CutPresenter::ReadForm(CutJob* job, DrawingStyle* style) {
  std::vector<FieldFault> faults;
  std::u16string text = text_;
  CutTexts texts = form_.Texts();
  const bool is_read = (!series_.is_open() || FillFromRow(&text, &texts, &faults)) &&
                       form_.Read(texts, job, style, &faults);
  if (is_read) {
    job->text = std::move(text);
    failure_.clear();
  } else {
    failure_ = faults.empty() ? Say(u"This cannot be drawn") : faults.front().why;
  }
  CheckSheets(texts, &faults);
  ShowMark(std::move(faults));
  return is_read;
}

// The drawing is made beside the window; most are there before anybody could see a difference. An
// older one that is on its way is stopped.
void CutPresenter::Rebuild() {
  const auto making = std::make_shared<Making>();
  making->number = ++wanted_;
  if (!ReadForm(&making->job, &making->style)) {
    is_making_ = false;  // what is on its way is not taken any more
    ShowPicture();
    return ShowStatus();
  }
  const auto is_made = std::make_shared<std::promise<void>>();
  std::future<void> made = is_made->get_future();
  const auto make = [this, making, is_made] {
    if (making->number == wanted_ && !making->job.text.empty()) {
      try {
        making->status = RunStoppable([this, making] { return making->number != wanted_; }, u"",
                                      [&] { return workshop_.Make(making->job, &making->made); });
      } catch (const std::bad_alloc&) {
        making->status =
            Status::Error(Failure::kOther, u"", u"there is not enough memory for this text");
      }
    }
    is_made->set_value();
  };
  const bool waits = !is_making_;  // for one that has begun already, not again
  is_making_ = true;
  maker_.Run(make, [this, making] { TakeMade(making.get()); });
  if (waits && made.wait_for(std::chrono::milliseconds(patience)) == std::future_status::ready) {
    return TakeMade(making.get());
  }
  ShowStatus();
}

void CutPresenter::TakeMade(Making* making) {
  if (making->is_taken || making->number != wanted_) return;
  making->is_taken = true;
  is_making_ = false;
  if (making->status.ok()) {
    const bool other_size =
        job_.size.by != making->job.size.by || job_.size.width != making->job.size.width ||
        job_.size.height != making->job.size.height || job_.unit != making->job.unit;
    job_ = std::move(making->job);
    style_ = std::move(making->style);
    if (other_size) preview_.ShowAll();
    TakeDrawing(std::make_shared<const CutDrawing>(std::move(making->made)));
  } else {
    failure_ = SayStatus(making->status);
    ShowPicture();
  }
  ShowStatus();
}

// A drawing that is not that of the fields is grey and has no size.
void CutPresenter::ShowPicture() {
  if (!made_) return;
  const bool is_empty = made_->drawing.placed.empty();
  DrawingStyle style = style_;
  if (!failure_.empty()) {
    constexpr int kGrey = 9;  // AutoCAD's index
    style.color = kGrey;
    style.layers = LayerRule::kOne;
  }
  preview_.SetDrawing(is_empty ? nullptr : made_, style);
  view_.ShowControlText(Id::kTrueSize, is_empty || !failure_.empty() ? u"" : SizeOf(*made_));
  ShowZoom();
  view_.RepaintPreview();
}

void CutPresenter::TakeDrawing(std::shared_ptr<const CutDrawing> made) {
  made_ = std::move(made);
  ShowPicture();
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
  if (is_making_) return view_.ShowStatus(Say(u"Drawing..."), StatusKind::kNormal, {});
  if (!made_ || text_.find_first_not_of(u" \n\t") == text_.npos) {
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
