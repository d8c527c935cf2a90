// Layout and rebuild against appending the same points, already flattened, with an offset.

#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "app/job.h"
#include "base/text.h"
#include "outline/glyph_outline.h"
#include "ratio.h"
#include "sample_texts.h"

namespace kerno {
namespace {

Job JobOf(const SampleText& sample, int64_t characters) {
  Job job;
  job.text.face.name = sample.face;
  job.text.text = RepeatTo(sample.text, static_cast<size_t>(characters));
  return job;
}

// Drops what a run made without counting the time: freeing it is no part of any stage.
template <class Result>
void Drop(benchmark::State& state, Result* result) {
  state.PauseTiming();
  *result = Result();
  state.ResumeTiming();
}

// The glyphs of a text in order, flattened once, with where they go.
struct FlattenedText {
  struct Placed {
    const GlyphContours* glyph;
    P2 offset;
  };
  std::map<char32_t, GlyphContours> glyphs;
  std::vector<Placed> placed;
};

FlattenedText Flatten(DeviceContext& context, const std::u16string& text) {
  FlattenedText flattened;
  double x = 0;
  for (size_t at = 0; at < text.size();) {
    const char32_t ch = NextCharacter(text, &at);
    const auto [entry, is_new] = flattened.glyphs.try_emplace(ch);
    GlyphMetrics metrics;
    if (is_new) GetGlyphContours(context, ch, &metrics, &entry->second);
    flattened.placed.push_back({&entry->second, {x, 0}});
    x += 50;
  }
  return flattened;
}

void AppendBaseline(benchmark::State& state, const SampleText& sample) {
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  const Job job = JobOf(sample, state.range(0));
  (void)typesetter.LayOut(job.text);
  const FlattenedText text = Flatten(*context, job.text.text);
  for (auto _ : state) {
    GlyphContours out;
    for (const auto& [glyph, offset] : text.placed) {
      for (const P2& p : glyph->points) out.points.push_back({p.x + offset.x, p.y + offset.y});
      for (const uint32_t count : glyph->counts) out.counts.push_back(count);
    }
    benchmark::DoNotOptimize(out.points.data());
    Drop(state, &out);
  }
}

void Layout(benchmark::State& state, const SampleText& sample) {
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  const Job job = JobOf(sample, state.range(0));
  (void)typesetter.LayOut(job.text);
  for (auto _ : state) {
    GlyphContours out;
    LayoutString(*context, job.text.text, {}, &out);
    benchmark::DoNotOptimize(out.points.data());
    Drop(state, &out);
  }
}

void TextToParts(benchmark::State& state, const SampleText& sample) {
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  const Job job = JobOf(sample, state.range(0));
  (void)typesetter.LayOut(job.text);
  for (auto _ : state) {
    const auto set = Make(job, typesetter);
    PartsA parts;
    BuildParts(set->contours, {}, &parts);
    benchmark::DoNotOptimize(parts.parts.data());
    Drop(state, &parts);
  }
}

void Register(const SampleText& sample, std::initializer_list<int64_t> lengths) {
  const std::string kind = sample.name;
  const auto add = [&](const std::string& stage, auto function) {
    auto* bench = benchmark::RegisterBenchmark((stage + "/" + kind).c_str(),
                                               [=](benchmark::State& s) { function(s, sample); });
    bench->Unit(benchmark::kMicrosecond);
    for (const int64_t length : lengths) bench->Arg(length);
  };
  add("append", AppendBaseline);
  add("layout", Layout);
  add("text_to_parts", TextToParts);
  for (const int64_t length : lengths) {
    const std::string tail = "/" + kind + "/" + std::to_string(length);
    DeclareRatio("layout" + tail, "append" + tail, 2);
    DeclareRatio("text_to_parts" + tail, "append" + tail, 6);
  }
  if (lengths.size() == 4) {
    for (const std::string stage : {"layout/", "text_to_parts/"}) {
      DeclareRatio(stage + kind + "/100000", stage + kind + "/10000", 12);
    }
  }
}

const bool registered = [] {
  Register(LatinSample(), {100, 1000, 10000, 100000});
  Register(JapaneseSample(), {100, 1000, 10000});
  return true;
}();

}  // namespace
}  // namespace kerno
