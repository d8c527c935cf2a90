#include "base/version_info.h"

#include "base/profile_values.h"
#include "base/text_file.h"
#include "base/version_resource.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// Four upper-case hexadecimal digits for each 16-bit word.
std::u16string TranslationText(std::string_view value) {
  std::u16string text;
  for (size_t at = 0; at + 1 < value.size(); at += 2) {
    const unsigned low = static_cast<unsigned char>(value[at]);
    const unsigned high = static_cast<unsigned char>(value[at + 1]);
    for (const unsigned digit : {high >> 4, high & 0xF, low >> 4, low & 0xF}) {
      text.push_back(u"0123456789ABCDEF"[digit]);
    }
  }
  return text;
}

constexpr std::u16string_view kStringTables = u"\\StringFileInfo\\";
constexpr size_t kOneTranslation = 8;  // digits: a language and a code page

}  // namespace

bool VersionReader::Fail(std::u16string_view first, std::u16string_view second) {
  last_error_ = texts_ == VersionTexts::kFirst ? first : second;
  return false;
}

bool VersionReader::OpenOwn(const fs::path& path) {
  std::error_code error;
  if (!fs::equivalent(path, CurrentSystem().ProgramPath(), error) || error) return false;
  for (const auto& [key, text] : OwnVersionStrings()) own_[key] = text;
  if (own_.empty()) return false;
  prefix_ = std::u16string(kStringTables) + u"040904B0\\";
  return true;
}

bool VersionReader::Open(const fs::path& path) {
  constexpr std::u16string_view kNoSize = u"::GetFileVersionInfoSize ... 0";
  last_error_.clear();
  prefix_.clear();
  own_.clear();
  block_ = {};
  image_.clear();
  if (path.empty()) return Fail(u"FileNameIsEmpty", kNoSize);
  std::error_code error;
  if (!fs::exists(path, error)) return Fail(u"FileIsNothing", kNoSize);
  bool present = false;
  if (fs::is_regular_file(path, error) && ReadFileBytes(path, &image_).ok()) {
    if (const auto block = FindVersionBlock(image_, &present)) block_ = *block;
  }
  if (!present) return OpenOwn(path) || Fail(u"", kNoSize);
  if (block_.empty()) return Fail(u"GetFileVersionInfo ..... 0", u"::GetFileVersionInfo ... false");
  const auto translation = QueryVersionBlock(block_, u"\\VarFileInfo\\Translation");
  if (!translation) {
    return Fail(u"VerQueryValue(...\"\\VarFileInfo\\Translation\"...) ..... 0",
                u"::VerQueryValue ... false");
  }
  const std::u16string text = TranslationText(*translation);
  if (text.empty()) {
    return Fail(u"VerQueryValue(...\"\\VarFileInfo\\Translation\"...)  Length Buffer ..... 0",
                u"::VerQueryValue   len = 0");
  }
  prefix_ = std::u16string(kStringTables).append(text).append(u"\\");
  return true;
}

std::u16string VersionReader::Get(std::u16string_view key) const {
  if (prefix_.empty()) return {};
  if (const auto own = own_.find(key); own != own_.end()) return own->second;
  const std::u16string tail(key);
  if (const auto value = QueryVersionBlock(block_, prefix_ + tail)) return VersionText(*value);
  // A file that states several translations has a table for each, of which the first counts.
  const size_t digits = prefix_.size() - kStringTables.size() - 1;
  if (digits <= kOneTranslation) return {};
  const std::u16string first = prefix_.substr(0, kStringTables.size() + kOneTranslation) + u"\\";
  const auto value = QueryVersionBlock(block_, first + tail);
  return value ? VersionText(*value) : std::u16string();
}

AboutTexts ReadAboutTexts() {
  VersionReader reader;
  if (!reader.Open(CurrentSystem().ProgramPath())) return {};
  return {reader.Get(u"LegalCopyright"),
          reader.Get(u"FileDescription") + u"   Version " + reader.Get(u"FileVersion")};
}

}  // namespace kerno
