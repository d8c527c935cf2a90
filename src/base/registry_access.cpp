#include "base/registry_access.h"

#include "base/file_wait.h"
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
RegistryOutcome Await(const Change& change) {
  RegistryOutcome outcome = RegistryOutcome::kFailed;
  const Status status = WaitForFile(RegistryFile(), FileWait::kWrite, [&] {
    Status why;
    outcome = change(&why);
    return why;
  });
  return status.ok() ? outcome : RegistryOutcome::kFailed;
}

}  // namespace

void RegistryAccess::Record(std::u16string_view what, std::u16string_view key,
                            std::u16string_view name) {
  last_error_ = what;
  last_error_.resize(kPrefixWidth, u'\u3000');
  last_error_.append(key).append(u"\\[").append(name).append(u"]");
}

std::optional<int32_t> RegistryAccess::ReadDword(std::u16string_view key,
                                                 std::u16string_view name) {
  RegistryValue value;
  const RegistryOutcome outcome = QueryRegistry(RegistryRoot::kCurrentUser, key, name, &value);
  if (outcome == RegistryOutcome::kDone && value.type == RegistryType::kDword) {
    return static_cast<int32_t>(value.number);
  }
  Record(outcome == RegistryOutcome::kDone      ? kNotDword
         : outcome == RegistryOutcome::kNoValue ? kNoEntry
                                                : kNoSection,
         key, name);
  return std::nullopt;
}

std::optional<std::u16string> RegistryAccess::ReadString(std::u16string_view key,
                                                         std::u16string_view name) {
  RegistryValue value;
  const RegistryOutcome outcome = QueryRegistry(RegistryRoot::kCurrentUser, key, name, &value);
  if (outcome == RegistryOutcome::kDone && value.type == RegistryType::kString) return value.text;
  Record(outcome == RegistryOutcome::kDone      ? kNotString
         : outcome == RegistryOutcome::kNoValue ? kNoEntry
                                                : kNoSection,
         key, name);
  return std::nullopt;
}

bool RegistryAccess::WriteDword(std::u16string_view key, std::u16string_view name, int32_t value) {
  const RegistryValue data{RegistryType::kDword, {}, static_cast<uint32_t>(value)};
  const RegistryOutcome outcome = Await(
      [&](Status* why) { return SetRegistry(RegistryRoot::kCurrentUser, key, name, data, why); });
  if (outcome == RegistryOutcome::kDone) return true;
  Record(kNotSet, key, name);
  return false;
}

bool RegistryAccess::WriteString(std::u16string_view key, std::u16string_view name,
                                 std::u16string_view value) {
  const RegistryValue data{RegistryType::kString, std::u16string(value), 0};
  const RegistryOutcome outcome = Await(
      [&](Status* why) { return SetRegistry(RegistryRoot::kCurrentUser, key, name, data, why); });
  if (outcome == RegistryOutcome::kDone) return true;
  Record(kNotSet, key, name);
  return false;
}

bool RegistryAccess::DeleteValue(std::u16string_view key, std::u16string_view name) {
  const RegistryOutcome outcome = Await(
      [&](Status* why) { return DeleteRegistryValue(RegistryRoot::kCurrentUser, key, name, why); });
  if (outcome == RegistryOutcome::kDone) return true;
  Record(outcome == RegistryOutcome::kNoKey ? kNoSection : kValueNotDeleted, key, name);
  return false;
}

bool RegistryAccess::DeleteKey(std::u16string_view key) {
  const RegistryOutcome outcome =
      Await([&](Status* why) { return DeleteRegistryKey(RegistryRoot::kCurrentUser, key, why); });
  if (outcome == RegistryOutcome::kDone) return true;
  Record(kKeyNotDeleted, key, {});
  return false;
}

}  // namespace kerno
