#include "app/text_source.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <system_error>

#include "app/text_coding.h"
#include "base/text.h"
#include "base/text_file.h"
#include "platform/folder_path.h"

namespace kerno {

Status DecodeText(std::string_view bytes, std::u16string_view name, std::u16string* text) {
  const TextCoding coding = bytes.starts_with("\xFF\xFE")   ? TextCoding::kUtf16Le
                            : bytes.starts_with("\xFE\xFF") ? TextCoding::kUtf16Be
                                                            : TextCoding::kUtf8;
  return DecodeAs(coding, bytes, name, text);
}

Status LoadBytes(const std::filesystem::path& path, std::string* bytes) {
  const std::u16string name = PathText(path);
  const PathKind kind = FactsOfPath(path).kind;
  if (kind == PathKind::kFolder) {
    return Status::Error(Failure::kIsFolder, name, u"is a folder");
  }
  bytes->clear();
  if (kind == PathKind::kFile) {  // another process may hold it for a moment
    const Status read = ReadFileBytes(path, bytes);
    if (!read.ok()) return Status::Error(read.failure, name, u"cannot be read: " + read.why);
    return Status::Ok();
  }
  errno = 0;
  std::ifstream file(PathToOpen(path), std::ios::binary);
  const bool opened = file.is_open();
  std::array<char, 65536> chunk;
  while (file.read(chunk.data(), chunk.size()) || file.gcount() > 0) {
    bytes->append(chunk.data(), static_cast<size_t>(file.gcount()));
  }
  if (!opened || file.bad()) {
    const std::error_code reason(errno ? errno : EIO, std::generic_category());
    const bool missing = reason == std::errc::no_such_file_or_directory;
    return Status::Error(missing ? Failure::kNotFound : Failure::kOther, name,
                         u"cannot be read: " + ErrorText(reason));
  }
  return Status::Ok();
}

Status LoadText(const std::filesystem::path& path, std::u16string* text) {
  std::string bytes;
  if (Status read = LoadBytes(path, &bytes); !read.ok()) return read;
  return DecodeText(bytes, PathText(path), text);
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
