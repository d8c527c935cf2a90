#include "cli/convert_command.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <system_error>

#include "base/text.h"
#include "cli/arguments.h"
#include "cli/console.h"

namespace kerno {
namespace {

// The value that `name` chooses of a list; reports under the option's name when it is none of them.
template <class Value>
bool Choose(std::string_view option, const std::string& name,
            std::initializer_list<std::pair<std::string_view, Value>> choices, Value* value) {
  std::string known;
  for (const auto& [choice, meaning] : choices) {
    if (name == choice) {
      *value = meaning;
      return true;
    }
    known.append(known.empty() ? "" : ", ").append(choice);
  }
  ReportChoice(option, name, known);
  return false;
}

size_t EntityCount(const PartsA& parts) {
  size_t count = 0;
  for (const PartsElement& part : parts.parts) {
    count += part.lines.items.size() + part.circles.items.size() + part.edges.items.size();
    for (const FaceA& faces : part.faces) count += faces.items.size();
  }
  return count;
}

std::string Counted(size_t count, const char* what) {
  return std::to_string(count) + " " + what;
}

}  // namespace

void ConvertCommand::AddOptions(CLI::App& app) {
  text_.AddTo(app);
  app.add_option("-o", files_, "file to write; its extension chooses the format (dxf)")
      ->type_name("FILE")
      ->expected(1)
      ->take_all();
  app.add_option("--elements", elements_, "what a contour becomes")
      ->type_name("lines|faces|both")
      ->capture_default_str();
  app.add_option("--layer", layer_, "name of the layer")->type_name("NAME")->capture_default_str();
  app.add_option("--dxf-layers", dxf_layers_,
                 "DXF layers: by name, or by colour where an element has no name")
      ->type_name("name|colour")
      ->capture_default_str();
  app.add_option("--aci", aci_, "DXF colour index: by the classic rule, or the nearest colour")
      ->type_name("classic|nearest")
      ->capture_default_str();
}

bool ConvertCommand::ReadChoices() {
  const auto layer = TextArgument("--layer", layer_);
  if (!layer) return false;
  rebuild_.layer = *layer;
  return Choose<ContourElements>("--elements", elements_,
                                 {{"lines", ContourElements::kLines},
                                  {"faces", ContourElements::kFaces},
                                  {"both", ContourElements::kBoth}},
                                 &rebuild_.elements) &&
         Choose<DxfLayerRule>("--dxf-layers", dxf_layers_,
                              {{"name", DxfLayerRule::kName}, {"colour", DxfLayerRule::kColour}},
                              &export_.dxf.layers) &&
         Choose<AciRule>("--aci", aci_,
                         {{"classic", AciRule::kClassic}, {"nearest", AciRule::kNearest}},
                         &export_.dxf.aci);
}

bool ConvertCommand::ReadOutputs() {
  if (files_.empty()) {
    ReportError("-o", "no file to write is given");
    return false;
  }
  for (const std::string& file : files_) {
    const std::filesystem::path path(file);
    const std::u16string extension = AsciiLower(Extension(PathText(path)));
    const auto format = FormatOfExtension(extension);
    if (extension.empty()) {
      ReportError(file, "has no extension to choose the format by");
      return false;
    }
    if (!format) {
      ReportError(file, "the format \"" + Utf16ToUtf8(extension) + "\" is unknown");
      return false;
    }
    if (*format == ExportFormat::kMesh || *format == ExportFormat::kUnmatched) {
      ReportError(file, "the format \"" + Utf16ToUtf8(extension) + "\" is known but not written");
      return false;
    }
    outputs_.push_back({path, *format});
  }
  return true;
}

bool ConvertCommand::Write(const Output& output, const SetText& set, const PartsA& parts) const {
  using Clock = std::chrono::steady_clock;
  const auto start = Clock::now();
  Status status;
  if (ExportAs(output.format, parts, output.path, export_, &status) == 0) {
    ReportError(status);
    return false;
  }
  if (text_.quiet()) return true;
  const auto spent =
      std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
  std::error_code no_size;
  const auto size = std::filesystem::file_size(output.path, no_size);
  return Print(output.path.string() + ": " + Counted(set.characters, "characters, ") +
               Counted(set.contours.counts.size(), "contours, ") +
               Counted(EntityCount(parts), "entities, ") +
               (no_size ? "" : Counted(static_cast<size_t>(size), "bytes, ")) +
               std::to_string(spent) + " ms\n");
}

ExitStatus ConvertCommand::Run() {
  if (!ReadOutputs() || !ReadChoices()) return kWrongUsage;
  ExitStatus status = kDone;
  auto request = text_.Resolve(&status);
  if (!request) return status;
  // The file's y points up, the placement's down. A scale moves the geometry to its place
  // afterwards.
  const bool scaled = text_.scale() != 1;
  if (!scaled) request->placement.insertion = {text_.at().x, -text_.at().y};
  auto set = text_.SetAndReport(*request, TextOptions::Placing::kPlaced, &status);
  if (!set) return status;
  if (scaled) {
    rebuild_.scale = text_.scale();
    rebuild_.at = text_.at();
  }
  StoreContours(rebuild_, &set->contours);
  PartsA parts;
  BuildParts(set->contours, rebuild_, &parts);
  bool all_written = true;
  for (const Output& output : outputs_) all_written &= Write(output, *set, parts);
  return FinishPrinting() && all_written ? kDone : kFailed;
}

}  // namespace kerno
