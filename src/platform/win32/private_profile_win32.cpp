// The system's own private-profile functions, which cache and write in their own way. They write
// one line at a time: the lines of a change go into a copy, which then replaces the file.
#include <atomic>
#include <string>

#include "platform/file_replacement.h"
#include "platform/held_file.h"
#include "platform/private_profile.h"
#include "platform/system.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// What a missing value is told by: no value holds it.
constexpr const wchar_t* kMissing = L"\x1Bmissing\x1B";

constexpr size_t kFirstSize = 1024;  // units of the buffer for a value
constexpr size_t kLargestSize = size_t{1} << 24;

// Without the mark a new file would hold 8-bit text.
constexpr std::string_view kByteOrderMark = "\xFF\xFE";

// The functions take no long path: some systems then read and write elsewhere, and say nothing.
bool IsLong(const fs::path& whole) {
  return LongPath(whole) != whole;
}

// The functions take a key to end at its first "=". One that holds "=" itself is written as a value
// of its beginning: the line "a=b=c" is the key "a=b" with the value "c" either way.
struct SplitKey {
  explicit SplitKey(std::u16string_view key) : name(ToWide(key)) {
    const size_t equals = name.find(L'=');
    if (equals == name.npos) return;
    rest = name.substr(equals + 1) + L'=';
    name.resize(equals);
  }

  // Takes the rest of the key off the value of its beginning; false when that is not there.
  bool TakeRest(std::wstring* value) const {
    if (rest.empty()) return true;
    const auto length = static_cast<int>(rest.size());
    if (value->size() < rest.size() ||
        CompareStringOrdinal(value->data(), length, rest.data(), length, TRUE) != CSTR_EQUAL) {
      return false;
    }
    value->erase(0, rest.size());
    constexpr const wchar_t* kBlanks = L" \t";
    value->erase(0, value->find_first_not_of(kBlanks));
    const bool quoted = value->size() >= 2 && value->front() == value->back() &&
                        (value->front() == L'"' || value->front() == L'\'');
    if (quoted) *value = value->substr(1, value->size() - 2);
    return true;
  }

  std::wstring name;
  std::wstring rest;  // with the "=" before it
};

// The value of a key, or its first `most` units and more; nothing when it is missing.
std::optional<std::wstring> ReadValue(const fs::path& whole, std::u16string_view section,
                                      const std::wstring& key, size_t most) {
  std::wstring value(kFirstSize, L'\0');
  for (;;) {
    const DWORD length =
        GetPrivateProfileStringW(ToWide(section).c_str(), key.c_str(), kMissing, value.data(),
                                 static_cast<DWORD>(value.size()), whole.c_str());
    const bool complete = length + 1 < value.size();
    if (complete || length >= most || value.size() > kLargestSize) {
      value.resize(length);
      break;
    }
    value.resize(2 * value.size());
  }
  if (value == kMissing) return std::nullopt;
  return value;
}

// A copy of a file's text, removed with its owner: beside the file, or among the temporary files
// when the file's path is long.
class WorkingCopy {
 public:
  explicit WorkingCopy(const fs::path& file) {
    static std::atomic<unsigned> counter = 0;
    const std::wstring name = L".kerno-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(++counter) + L".ini";
    const fs::path whole = FullPath(file);
    path_ = (IsLong(whole) ? CurrentSystem().TemporaryPath() : whole.parent_path()) / name;
  }
  ~WorkingCopy() { DeleteFileW(path_.c_str()); }
  WorkingCopy(const WorkingCopy&) = delete;
  WorkingCopy& operator=(const WorkingCopy&) = delete;

  const fs::path& path() const { return path_; }

  Status CopyOf(const fs::path& file) {
    Status status;
    std::string text;
    const auto held = HeldFile::Open(file, Deny::kWrite, &status);
    if (held) status = held->Read(&text);
    return status.ok() ? Fill(text) : status;
  }

  Status Fill(std::string_view text) { return ReplaceFile(path_, text); }

  Status Edit(const ProfileEdit& edit) {
    SplitKey key(edit.key);
    if (!key.rest.empty()) {
      auto present = ReadValue(path_, edit.section, key.name, kLargestSize);
      const std::wstring spelling = present ? present->substr(0, key.rest.size()) : key.rest;
      if (present && !key.TakeRest(&*present)) {
        if (!edit.value) return Status::Ok();
        return Status::Error(
            Failure::kOther, SystemText(path_),
            u"the key \"" + FromWide(key.name) + u"\" is in the way of \"" + edit.key + u"\"");
      }
      key.rest = spelling;  // a line keeps its key as it stands
    }
    const std::wstring value = edit.value ? key.rest + ToWide(*edit.value) : std::wstring();
    const bool done =
        WritePrivateProfileStringW(ToWide(edit.section).c_str(), key.name.c_str(),
                                   edit.value ? value.c_str() : nullptr, path_.c_str()) != 0;
    return done ? Status::Ok() : SystemError(path_, GetLastError());
  }

  // The text after all edits.
  Status Read(std::string* text) {
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, path_.c_str());  // empties the cache
    Status status;
    const auto file = HeldFile::Open(path_, Deny::kWrite, &status);
    return file ? file->Read(text) : status;
  }

 private:
  fs::path path_;
};

Status EditText(const fs::path& file, const std::vector<ProfileEdit>& edits,
                std::string_view before, std::string* after) {
  WorkingCopy copy(file);
  Status status = copy.Fill(before.empty() ? kByteOrderMark : before);
  for (size_t i = 0; status.ok() && i < edits.size(); ++i) status = copy.Edit(edits[i]);
  if (status.ok()) status = copy.Read(after);
  if (!status.ok()) status.what = SystemText(file);
  return status;
}

}  // namespace

std::optional<std::u16string> ReadProfileString(const fs::path& file, std::u16string_view section,
                                                std::u16string_view key, size_t most,
                                                Status* status) {
  if (status) *status = Status::Ok();  // the system's functions tell no failure
  // A name without a folder would be looked for in the system's folder.
  const fs::path path = FullPath(file);
  if (IsLong(path)) {
    WorkingCopy copy(path);
    return copy.CopyOf(path).ok() ? ReadProfileString(copy.path(), section, key, most)
                                  : std::nullopt;
  }
  const SplitKey split(key);
  const size_t wanted = most > kLargestSize ? most : most + split.rest.size();
  std::optional<std::wstring> value = ReadValue(path, section, split.name, wanted);
  if (!value || !split.TakeRest(&*value)) return std::nullopt;
  return FromWide(std::wstring_view(*value).substr(0, most));
}

Status WriteProfile(const fs::path& file, const std::vector<ProfileEdit>& edits) {
  Status edited;
  Status changed = ChangeFile(file, IfMissing::kCreate,
                              [&](std::string_view before) -> std::optional<std::string> {
                                std::string after;
                                edited = EditText(file, edits, before, &after);
                                if (!edited.ok() || after == before) return std::nullopt;
                                return after;
                              });
  if (!edited.ok()) return edited;
  // What the system keeps of the file as it was is out of date.
  WritePrivateProfileStringW(nullptr, nullptr, nullptr, FullPath(file).c_str());
  return changed;
}

}  // namespace kerno
