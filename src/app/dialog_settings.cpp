#include "app/dialog_settings.h"

#include "app/text_source.h"
#include "base/profile_store.h"
#include "base/settings_places.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "base/text_file.h"

namespace kerno {
namespace {

constexpr std::u16string_view kTextFile = u"Kerno_Text.txt";

// Writes the values that differ, until a write fails.
class Differences {
 public:
  void Switch(const SwitchSetting& row, bool value, bool before) {
    Number(row.section, row.key, value, before);
  }
  template <class Value>
  void Integer(const IntegerSetting& row, Value value, Value before) {
    Number(row.section, row.key, static_cast<int64_t>(value), static_cast<int64_t>(before));
  }
  void Text(const TextSetting& row, const std::u16string& value, const std::u16string& before) {
    if (value == before || !status_.ok()) return;
    status_ = store_.WriteStr(row.section, row.key, value);
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
  void Number(std::u16string_view section, std::u16string_view key, int64_t value, int64_t before) {
    if (value == before || !status_.ok()) return;
    status_ = store_.WriteInt(section, key, static_cast<int32_t>(value));
  }

  IniStore store_{kStoreName};
  Status status_ = Status::Ok();
};

// The rectangle counts from the screen's corner. Former versions kept it under another name, and
// nothing else of the window.
WindowPlace ReadWindow(ProfileStore& store) {
  const WindowPlacement kept = store.RestorePosition(0, 0);
  const ProfileRect rect = kept.normal == ProfileRect{} ? Get(kFormerPlace, store) : kept.normal;
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
  m.face = Get(kDialogFace, store);
  m.height = Get(kDialogHeight, store);
  m.vertical = Get(kDialogVertical, store);
  m.use_poly_polygon = Get(kDialogPolyPolygon, store);
  m.first_color = static_cast<Color>(Get(kDialogTextColor, store));
  m.second_color = static_cast<size_t>(Get(kDialogSecondColor, store));
  m.elements = static_cast<ContourElements>(Get(kDialogElements, store));
  m.pitch = static_cast<VerticalPitch>(Get(kDialogVerticalPitch, store));
  m.aci = static_cast<AciRule>(Get(kDialogColorIndexRule, store));
  m.output_folder = Get(kDialogOutputFolder, store);
  m.language = static_cast<LanguageChoice>(Get(kDialogLanguage, store));
  m.mode = static_cast<WindowMode>(Get(kDialogMode, store));
  m.window = ReadWindow(store);
  return m;
}

Status SaveDialogMemory(const DialogMemory& m, const DialogMemory& before) {
  Differences out;
  out.Text(kDialogFace, m.face, before.face);
  out.Text(kDialogHeight, m.height, before.height);
  out.Switch(kDialogVertical, m.vertical, before.vertical);
  out.Switch(kDialogPolyPolygon, m.use_poly_polygon, before.use_poly_polygon);
  out.Integer(kDialogTextColor, m.first_color, before.first_color);
  out.Integer(kDialogSecondColor, m.second_color, before.second_color);
  out.Integer(kDialogElements, m.elements, before.elements);
  out.Integer(kDialogVerticalPitch, m.pitch, before.pitch);
  out.Integer(kDialogColorIndexRule, m.aci, before.aci);
  out.Text(kDialogOutputFolder, m.output_folder, before.output_folder);
  out.Integer(kDialogLanguage, m.language, before.language);
  out.Integer(kDialogMode, m.mode, before.mode);
  out.Window(m.window, before.window);
  return out.status();
}

std::filesystem::path SavedTextPath() {
  const IniStore store(kStoreName);
  return TextPath(store.profile_path()).replace_filename(TextPath(kTextFile));
}

std::u16string LoadDialogText() {
  std::u16string text;
  return ReadText(SavedTextPath(), &text) ? text : std::u16string();
}

Status SaveDialogText(std::u16string_view text) {
  return WriteText(SavedTextPath(), WithCrLf(text), TextEncoding::kUtf16);
}

}  // namespace kerno
