// Parts files: writing against the plain formatting of the same numbers into one buffer and one
// write, reading against std::from_chars over the same numbers.

#include <benchmark/benchmark.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

#include "parts/ipx.h"
#include "platform/file_replacement.h"
#include "ratio.h"
#include "sample_parts.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// Calls `visit` with each number of the file of these parts, in order. The parts hold vertices and
// lines, and nothing else.
template <class Visit>
void EachNumber(const PartsA& container, const Visit& visit) {
  const auto integers = [&](auto... values) { (visit(static_cast<int32_t>(values)), ...); };
  const auto point = [&](const P3& p) {
    visit(p.x);
    visit(p.y);
    visit(p.z);
  };
  integers(container.parts.size(), container.id);
  for (const PartsElement& part : container.parts) {
    integers(part.header_first, part.header_second, part.pen.color);
    visit(part.pen.width);
    integers(part.pen.style);
    visit(part.pen.unit_width);
    visit(part.pen.unit_length);
    integers(part.brush.color, part.brush.style, part.brush.hatch);
    visit(part.extra.first);
    integers(part.extra.second);
    visit(part.extra.third);
    integers(part.placement.code);
    point(part.placement.origin);
    const Extent3 box = part.Extent();
    point(box.min);
    point(box.max);
    integers(part.keeps_order, part.trailing, part.vertices.size(), 0);
    for (const P3& p : part.vertices) point(p);
    integers(0, 0, part.lines.items.size(), 0);
    for (const LineItem& line : part.lines.items) integers(line.start, line.end);
    for (int array = 0; array < 10; ++array) integers(0, 0);
  }
}

// Each number and a blank.
struct PlainFormat {
  std::string* text;
  void operator()(int32_t value) const {
    char digits[16];
    Put(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
  }
  void operator()(double value) const {
    char digits[32];
    Put(digits,
        std::to_chars(digits, digits + sizeof digits, value, std::chars_format::general, 15).ptr);
  }
  void Put(char* first, char* end) const {
    *end++ = ' ';
    text->append(first, static_cast<size_t>(end - first));
  }
};

// Reads the numbers of a text in the order in which they were formatted.
struct PlainParse {
  const char** at;
  const char* end;
  template <class Number>
  void operator()(Number) const {
    Number value{};
    *at = std::from_chars(*at, end, value).ptr + 1;
    benchmark::DoNotOptimize(value);
  }
};

struct Closer {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Closer>;

fs::path ScratchFile(const char* name) {
  return fs::temp_directory_path() / (std::string("kerno-bench-") + name);
}

// Writes without the flush to the disk: its time is the disk's alone.
void Dump(const fs::path& path, std::string_view bytes, const char* mode) {
  const File file(std::fopen(path.c_str(), mode));
  if (file) std::fwrite(bytes.data(), 1, bytes.size(), file.get());
}

void FormatNumbers(benchmark::State& state, const SampleText& sample) {
  const PartsA parts = PartsOf(sample, state.range(0));
  const fs::path path = ScratchFile("numbers.txt");
  for (auto _ : state) {
    std::string text;
    EachNumber(parts, PlainFormat{&text});
    Dump(path, text, "wb");
  }
  fs::remove(path);
}

void WriteFile(benchmark::State& state, const SampleText& sample) {
  const PartsA parts = PartsOf(sample, state.range(0));
  const fs::path path = ScratchFile("write.ipx");
  for (auto _ : state) {
    const File file(std::fopen(path.c_str(), "wb"));
    const Status status = EncodeIpx(parts, u"kerno", u"bench", [&](std::string_view bytes) {
      std::fwrite(bytes.data(), 1, bytes.size(), file.get());
      return Status::Ok();
    });
    if (!status.ok()) state.SkipWithError("not written");
  }
  state.counters["bytes"] = static_cast<double>(fs::file_size(path));
  fs::remove(path);
}

void ParseNumbers(benchmark::State& state, const SampleText& sample) {
  const PartsA parts = PartsOf(sample, state.range(0));
  std::string text;
  EachNumber(parts, PlainFormat{&text});
  for (auto _ : state) {
    const char* at = text.data();
    EachNumber(parts, PlainParse{&at, text.data() + text.size()});
  }
}

// `layer`: a Japanese name takes the file off the path of plain ASCII.
void ReadFile(benchmark::State& state, const SampleText& sample, const std::u16string& layer) {
  PartsA parts = PartsOf(sample, state.range(0));
  for (PartsElement& part : parts.parts) part.name = layer;
  const fs::path path = ScratchFile("read.ipx");
  if (!WriteIpxFile(path, parts, u"kerno").ok()) state.SkipWithError("not written");
  for (auto _ : state) {
    PartsA read;
    if (!ReadIpxFile(path, &read).ok()) state.SkipWithError("not read");
    state.PauseTiming();  // what was read is thrown away off the clock
    read = PartsA();
    state.ResumeTiming();
  }
  fs::remove(path);
}

void Register(const SampleText& sample, std::initializer_list<int64_t> lengths) {
  const std::string kind = sample.name;
  const auto add = [&](const std::string& stage, auto function) {
    auto* bench = benchmark::RegisterBenchmark((stage + "/" + kind).c_str(),
                                               [=](benchmark::State& s) { function(s, sample); });
    bench->Unit(benchmark::kMicrosecond)->UseRealTime();
    for (const int64_t length : lengths) bench->Arg(length);
  };
  const auto read_as = [](const std::u16string& layer) {
    return [=](benchmark::State& s, const SampleText& text) { ReadFile(s, text, layer); };
  };
  add("format_numbers", FormatNumbers);
  add("ipx_write", WriteFile);
  add("parse_numbers", ParseNumbers);
  add("ipx_read", read_as(u"Kerno"));
  add("ipx_read_code_page", read_as(u"外形線"));
  add("ipx_read_utf16", read_as(u"외형선"));
  const auto tail = [&](int64_t length) {
    return "/" + kind + "/" + std::to_string(length) + "/real_time";
  };
  for (const int64_t length : lengths) {
    DeclareRatio("ipx_write" + tail(length), "format_numbers" + tail(length), 2);
    for (const std::string read : {"ipx_read", "ipx_read_code_page", "ipx_read_utf16"}) {
      DeclareRatio(read + tail(length), "parse_numbers" + tail(length), 3);
    }
  }
  for (const std::string stage : {"ipx_write", "ipx_read"}) {
    DeclareRatio(stage + tail(100000), stage + tail(10000), 12);
  }
}

const bool registered = [] {
  Register(LatinSample(), {10000, 100000});
  Register(JapaneseSample(), {10000, 100000});
  return true;
}();

}  // namespace
}  // namespace kerno
