// Writers against the plain formatting of the same numbers into one buffer and one write.

#include <benchmark/benchmark.h>

#include <charconv>
#include <filesystem>
#include <string>

#include "export/dxf_export.h"
#include "export/svg_writer.h"
#include "export/x3d_writer.h"
#include "ratio.h"
#include "sample_parts.h"

namespace kerno {
namespace {

// Writes what `write` produces to a file that is given up afterwards: all of the work but the
// flush, whose time is the disk's.
template <class Write>
void Run(benchmark::State& state, const SampleText& sample, const Write& write) {
  const PartsA model = PartsOf(sample, state.range(0));
  const std::filesystem::path file = std::filesystem::temp_directory_path() / "kerno-bench.out";
  for (auto _ : state) {
    Status status;
    const auto out = FileReplacement::Create(file, &status);
    if (!out || !write(model, out.get()).ok()) state.SkipWithError("cannot write");
  }
}

void AppendNumber(std::string* out, double value, int digits) {
  char text[32];
  const auto end =
      std::to_chars(text, text + sizeof text, value, std::chars_format::general, digits);
  out->append(text, end.ptr);
}

// The numbers of every line and the text around them, each formatted where it stands.
Status PlainDxf(const PartsA& model, FileReplacement* out) {
  std::string text;
  for (const PartsElement& part : model.parts) {
    for (const LineItem& line : part.lines.items) {
      const P3& a = part.vertices[static_cast<size_t>(line.start)];
      const P3& b = part.vertices[static_cast<size_t>(line.end)];
      text += "  0\r\nLINE\r\n  8\r\nKerno\r\n 62\r\n1\r\n 10\r\n";
      AppendNumber(&text, a.x, 6);
      text += "\r\n 20\r\n";
      AppendNumber(&text, a.y, 6);
      text += "\r\n 11\r\n";
      AppendNumber(&text, b.x, 6);
      text += "\r\n 21\r\n";
      AppendNumber(&text, b.y, 6);
      text += "\r\n";
    }
  }
  return out->Write(text);
}

// The points of every contour as SVG takes them, with the precision that the writer has.
Status PlainSvg(const PartsA& model, FileReplacement* out) {
  std::string text;
  for (const PartsElement& part : model.parts) {
    text += "  <polygon points=\"";
    for (const LineItem& line : part.lines.items) {
      const P3& p = part.vertices[static_cast<size_t>(line.start)];
      AppendNumber(&text, p.x, 15);
      text += ",";
      AppendNumber(&text, -p.y, 15);
      text += " ";
    }
    text += "\"/>\n";
  }
  return out->Write(text);
}

// The points of every contour and two indices for each line.
Status PlainX3d(const PartsA& model, FileReplacement* out) {
  std::string text;
  int32_t base = 0;
  for (const PartsElement& part : model.parts) {
    for (const LineItem& line : part.lines.items) {
      for (const int32_t index : {base + line.start, base + line.end, -1}) {
        text += std::to_string(index);
        text += " ";
      }
    }
    for (const P3& p : part.vertices) {
      for (const double value : {p.x, p.y, p.z}) {
        AppendNumber(&text, value, 15);
        text += " ";
      }
    }
    base += static_cast<int32_t>(part.vertices.size());
  }
  return out->Write(text);
}

Status Svg(const PartsA& model, FileReplacement* out) {
  return WriteSvg(model, {}, "bench.svg", out);
}

Status X3d(const PartsA& model, FileReplacement* out) {
  return WriteX3d(model, "bench.x3d", out);
}

Status Dxf(const PartsA& model, FileReplacement* out) {
  return WriteDxf(model, {}, "bench.dxf", out);
}

template <class Write>
void Add(const std::string& stage, const SampleText& sample, std::initializer_list<int64_t> lengths,
         Write write) {
  auto* bench =
      benchmark::RegisterBenchmark((stage + "/" + sample.name).c_str(),
                                   [=](benchmark::State& state) { Run(state, sample, write); });
  bench->Unit(benchmark::kMicrosecond);
  for (const int64_t length : lengths) bench->Arg(length);
}

void Register(const SampleText& sample, std::initializer_list<int64_t> lengths) {
  const std::string kind = std::string("/") + sample.name + "/";
  const auto add = [&](const std::string& format, auto plain, auto writer, double goal) {
    Add("plain_" + format, sample, lengths, plain);
    Add(format, sample, lengths, writer);
    for (const int64_t length : lengths) {
      const std::string tail = format + kind + std::to_string(length);
      DeclareRatio(tail, "plain_" + tail, goal);
    }
    if (lengths.size() == 4) {
      DeclareRatio(format + kind + "100000", format + kind + "10000", 12);
    }
  };
  add("dxf", PlainDxf, Dxf, 1);
  add("svg", PlainSvg, Svg, 2);
  add("x3d", PlainX3d, X3d, 2);
}

const bool registered = [] {
  Register(LatinSample(), {100, 1000, 10000, 100000});
  Register(JapaneseSample(), {100, 1000, 10000});
  return true;
}();

}  // namespace
}  // namespace kerno
