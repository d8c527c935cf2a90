#include "cli/contours_command.h"

#include <CLI/CLI.hpp>

#include "base/number_text.h"
#include "base/text.h"
#include "cli/console.h"
#include "drawing/affine.h"

namespace kerno {
namespace {

constexpr size_t kChunk = 1 << 16;

// Gathers output and prints it in chunks, so that long texts need no memory of their length.
class Printer {
 public:
  std::string& text() { return text_; }
  bool DrainWhenLong() { return text_.size() < kChunk || Drain(); }
  bool Drain() {
    const bool printed = Print(text_);
    text_.clear();
    return printed;
  }

 private:
  std::string text_;
};

void AppendField(std::string* out, std::string_view name, int64_t value) {
  out->append("\"").append(name).append("\": ");
  AppendInteger(out, value);
}

void AppendMetrics(std::string* out, const TextMetrics& metrics) {
  out->append("\"textMetrics\": {");
  AppendField(out, "tmHeight", metrics.tmHeight);
  AppendField(&out->append(", "), "tmAscent", metrics.tmAscent);
  AppendField(&out->append(", "), "tmDescent", metrics.tmDescent);
  AppendField(&out->append(", "), "tmAveCharWidth", metrics.tmAveCharWidth);
  out->append("}");
}

bool PrintJson(const TypesetText& set, const TextRequest& request) {
  Printer printer;
  std::string& out = printer.text();
  out += "{\"face\": ";
  AppendJsonString(&out, set.face);
  AppendField(&out.append(", "), "height", request.height);
  out.append(", \"vertical\": ").append(request.face.vertical ? "true" : "false");
  AppendMetrics(&out.append(", "), set.metrics);
  out += ", \"counts\": [";
  for (size_t i = 0; i < set.contours.counts.size(); ++i) {
    if (i > 0) out += ", ";
    AppendInteger(&out, set.contours.counts[i]);
    if (!printer.DrainWhenLong()) return false;
  }
  out += "], \"points\": [";
  for (size_t i = 0; i < set.contours.points.size(); ++i) {
    out += i > 0 ? ", [" : "[";
    AppendShortest(&out, set.contours.points[i].x);
    out += ", ";
    AppendShortest(&out, set.contours.points[i].y);
    out += "]";
    if (!printer.DrainWhenLong()) return false;
  }
  out += "]}\n";
  return printer.Drain();
}

bool PrintListing(const TypesetText& set, const TextRequest& request) {
  Printer printer;
  std::string& out = printer.text();
  const TextMetrics& m = set.metrics;
  out += "face " + Utf16ToUtf8(set.face) + ", height " + std::to_string(request.height) + ", " +
         (request.face.vertical ? "vertical" : "horizontal") + "\n";
  out += "text height " + std::to_string(m.tmHeight) + ", ascent " + std::to_string(m.tmAscent) +
         ", descent " + std::to_string(m.tmDescent) + ", average width " +
         std::to_string(m.tmAveCharWidth) + "\n";
  out += std::to_string(set.contours.counts.size()) + " contours, " +
         std::to_string(set.contours.points.size()) + " points\n";
  size_t at = 0;
  for (size_t i = 0; i < set.contours.counts.size(); ++i) {
    out += "\ncontour " + std::to_string(i + 1) + ", " + std::to_string(set.contours.counts[i]) +
           " points\n";
    for (uint32_t k = 0; k < set.contours.counts[i]; ++k, ++at) {
      AppendShortest(&out.append("  "), set.contours.points[at].x);
      AppendShortest(&out.append(" "), set.contours.points[at].y);
      out += "\n";
      if (!printer.DrainWhenLong()) return false;
    }
  }
  return printer.Drain();
}

}  // namespace

void ContoursCommand::AddOptions(CLI::App& app) {
  text_.AddTo(app);
  app.add_flag("--json", json_, "one JSON object");
  app.add_flag("--unplaced", unplaced_, "points as laid out (y up), before the block is placed");
}

ExitStatus ContoursCommand::Run() {
  ExitStatus status = kDone;
  auto job = text_.Resolve(&status);
  if (!job) return status;
  // Placed contours are printed with y down, and the place that was asked for counts so, too.
  const Affine down = FlippedY(1, {});
  job->at = down.Apply(job->at);
  const auto placing = unplaced_ ? TextOptions::Placing::kUnplaced : TextOptions::Placing::kPlaced;
  auto set = text_.MakeAndReport(*job, placing, &status);
  if (!set) return status;
  if (!unplaced_) {
    for (P2& p : set->contours.points) p = down.Apply(p);
  }
  if (!TextOptions::CheckRange(set->contours.points)) return kWrongUsage;
  const bool printed = json_ ? PrintJson(*set, job->text) : PrintListing(*set, job->text);
  return printed && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
