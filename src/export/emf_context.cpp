#include "export/emf_context.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "platform/drawing_objects.h"

namespace kerno {
namespace {

// A font of the measuring context with the description that goes into the file.
class FileFont final : public Font {
 public:
  FileFont(std::unique_ptr<Font> inner, const LogFont& wanted)
      : inner_(std::move(inner)), wanted_(wanted) {}
  const std::u16string& FaceName() const override { return inner_->FaceName(); }
  bool HasGlyph(char32_t ch) const override { return inner_->HasGlyph(ch); }
  Font* inner() const { return inner_.get(); }
  const LogFont& wanted() const { return wanted_; }

 private:
  std::unique_ptr<Font> inner_;
  LogFont wanted_;
};

const DataPen kStockPen{PenData{}};
const DataBrush kStockBrush{BrushData{}};

int32_t WholeUnit(double value) {
  constexpr double kLimit = 1 << 27;  // the desktop's own coordinates end there
  if (!(std::fabs(value) < kLimit)) value = std::copysign(kLimit, value);
  return static_cast<int32_t>(std::lround(value));
}

}  // namespace

EmfContext::EmfContext(const EmfFrame& frame, std::u16string_view picture, FileReplacement* out)
    : frame_(frame), encoder_(frame, u"Kerno", picture, out), fonts_(CreateMeasuringContext()) {
  plain_pens_.first = pens_.first + kKept;
  brushes_.first = plain_pens_.first + kKept;
  file_fonts_.first = brushes_.first + kKept;
}

EmfContext::~EmfContext() {
  fonts_->SelectFont(nullptr);
}

std::unique_ptr<Font> EmfContext::CreateFontIndirect(const LogFont& wanted) {
  std::unique_ptr<Font> inner = fonts_->CreateFontIndirect(wanted);
  if (!inner) return nullptr;
  return std::make_unique<FileFont>(std::move(inner), wanted);
}

Font* EmfContext::SelectFont(Font* font) {
  fonts_->SelectFont(font ? static_cast<FileFont*>(font)->inner() : nullptr);
  return std::exchange(font_, font);
}

Font* EmfContext::SelectedFont() const {
  return font_;
}

std::unique_ptr<Pen> EmfContext::CreatePenIndirect(const PenData& data) {
  return std::make_unique<DataPen>(data);
}

std::unique_ptr<Brush> EmfContext::CreateBrushIndirect(const BrushData& data) {
  return std::make_unique<DataBrush>(data);
}

const Pen* EmfContext::CurrentPen() const {
  return pen_ ? pen_ : &kStockPen;
}

const Brush* EmfContext::CurrentBrush() const {
  return brush_ ? brush_ : &kStockBrush;
}

int32_t EmfContext::SetLogicalUnits(int32_t per_pixel) {
  return std::exchange(units_, std::max(1, per_pixel));
}

// Makes an object of the file the selected one of its kind, creating it when it is new.
template <class Data, class Create>
void EmfContext::Use(Handles<Data>* handles, const Data& data, Create create) {
  const auto found = std::find(handles->known.begin(), handles->known.end(), data);
  size_t slot = static_cast<size_t>(found - handles->known.begin());
  if (found == handles->known.end()) {
    slot = handles->next++ % kKept;
    const uint32_t handle = handles->first + static_cast<uint32_t>(slot);
    if (slot < handles->known.size()) {
      encoder_.DeleteObject(handle);
      handles->known[slot] = data;
      if (handles->selected == handle) handles->selected = 0;
    } else {
      handles->known.push_back(data);
    }
    create(handle);
  }
  const uint32_t handle = handles->first + static_cast<uint32_t>(slot);
  if (handles->selected != handle) encoder_.SelectObject(handle);
  handles->selected = handle;
}

void EmfContext::SelectStock(uint32_t* selected, uint32_t stock) {
  if (*selected != stock) encoder_.SelectObject(stock);
  *selected = stock;
}

// The plain pen is selected before the extended one of the same look: where a reader fails to make
// the latter, the former stays.
void EmfContext::UsePen() {
  PenData pen = CurrentPen()->Data();
  if (pen.style == PenStyle::kNull) {
    SelectStock(&pens_.selected, kEmfNullPen);
    plain_pens_.selected = 0;
    return;
  }
  pen.width *= frame_.units_per_pixel;
  pen.pattern_length *= frame_.units_per_pixel;
  Use(&plain_pens_, pen, [&](uint32_t handle) { encoder_.CreatePlainPen(handle, pen); });
  Use(&pens_, pen, [&](uint32_t handle) { encoder_.CreatePen(handle, pen); });
}

void EmfContext::UseBrush(bool hollow) {
  const BrushData brush = CurrentBrush()->Data();
  if (hollow || brush.style == BrushStyle::kHollow) {
    SelectStock(&brushes_.selected, kEmfNullBrush);
    return;
  }
  Use(&brushes_, brush, [&](uint32_t handle) { encoder_.CreateBrush(handle, brush); });
}

void EmfContext::UseState() {
  if (file_fill_mode_ == fill_mode_) return;
  encoder_.SetFillMode(fill_mode_);
  file_fill_mode_ = fill_mode_;
}

IntPoint EmfContext::FilePoint(double x, double y) const {
  return {WholeUnit(x * frame_.units_per_pixel), WholeUnit(y * frame_.units_per_pixel)};
}

bool EmfContext::PolyPolygon(std::span<const IntPoint> points, std::span<const int32_t> counts) {
  std::vector<DevicePoint> pixels;
  pixels.reserve(points.size());
  const double scale = 1.0 / units_;
  for (const IntPoint& p : points) pixels.push_back({p.x * scale, p.y * scale});
  if (std::any_of(counts.begin(), counts.end(), [](int32_t count) { return count < 0; })) {
    return false;
  }
  return DrawPolygons(pixels, std::vector<uint32_t>(counts.begin(), counts.end()));
}

bool EmfContext::DrawPolygons(std::span<const DevicePoint> points,
                              std::span<const uint32_t> counts) {
  std::vector<IntPoint> kept;
  std::vector<uint32_t> kept_counts;
  kept.reserve(points.size());
  size_t at = 0;
  for (uint32_t count : counts) {
    if (count > points.size() - at) return false;
    const size_t before = kept.size();
    for (const DevicePoint& p : points.subspan(at, count)) {
      if (std::isfinite(p.x) && std::isfinite(p.y)) kept.push_back(FilePoint(p.x, p.y));
    }
    at += count;
    const size_t length = kept.size() - before;
    if (length < 2) kept.resize(before);  // the format's polygons have two points or more
    if (length >= 2) kept_counts.push_back(static_cast<uint32_t>(length));
  }
  if (kept_counts.empty()) return true;
  UsePen();
  UseBrush(false);
  UseState();
  encoder_.PolyPolygon(kept, kept_counts);
  return true;
}

bool EmfContext::DrawPolyline(std::span<const DevicePoint> points) {
  std::vector<IntPoint> kept;
  kept.reserve(points.size());
  for (const DevicePoint& p : points) {
    if (std::isfinite(p.x) && std::isfinite(p.y)) kept.push_back(FilePoint(p.x, p.y));
  }
  if (kept.size() < 2 || CurrentPen()->Data().style == PenStyle::kNull) return true;
  UsePen();
  const bool closed =
      kept.size() > 3 && kept.front().x == kept.back().x && kept.front().y == kept.back().y;
  if (!closed) {
    encoder_.Polyline(kept);
    return true;
  }
  kept.pop_back();
  UseBrush(true);
  encoder_.Polygon(kept);
  return true;
}

bool EmfContext::DrawCircle(DevicePoint centre, double radius) {
  if (!std::isfinite(centre.x) || !std::isfinite(centre.y) || !std::isfinite(radius)) return true;
  UsePen();
  UseBrush(false);
  encoder_.Ellipse(FilePoint(centre.x - radius, centre.y - radius),
                   FilePoint(centre.x + radius, centre.y + radius));
  return true;
}

bool EmfContext::DrawArc(DevicePoint centre, double radius, double start, double sweep) {
  if (!std::isfinite(centre.x) || !std::isfinite(centre.y) || !std::isfinite(radius) ||
      !std::isfinite(start) || !std::isfinite(sweep)) {
    return true;
  }
  UsePen();
  if (std::fabs(sweep) >= 360) {
    UseBrush(true);
    encoder_.Ellipse(FilePoint(centre.x - radius, centre.y - radius),
                     FilePoint(centre.x + radius, centre.y + radius));
    return true;
  }
  // Quarters or less, each a cubic that strays less than 1/3000 of the radius from the circle.
  const int pieces = std::max(1, static_cast<int>(std::ceil(std::fabs(sweep) / 90)));
  const double step = sweep / pieces * std::numbers::pi / 180;
  const double reach = radius * 4 / 3 * std::tan(step / 4);
  std::vector<IntPoint> points;
  for (int i = 0; i <= pieces; ++i) {
    const double a = start * std::numbers::pi / 180 + step * i;
    const DevicePoint on = {centre.x + radius * std::cos(a), centre.y - radius * std::sin(a)};
    const DevicePoint along = {-reach * std::sin(a), -reach * std::cos(a)};
    if (i > 0) points.push_back(FilePoint(on.x - along.x, on.y - along.y));
    points.push_back(FilePoint(on.x, on.y));
    if (i < pieces) points.push_back(FilePoint(on.x + along.x, on.y + along.y));
  }
  encoder_.PolyBezier(points);
  return true;
}

void EmfContext::UseFont() {
  LogFont font;  // the stock font's place: the mapper's default
  if (font_) font = static_cast<FileFont*>(font_)->wanted();
  const double scale = static_cast<double>(frame_.units_per_pixel) / units_;
  font.height = WholeUnit((font.height == 0 ? 16 : font.height) * scale);
  font.width = WholeUnit(font.width * scale);
  Use(&file_fonts_, font, [&](uint32_t handle) { encoder_.CreateFont(handle, font); });
}

bool EmfContext::TextOut(int32_t x, int32_t y, std::u16string_view text) {
  if (text.empty()) return true;
  const double scale = 1.0 / units_;
  std::vector<int32_t> advances;
  int32_t pen = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    Extent extent;
    if (!fonts_->GetTextExtent(text.substr(0, i + 1), &extent)) return false;
    const int32_t to = WholeUnit(extent.cx * scale * frame_.units_per_pixel);
    advances.push_back(to - pen);
    pen = to;
  }
  UseFont();
  if (file_text_color_ != text_color_) encoder_.SetTextColor(text_color_);
  file_text_color_ = text_color_;
  encoder_.TextOut(FilePoint(x * scale, y * scale), text, advances);
  return true;
}

}  // namespace kerno
