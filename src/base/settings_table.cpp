#include "base/settings_table.h"

#include <type_traits>

#include "platform/fold_case.h"

namespace kerno {
namespace {

template <class Row>
constexpr bool kIsRectangle = std::is_same_v<Row, RectangleSetting>;
template <class Row>
constexpr bool kIsText = std::is_same_v<Row, TextSetting>;

std::u16string TextOf(int32_t value) {
  return Int64Text(value);
}
std::u16string TextOf(const std::u16string& value) {
  return value;
}
std::u16string TextOf(const ProfileRect& value) {
  return RectText(value);
}

}  // namespace

int32_t Get(const IntegerSetting& row, SettingsReader& reader) {
  const int32_t value = reader.GetInt(row.section, row.key, row.default_value);
  const auto& [least, most, outside] = row.limits;
  if (value >= least && value <= most) return value;
  if (outside == Outside::kDefault) return row.default_value;
  return value < least ? least : most;
}

bool Get(const SwitchSetting& row, SettingsReader& reader) {
  return reader.GetInt(row.section, row.key, row.default_value ? 1 : 0) != 0;
}

std::u16string Get(const TextSetting& row, SettingsReader& reader) {
  return reader.GetStr(row.section, row.key, row.default_value);
}

ProfileRect Get(const RectangleSetting& row, SettingsReader& reader) {
  const std::u16string key = std::u16string(row.key).append(kRectSuffix);
  return RectOfText(reader.GetStr(row.section, key, RectText({})));
}

SettingText Describe(const Setting& row) {
  SettingText text = std::visit(
      [](const auto& typed) {
        using Row = std::decay_t<decltype(typed)>;
        return SettingText{std::u16string(typed.section),
                           std::u16string(typed.key),
                           kIsText<Row>        ? "text"
                           : kIsRectangle<Row> ? "rectangle"
                                               : "integer",
                           {},
                           typed.meaning};
      },
      row);
  if (std::holds_alternative<RectangleSetting>(row)) text.key += kRectSuffix;
  text.default_value = ValueText(row, DefaultSettings());
  return text;
}

std::u16string ValueText(const Setting& row, SettingsReader& reader) {
  return std::visit([&](const auto& typed) { return TextOf(Get(typed, reader)); }, row);
}

const Setting* FindSetting(std::u16string_view section, std::u16string_view key) {
  for (const Setting& row : kKnownSettings) {
    const SettingText text = Describe(row);
    if (EqualWithoutCase(text.section, section) && EqualWithoutCase(text.key, key)) return &row;
  }
  return nullptr;
}

}  // namespace kerno
