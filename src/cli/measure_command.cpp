#include "cli/measure_command.h"

#include <CLI/CLI.hpp>
#include <utility>
#include <vector>

#include "base/number_text.h"
#include "cli/console.h"
#include "export/draw_parts.h"

namespace kerno {

void MeasureCommand::AddOptions(CLI::App& app) {
  text_.AddTo(app);
  app.add_flag("--json", json_, "one JSON object");
  app.add_flag("--ink", ink_, "the box of the outlines, too: left, bottom, right, top (y up)");
}

ExitStatus MeasureCommand::Run() {
  ExitStatus status = kDone;
  const auto job = text_.Resolve(&status);
  if (!job) return status;
  const auto context = CreateMeasuringContext();
  const TextRequest& text = job->text;
  const StringExtent extent = MeasureString(
      context.get(), text.text, text.face.vertical, text.height, text.width, text.placement.slant,
      text.placement.angle, SystemFaceName(text.face), text.weight, text.italic);
  const P2 size = {extent.length * job->scale, extent.height * job->scale};
  if (!TextOptions::CheckRange(size)) return kWrongUsage;
  std::vector<std::pair<const char*, double>> figures = {{"length", size.x}, {"height", size.y}};
  const auto made = text_.MakeAndReport(
      *job, ink_ ? TextOptions::Placing::kPlaced : TextOptions::Placing::kUnplaced, &status);
  if (!made) return status;
  if (ink_) {
    if (!TextOptions::CheckRange(made->contours)) return kWrongUsage;
    const Extent3 box = ContoursBox(made->contours);
    figures.insert(
        figures.end(),
        {{"left", box.min.x}, {"bottom", box.min.y}, {"right", box.max.x}, {"top", box.max.y}});
  }
  std::string out = json_ ? "{" : "";
  for (const auto& [name, value] : figures) {
    if (json_) {
      out.append(out.size() > 1 ? ", \"" : "\"").append(name).append("\": ");
    } else {
      out.append(name).append(" ");
    }
    AppendShortest(&out, value);
    if (!json_) out += "\n";
  }
  if (json_) out += "}\n";
  return Print(out) && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
