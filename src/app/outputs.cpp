#include "app/outputs.h"

#include <algorithm>
#include <span>
#include <system_error>

#include "app/output_name.h"
#include "app/rtf_writer.h"
#include "base/folders.h"
#include "base/text.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// Each output with what follows it, in order.
std::span<const OutputKind> ChainOf(OutputKind kind) {
  using enum OutputKind;
  static constexpr OutputKind kDxfChain[] = {kDxf, kMetafile};
  static constexpr OutputKind kSvgChain[] = {kSvg, kMetafile, kPage};
  static constexpr OutputKind kIpxChain[] = {kIpx, kIpl};
  static constexpr OutputKind kAlone[] = {kDxf, kSvg, kIpx, kMetafile, kBitmap, kIpl, kPage};
  switch (kind) {
    case kDxf:
      return kDxfChain;
    case kSvg:
      return kSvgChain;
    case kIpx:
      return kIpxChain;
    default:
      return std::span(kAlone).subspan(static_cast<size_t>(kind), 1);
  }
}

const char16_t* ExtensionOf(OutputKind kind) {
  switch (kind) {
    case OutputKind::kDxf:
      return u".dxf";
    case OutputKind::kSvg:
      return u".svg";
    case OutputKind::kIpx:
      return u".ipx";
    case OutputKind::kMetafile:
      return u".emf";
    case OutputKind::kBitmap:
      return u".bmp";
    case OutputKind::kIpl:
      return u".ipl";
    case OutputKind::kPage:
      return u".html";
  }
  return u"";
}

Status MakeOutputFolder(const fs::path& folder) {
  Status made = MakeFolders(folder);
  if (made.ok()) return made;
  return Status::Error(Failure::kOther, PathText(folder),
                       u"the folder of the outputs cannot be made: " + made.why);
}

}  // namespace

bool open_folder_on_first_save = true;

void Outputs::SetFolder(fs::path folder) {
  if (folder == folder_) return;
  folder_ = std::move(folder);
  base_path_.clear();
  written_.clear();
}

bool Outputs::MakeBasePath(const OutputSubject& subject) {
  if (!base_path_.empty()) {
    // Scratch folders are emptied behind a long run's back.
    const Status made = MakeOutputFolder(folder_);
    if (!made.ok()) notifier_.FileWritten(base_path_, made);
    return made.ok();
  }
  const fs::path path =
      folder_ / TextPath(OutputBaseName(subject.face, subject.height, subject.text) + u".rtf");
  Status result = MakeOutputFolder(folder_);
  if (result.ok()) {
    const RtfOptions options = {.face = subject.face, .color = subject.color};
    result = services_.WriteBytes(path, RtfDocument(subject.text, options));
  }
  if (result.ok()) base_path_ = path;
  notifier_.FileWritten(path, result);
  if (!result.ok()) return false;
  if (open_folder_on_first_save) {
    open_folder_on_first_save = false;
    folder_refused_ = !services_.OpenFolder(folder_);
  }
  return true;
}

bool Outputs::Write(OutputKind kind, const PartsA& parts, AciRule aci,
                    const OutputSubject& subject) {
  // The view may handle events while progress is shown, and the drawing change with them.
  const PartsA copy = parts;  // NOLINT(performance-unnecessary-copy-initialization)
  folder_refused_ = false;
  if (!MakeBasePath(subject)) return false;
  const std::span<const OutputKind> chain = ChainOf(kind);
  for (const OutputKind step : chain) WriteOne(step, copy, aci, subject);
  if (chain.back() != OutputKind::kPage) {
    const Status refreshed = services_.RefreshPage(base_path_);
    if (!refreshed.ok()) notifier_.FileWritten(OutputPath(base_path_, u".html"), refreshed);
  }
  return true;
}

void Outputs::WriteOne(OutputKind kind, const PartsA& parts, AciRule aci,
                       const OutputSubject& subject) {
  if (kind == OutputKind::kPage) return WritePage(subject);
  const fs::path file = OutputPath(base_path_, ExtensionOf(kind));
  switch (kind) {
    case OutputKind::kMetafile:
      return Tell(kind, file, services_.WriteMetafile(parts, file));
    case OutputKind::kBitmap:
      return Tell(kind, file, services_.WriteBitmap(parts, file));
    case OutputKind::kIpl:
      return Tell(kind, file, services_.WriteIpl(parts, file));
    default:
      return Tell(kind, file, services_.Export(parts, aci, file));
  }
}

void Outputs::WritePage(const OutputSubject& subject) {
  fs::path page = OutputPath(base_path_, ExtensionOf(OutputKind::kPage));
  const Status result = services_.BuildPage({.base_path = base_path_,
                                             .text = subject.text,
                                             .face = subject.face,
                                             .height = subject.height},
                                            &page);
  Tell(OutputKind::kPage, page, result);
}

void Outputs::Tell(OutputKind kind, const fs::path& file, const Status& result) {
  if (result.ok() && std::find(written_.begin(), written_.end(), file) == written_.end()) {
    written_.push_back(file);
  }
  if (kind == OutputKind::kMetafile) {
    notifier_.MetafileWritten(file, result);
  } else {
    notifier_.FileWritten(file, result);
  }
}

}  // namespace kerno
