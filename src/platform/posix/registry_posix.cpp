// The registry is one file in the user's configuration folder, in the text form that registry
// editors export, so that it can be carried to and from other machines.
#include "platform/folder_path.h"
#include "platform/held_file.h"
#include "platform/posix/registry_text.h"
#include "platform/posix/system_error.h"
#include "platform/posix/utf16_bytes.h"
#include "platform/registry.h"
#include "platform/system.h"

namespace kerno {

namespace fs = std::filesystem;

fs::path RegistryFile() {
  const fs::path folder = CurrentSystem().ConfigFolder();
  return folder.empty() ? fs::path() : folder / "registry.reg";
}

namespace {

std::u16string FullKey(RegistryRoot root, std::u16string_view key) {
  std::u16string full =
      root == RegistryRoot::kCurrentUser ? u"HKEY_CURRENT_USER\\" : u"HKEY_LOCAL_MACHINE\\";
  return full.append(key);
}

// A folder, a device or a pipe holds no registry, and no file takes its place.
Status CheckIsFile(const fs::path& file) {
  const PathKind kind = FactsOfPath(file).kind;
  if (kind == PathKind::kFolder) {
    return Status::Error(Failure::kIsFolder, SystemText(file.native()), u"it is a folder");
  }
  if (kind != PathKind::kOther) return Status::Ok();
  return Status::Error(Failure::kOther, SystemText(file.native()), u"is no file");
}

// Applies `edit` to the registry's text while the file is held.
template <typename Edit>
RegistryOutcome Change(IfMissing if_missing, Status* why, const Edit& edit) {
  const fs::path file = RegistryFile();
  if (file.empty()) {
    *why = Status::Error(Failure::kNotFound, u"registry.reg",
                         u"there is no home folder to keep it in");
    return RegistryOutcome::kFailed;
  }
  if (*why = CheckIsFile(file); !why->ok()) return RegistryOutcome::kFailed;
  std::error_code ignored;
  if (if_missing == IfMissing::kCreate) fs::create_directories(file.parent_path(), ignored);
  RegistryOutcome outcome = RegistryOutcome::kNoKey;
  bool foreign = false;
  *why = ChangeFile(file, if_missing, [&](std::string_view bytes) -> std::optional<std::string> {
    posix::ByteForm form;
    std::u16string text;
    if (!bytes.empty()) text = posix::TextOfBytes(bytes, &form);
    foreign = !bytes.empty() && !posix::IsRegistryText(text);
    if (foreign) return std::nullopt;
    outcome = edit(&text);
    if (outcome != RegistryOutcome::kDone) return std::nullopt;
    std::string changed = posix::BytesOfText(text, posix::ByteForm::kUtf16);
    return changed == bytes ? std::nullopt : std::optional<std::string>(std::move(changed));
  });
  if (foreign) {
    *why = Status::Error(Failure::kOther, SystemText(file.native()), u"it is no registry file");
  }
  if (why->ok() && outcome == RegistryOutcome::kFailed) {
    *why = Status::Error(Failure::kOther, SystemText(file.native()),
                         u"keys stand below it, or a damaged line would get another meaning");
  }
  if (why->failure == Failure::kNotFound && if_missing == IfMissing::kFail) {
    *why = Status::Ok();
    return RegistryOutcome::kNoKey;
  }
  return why->ok() ? outcome : RegistryOutcome::kFailed;
}

}  // namespace

RegistryOutcome QueryRegistry(RegistryRoot root, std::u16string_view key, std::u16string_view name,
                              RegistryValue* value, Status* why) {
  const fs::path file = RegistryFile();
  if (file.empty()) return RegistryOutcome::kNoKey;
  std::string bytes;
  Status read = CheckIsFile(file);
  if (read.ok()) read = PeekFile(file, &bytes);
  if (!read.ok()) {
    if (read.failure == Failure::kNotFound) return RegistryOutcome::kNoKey;
    if (why) *why = std::move(read);
    return RegistryOutcome::kFailed;
  }
  posix::ByteForm form;
  const std::u16string text = posix::TextOfBytes(bytes, &form);
  if (!posix::IsRegistryText(text)) return RegistryOutcome::kNoKey;
  return posix::FindRegistryValue(text, FullKey(root, key), name, value);
}

RegistryOutcome SetRegistry(RegistryRoot root, std::u16string_view key, std::u16string_view name,
                            const RegistryValue& value, Status* why) {
  return Change(IfMissing::kCreate, why, [&](std::u16string* text) {
    return posix::SetRegistryText(text, FullKey(root, key), name, value);
  });
}

RegistryOutcome DeleteRegistryValue(RegistryRoot root, std::u16string_view key,
                                    std::u16string_view name, Status* why) {
  return Change(IfMissing::kFail, why, [&](std::u16string* text) {
    return posix::RemoveRegistryText(text, FullKey(root, key), name);
  });
}

RegistryOutcome DeleteRegistryKey(RegistryRoot root, std::u16string_view key, Status* why) {
  return Change(IfMissing::kFail, why, [&](std::u16string* text) {
    return posix::RemoveRegistryKeyText(text, FullKey(root, key));
  });
}

}  // namespace kerno
