#include "export/export.h"

#include <algorithm>
#include <utility>

#include "base/text.h"

namespace kerno {
namespace {

// Classic: recognised and refused; programs that read them exist, writers here do not.
constexpr std::u16string_view kUnwritten[] = {u"stl", u"wrl", u"3ds", u"off", u"dae",
                                              u"obj", u"imo", u"nxr", u"ix3"};

const Format* DispatchedFormat(std::u16string_view extension) {
  const Format* format = FindFormat(extension);
  if (!format || format->dispatch == Format::Dispatch::kNever) return nullptr;
  const bool exact = Utf16ToUtf8(extension) == format->extension;
  return exact || format->dispatch == Format::Dispatch::kAnyCase ? format : nullptr;
}

Status WriteByName(const PartsA& model, const std::filesystem::path& file,
                   const OutputOptions& options) {
  const std::u16string extension = Extension(PathText(file));
  if (const Format* format = DispatchedFormat(extension)) {
    return format->write(model, file, options);
  }
  const auto refuse = [&](const char16_t* why) {
    return Status::Error(Failure::kOther, PathText(file), why);
  };
  if (IsKnownUnwritten(extension)) return refuse(u"this format is not supported");
  return refuse(extension.empty() ? u"the name has no extension to choose a format"
                                  : u"no format has this extension");
}

}  // namespace

bool IsKnownUnwritten(std::u16string_view extension) {
  return std::ranges::find(kUnwritten, extension) != std::end(kUnwritten);
}

int32_t Export(const PartsA& model, const std::filesystem::path& file, const OutputOptions& options,
               Status* status) {
  Status done = WriteByName(model, file, options);
  const bool ok = done.ok();
  if (status) *status = std::move(done);
  if (ok && options.after_export) options.after_export(model, file);
  return ok ? 1 : 0;
}

}  // namespace kerno
