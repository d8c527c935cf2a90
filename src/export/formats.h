// Every format that a drawing is written in, in one table: a writer is its pair of files and a row
// here. The command line, the buttons of the window, the chains of outputs and the page of the
// outputs all go by it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "export/bmp_writer.h"
#include "export/dxf_export.h"
#include "export/emf_writer.h"
#include "export/svg_writer.h"
#include "parts/parts.h"
#include "platform/status.h"

namespace kerno {

// What the writers are told beyond the model. It goes down whole; a new option is a field here or
// in a writer's own struct.
struct OutputOptions {
  DxfOptions dxf;
  SvgOptions svg;
  BmpOptions bmp;
  EmfOptions emf;

  // The path of the running program, for the formats that name their writer.
  std::u16string program;

  // The time of writing, seconds since 1970-01-01 00:00:00 UTC, for the formats that tell it; the
  // clock's when there is none.
  std::optional<int64_t> moment;

  // Runs after a successful Export (export.h) with the model and the file written: the copy in the
  // cache (IpxCache::KeepCopy), for a program that keeps one. Its failure is its own.
  std::function<void(const PartsA& model, const std::filesystem::path& file)> after_export;
};

// How the page of the outputs shows a file.
enum class PageRole {
  kDrawing,  // a picture that browsers draw themselves
  kBitmap,   // a picture of pixels
  kOther,    // a link
};

// A kind of file that a run leaves.
struct FileKind {
  std::string_view extension;  // in lower case, without the point
  std::string_view name;       // what lists and pages call it
  PageRole role = PageRole::kOther;
};

inline constexpr std::string_view kPageExtension = "html";

// A format with its writer.
struct Format : FileKind {
  // Which names Export takes for it.
  enum class Dispatch { kNever, kExactly, kAnyCase };
  Dispatch dispatch = Dispatch::kNever;

  // The number of its button in the window (app/controls.h), 0 for none, and what a press of it
  // writes afterwards, as extensions in their order; kPageExtension stands for the page.
  int button = 0;
  std::span<const std::string_view> followed_by;

  // Writes the model to the file, whole or not at all.
  Status (*write)(const PartsA& model, const std::filesystem::path& file,
                  const OutputOptions& options) = nullptr;
};

// In the order in which a page lists the files of a run.
std::span<const Format> Formats();

// The format of an extension (without the point) in any case, or of a button; null when there is
// none.
const Format* FindFormat(std::u16string_view extension);
const Format* FormatOfButton(int button);

}  // namespace kerno
