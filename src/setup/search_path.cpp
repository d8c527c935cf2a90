#include "setup/search_path.h"

#include "platform/fold_case.h"

namespace kerno {
namespace {

// Where an entry lies in the path; without the ';' at its ends.
struct Entry {
  size_t begin = 0;
  size_t end = 0;
};

// The entry that begins there. A ';' within quotes belongs to the folder's name.
Entry EntryAt(std::u16string_view path, size_t begin) {
  bool quoted = false;
  size_t at = begin;
  for (; at < path.size() && (quoted || path[at] != u';'); ++at) {
    if (path[at] == u'"') quoted = !quoted;
  }
  return {begin, at};
}

std::u16string Comparable(std::u16string_view folder) {
  std::u16string bare;
  for (const char16_t unit : folder) {
    if (unit != u'"') bare += FoldCase(unit == u'/' ? u'\\' : unit);
  }
  while (bare.ends_with(u'\\')) bare.pop_back();
  return bare;
}

// The last entry of this folder.
std::optional<Entry> FindFolder(std::u16string_view path, std::u16string_view folder) {
  const std::u16string wanted = Comparable(folder);
  std::optional<Entry> found;
  for (size_t begin = 0; begin <= path.size();) {
    const Entry entry = EntryAt(path, begin);
    if (Comparable(path.substr(begin, entry.end - begin)) == wanted) found = entry;
    begin = entry.end + 1;
  }
  return found;
}

}  // namespace

bool HasFolder(std::u16string_view path, std::u16string_view folder) {
  return FindFolder(path, folder).has_value();
}

bool CanBeEntry(std::u16string_view folder) {
  return !folder.empty() && folder.find_first_of(u"\"%") == folder.npos;
}

std::optional<std::u16string> WithFolder(std::u16string_view path, std::u16string_view folder) {
  if (!CanBeEntry(folder)) return std::nullopt;
  const bool needs_quotes = folder.find(u';') != folder.npos;
  std::u16string entry =
      needs_quotes ? u"\"" + std::u16string(folder) + u"\"" : std::u16string(folder);
  std::u16string longer(path);
  const bool is_open = path.empty() || path.ends_with(u';');
  longer += is_open ? entry : u";" + entry;
  if (path.ends_with(u';')) longer += u';';  // so that it ends as before
  // A quote that nobody closed would swallow the entry.
  const bool is_whole = WithoutFolder(longer, folder) == path;
  return is_whole && longer.size() <= kLongestSearchPath ? std::optional(longer) : std::nullopt;
}

std::u16string WithoutFolder(std::u16string_view path, std::u16string_view folder) {
  std::u16string shorter(path);
  const std::optional<Entry> entry = FindFolder(path, folder);
  if (!entry) return shorter;
  const bool is_last = entry->end == path.size();
  const size_t begin = is_last && entry->begin > 0 ? entry->begin - 1 : entry->begin;
  const size_t end = is_last ? entry->end : entry->end + 1;
  return shorter.erase(begin, end - begin);
}

}  // namespace kerno
