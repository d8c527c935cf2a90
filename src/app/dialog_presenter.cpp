#include "app/dialog_presenter.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "app/face_choice.h"
#include "app/height_text.h"
#include "app/status_text.h"
#include "app/text_source.h"
#include "app/window_place.h"
#include "base/text.h"
#include "export/draw_parts.h"
#include "platform/clock.h"

namespace kerno {
namespace {

constexpr uint32_t kSlowRebuild = 60;  // milliseconds from which changes are gathered
constexpr DrawOptions kPreviewOptions = {.detail = 0.5};
constexpr double kUnseenDetail = 0.25;  // pixels: less than what drawing leaves out
constexpr double kFlat = 2;             // pixels
constexpr int kGatherFor = 250;         // milliseconds without a change until they are set
constexpr int kProgressPause = 100;     // milliseconds between two looks at work beside the window

std::vector<ColorChoice> Said(std::vector<ColorChoice> colors) {
  for (ColorChoice& choice : colors) choice.name = Say(choice.name);
  return colors;
}

Language LanguageOf(LanguageChoice choice, std::u16string_view locale) {
  switch (choice) {
    case LanguageChoice::kJapanese:
      return Language::kJapanese;
    case LanguageChoice::kEnglish:
      return Language::kEnglish;
    case LanguageChoice::kGerman:
      return Language::kGerman;
    default:
      return LanguageOfLocale(locale);
  }
}

size_t IndexOf(Color color) {
  const auto& colors = NamedColors();
  const auto found = std::find_if(colors.begin(), colors.end(),
                                  [&](const ColorChoice& c) { return c.color == color; });
  return found == colors.end() ? 0 : static_cast<size_t>(found - colors.begin());
}

}  // namespace

std::u16string LinesOf(std::u16string_view text) {
  std::u16string lines;
  lines.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    switch (text[i]) {
      case u'\r':
        if (i + 1 < text.size() && text[i + 1] == u'\n') ++i;
        [[fallthrough]];
      case u'\u0085':
      case u'\u2028':
      case u'\u2029':
        lines += u'\n';
        break;
      case u'\0':
        break;
      default:
        lines += text[i];
    }
  }
  return lines;
}

DialogPresenter::DialogPresenter(DialogView& view, DialogServices& services)
    : view_(view),
      services_(services),
      notices_before_(ReplaceNotices(this)),
      measuring_(services.CreateMeasuringContext()),
      typesetter_(*measuring_),
      outputs_(services, *this) {}

DialogPresenter::~DialogPresenter() {
  background_.Stop();
  ReplaceNotices(notices_before_);
}

void DialogPresenter::Open() {
  memory_ = services_.Load();
  SetLanguage(LanguageOf(memory_.language, services_.TextLocale()));
  view_.ShowCaptions();
  text_ = LinesOf(services_.LoadSavedText());
  first_color_ = IndexOf(memory_.first_color);
  second_colors_ = FollowingColors(NamedColors()[first_color_]);
  memory_.second_color = std::min(memory_.second_color, second_colors_.size() - 1);
  folder_ = memory_.output_folder.empty() ? services_.DefaultOutputFolder()
                                          : TextPath(memory_.output_folder);
  outputs_.SetFolder(folder_);
  view_.ShowText(text_, TextChange::kFresh);
  view_.ShowControlText(ControlId::kFace, memory_.face);
  view_.ShowChecked(ControlId::kVertical, memory_.vertical);
  view_.ShowControlText(ControlId::kHeightList, memory_.height);
  view_.ShowControlText(ControlId::kHeightEdit, memory_.height);
  view_.ShowChecked(ControlId::kPolyPolygon, memory_.use_poly_polygon);
  view_.Enable(ControlId::kFirstColor, memory_.use_poly_polygon);
  view_.Enable(ControlId::kSecondColor, memory_.use_poly_polygon);
  view_.ShowControl(ControlId::kUpload, services_.CanUpload());
  ShowColors();
  ShowMenu();
  ShowHeightFault();
  WindowPlace place = memory_.window;
  // Nothing is kept before the first window was closed: the next one steps aside from the middle.
  if (place.normal == WindowRect{} && services_.WindowsBefore() > 0) {
    place.normal = InTheMiddle(view_.PlaceOfWindow().normal, view_.Screens());
  }
  place.normal = KeepInSight(StepAside(place.normal, services_.WindowsBefore()), view_.Screens());
  view_.PlaceWindow(place);
  Rebuild();
  if (!cut_) memory_.mode = WindowMode::kClassic;
  ShowMode();
}

void DialogPresenter::UseCut(CutPresenter* cut) {
  cut_ = cut;
  cut_->on_idle = [this] { CloseWhenIdle(); };
}

// The window was to be closed while something was written.
void DialogPresenter::CloseWhenIdle() {
  if (!closes_ || IsWriting() || (cut_ && cut_->IsWriting())) return;
  closes_ = false;
  view_.CloseWindow();
}

void DialogPresenter::ChooseMode(WindowMode mode) {
  if (mode == memory_.mode || !cut_) return;
  TakeCutText();
  memory_.mode = mode;
  ShowMode();
}

// What was typed on the Cut page is the text of both.
void DialogPresenter::TakeCutText() {
  if (memory_.mode != WindowMode::kCut || !cut_is_filled_ || cut_->text() == text_) return;
  view_.ShowText(cut_->text(), TextChange::kUndoable);
  LinesChanged(cut_->text());
}

void DialogPresenter::ShowMode() {
  view_.ShowMode(memory_.mode);
  if (memory_.mode != WindowMode::kCut) return;
  if (!cut_is_filled_) {
    cut_is_filled_ = true;
    cut_->Open();
    cut_->FillFaces();
  }
  cut_->TakeText(text_);
}

void DialogPresenter::FillFaces() {
  const std::vector<std::u16string> faces = services_.Faces();
  view_.ShowFaces(faces);
  if (memory_.face.empty()) memory_.face = used_face_;
  view_.ShowControlText(ControlId::kFace, memory_.face);
}

void DialogPresenter::Remember() {
  TakeCutText();
  const WindowPlace place = view_.PlaceOfWindow();
  memory_.window.show = place.show;
  if (place.show != WindowShow::kMinimised) memory_.window.normal = place.normal;
}

bool DialogPresenter::Close() {
  if (IsWriting() || (cut_ && cut_->IsWriting())) {
    closes_ = true;
    if (cut_) cut_->TellClosing();
    ShowStatus(Say(u"Still writing. The window closes when that is done."), StatusKind::kWarning);
    return false;
  }
  Remember();
  const bool last = told_unsaved_;
  is_quiet_ = last;
  Status saved = services_.Save(memory_);
  if (saved.ok() && cut_is_filled_) saved = cut_->Keep();
  const bool text_saved = services_.SaveText(text_).ok();  // tells its failure itself
  is_quiet_ = false;
  if (last || (saved.ok() && text_saved)) return true;
  told_unsaved_ = true;
  if (!saved.ok()) view_.ShowMessage(SayStatus(saved));
  ShowStatus(Say(u"Not saved. The window stays open; close it once more to leave all the same."),
             StatusKind::kFailure);
  return false;
}

void DialogPresenter::SaveNow() {
  is_quiet_ = true;
  Remember();
  (void)services_.Save(memory_);  // nobody is there to be told
  if (cut_is_filled_) (void)cut_->Keep();
  (void)services_.SaveText(text_);
  is_quiet_ = false;
}

void DialogPresenter::TextChanged(ControlId control, std::u16string_view text) {
  switch (control) {
    case ControlId::kText:
      return LinesChanged(text);
    case ControlId::kFace:
      return FaceChanged(text);
    case ControlId::kHeightList:
      return HeightChanged(text, ControlId::kHeightEdit);
    case ControlId::kHeightEdit:
      return HeightChanged(text, ControlId::kHeightList);
    default:
      return;
  }
}

void DialogPresenter::Checked(ControlId box, bool checked) {
  switch (box) {
    case ControlId::kVertical:
      memory_.vertical = checked;
      return Changed();
    case ControlId::kPolyPolygon:
      return PolyPolygonClicked(checked);
    default:
      return;
  }
}

void DialogPresenter::Selected(ControlId list, size_t index) {
  if (list == ControlId::kFirstColor) return FirstColorSelected(index);
  memory_.second_color = std::min(index, second_colors_.size() - 1);
  view_.RepaintPreview();
}

void DialogPresenter::Stepped(ControlId /*up_down*/, int steps) {
  const std::u16string text = SteppedHeight(memory_.height, steps);
  view_.ShowControlText(ControlId::kHeightEdit, text);
  HeightChanged(text, ControlId::kHeightList);
}

void DialogPresenter::ShowLooksAgain() {
  ShowTextFormat();
  ShowStatusAgain();
  view_.RepaintPreview();
  if (cut_is_filled_) cut_->ShowLooksAgain();
}

void DialogPresenter::LinesChanged(std::u16string_view text) {
  std::u16string lines = LinesOf(text);
  if (lines == text_) return;  // a change of looks alone
  text_ = std::move(lines);
  Changed();
}

void DialogPresenter::FaceChanged(std::u16string_view face) {
  if (memory_.face == face) return;
  memory_.face = face;
  Changed();
}

void DialogPresenter::HeightChanged(std::u16string_view text, ControlId shown_too) {
  if (memory_.height == text) return;
  memory_.height = text;
  view_.ShowControlText(shown_too, text);
  ShowHeightFault();
  Changed();
}

// Whatever is no number is still read as one: drawings stay what they were.
void DialogPresenter::ShowHeightFault() {
  std::u16string why;
  if (!IsHeightNumber(memory_.height)) {
    const std::string read = std::to_string(HeightNumber(memory_.height));
    why = Say(u"This is not a whole number; it is read as {}.", {Utf8ToUtf16Lossy(read)});
  }
  for (const ControlId field : {ControlId::kHeightList, ControlId::kHeightEdit}) {
    view_.ShowFault(field, why);
  }
}

void DialogPresenter::PolyPolygonClicked(bool use) {
  memory_.use_poly_polygon = use;
  view_.Enable(ControlId::kFirstColor, use);
  view_.Enable(ControlId::kSecondColor, use);
  ShowDrawing();
}

void DialogPresenter::FirstColorSelected(size_t index) {
  first_color_ = std::min(index, NamedColors().size() - 1);
  memory_.first_color = FirstColor();
  memory_.second_color = 0;
  second_colors_ = FollowingColors(NamedColors()[first_color_]);
  view_.ShowColors(ControlId::kSecondColor, Said(second_colors_), memory_.second_color);
  ShowTextFormat();
  view_.RepaintPreview();
}

// The rebuild

void DialogPresenter::Changed() {
  told_unsaved_ = false;
  if (last_cost_ < kSlowRebuild) {
    Rebuild();
    return;
  }
  is_pending_ = true;
  view_.CallWhenDue(kGatherFor);
}

void DialogPresenter::Due() {
  if (is_pending_) Rebuild();
  LookAtLicence();
  if (!IsWriting()) return;
  const WorkShown work = background_.Look();
  const std::u16string text = work.progress.empty() ? Say(u"Writing the outputs") : work.progress;
  if (!asks_again_) {
    shows_progress_ = true;
    if (view_.ShowWork(text, work.part) == Continue::kNo) background_.Cancel();
  }
  view_.CallWhenDue(kProgressPause);
}

void DialogPresenter::Rebuild() {
  is_pending_ = false;
  unseen_.clear();
  warnings_.clear();
  dropped_.clear();
  const uint32_t start = CurrentClock().Ticks();
  ShowTextFormat();
  contours_ = NoContours();
  contours_box_ = {};
  parts_ = {};
  parts_are_stale_ = true;
  try {
    MakeContours();
  } catch (const std::bad_alloc&) {
    contours_ = NoContours();
    ShowStatus(Say(u"There is not enough memory for this text."), StatusKind::kFailure);
  }
  item_count_ = contours_->size();
  ShowDrawing();
  last_cost_ = CurrentClock().Ticks() - start;
}

void DialogPresenter::MakeContours() {
  Job job;
  job.text.text = WithCrLf(text_);
  job.text.face = Face();
  job.text.height = HeightNumber(memory_.height);
  job.text.layout.pitch = memory_.pitch;
  if (job.text.face.vertical) SetVertical(&job.text);
  std::optional<TypesetText> set = Make(job, typesetter_);
  if (!set) {
    ShowStatus(Say(u"No font is installed, so nothing can be outlined."), StatusKind::kFailure);
    return;
  }
  used_face_ = set->face;
  contours_box_ = ContoursBox(set->contours);
  warnings_ = DescribeWarnings(*set, job.text.face) + DescribeUnshaped(text_);
  if (!text_.empty()) warnings_ += DescribeHeight(memory_.height) + DescribeLicenceOf(set->face);
  ShowStatus(DescribeText(*set, job.text.face, contours_box_), StatusKind::kNormal);
  contours_ = std::make_shared<const TextContours>(std::move(set->contours));
}

// A face is looked at once, when nobody types: its file is to be found and opened.
std::u16string DialogPresenter::DescribeLicenceOf(const std::u16string& face) {
  if (licence_.face != face) {
    licence_ = {face, std::nullopt};
    view_.CallWhenDue(kGatherFor);
  }
  return licence_.forbids.value_or(false) ? DescribeLicence(face) : std::u16string();
}

void DialogPresenter::LookAtLicence() {
  if (licence_.forbids || licence_.face.empty()) return;
  try {
    licence_.forbids = LicenceForbids(licence_.face, {});
  } catch (const std::bad_alloc&) {
    licence_.forbids = false;  // the drawing itself tells of missing memory
  }
  if (!*licence_.forbids || text_.empty() || !dropped_.empty()) return;
  warnings_ += DescribeLicence(licence_.face);
  ShowStatusAgain();
}

const PartsA& DialogPresenter::parts() {
  if (is_pending_) Rebuild();
  if (parts_are_stale_) {
    parts_are_stale_ = false;
    parts_ = DrawingOf(contours_, {.elements = memory_.elements});
  }
  return parts_;
}

// A name that was typed may be that of the vertical form already.
FaceForm DialogPresenter::Face() const {
  FaceForm face = FaceFormOf(memory_.face);
  face.vertical |= memory_.vertical;
  return face;
}

void DialogPresenter::ShowTextFormat() {
  view_.ShowTextFormat(SystemFaceName(Face()), FirstColor());
}

Color DialogPresenter::FirstColor() const {
  return NamedColors()[first_color_].color;
}

void DialogPresenter::ShowColors() {
  view_.ShowColors(ControlId::kFirstColor, Said(NamedColors()), first_color_);
  view_.ShowColors(ControlId::kSecondColor, Said(second_colors_), memory_.second_color);
}

void DialogPresenter::ShowStatus(std::u16string text, StatusKind kind) {
  shown_status_ = std::move(text);
  shown_status_kind_ = kind;
  ShowStatusAgain();
}

void DialogPresenter::ShowStatusAgain() {
  const std::u16string warnings = warnings_ + unseen_;
  const bool warns = shown_status_kind_ == StatusKind::kNormal && !warnings.empty();
  view_.ShowStatus(shown_status_ + warnings, warns ? StatusKind::kWarning : shown_status_kind_);
}

void DialogPresenter::ShowLanguage() {
  SetLanguage(LanguageOf(memory_.language, services_.TextLocale()));
  view_.ShowCaptions();
  second_colors_ = FollowingColors(NamedColors()[first_color_]);
  ShowColors();
  ShowHeightFault();
  ShowMenu();
  if (cut_is_filled_) cut_->ShowLooksAgain();
  if (dropped_.empty()) return Rebuild();
  unseen_.clear();
  ShowStatus(DescribeParts(parts_, dropped_, DrawingBox()), StatusKind::kNormal);
  view_.RepaintPreview();
}

// The preview

bool DialogPresenter::DrawsContours() const {
  return memory_.use_poly_polygon && !contours_->empty();
}

Extent3 DialogPresenter::DrawingBox() {
  return DrawsContours() || parts_are_stale_ ? contours_box_ : PictureBox(parts_, measuring_.get());
}

void DialogPresenter::ShowDrawing() {
  preview_.SetDrawing(DrawingBox());
  view_.RepaintPreview();
}

void DialogPresenter::PreviewResized(double width, double height) {
  preview_.SetFrame(width, height);
  view_.RepaintPreview();
}

void DialogPresenter::PreviewZoomed(double x, double y, double steps) {
  preview_.ZoomAt(x, y, steps);
  view_.RepaintPreview();
}

void DialogPresenter::PreviewGrabbed(double x, double y) {
  grabbed_at_ = P2{x, y};
}

void DialogPresenter::PreviewPointedAt(double x, double y) {
  if (!grabbed_at_) return;
  preview_.Pan(x - grabbed_at_->x, y - grabbed_at_->y);
  grabbed_at_ = P2{x, y};
  view_.RepaintPreview();
}

void DialogPresenter::PreviewReleased() {
  grabbed_at_.reset();
}

void DialogPresenter::PreviewDoubleClicked() {
  preview_.ShowAll();
  view_.RepaintPreview();
}

bool DialogPresenter::PreviewKeyPressed(char16_t key) {
  for (const PreviewKeyRow& row : PreviewKeys()) {
    if (row.key != key) continue;
    if (row.zoom_steps != 0) {
      preview_.ZoomAt(preview_.width() / 2, preview_.height() / 2, row.zoom_steps);
    } else if (row.right != 0 || row.down != 0) {
      preview_.Pan(row.right, row.down);
    } else {
      preview_.ShowAll();
    }
    view_.RepaintPreview();
    return true;
  }
  return false;
}

std::unique_ptr<BitmapSurface> DialogPresenter::PreviewPicture(double density, Color paper) {
  const auto pixels = [density](double length) {
    return static_cast<int>(std::lround(length * density));
  };
  auto picture = CreatePreviewSurface(pixels(preview_.width()), pixels(preview_.height()),
                                      PaperFor(FirstColor(), paper));
  if (picture) PaintPreview(picture->Context(), density);
  return picture;
}

void DialogPresenter::PaintPreview(DrawingContext& dc, double density) {
  const Affine& frame = preview_.fit();
  const Affine fit =
      FlippedY(PixelsPerUnit(frame) * density, {frame.to.x * density, frame.to.y * density});
  std::u16string unseen;
  if (DrawsContours()) {
    PaintFigure(dc, fit);
  } else {
    unseen = DescribeUnseen(PaintParts(dc, fit));
  }
  if (unseen == unseen_) return;
  unseen_ = std::move(unseen);
  ShowStatusAgain();
}

// The contours without the points that no picture of this scale shows, so that no later step has
// to look at them.
const std::shared_ptr<const TextContours>& DialogPresenter::SeenContours(const Affine& fit) {
  const double scale = PixelsPerUnit(fit);
  if (seen_of_ != contours_ || seen_scale_ != scale) {
    seen_ = std::make_shared<const TextContours>(contours_->Reduced(kUnseenDetail / scale));
    seen_of_ = contours_;
    seen_scale_ = scale;
  }
  return seen_;
}

PictureNotes DialogPresenter::PaintParts(DrawingContext& dc, const Affine& fit) {
  const bool of_text = !contours_->empty();
  return DrawParts(dc,
                   of_text ? DrawingOf(SeenContours(fit), {.elements = memory_.elements}) : parts_,
                   fit, kPreviewOptions);
}

void DialogPresenter::PaintFigure(DrawingContext& dc, const Affine& fit) {
  // An outline in the figure's own colour would only make it bolder than it is, unless the figure
  // is too flat to be seen without.
  const Color outline = second_colors_[memory_.second_color].color;
  const double height = (contours_box_.max.y - contours_box_.min.y) * PixelsPerUnit(fit);
  const double width = (contours_box_.max.x - contours_box_.min.x) * PixelsPerUnit(fit);
  const bool is_flat = height < kFlat || width < kFlat;
  const PenStyle style = outline == FirstColor() && !is_flat ? PenStyle::kNull : PenStyle::kSolid;
  const auto pen = dc.CreatePenIndirect({.style = style, .color = outline});
  const auto brush = dc.CreateBrushIndirect({.color = FirstColor()});
  Pen* const pen_before = dc.SelectPen(pen.get());
  Brush* const brush_before = dc.SelectBrush(brush.get());
  DrawContours(dc, *SeenContours(fit), fit, kPreviewOptions);
  dc.SelectPen(pen_before);
  dc.SelectBrush(brush_before);
}

}  // namespace kerno
