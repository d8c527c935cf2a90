// The faces of the Cut page: the list, its samples, styles and axes.

#include <algorithm>

#include "app/captions.h"
#include "app/cut_presenter.h"
#include "base/text.h"
#include "platform/clock.h"

namespace kerno {
namespace {

using Id = ControlId;

constexpr uint32_t kSlice = 8;  // milliseconds of work between two events

}  // namespace

void CutPresenter::ShowRows() {
  filter_.has = has_all_ ? text_ : std::u16string();
  std::erase(filter_.has, u'\n');
  rows_ = catalogue_.Rows(filter_);
  std::vector<FaceListRow> shown;
  std::optional<size_t> selected;
  shown.reserve(rows_.rows.size());
  for (const FaceRow& row : rows_.rows) {
    if (pick_ && row.entry == pick_->entry && !selected) selected = shown.size();
    shown.push_back({row.name, row.note, row.favourite});
  }
  view_.ShowFaceRows(shown, selected);
  view_.CallWhenDue(1);
}

void CutPresenter::ShowPick() {
  view_.Enable(Id::kFavourite, pick_.has_value());
  if (!pick_) {
    view_.ShowChoices(Id::kStyle, {}, 0);
    view_.ShowControl(Id::kStyle, false);
    return view_.ShowAxes({});
  }
  view_.ShowChecked(Id::kFavourite, catalogue_.IsFavourite(pick_->entry));
  std::vector<std::u16string> styles;
  for (const FaceStyle& style : catalogue_.StylesOf(pick_->entry)) styles.push_back(style.name);
  view_.ShowControl(Id::kStyle, styles.size() > 1);
  view_.ShowChoices(Id::kStyle, styles, pick_->style);
  std::vector<AxisRow> axes;
  for (const FaceAxis& each : catalogue_.AxesOf(pick_->entry, pick_->style)) {
    const size_t i = axes.size();
    const double place = i < pick_->places.size() ? pick_->places[i] : each.place;
    axes.push_back({each.axis.name, each.axis.least, each.axis.most, place});
  }
  view_.ShowAxes(axes);
}

void CutPresenter::PickFace(FacePick pick) {
  pick_ = std::move(pick);
  form_.SetFace(catalogue_.OptionsOf(*pick_));
  ShowPick();
  ShowSizeFields();
  view_.RepaintFaceRows();
  Changed();
}

// The style stays where the family has one of that name.
void CutPresenter::PickRow(size_t row) {
  if (row >= rows_.rows.size()) return;
  const size_t entry = rows_.rows[row].entry;
  if (pick_ && pick_->entry == entry) return;
  size_t style = catalogue_.RegularStyleOf(entry);
  if (pick_) {
    const auto& before = catalogue_.StylesOf(pick_->entry);
    const std::u16string name =
        pick_->style < before.size() ? before[pick_->style].name : std::u16string();
    const auto& styles = catalogue_.StylesOf(entry);
    const auto same = std::ranges::find(styles, name, &FaceStyle::name);
    if (same != styles.end() && pick_->style != catalogue_.RegularStyleOf(pick_->entry)) {
      style = static_cast<size_t>(same - styles.begin());
    }
  }
  PickFace({entry, style, {}});
}

void CutPresenter::FavouriteToggled(size_t row) {
  if (row >= rows_.rows.size()) return;
  catalogue_.ToggleFavourite(rows_.rows[row].entry);
  ShowRows();
  ShowPick();
}

const BitmapSurface* CutPresenter::FaceSample(size_t row, int width, int height, Color ink,
                                              Color paper) {
  if (row >= rows_.rows.size()) return nullptr;
  const std::u16string first = FirstLine();
  samples_.Choose(pick_);
  const BitmapSurface* picture =
      samples_.PictureOf(rows_.rows[row].entry, {first, width, height, ink, paper});
  if (!picture) view_.CallWhenDue(1);
  return picture;
}

// Whether there is more to do.
bool CutPresenter::WorkBetweenEvents() {
  const uint32_t start = CurrentClock().Ticks();
  bool made_samples = false, has_more = true;
  while (has_more && CurrentClock().Ticks() - start < kSlice) {
    const bool made = samples_.MakeNext();
    made_samples |= made;
    has_more = made || (!rows_.complete && catalogue_.ReadNext());
  }
  if (made_samples) view_.RepaintFaceRows();
  if (!rows_.complete && !has_more) {
    ShowRows();
    ShowMenus();  // scripts are known
  }
  return has_more;
}

}  // namespace kerno
