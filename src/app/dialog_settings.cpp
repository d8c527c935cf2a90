#include "app/dialog_settings.h"

#include <algorithm>

#include "app/text_source.h"
#include "base/profile_store.h"
#include "base/settings_places.h"
#include "base/text.h"
#include "base/text_file.h"

namespace kerno {
namespace {

constexpr std::u16string_view kSection = u"Dialog";
constexpr std::u16string_view kFormerWindow = u"Kerno";  // under "Position\Dialog"
constexpr std::u16string_view kTextFile = u"Kerno_Text.txt";

// An enumeration of `count` values, kept by its number.
template <class Enum>
Enum GetEnum(ProfileStore& store, std::u16string_view key, Enum fallback, int32_t count) {
  const int32_t number = store.GetInt(kSection, key, static_cast<int32_t>(fallback));
  return number >= 0 && number < count ? static_cast<Enum>(number) : fallback;
}

// Writes the values that differ, until a write fails.
class Differences {
 public:
  void Int(std::u16string_view key, int64_t value, int64_t before) {
    if (value == before || !status_.ok()) return;
    status_ = store_.WriteInt(kSection, key, static_cast<int32_t>(value));
  }
  void Text(std::u16string_view key, const std::u16string& value, const std::u16string& before) {
    if (value == before || !status_.ok()) return;
    status_ = store_.WriteStr(kSection, key, value);
  }
  void Window(const WindowPlace& place, const WindowPlace& before) {
    if (place == before || !status_.ok()) return;
    const auto& [left, top, right, bottom] = place.normal;
    const ShowState show = place.show == WindowShow::kMaximised   ? ShowState::kMaximised
                           : place.show == WindowShow::kMinimised ? ShowState::kMinimised
                                                                  : ShowState::kNormal;
    status_ = store_.SavePosition({.show = show, .normal = {left, top, right, bottom}});
  }
  const Status& status() const { return status_; }

 private:
  IniStore store_{kStoreName};
  Status status_ = Status::Ok();
};

// The rectangle counts from the screen's corner. Former versions kept it under another name, and
// nothing else of the window.
WindowPlace ReadWindow(ProfileStore& store) {
  const WindowPlacement kept = store.RestorePosition(0, 0);
  const ProfileRect rect =
      kept.normal == ProfileRect{} ? store.LoadDialogRect(kFormerWindow, {}) : kept.normal;
  const bool maximised = kept.show == ShowState::kMaximised || kept.restore_to_maximised;
  return {.normal = {rect.left, rect.top, rect.right, rect.bottom},
          .show = maximised                          ? WindowShow::kMaximised
                  : kept.show == ShowState::kRestore ? WindowShow::kMinimised
                                                     : WindowShow::kNormal};
}

}  // namespace

DialogMemory LoadDialogMemory() {
  IniStore store(kStoreName);
  DialogMemory m;
  m.face = store.GetStr(kSection, u"Face", m.face);
  m.height = store.GetStr(kSection, u"Height", m.height);
  m.vertical = store.GetInt(kSection, u"Vertical", m.vertical) != 0;
  m.use_poly_polygon = store.GetInt(kSection, u"PolyPolygon", m.use_poly_polygon) != 0;
  const int32_t first = store.GetInt(kSection, u"TextColor", static_cast<int32_t>(m.first_color));
  m.first_color = static_cast<Color>(first) & 0xFFFFFF;
  m.second_color = static_cast<size_t>(std::max(0, store.GetInt(kSection, u"SecondColor", 0)));
  m.elements = GetEnum(store, u"Elements", m.elements, 3);
  m.pitch = GetEnum(store, u"VerticalPitch", m.pitch, 2);
  m.aci = GetEnum(store, u"ColorIndexRule", m.aci, 2);
  m.output_folder = store.GetStr(kSection, u"OutputFolder", m.output_folder);
  m.window = ReadWindow(store);
  return m;
}

Status SaveDialogMemory(const DialogMemory& m, const DialogMemory& before) {
  Differences out;
  out.Text(u"Face", m.face, before.face);
  out.Text(u"Height", m.height, before.height);
  out.Int(u"Vertical", m.vertical, before.vertical);
  out.Int(u"PolyPolygon", m.use_poly_polygon, before.use_poly_polygon);
  out.Int(u"TextColor", m.first_color, before.first_color);
  out.Int(u"SecondColor", static_cast<int64_t>(m.second_color),
          static_cast<int64_t>(before.second_color));
  out.Int(u"Elements", static_cast<int64_t>(m.elements), static_cast<int64_t>(before.elements));
  out.Int(u"VerticalPitch", static_cast<int64_t>(m.pitch), static_cast<int64_t>(before.pitch));
  out.Int(u"ColorIndexRule", static_cast<int64_t>(m.aci), static_cast<int64_t>(before.aci));
  out.Text(u"OutputFolder", m.output_folder, before.output_folder);
  out.Window(m.window, before.window);
  return out.status();
}

std::filesystem::path SavedTextPath() {
  const IniStore store(kStoreName);
  return TextPath(store.profile_path()).replace_filename(TextPath(kTextFile));
}

std::u16string LoadDialogText() {
  std::u16string text;
  ReadText(SavedTextPath(), &text);
  return text;
}

Status SaveDialogText(std::u16string_view text) {
  return WriteText(SavedTextPath(), WithCrLf(text), TextEncoding::kUtf16);
}

}  // namespace kerno
