#include "app/dropped_file.h"

#include <array>
#include <fstream>
#include <string_view>

#include "base/text.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

std::string FirstBytes(const std::filesystem::path& file) {
  std::string bytes(4096, '\0');
  std::ifstream in(PathToOpen(file), std::ios::binary);
  in.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<size_t>(in.gcount()));
  return bytes;
}

// TrueType, OpenType with CFF, collections, and the older spellings of TrueType.
bool IsFont(std::string_view bytes) {
  using namespace std::string_view_literals;
  for (const std::string_view mark : {"\0\1\0\0"sv, "OTTO"sv, "ttcf"sv, "true"sv, "typ1"sv}) {
    if (bytes.starts_with(mark)) return true;
  }
  return false;
}

// Text holds no control characters but blanks and line ends; UTF-16 is known by its mark.
bool LooksLikeText(std::string_view bytes) {
  if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF")) return true;
  for (const char byte : bytes) {
    const auto c = static_cast<unsigned char>(byte);
    if (c < 0x20 && std::string_view("\t\n\v\f\r\x1A").find(byte) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

}  // namespace

DroppedKind KindOfDropped(const std::filesystem::path& file) {
  const PathKind kind = FactsOfPath(file).kind;
  if (kind == PathKind::kFolder) return DroppedKind::kFolder;
  if (kind != PathKind::kFile) return DroppedKind::kOther;
  if (AsciiLower(Extension(PathText(file.filename()))) == u"ipx") return DroppedKind::kParts;
  const std::string bytes = FirstBytes(file);
  if (IsFont(bytes)) return DroppedKind::kFont;
  return LooksLikeText(bytes) ? DroppedKind::kText : DroppedKind::kOther;
}

}  // namespace kerno
