// The typed values, counters, folders and window places of a ProfileStore, all of which stand on
// its plain integers and strings.
#include <filesystem>

#include "base/profile_store.h"
#include "base/settings_table.h"

namespace kerno {
namespace {

// Tells a counter that is absent from every other one.
constexpr int32_t kNoCounter = static_cast<int32_t>(0xFF00FF00);
constexpr std::u16string_view kCounter = u"Counter";
constexpr std::u16string_view kDialogs = u"Position\\Dialog";

std::u16string WithSuffix(std::u16string_view key, std::u16string_view suffix) {
  return std::u16string(key).append(suffix);
}

}  // namespace

std::u16string ProfileStore::GetTyped(std::u16string_view section, std::u16string_view key,
                                      std::u16string_view suffix,
                                      std::u16string_view default_text) {
  if (key.empty()) return std::u16string(default_text);
  return GetStr(section, WithSuffix(key, suffix), default_text);
}

Status ProfileStore::WriteTyped(std::u16string_view section, std::u16string_view key,
                                std::u16string_view suffix, std::u16string_view text) {
  return WriteStr(section, key.empty() ? std::u16string() : WithSuffix(key, suffix), text);
}

int64_t ProfileStore::GetInt64(std::u16string_view section, std::u16string_view key,
                               int64_t default_value) {
  return Int64OfText(GetTyped(section, key, kInt64Suffix, Int64Text(default_value)));
}

double ProfileStore::GetDouble(std::u16string_view section, std::u16string_view key,
                               double default_value) {
  return DoubleOfText(GetTyped(section, key, kDoubleSuffix, DoubleText(default_value)));
}

ProfileRect ProfileStore::GetRect(std::u16string_view section, std::u16string_view key,
                                  const ProfileRect& default_value) {
  return RectOfText(GetTyped(section, key, kRectSuffix, RectText(default_value)));
}

ProfilePoint ProfileStore::GetPoint(std::u16string_view section, std::u16string_view key,
                                    const ProfilePoint& default_value) {
  return PointOfText(GetTyped(section, key, kPointSuffix, PointText(default_value)));
}

ProfilePoint3 ProfileStore::GetPoint3(std::u16string_view section, std::u16string_view key,
                                      const ProfilePoint3& default_value) {
  return Point3OfText(GetTyped(section, key, kPoint3Suffix, Point3Text(default_value)));
}

Status ProfileStore::WriteInt64(std::u16string_view section, std::u16string_view key,
                                int64_t value) {
  return WriteTyped(section, key, kInt64Suffix, Int64Text(value));
}

Status ProfileStore::WriteDouble(std::u16string_view section, std::u16string_view key,
                                 double value) {
  return WriteTyped(section, key, kDoubleSuffix, DoubleText(value));
}

Status ProfileStore::WriteRect(std::u16string_view section, std::u16string_view key,
                               const ProfileRect& value, NumberForm form) {
  return WriteTyped(section, key, kRectSuffix, RectText(value, form));
}

Status ProfileStore::WritePoint(std::u16string_view section, std::u16string_view key,
                                const ProfilePoint& value, NumberForm form) {
  return WriteTyped(section, key, kPointSuffix, PointText(value, form));
}

Status ProfileStore::WritePoint3(std::u16string_view section, std::u16string_view key,
                                 const ProfilePoint3& value, NumberForm form) {
  return WriteTyped(section, key, kPoint3Suffix, Point3Text(value, form));
}

int32_t ProfileStore::GetCounter(std::u16string_view section) {
  const int32_t stored = GetInt(section, kCounter, kNoCounter);
  if (stored != kNoCounter) return stored;
  // A counter that cannot be set up is 0 all the same.
  if (!section.empty()) static_cast<void>(WriteInt(section, kCounter, 0));
  return 0;
}

Status ProfileStore::WriteCounter(std::u16string_view section, int32_t value) {
  return WriteInt(section, kCounter, value);
}

std::u16string ProfileStore::GetFilePath(std::u16string_view section) {
  constexpr auto kSeparator = static_cast<char16_t>(std::filesystem::path::preferred_separator);
  std::u16string folder = GetStr(section, u"FilePath", {});
  if (folder.empty()) folder = u".";
  if (folder.back() != u'\\' && folder.back() != u'/') folder.push_back(kSeparator);
  return folder;
}

Status ProfileStore::SavePosition(const WindowPlacement& placement) {
  const bool minimised = placement.show == ShowState::kMinimised;
  const bool normal = placement.show == ShowState::kNormal;
  const auto write = [&](const SwitchSetting& row, bool value) {
    return WriteInt(row.section, row.key, value ? 1 : 0);
  };
  Status status = write(kWindowMinimised, minimised);
  if (status.ok()) status = write(kWindowMaximised, !normal && !minimised);
  if (status.ok() && !minimised) {
    status = WriteRect(kWindowPlace.section, kWindowPlace.key, placement.normal);
  }
  return status;
}

WindowPlacement ProfileStore::RestorePosition(int32_t work_area_left, int32_t work_area_top) {
  const bool iconic = Get(kWindowMinimised, *this);
  const bool maximised = Get(kWindowMaximised, *this);
  WindowPlacement placement;
  placement.show = iconic      ? ShowState::kRestore
                   : maximised ? ShowState::kMaximised
                               : ShowState::kNormal;
  placement.restore_to_maximised = iconic && maximised;
  placement.normal = Get(kWindowPlace, *this);
  // In unsigned arithmetic: a stored number may be anything.
  const auto moved = [](int32_t edge, int32_t by) {
    return static_cast<int32_t>(static_cast<uint32_t>(edge) - static_cast<uint32_t>(by));
  };
  ProfileRect& rect = placement.normal;
  rect = {moved(rect.left, work_area_left), moved(rect.top, work_area_top),
          moved(rect.right, work_area_left), moved(rect.bottom, work_area_top)};
  return placement;
}

Status ProfileStore::SaveDialogRect(std::u16string_view dialog, const ProfileRect& rect,
                                    DialogState state) {
  return state == DialogState::kMinimised ? Status::Ok() : WriteRect(kDialogs, dialog, rect);
}

ProfileRect ProfileStore::LoadDialogRect(std::u16string_view dialog,
                                         const ProfileRect& default_value) {
  return GetRect(kDialogs, dialog, default_value);
}

}  // namespace kerno
