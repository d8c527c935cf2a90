// The page of outputs, against putting the same names one behind the other.

#include <benchmark/benchmark.h>

#include "base/text.h"
#include "ratio.h"
#include "web/output_page.h"

namespace kerno {
namespace {

OutputPage PageOf(int64_t files) {
  constexpr const char* kExtensions[] = {".svg", ".bmp", ".dxf", ".emf", ".ipx"};
  OutputPage page;
  page.source = {u"永遠 <Kerno> & \"more\"", u"@ＭＳ 明朝", u"100"};
  for (int64_t i = 0; i < files; ++i) {
    page.files.push_back({"@ＭＳ 明朝_100_永遠 " + std::to_string(i) + kExtensions[i % 5],
                          static_cast<uint64_t>(i) * 12345});
  }
  return page;
}

void BuildPage(benchmark::State& state) {
  const OutputPage page = PageOf(state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(BuildOutputPage(page));
}

void JoinNames(benchmark::State& state) {
  const OutputPage page = PageOf(state.range(0));
  for (auto _ : state) {
    std::string joined;
    for (const PageFile& file : page.files) joined += Utf16ToUtf8(PathText(file.name));
    benchmark::DoNotOptimize(joined);
  }
}

// At most 20 ms for 100 outputs, which the table tells in absolute time.
BENCHMARK(BuildPage)->Name("page")->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(JoinNames)->Name("join_names")->Arg(100)->Unit(benchmark::kMillisecond);

[[maybe_unused]] const bool declared = (DeclareRatio("page/100", "join_names/100", 0), true);

}  // namespace
}  // namespace kerno
