#include "app/output_name.h"

#include "base/text.h"

namespace kerno {
namespace {

bool IsHarmful(char32_t ch) {
  if (ch < 0x20 || (ch >= 0x7F && ch < 0xA0)) return true;          // control characters
  if (ch >= 0xD800 && ch <= 0xDFFF) return true;                    // lone surrogates
  if (ch == 0x061C || (ch >= 0x200B && ch <= 0x200F)) return true;  // invisible, direction marks
  if (ch >= 0x2028 && ch <= 0x202E) return true;                    // separators, embeddings
  if (ch >= 0x2060 && ch <= 0x206F) return true;                    // invisible, isolates
  if (ch == 0xFEFF || (ch & 0xFFFE) == 0xFFFE) return true;         // byte-order mark, no character
  return ch < 0x7F && std::u32string_view(U"\\/:*?\"<>|").find(ch) != std::u32string_view::npos;
}

size_t Utf8Length(char32_t ch) {
  return ch < 0x80 ? 1 : ch < 0x800 ? 2 : ch < 0x10000 ? 3 : 4;
}

}  // namespace

bool IsDeviceName(std::u16string_view name) {
  std::u16string stem = AsciiLower(name.substr(0, name.find(u'.')));
  while (stem.ends_with(u' ')) stem.pop_back();
  for (const char16_t* device :
       {u"con", u"prn", u"aux", u"nul", u"conin$", u"conout$", u"clock$"}) {
    if (stem == device) return true;
  }
  if (stem.size() != 4 || !(stem.starts_with(u"com") || stem.starts_with(u"lpt"))) return false;
  return std::u16string_view(u"0123456789¹²³").find(stem[3]) != std::u16string_view::npos;
}

std::u16string CleanFileName(std::u16string_view name) {
  size_t at = name.find_first_not_of(u' ');
  if (at == name.npos) return u"_";
  std::u16string clean;
  size_t bytes = 1;  // for the "_" in front of a device's name
  while (at < name.size()) {
    char32_t ch = NextCharacter(name, &at);
    if (IsHarmful(ch) || (clean.empty() && (ch == U'.' || ch == U'-'))) ch = U'_';
    bytes += Utf8Length(ch);
    if (bytes > kLongestName - kLongestSuffix) break;
    AppendCharacter(&clean, ch);
  }
  while (clean.ends_with(u'.') || clean.ends_with(u' ')) clean.pop_back();
  if (IsDeviceName(clean)) clean.insert(0, 1, u'_');
  return clean.empty() ? u"_" : clean;
}

std::u16string OutputBaseName(std::u16string_view face, std::u16string_view height,
                              std::u16string_view text) {
  size_t end = 0;
  for (size_t count = 0; count < kTextInName && end < text.size(); ++count) {
    NextCharacter(text, &end);
  }
  std::u16string name(face);
  name += u'_';
  name += height;
  name += u'_';
  name += text.substr(0, end);
  return CleanFileName(name);
}

std::filesystem::path OutputPath(const std::filesystem::path& base_path,
                                 std::u16string_view extension) {
  std::u16string ending(extension);
  if (!ending.starts_with(u'.')) ending.insert(0, 1, u'.');
  std::filesystem::path path = base_path;
  return path.replace_extension(TextPath(ending));
}

}  // namespace kerno
