#include "cli/contours_command.h"

#include <CLI/CLI.hpp>
#include <span>
#include <utility>
#include <vector>

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
  for (size_t i = 0; i < set.contours.size(); ++i) {
    if (i > 0) out += ", ";
    AppendInteger(&out, static_cast<int64_t>(set.contours.PointsOf(i)));
    if (!printer.DrainWhenLong()) return false;
  }
  out += "], \"points\": [";
  std::vector<P2> room;
  bool first = true;
  for (size_t i = 0; i < set.contours.size(); ++i) {
    for (const P2& p : set.contours.Contour(i, &room)) {
      out += std::exchange(first, false) ? "[" : ", [";
      AppendShortest(&out, p.x);
      out += ", ";
      AppendShortest(&out, p.y);
      out += "]";
      if (!printer.DrainWhenLong()) return false;
    }
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
  out += std::to_string(set.contours.size()) + " contours, " +
         std::to_string(set.contours.point_count()) + " points\n";
  std::vector<P2> room;
  for (size_t i = 0; i < set.contours.size(); ++i) {
    const std::span<const P2> contour = set.contours.Contour(i, &room);
    out +=
        "\ncontour " + std::to_string(i + 1) + ", " + std::to_string(contour.size()) + " points\n";
    for (const P2& p : contour) {
      AppendShortest(&out.append("  "), p.x);
      AppendShortest(&out.append(" "), p.y);
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
  TextOptions::ReportLicence(*job, *set);
  if (!unplaced_) set->contours.Apply(down);
  if (!TextOptions::CheckRange(set->contours)) return kWrongUsage;
  const bool printed = json_ ? PrintJson(*set, job->text) : PrintListing(*set, job->text);
  return printed && FinishPrinting() ? kDone : kFailed;
}

}  // namespace kerno
