#include "cli/settings_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <limits>
#include <optional>

#include "base/profile_store.h"
#include "base/settings_places.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "cli/console.h"
#include "platform/folder_path.h"
#include "platform/private_profile.h"

namespace kerno {
namespace {

const char* ReasonText(IniBaseReason reason) {
  switch (reason) {
    case IniBaseReason::kOverride:
      return "the registry value IniFullBase names this folder";
    case IniBaseReason::kBesideProgram:
      return "the folder Quenkit_Setting stands beside the program";
    case IniBaseReason::kTempBesideProgram:
      return "the program's folder can be written";
    case IniBaseReason::kConfigFolder:
      return "the program's folder is not for settings; this is the user's configuration folder";
    case IniBaseReason::kTemporaryFolder:
      break;
  }
  return "neither the program's nor a configuration folder can be written";
}

std::optional<std::u16string> ReadUtf8(const char* what, const std::string& bytes) {
  size_t offset = 0;
  auto text = Utf8ToUtf16(bytes, &offset);
  if (!text) ReportError(what, "not UTF-8 at byte " + std::to_string(offset));
  return text;
}

// Whether all of a text is an integer of 32 bits as the settings take it: a larger one would be
// read as what is left of it.
bool IsInteger(std::u16string_view text) {
  const bool negative = text.starts_with(u'-');
  if (negative || text.starts_with(u'+')) text.remove_prefix(1);
  const bool hexadecimal = text.starts_with(u"0x");
  if (hexadecimal) text.remove_prefix(2);
  const std::u16string_view digits = u"0123456789abcdefABCDEF";
  const size_t bad = text.find_first_not_of(digits.substr(0, hexadecimal ? digits.npos : 10));
  if (text.empty() || bad != text.npos) return false;
  text.remove_prefix(std::min(text.find_first_not_of(u'0'), text.size()));
  constexpr size_t kMostDecimal = 10, kMostHexadecimal = 8;
  if (hexadecimal) return text.size() <= kMostHexadecimal;
  const int64_t most = int64_t{std::numeric_limits<int32_t>::max()} + (negative ? 1 : 0);
  return text.size() <= kMostDecimal && Int64OfText(text) <= most;
}

bool IsRectangle(std::u16string_view text) {
  int numbers = 0;
  while (!text.empty()) {
    const size_t end = text.find(u' ');
    const std::u16string_view number = text.substr(0, end);
    if (!number.empty()) numbers += IsInteger(number) && !number.starts_with(u"0x") ? 1 : 5;
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return numbers == 4;
}

// What the value of a known setting has to be and is not; empty when it fits.
std::string Misfit(const Setting& row, std::u16string_view value) {
  if (value.empty() || std::holds_alternative<TextSetting>(row)) return {};
  if (std::holds_alternative<RectangleSetting>(row)) {
    return IsRectangle(value) ? "" : "four integers are wanted: left, top, right, bottom";
  }
  const auto* const integer = std::get_if<IntegerSetting>(&row);
  const IntegerLimits limits = integer ? integer->limits : IntegerLimits();
  const int32_t number = ParseProfileInt(value);
  if (IsInteger(value) && number >= limits.least && number <= limits.most) return {};
  return "an integer is wanted, from " + std::to_string(limits.least) + " to " +
         std::to_string(limits.most);
}

ExitStatus PrintAll(const std::string& text) {
  return Print(text) && FinishPrinting() ? kDone : kFailed;
}

// What the settings answer, which are those that could be read; the store told of others.
ExitStatus PrintAnswer(const std::string& text, const IniStore& store) {
  const ExitStatus printed = PrintAll(text);
  return store.reading().ok() ? printed : kFailed;
}

// What was told when the settings were read is not told again.
ExitStatus EndOfWriting(const Status& written) {
  if (written.ok()) return kDone;
  SettingsProcess::Current().TellOnce(written.what + u": " + written.why);
  return kFailed;
}

}  // namespace

void SettingsCommand::AddOptions(CLI::App& app) {
  app.require_subcommand(1);
  const auto choose = [this](ExitStatus (SettingsCommand::*run)()) {
    return [this, run] { chosen_ = run; };
  };
  app.add_subcommand("path", "print where the settings are, and why there")
      ->callback(choose(&SettingsCommand::PrintPath));
  app.add_subcommand("list",
                     "print all known settings: section, key, type, default, current value, "
                     "meaning, with tabs between")
      ->callback(choose(&SettingsCommand::List));
  CLI::App* const get = app.add_subcommand("get", "print a setting");
  CLI::App* const set = app.add_subcommand("set", "change a setting");
  CLI::App* const unset = app.add_subcommand("unset", "let a setting be its default again");
  for (CLI::App* const action : {get, set, unset}) {
    action->add_option("SECTION", section_, "the setting's section")->required();
    action->add_option("KEY", key_, "the setting's key")->required();
  }
  set->add_option("VALUE", value_, "its new value (after -- when it begins with -)")->required();
  get->callback(choose(&SettingsCommand::Get));
  set->callback(choose(&SettingsCommand::Set));
  unset->callback(choose(&SettingsCommand::Unset));
}

ExitStatus SettingsCommand::Run() {
  return (this->*chosen_)();
}

bool SettingsCommand::ReadNames(std::u16string* section, std::u16string* key) const {
  const auto read_section = ReadUtf8("SECTION", section_);
  const auto read_key = read_section ? ReadUtf8("KEY", key_) : std::nullopt;
  if (!read_key) return false;
  *section = *read_section;
  *key = *read_key;
  return true;
}

ExitStatus SettingsCommand::PrintPath() {
  const IniStore store(kStoreName);
  if (store.profile_path().empty()) {
    ReportError("settings", "there is no folder of the user's own to keep them in");
    return kFailed;
  }
  const bool missing = FactsOfPath(TextPath(store.profile_path())).kind == PathKind::kMissing;
  std::string text = ShownAnswer(Utf16ToUtf8(store.profile_path())) + "\n";
  text += store.displaced()
              ? "the folder of the settings cannot be written; this is the temporary one"
              : ReasonText(SettingsProcess::Current().Base().reason);
  return PrintAll(text +
                  (missing ? "\nthere is no file yet: every setting has its default\n" : "\n"));
}

ExitStatus SettingsCommand::List() {
  IniStore store(kStoreName);
  std::string text = "section\tkey\ttype\tdefault\tvalue\tmeaning\n";
  for (const Setting& row : KnownSettings()) {
    const SettingText known = Describe(row);
    text += Utf16ToUtf8(known.section) + "\t" + Utf16ToUtf8(known.key) + "\t";
    text.append(known.type).append("\t");
    text += Utf16ToUtf8(known.default_value) + "\t";
    text += ShownAnswer(Utf16ToUtf8(ValueText(row, store))) + "\t";
    text.append(known.meaning).append("\n");
  }
  return PrintAnswer(text, store);
}

ExitStatus SettingsCommand::Get() {
  std::u16string section, key;
  if (!ReadNames(&section, &key)) return kWrongUsage;
  IniStore store(kStoreName);
  if (const Setting* const known = FindSetting(section, key)) {
    return PrintAnswer(ShownAnswer(Utf16ToUtf8(ValueText(*known, store))) + "\n", store);
  }
  const std::optional<std::u16string> value = store.FindStr(section, key);
  if (!value && !store.reading().ok()) return kFailed;
  if (!value) {
    ReportError(section_ + "/" + key_, "it is not set, and Kerno knows no default");
    return kFailed;
  }
  return PrintAnswer(ShownAnswer(Utf16ToUtf8(*value)) + "\n", store);
}

ExitStatus SettingsCommand::Set() {
  std::u16string section, key;
  if (!ReadNames(&section, &key)) return kWrongUsage;
  const auto value = ReadUtf8("VALUE", value_);
  if (!value) return kWrongUsage;
  const Setting* const known = FindSetting(section, key);
  if (const std::string misfit = known ? Misfit(*known, *value) : ""; !misfit.empty()) {
    ReportError(section_ + "/" + key_, misfit);
    return kWrongUsage;
  }
  IniStore store(kStoreName);
  return EndOfWriting(store.WriteStr(section, key, *value));
}

ExitStatus SettingsCommand::Unset() {
  std::u16string section, key;
  if (!ReadNames(&section, &key)) return kWrongUsage;
  IniStore store(kStoreName);
  return EndOfWriting(store.Remove(section, key));
}

}  // namespace kerno
