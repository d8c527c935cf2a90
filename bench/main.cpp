// Runs the benchmarks and prints the ratios that were declared, each against its goal.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "ratio.h"

namespace kerno {
namespace {

struct Ratio {
  std::string subject;
  std::string baseline;
  double goal;
};

std::vector<Ratio>& Ratios() {
  static std::vector<Ratio> ratios;
  return ratios;
}

// Prints as usual and keeps the shortest processor time of each benchmark.
class KeepingReporter final : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
      const double seconds =
          run.GetAdjustedCPUTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
      const auto [entry, is_new] =
          seconds_.try_emplace(run.run_name.function_name + run.run_name.args, seconds);
      if (!is_new) entry->second = std::min(entry->second, seconds);
      seconds_.try_emplace(run.benchmark_name(), seconds);
    }
  }

  void PrintRatios() const {
    std::printf("\n%-52s %-44s %9s %7s\n", "measured", "against", "ratio", "goal");
    for (const Ratio& ratio : Ratios()) {
      const auto subject = seconds_.find(ratio.subject);
      const auto baseline = seconds_.find(ratio.baseline);
      if (subject == seconds_.end() || baseline == seconds_.end()) continue;
      const double value = subject->second / baseline->second;
      std::printf("%-52s %-44s %9.2f ", ratio.subject.c_str(), ratio.baseline.c_str(), value);
      if (ratio.goal > 0) {
        std::printf("%7g %s\n", ratio.goal, value <= ratio.goal ? "" : "MISSED");
      } else {
        std::printf("%7s\n", "-");
      }
    }
  }

 private:
  std::map<std::string, double> seconds_;
};

}  // namespace

void DeclareRatio(const std::string& subject, const std::string& baseline, double goal) {
  Ratios().push_back({subject, baseline, goal});
}

}  // namespace kerno

int main(int argc, char** argv) {
  // Every run works in memory fresh from the system, as a process that converts one text does;
  // otherwise the small sizes run in warm memory and the large ones do not.
  mallopt(M_MMAP_THRESHOLD, 1 << 16);
  mallopt(M_TRIM_THRESHOLD, 1 << 16);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  kerno::KeepingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  reporter.PrintRatios();
  return 0;
}
