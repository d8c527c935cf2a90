#include "base/ini_preparation.h"

#include <optional>
#include <utility>

#include "base/file_wait.h"
#include "base/folders.h"
#include "base/notices.h"
#include "base/settings_places.h"
#include "base/text.h"
#include "base/text_file.h"
#include "base/time_text.h"
#include "platform/code_page.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr int kCopyNames = 100;

struct Decoded {
  std::u16string text;
  bool whole = false;  // the bytes can be made again from the text
};

Decoded Decode(const std::string& bytes) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  const bool marked = bytes.starts_with(kUtf8Mark);
  if (const auto utf8 =
          Utf8ToUtf16(std::string_view(bytes).substr(marked ? kUtf8Mark.size() : 0))) {
    return {*utf8, true};
  }
  std::u16string text = DecodeText(bytes);
  const bool whole = !marked && EncodeCodePage932(text, '_') == bytes;
  return {std::move(text), whole};
}

// Keeps the bytes beside the file under a name that is not taken.
Status KeepCopy(const fs::path& file, std::string_view bytes) {
  Status status;
  for (int i = 0; i < kCopyNames; ++i) {
    fs::path copy = file;
    copy += i == 0 ? ".orig" : ".orig" + std::to_string(i);
    status = CreateNewFile(copy, bytes);
    if (status.ok()) {
      CurrentNotices().Message(PathText(file) +
                               u": not all of it is text; the file as it was is kept as " +
                               PathText(copy));
    }
    if (status.failure != Failure::kSharingViolation) break;  // the name was not taken
  }
  return status;
}

// The first bytes of a file, where a mark would be.
Status ReadStart(const fs::path& file, Patience* patience, std::string* start) {
  constexpr size_t kMark = 2;
  return WaitForFile(
      file, FileWait::kRead, [&] { return PeekFile(file, start, kMark); }, WaitOut::kHolder,
      patience);
}

// Nothing, so that the file stays, when another process was faster or the copy cannot be kept;
// *kept tells.
std::optional<std::string> Convert(const fs::path& file, const std::string& bytes, Status* kept) {
  if (HasUtf16Mark(bytes)) return std::nullopt;
  const Decoded decoded = Decode(bytes);
  if (!decoded.whole) *kept = KeepCopy(file, bytes);
  if (!kept->ok()) return std::nullopt;
  return EncodeText(IniHeader() + decoded.text, TextEncoding::kUtf16);
}

}  // namespace

std::u16string IniHeader() {
  const std::u16string dashes = u";" + std::u16string(69, u'-') + u"\r\n";
  return dashes + u";\t" + FormatTime(CurrentClock().Now(), kTimeStamp) + u"\r\n" + dashes;
}

Status PrepareIniFile(const fs::path& file, Status* converted) {
  SettingsProcess& process = SettingsProcess::Current();
  const std::lock_guard lock(process.preparation);
  const PathFacts facts = FactsOfPath(file);
  if (facts.kind == PathKind::kMissing) {
    const fs::path folder = file.parent_path();
    // What is not there is no failure of reading; who writes hears of the folder then.
    if (!folder.empty()) CreateFolderPath(folder);
    return Status::Ok();
  }
  if (facts.kind == PathKind::kFolder) {
    return Status::Error(Failure::kIsFolder, PathText(file), u"it is a folder");
  }
  if (facts.kind != PathKind::kFile) return facts.why;
  std::string mark;
  Status looked = ReadStart(file, &process.patience, &mark);
  if (!looked.ok() || HasUtf16Mark(mark)) return looked;
  Status kept;
  const auto convert = [&] {
    return ChangeFile(file, IfMissing::kFail, [&](std::string_view bytes) {
      return Convert(file, std::string(bytes), &kept);
    });
  };
  Status changed =
      WaitForFile(file, FileWait::kWrite, convert, WaitOut::kHolder, &process.patience);
  *converted = kept.ok() ? std::move(changed) : std::move(kept);
  return Status::Ok();
}

}  // namespace kerno
