#include "app/series_names.h"

#include <algorithm>
#include <filesystem>

#include "base/text.h"
#include "platform/fold_case.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

std::filesystem::path PathOf(std::string_view name) {
  return {std::u8string(name.begin(), name.end())};
}

std::string WithoutCase(std::string_view name) {
  std::u16string text = Utf8ToUtf16Lossy(name);
  for (char16_t& unit : text) unit = FoldCase(unit);
  return Utf16ToUtf8(text);
}

// FNV-1a
uint64_t HashOf(std::string_view text) {
  uint64_t hash = 0xCBF29CE484222325;
  for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
  return hash;
}

// Whether names that differ by case alone are one file there: tried out with a file that is gone
// afterwards. A folder that is not there yet is as the one that it will stand in.
bool FoldsCase(std::filesystem::path folder) {
  while (!PathExists(folder) && folder.has_relative_path()) folder = folder.parent_path();
  const std::filesystem::path probe = folder / ".kerno-case-probe.tmp";
  const bool is_new = CreateNewFile(probe, "").ok();
  const bool folds = PathExists(probe) && PathExists(folder / ".KERNO-CASE-PROBE.TMP");
  // Left where it cannot be removed; it is empty.
  if (is_new) static_cast<void>(RemoveFile(probe).ok());
  return folds;
}

}  // namespace

std::string PlainName(const std::string& name) {
  const std::filesystem::path path = PathOf(name);
  return PathBytes(path.lexically_normal());
}

bool SeriesNames::IsOneFile(const std::string& file) {
  const std::filesystem::path folder = WholePath(PathOf(file)).parent_path();
  const std::string name = PathBytes(folder);
  if (probed_ != name) folds_ = FoldsCase(folder);
  probed_ = name;
  return folds_;
}

void SeriesNames::Note(std::string_view name) {
  hashes_.push_back(HashOf(WithoutCase(name)));
}

bool SeriesNames::HasRepeats() {
  std::ranges::sort(hashes_);
  std::vector<uint64_t> repeated;
  for (size_t i = 1; i < hashes_.size(); ++i) {
    const bool is_new = repeated.empty() || repeated.back() != hashes_[i];
    if (hashes_[i] == hashes_[i - 1] && is_new) repeated.push_back(hashes_[i]);
  }
  hashes_ = std::move(repeated);
  hashes_.shrink_to_fit();
  return !hashes_.empty();
}

std::optional<NameClash> SeriesNames::Compare(uint64_t row, const std::string& name) {
  const std::string folded = WithoutCase(name);
  if (!std::ranges::binary_search(hashes_, HashOf(folded))) return std::nullopt;
  std::vector<Known>& alike = known_[folded];
  for (const Known& other : alike) {
    if (other.name == name || IsOneFile(name)) {
      return NameClash{other.row, row, other.name, name};
    }
  }
  alike.push_back({row, name});
  return std::nullopt;
}

}  // namespace kerno
