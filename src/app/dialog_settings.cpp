#include "app/dialog_settings.h"

#include "app/text_source.h"
#include "base/profile_store.h"
#include "base/settings_places.h"
#include "base/text.h"
#include "base/text_file.h"

namespace kerno {
namespace {

constexpr std::u16string_view kSection = u"Dialog";
constexpr std::u16string_view kFormerWindow = u"Kerno";  // under "Position\\Dialog"
constexpr std::u16string_view kTextFile = u"Kerno_Text.txt";
constexpr int32_t kAnyNumber = INT32_MAX;

// Every setting of the section: its key, what it is in the program, and how many values a number
// has from 0 on.
template <class Visitor>
void VisitSettings(Visitor visit) {
  visit(u"Face", &DialogMemory::face, kAnyNumber);
  visit(u"Height", &DialogMemory::height, kAnyNumber);
  visit(u"Vertical", &DialogMemory::vertical, kAnyNumber);
  visit(u"PolyPolygon", &DialogMemory::use_poly_polygon, kAnyNumber);
  visit(u"TextColor", &DialogMemory::first_color, 0x1000000);
  visit(u"SecondColor", &DialogMemory::second_color, kAnyNumber);
  visit(u"Elements", &DialogMemory::elements, 3);
  visit(u"VerticalPitch", &DialogMemory::pitch, 2);
  visit(u"ColorIndexRule", &DialogMemory::aci, 2);
  visit(u"OutputFolder", &DialogMemory::output_folder, kAnyNumber);
}

void Read(ProfileStore& store, const char16_t* key, int32_t /*count*/, std::u16string* value) {
  *value = store.GetStr(kSection, key, *value);
}
template <class Number>
void Read(ProfileStore& store, const char16_t* key, int32_t count, Number* value) {
  const int32_t number = store.GetInt(kSection, key, static_cast<int32_t>(*value));
  if (number >= 0 && number < count) *value = static_cast<Number>(number);
}

Status Write(ProfileStore& store, const char16_t* key, const std::u16string& value) {
  return store.WriteStr(kSection, key, value);
}
template <class Number>
Status Write(ProfileStore& store, const char16_t* key, Number value) {
  return store.WriteInt(kSection, key, static_cast<int32_t>(value));
}

bool IsEmpty(const ProfileRect& r) {
  return r.left == r.right && r.top == r.bottom;
}

// The rectangle counts from the screen's corner. A window that was minimised comes back as it was
// before.
WindowPlace ReadWindow(ProfileStore& store) {
  const WindowPlacement placement = store.RestorePosition(0, 0);
  const ProfileRect rect =
      IsEmpty(placement.normal) ? store.LoadDialogRect(kFormerWindow, {}) : placement.normal;
  const bool maximised = placement.show == ShowState::kMaximised || placement.restore_to_maximised;
  return {.normal = {rect.left, rect.top, rect.right, rect.bottom},
          .show = maximised                               ? WindowShow::kMaximised
                  : placement.show == ShowState::kRestore ? WindowShow::kMinimised
                                                          : WindowShow::kNormal};
}

Status WriteWindow(ProfileStore& store, const WindowPlace& place) {
  const auto& [left, top, right, bottom] = place.normal;
  return store.SavePosition({.show = place.show == WindowShow::kMaximised   ? ShowState::kMaximised
                                     : place.show == WindowShow::kMinimised ? ShowState::kMinimised
                                                                            : ShowState::kNormal,
                             .normal = {left, top, right, bottom}});
}

}  // namespace

DialogMemory LoadDialogMemory() {
  IniStore store(kStoreName);
  DialogMemory memory;
  VisitSettings([&](const char16_t* key, auto member, int32_t count) {
    Read(store, key, count, &(memory.*member));
  });
  memory.window = ReadWindow(store);
  return memory;
}

Status SaveDialogMemory(const DialogMemory& memory, const DialogMemory& before) {
  IniStore store(kStoreName);
  Status status = Status::Ok();
  VisitSettings([&](const char16_t* key, auto member, int32_t /*count*/) {
    if (status.ok() && memory.*member != before.*member) {
      status = Write(store, key, memory.*member);
    }
  });
  if (!status.ok() || memory.window == before.window) return status;
  return WriteWindow(store, memory.window);
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
