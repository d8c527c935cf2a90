// From a changed text to the painted preview of its cut, in every look, and whether the memory
// stays flat over many edits. With a folder, also writes pictures of the looks there (PPM).

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "app/cut_preview.h"
#include "sample_texts.h"

namespace kerno {
namespace {

constexpr double kWidth = 640, kHeight = 400;
constexpr int kRuns = 21;
constexpr int kEdits = 10000;
constexpr Color kLight = 0xFFFFFF, kDark = 0x2B2523;

struct Look {
  const char* name;
  PreviewLook look;
};
constexpr Look kLooks[] = {{"filled", PreviewLook::kFilled},
                           {"lines", PreviewLook::kCutLines},
                           {"nodes", PreviewLook::kNodes}};

std::u16string LinesOf(const SampleText& sample, size_t characters) {
  std::u16string text = RepeatTo(sample.text, characters);
  for (size_t i = 60; i < text.size(); i += 61) text[i] = u'\n';
  return text;
}

// No character twice.
SampleText KanjiSample() {
  SampleText sample = {"kanji", u"IPAMincho", u""};
  for (char16_t ch = 0x4E00; sample.text.size() < 1000; ++ch) sample.text += ch;
  return sample;
}

// Every letter overlaps the next one.
SampleText JoinedSample() {
  SampleText sample = LatinSample();
  sample.name = "joined";
  std::erase(sample.text, u' ');
  return sample;
}
constexpr double kJoined = -0.25;  // of the height, between letters

CutJob JobOf(const SampleText& sample, size_t characters, CutSize size) {
  CutJob job;
  if (sample.name == std::string("joined")) {
    const double height = size.by == CutSize::By::kFit ? size.width / 40 : size.height;
    job.letter_spacing = kJoined * height;
  }
  job.text = LinesOf(sample, characters);
  job.face.family = sample.face;
  job.size = size;
  return job;
}

// A window's Cut page, as far as the drawing goes.
class Page {
 public:
  explicit Page(CutJob job) : job_(std::move(job)) { preview_.SetFrame(kWidth, kHeight, 1); }

  CutJob& job() { return job_; }
  CutPreview& preview() { return preview_; }
  // The milliseconds until the text is made and until it is painted, and those of all processors
  // together, which other programs do not prolong as much.
  struct Times {
    double made = 0, painted = 0, processors = 0;
  };
  Times Set(const std::u16string& text) {
    const auto start = std::chrono::steady_clock::now();
    const auto gone = [&] {
      return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
          .count();
    };
    const std::clock_t busy = std::clock();
    Times times;
    job_.text = text;
    auto made = std::make_shared<CutDrawing>();
    if (const Status status = workshop_.Make(job_, made.get()); !status.ok()) {
      std::fprintf(stderr, "the cut could not be made\n");
      std::exit(1);
    }
    times.made = gone();
    preview_.SetDrawing(std::move(made));
    surface_ = preview_.Paint(InksOn(kLight));
    times.painted = gone();
    times.processors = 1e3 * static_cast<double>(std::clock() - busy) / CLOCKS_PER_SEC;
    return times;
  }
  const BitmapSurface& surface() const { return *surface_; }

 private:
  CutJob job_;
  CutWorkshop workshop_;
  CutPreview preview_;
  std::unique_ptr<BitmapSurface> surface_;
};

double MedianOf(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

void MeasureKeys(const SampleText& sample, size_t characters, const char* size_name, CutSize size,
                 double goal) {
  Page page(JobOf(sample, characters, size));
  const std::u16string text = page.job().text;
  for (const Look& look : kLooks) {
    page.preview().SetLook(look.look);
    page.Set(text);
    std::vector<double> made, painted, processors;
    for (size_t i = 1; i <= kRuns; ++i) {
      const Page::Times times = page.Set(text + RepeatTo(u"engraved", i));
      made.push_back(times.made);
      painted.push_back(times.painted);
      processors.push_back(times.processors);
    }
    const double median = MedianOf(painted);
    std::printf(
        "cut %-6s %-4s %-9s %5zu characters: made %6.2f, painted %6.2f ms (best %6.2f, processors "
        "%6.2f)  goal %g %s\n",
        look.name, size_name, sample.name, characters, MedianOf(made), median,
        *std::ranges::min_element(painted), MedianOf(processors), goal,
        median <= goal ? "" : "MISSED");
  }
}

// Kilobytes that the process holds.
long Resident() {
  long pages = 0, resident = 0;
  if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(file, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(file);
  }
  return resident * 4;
}

// Letters that come and go at the end of a line, in changing sizes.
void MeasureMemory(CutSize size, const char* name) {
  Page page(JobOf(LatinSample(), 200, size));
  const std::u16string text = page.job().text;
  const std::u16string more = RepeatTo(LatinSample().text, 64);
  long early = 0;
  for (int i = 1; i <= kEdits; ++i) {
    page.preview().SetLook(kLooks[i % 3].look);
    page.job().size.height = size.height + i / 100 % 50;
    page.Set(text + more.substr(0, static_cast<size_t>(i) % more.size()));
    if (i == kEdits / 10) early = Resident();
  }
  const long late = Resident();
  std::printf("%-8s resident after %d edits %ld kB, after %d %ld kB: %+.1f %%\n", name, kEdits / 10,
              early, kEdits, late,
              100.0 * static_cast<double>(late - early) / static_cast<double>(early));
}

void Write(const BitmapSurface& surface, const std::filesystem::path& file) {
  std::ofstream out(file, std::ios::binary);
  out << "P6 " << surface.Width() << ' ' << surface.Height() << " 255\n";
  const std::span<const uint8_t> pixels = surface.Pixels();
  for (size_t i = 0; i < pixels.size(); i += 4) {
    out.put(static_cast<char>(pixels[i + 2]));
    out.put(static_cast<char>(pixels[i + 1]));
    out.put(static_cast<char>(pixels[i]));
  }
}

void WritePictures(const std::filesystem::path& folder) {
  const struct {
    const char* name;
    double width, height, density;
    Color paper;
  } screens[] = {{"light", 800, 480, 1, kLight},
                 {"dark", 800, 480, 1, kDark},
                 {"large", 700, 400, 1.75, kLight}};
  const struct {
    const char* name;
    const char16_t *text, *face;
    double steps;  // of zooming
    CurveForm curves;
  } texts[] = {{"two-lines", u"Kerno Œuvre\n看板 O8&g", u"IPAMincho", 0, CurveForm::kArcs},
               {"near", u"Rg&", u"DejaVu Sans", 5, CurveForm::kCurves},
               {"far", u"Kerno", u"DejaVu Sans", -6, CurveForm::kArcs}};
  for (const auto& screen : screens) {
    for (const auto& text : texts) {
      CutJob job;
      job.text = text.text;
      job.face.family = text.face;
      job.curves = text.curves;
      Page page(job);
      page.preview().SetFrame(screen.width, screen.height, screen.density);
      page.preview().SetRulers(true);
      page.preview().SetGrid(true);
      page.Set(job.text);
      page.preview().ZoomBy(text.steps);
      page.preview().MeasureClick(100, 100);
      page.preview().MeasureClick(300, 250);
      for (const Look& look : kLooks) {
        page.preview().SetLook(look.look);
        const auto picture = page.preview().Paint(InksOn(screen.paper));
        Write(*picture,
              folder / (std::string(screen.name) + '-' + text.name + '-' + look.name + ".ppm"));
      }
    }
  }
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  using namespace kerno;
  if (argc > 1) {
    std::filesystem::create_directories(argv[1]);
    WritePictures(argv[1]);
    return 0;
  }
  const CutSize by_cap, fitted = {CutSize::By::kFit, 300, 0};
  for (const auto& [name, size] : {std::pair{"cap", by_cap}, std::pair{"fit", fitted}}) {
    MeasureKeys(JapaneseSample(), 1000, name, size, 16);
    MeasureKeys(LatinSample(), 1000, name, size, 16);
    MeasureKeys(LatinSample(), 10000, name, size, 60);
    MeasureKeys(KanjiSample(), 1000, name, size, 16);
    MeasureKeys(JoinedSample(), 1000, name, size, 16);
    MeasureKeys(JoinedSample(), 10000, name, size, 60);
  }
  MeasureMemory(by_cap, "cap");
  MeasureMemory(fitted, "fit");
  return 0;
}
