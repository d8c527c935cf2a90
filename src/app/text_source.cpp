#include "app/text_source.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <system_error>

#include "base/text.h"
#include "base/text_file.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

Status NotText(std::u16string_view name, std::string_view why) {
  return Status::Error(Failure::kOther, std::u16string(name), Utf8ToUtf16Lossy(why));
}

Status DecodeUtf16(std::string_view bytes, bool big_endian, std::u16string_view name,
                   std::u16string* text) {
  if (bytes.size() % 2 != 0) {
    return NotText(name, "is not UTF-16: half a unit stands at the end (byte offset " +
                             std::to_string(bytes.size() - 1) + ")");
  }
  std::u16string decoded;
  decoded.reserve(bytes.size() / 2);
  for (size_t i = 2; i < bytes.size(); i += 2) {
    const auto first = static_cast<unsigned char>(bytes[i]);
    const auto second = static_cast<unsigned char>(bytes[i + 1]);
    const int unit = big_endian ? first << 8 | second : second << 8 | first;
    decoded.push_back(static_cast<char16_t>(unit));
  }
  *text = std::move(decoded);
  return Status::Ok();
}

}  // namespace

Status DecodeText(std::string_view bytes, std::u16string_view name, std::u16string* text) {
  if (bytes.starts_with("\xFF\xFE")) return DecodeUtf16(bytes, false, name, text);
  if (bytes.starts_with("\xFE\xFF")) return DecodeUtf16(bytes, true, name, text);
  const size_t mark = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
  size_t offset = 0;
  auto decoded = Utf8ToUtf16(bytes.substr(mark), &offset);
  if (!decoded) {
    return NotText(name, "is not UTF-8 (byte offset " + std::to_string(offset + mark) + ")");
  }
  *text = std::move(*decoded);
  return Status::Ok();
}

Status LoadText(const std::filesystem::path& path, std::u16string* text) {
  const std::u16string name = PathText(path);
  const PathKind kind = FactsOfPath(path).kind;
  if (kind == PathKind::kFolder) {
    return Status::Error(Failure::kIsFolder, name, u"is a folder");
  }
  std::string bytes;
  if (kind == PathKind::kFile) {  // another process may hold it for a moment
    const Status read = ReadFileBytes(path, &bytes);
    if (!read.ok()) return Status::Error(read.failure, name, u"cannot be read: " + read.why);
    return DecodeText(bytes, name, text);
  }
  errno = 0;
  std::ifstream file(PathToOpen(path), std::ios::binary);
  if (file) bytes.assign(std::istreambuf_iterator<char>(file), {});
  if (!file || file.bad()) {
    const std::error_code reason(errno ? errno : EIO, std::generic_category());
    const bool missing = reason == std::errc::no_such_file_or_directory;
    return Status::Error(missing ? Failure::kNotFound : Failure::kOther, name,
                         u"cannot be read: " + ErrorText(reason));
  }
  return DecodeText(bytes, name, text);
}

std::u16string WithCrLf(std::u16string_view text) {
  std::u16string lines;
  lines.reserve(text.size() + text.size() / 16);
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'\r' && text[i] != u'\n') {
      lines.push_back(text[i]);
      continue;
    }
    if (text[i] == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n') ++i;
    lines += u"\r\n";
  }
  return lines;
}

}  // namespace kerno
