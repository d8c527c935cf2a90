#include "platform/code_page.h"
#include "platform/held_file.h"
#include "platform/posix/ini_text.h"
#include "platform/posix/utf16_bytes.h"
#include "platform/private_profile.h"

namespace kerno {
namespace {

using posix::ByteForm;

std::string EditBytes(std::string_view bytes, const std::vector<ProfileEdit>& edits) {
  ByteForm form = ByteForm::kUtf16;
  std::u16string text;
  if (!bytes.empty()) text = posix::TextOfBytes(bytes, &form);
  // What the 8-bit form would not give back makes the file UTF-16.
  bool lossy = false;
  if (form == ByteForm::kCodePage932) lossy = EncodeCodePage932(text, '_') != bytes;
  for (const ProfileEdit& edit : edits) {
    if (edit.value) {
      posix::SetIniValue(&text, edit.section, edit.key, *edit.value);
    } else {
      posix::RemoveIniValue(&text, edit.section, edit.key);
    }
  }
  if (form == ByteForm::kCodePage932) {
    std::string encoded = EncodeCodePage932(text, '_');
    if (!lossy && DecodeCodePage932(encoded) == text) return encoded;
    form = ByteForm::kUtf16;
  }
  return posix::BytesOfText(text, form);
}

}  // namespace

std::optional<std::u16string> ReadProfileString(const std::filesystem::path& file,
                                                std::u16string_view section,
                                                std::u16string_view key, size_t most,
                                                Status* status) {
  // Files are replaced whole, so a reader needs no lock to see a whole one.
  std::string bytes;
  Status read = PeekFile(file, &bytes);
  const bool readable = read.ok();
  if (status) *status = read.failure == Failure::kNotFound ? Status::Ok() : std::move(read);
  if (!readable) return std::nullopt;
  ByteForm form;
  const std::u16string text = posix::TextOfBytes(bytes, &form);
  const auto value = posix::FindIniValue(text, section, key);
  if (!value) return std::nullopt;
  return std::u16string(value->substr(0, most));
}

Status WriteProfile(const std::filesystem::path& file, const std::vector<ProfileEdit>& edits) {
  return ChangeFile(file, IfMissing::kCreate, [&](std::string_view bytes) {
    std::string edited = EditBytes(bytes, edits);
    return edited == bytes ? std::nullopt : std::optional<std::string>(std::move(edited));
  });
}

}  // namespace kerno
