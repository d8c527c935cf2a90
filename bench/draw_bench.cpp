// Drawing into a surface of 1200 x 800 pixels against the time that it may take, and how bitmap and
// metafile grow with the text.

#include <benchmark/benchmark.h>

#include <ctime>
#include <string>

#include "app/job.h"
#include "export/bmp_writer.h"
#include "export/draw_parts.h"
#include "export/emf_writer.h"
#include "ratio.h"
#include "sample_texts.h"

namespace kerno {
namespace {

constexpr int kWidth = 1200;
constexpr int kHeight = 800;
constexpr size_t kLineLength = 100;

// A page of lines of 100 characters.
struct Page {
  TextContours contours;
  PartsA parts;
};

Page PageOf(const SampleText& sample, int64_t characters) {
  Job job;
  job.text.face.name = sample.face;
  const std::u16string text = RepeatTo(sample.text, static_cast<size_t>(characters));
  for (size_t at = 0; at < text.size(); at += kLineLength) {
    job.text.text += text.substr(at, kLineLength) + u"\r\n";
  }
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  Page page;
  page.contours = Make(job, typesetter)->contours;
  BuildParts(page.contours, {}, &page.parts);
  return page;
}

// The budget itself: processor time that passes while nothing is drawn.
void Budget(benchmark::State& state) {
  for (auto _ : state) {
    const std::clock_t end = std::clock() + state.range(0) * CLOCKS_PER_SEC / 1000;
    while (std::clock() < end) {
    }
  }
}

// What a preview does: a fresh surface, the box, the fit, the drawing.
void DrawPage(benchmark::State& state, const SampleText& sample) {
  const Page page = PageOf(sample, state.range(0));
  for (auto _ : state) {
    const auto surface = CreateBitmapSurface(kWidth, kHeight, 0xFFFFFF);
    const Affine fit = FitExtent(PictureBox(page.parts, nullptr), {0, 0, kWidth, kHeight}, 8);
    DrawParts(surface->Context(), page.parts, fit, {.detail = 0.5});
    benchmark::DoNotOptimize(surface->Pixels().data());
  }
}

void DrawPolygons(benchmark::State& state, const SampleText& sample) {
  const Page page = PageOf(sample, state.range(0));
  for (auto _ : state) {
    const auto surface = CreateBitmapSurface(kWidth, kHeight, 0xFFFFFF);
    const Affine fit = FitExtent(ContoursBox(page.contours), {0, 0, kWidth, kHeight}, 8);
    DrawContours(surface->Context(), page.contours, fit, {.detail = 0.5});
    benchmark::DoNotOptimize(surface->Pixels().data());
  }
}

// Takes what is written and keeps nothing.
class NoFile final : public FileReplacement {
 public:
  Status Write(std::string_view bytes) override {
    benchmark::DoNotOptimize(bytes.data());
    return Status::Ok();
  }
  Status Commit() override { return Status::Ok(); }
};

void WriteBitmap(benchmark::State& state, const SampleText& sample) {
  const Page page = PageOf(sample, state.range(0));
  for (auto _ : state) {
    NoFile out;
    if (!WriteBmp(page.parts, {}, "a.bmp", &out).ok()) state.SkipWithError("not written");
  }
}

void WriteMetafile(benchmark::State& state, const SampleText& sample) {
  const Page page = PageOf(sample, state.range(0));
  for (auto _ : state) {
    NoFile out;
    if (!WriteEmf(page.parts, {}, "a.emf", &out).ok()) state.SkipWithError("not written");
  }
}

const bool registered = [] {
  const SampleText sample = LatinSample();
  const auto add = [&](const std::string& name, auto function, int64_t least, int64_t most) {
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& s) { function(s, sample); })
        ->Unit(benchmark::kMillisecond)
        ->RangeMultiplier(10)
        ->Range(least, most);
  };
  benchmark::RegisterBenchmark("budget_ms", Budget)->Unit(benchmark::kMillisecond)->Arg(60);
  add("draw_parts/latin", DrawPage, 1000, 100000);
  add("draw_contours/latin", DrawPolygons, 1000, 100000);
  add("bmp_write/latin", WriteBitmap, 10000, 100000);
  add("emf_write/latin", WriteMetafile, 10000, 100000);
  for (const std::string stage : {"draw_parts", "draw_contours"}) {
    DeclareRatio(stage + "/latin/10000", "budget_ms/60", 1);
    DeclareRatio(stage + "/latin/100000", stage + "/latin/10000", 12);
  }
  for (const std::string stage : {"bmp_write", "emf_write"}) {
    DeclareRatio(stage + "/latin/100000", stage + "/latin/10000", 12);
  }
  return true;
}();

}  // namespace
}  // namespace kerno
