#include "web/output_run.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include "base/file_wait.h"
#include "base/text.h"
#include "base/text_file.h"
#include "platform/folder_path.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr size_t kMostOfPage = 64 * 1024;  // the part of a page that tells its source

Status ReadSource(const fs::path& page, PageSource* source) {
  std::string head;
  if (Status read = ReadFileBytes(page, &head, kMostOfPage); !read.ok()) return read;
  const auto told = ReadPageSource(head);
  if (!told) {
    return Status::Error(Failure::kOther, PathText(page),
                         u"not replaced: it is no page that this program wrote");
  }
  *source = *told;
  return Status::Ok();
}

std::optional<PageSource> SourceOfPage(const fs::path& page) {
  PageSource source;
  return ReadSource(page, &source).ok() ? std::optional(source) : std::nullopt;
}

bool IsDigit(char16_t c) {
  return c >= u'0' && c <= u'9';
}

// The base name of a file: everything before its last point.
fs::path BaseName(const fs::path& name) {
  return name.stem();
}

}  // namespace

fs::path PageOfRun(const fs::path& base) {
  fs::path page = base;
  page += ".html";
  return page;
}

Status FilesOfRun(const fs::path& base, std::vector<PageFile>* files) {
  files->clear();
  const fs::path base_name = base.filename();
  Status looked = Status::Ok();
  const Status listed = ListFolder(base.parent_path(), [&](const fs::path& file) {
    const fs::path name = file.filename();
    if (BaseName(name) != base_name || !KindOfFile(name)) return;
    const PathFacts facts = FactsOfPath(file);
    if (facts.kind == PathKind::kUnknown) looked = facts.why;
    if (facts.kind == PathKind::kFile) files->push_back({name, facts.size});
  });
  std::sort(files->begin(), files->end(), [](const PageFile& a, const PageFile& b) {
    const FileKind *first = KindOfFile(a.name), *second = KindOfFile(b.name);
    return first != second ? first < second : a.name < b.name;  // kinds stand in a page's order
  });
  return listed.ok() ? looked : listed;
}

PageSource SourceOfName(std::u16string_view base_name) {
  // The face may hold "_" itself: the height is the first whole number between two of them.
  for (size_t at = base_name.find(u'_'); at != std::u16string_view::npos;
       at = base_name.find(u'_', at + 1)) {
    size_t end = at + 1;
    if (end < base_name.size() && base_name[end] == u'-') ++end;
    const size_t digits = end;
    while (end < base_name.size() && IsDigit(base_name[end])) ++end;
    if (at == 0 || end == digits || end == base_name.size() || base_name[end] != u'_') continue;
    return {std::u16string(base_name.substr(end + 1)), std::u16string(base_name.substr(0, at)),
            std::u16string(base_name.substr(at + 1, end - at - 1))};
  }
  return {std::u16string(base_name), u"", u""};
}

Status WriteOutputPage(const fs::path& base, const PageSource& source) {
  const fs::path page = PageOfRun(base);
  if (PageSource before; PathExists(page)) {
    if (Status status = ReadSource(page, &before); !status.ok()) return status;
  }
  std::vector<PageFile> files;
  if (Status listed = FilesOfRun(base, &files); !listed.ok()) return listed;
  return ReplaceWhenFree(page, BuildOutputPage({source, files}));
}

Status RefreshOutputPage(const fs::path& base) {
  const auto source = SourceOfPage(PageOfRun(base));
  return source ? WriteOutputPage(base, *source) : Status::Ok();
}

Status WriteFolderPages(const fs::path& folder, std::vector<fs::path>* written) {
  std::set<fs::path> bases;
  Status looked = Status::Ok();
  Status first = ListFolder(folder, [&](const fs::path& file) {
    const fs::path name = file.filename();
    const FileKind* const kind = KindOfFile(name);
    const bool output = kind && kind->extension != "rtf";
    const bool page = name.extension() == ".html";
    if (!output && !page) return;
    const PathFacts facts = FactsOfPath(file);
    if (facts.kind == PathKind::kUnknown) looked = facts.why;
    if (facts.kind != PathKind::kFile) return;
    if (output || SourceOfPage(file)) bases.insert(BaseName(name));
  });
  if (first.ok()) first = looked;
  if (first.ok() && bases.empty()) {
    first = Status::Error(Failure::kNotFound, PathText(folder), u"there are no outputs in it");
  }
  for (const fs::path& name : bases) {
    const fs::path base = folder / name;
    const auto kept = SourceOfPage(PageOfRun(base));
    const Status status = WriteOutputPage(base, kept ? *kept : SourceOfName(PathText(name)));
    if (status.ok()) written->push_back(PageOfRun(base));
    if (!status.ok() && first.ok()) first = status;
  }
  return first;
}

}  // namespace kerno
