#include "base/registry_access.h"

#include <utility>

#include "base/file_wait.h"
#include "base/settings_places.h"
#include "platform/registry.h"

namespace kerno {
namespace {

constexpr std::u16string_view kNoSection = u"指定セクションを開けない";
constexpr std::u16string_view kNoEntry = u"エントリが存在しない";
constexpr std::u16string_view kNotDword = u"ＲＥＧ＿ＤＷＯＲＤでない";
constexpr std::u16string_view kNotString = u"ＲＥＧ＿ＳＺでない";
constexpr std::u16string_view kNotSet = u"登録に失敗";
constexpr std::u16string_view kValueNotDeleted = u"削除に失敗値";
constexpr std::u16string_view kKeyNotDeleted = u"削除に失敗キー";
constexpr size_t kPrefixWidth = 12;  // the longest of them

// A change of the registry, waited for while another process holds it.
template <typename Change>
RegistryOutcome Await(const Change& change, IfHeld if_held = IfHeld::kWait) {
  RegistryOutcome outcome = RegistryOutcome::kFailed;
  const auto attempt = [&] {
    Status why;
    outcome = change(&why);
    return why;
  };
  const Status status = if_held == IfHeld::kFail
                            ? attempt()
                            : WaitForFile(RegistryFile(), FileWait::kWrite, attempt,
                                          WaitOut::kHolder, &SettingsProcess::Current().patience);
  return status.ok() ? outcome : RegistryOutcome::kFailed;
}

Status Failed(std::u16string_view what, std::u16string_view key, std::u16string_view name) {
  std::u16string message(what);
  message.resize(kPrefixWidth, u'\u3000');
  message.append(key).append(u"\\[").append(name).append(u"]");
  return Status::Error(Failure::kOther, std::u16string(key), std::move(message));
}

// A value of the wanted type; `other_type` is told when it is of another.
Status Read(std::u16string_view key, std::u16string_view name, RegistryType wanted,
            std::u16string_view other_type, RegistryValue* value) {
  switch (QueryRegistry(RegistryRoot::kCurrentUser, key, name, value)) {
    case RegistryOutcome::kDone:
      return value->type == wanted ? Status::Ok() : Failed(other_type, key, name);
    case RegistryOutcome::kNoValue:
      return Failed(kNoEntry, key, name);
    default:
      return Failed(kNoSection, key, name);
  }
}

Status Write(std::u16string_view key, std::u16string_view name, const RegistryValue& value,
             IfHeld if_held = IfHeld::kWait) {
  const RegistryOutcome outcome = Await(
      [&](Status* why) { return SetRegistry(RegistryRoot::kCurrentUser, key, name, value, why); },
      if_held);
  return outcome == RegistryOutcome::kDone ? Status::Ok() : Failed(kNotSet, key, name);
}

}  // namespace

Status ReadUserDword(std::u16string_view key, std::u16string_view name, int32_t* value) {
  RegistryValue data;
  Status status = Read(key, name, RegistryType::kDword, kNotDword, &data);
  if (status.ok()) *value = static_cast<int32_t>(data.number);
  return status;
}

Status ReadUserString(std::u16string_view key, std::u16string_view name, std::u16string* value) {
  RegistryValue data;
  Status status = Read(key, name, RegistryType::kString, kNotString, &data);
  if (status.ok()) *value = std::move(data.text);
  return status;
}

Status WriteUserDword(std::u16string_view key, std::u16string_view name, int32_t value) {
  return Write(key, name, {RegistryType::kDword, {}, static_cast<uint32_t>(value)});
}

Status WriteUserString(std::u16string_view key, std::u16string_view name, std::u16string_view value,
                       IfHeld if_held) {
  return Write(key, name, {RegistryType::kString, std::u16string(value), 0}, if_held);
}

Status DeleteUserValue(std::u16string_view key, std::u16string_view name) {
  const RegistryOutcome outcome = Await(
      [&](Status* why) { return DeleteRegistryValue(RegistryRoot::kCurrentUser, key, name, why); });
  if (outcome == RegistryOutcome::kDone) return Status::Ok();
  return Failed(outcome == RegistryOutcome::kNoKey ? kNoSection : kValueNotDeleted, key, name);
}

Status DeleteUserKey(std::u16string_view key) {
  const RegistryOutcome outcome =
      Await([&](Status* why) { return DeleteRegistryKey(RegistryRoot::kCurrentUser, key, why); });
  return outcome == RegistryOutcome::kDone ? Status::Ok() : Failed(kKeyNotDeleted, key, {});
}

}  // namespace kerno
