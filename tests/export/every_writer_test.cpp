// What all the writers of files have in common.
#include <gtest/gtest.h>

#include <limits>

#include "base/text.h"
#include "export/bmp_writer.h"
#include "export/dxf_export.h"
#include "export/emf_writer.h"
#include "export/ipl_writer.h"
#include "export/svg_writer.h"
#include "export/x3d_writer.h"
#include "parts/ipx.h"
#include "support/file_holder.h"
#include "support/memory_file.h"
#include "support/picture_models.h"
#include "support/recording_notices.h"
#include "support/run.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

Status EncodeInto(const PartsA& model, FileReplacement* out) {
  return EncodeIpx(model, u"kerno", u"a.ipx", [&](std::string_view b) { return out->Write(b); });
}

struct Writer {
  const char* extension;
  Status (*write)(const PartsA& model, FileReplacement* out);
  Status (*write_file)(const PartsA& model, const std::filesystem::path& file);
  const char* reader;  // another program, which fails for a file that is not of the format
};
const Writer kWriters[] = {
    {"dxf", [](auto& m, auto out) { return WriteDxf(m, {}, "a", out); },
     [](auto& m, auto& file) { return ExportDxf(m, file); },
     KERNO_PYTHON " " KERNO_TESTS "/export/read_dxf.py "},
    {"svg", [](auto& m, auto out) { return WriteSvg(m, {}, "a", out); },
     [](auto& m, auto& file) { return ExportSvg(m, file); }, "rsvg-convert -w 50 -h 50 "},
    {"x3d", [](auto& m, auto out) { return WriteX3d(m, "a", out); },
     [](auto& m, auto& file) { return ExportX3d(m, file); }, "xmllint --noout --nonet "},
    {"ipx", EncodeInto, [](auto& m, auto& file) { return WriteIpxFile(file, m, u"kerno"); },
     "true "},
    {"ipl", [](auto& m, auto out) { return WriteIpl(m, "a", out); },
     [](auto& m, auto& file) { return ExportIpl(m, file); }, "true "},
    {"emf", [](auto& m, auto out) { return WriteEmf(m, {}, "a", out); },
     [](auto& m, auto& file) { return ExportEmf(m, file); }, "emf2svg-conv -o /dev/null -i "},
    {"bmp", [](auto& m, auto out) { return WriteBmp(m, {}, "a", out); },
     [](auto& m, auto& file) { return ExportBmp(m, file); }, "identify "},
};

TEST(EveryWriter, WaitsForAnotherProcess) {
  const test::TemporaryFolder folder;
  const std::filesystem::path file = folder / "held";
  for (const Writer& writer : kWriters) {
    test::WriteBytes(file, "old");
    const test::RecordingNotices notices;
    const test::FileHolder holder(file, test::HoldKind::kWholeFile, 200);
    const Status status = writer.write_file(test::TriangleModel(5), file);
    EXPECT_TRUE(status.ok()) << writer.extension << ": " << Utf16ToUtf8(status.why);
    EXPECT_EQ(notices.waits,
              (std::vector<std::u16string>{u"FileWait OpenWrite " + PathText(file), u""}))
        << writer.extension;
    EXPECT_NE(test::ReadBytes(file), "old") << writer.extension;
  }
}

TEST(EveryWriter, NoticesAFullDisk) {
  PartsA model;
  for (int i = 1; i <= 1000; ++i) model.parts.push_back(test::TriangleModel(i).parts[0]);
  for (const Writer& writer : kWriters) {
    for (const size_t capacity : {0, 60, 5000}) {
      test::MemoryFile full(capacity);
      EXPECT_EQ(writer.write(model, &full).failure, Failure::kNoSpace)
          << writer.extension << capacity;
    }
  }
}

// Models that no drawing should hold still give a file that readers take.
TEST(EveryWriter, TakesAwkwardModels) {
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  PartsA broken = test::TriangleModel(10);
  PartsElement& part = broken.parts[0];
  part.name = u"\x01--<&\xD800";
  part.pen.width = part.pen.unit_length = kNan;
  part.vertices.Append({kNan, 0, 0});
  part.lines.items.insert(part.lines.items.end(), {{0, 3}, {3, 99}});
  part.circles.items = {{0, kNan, 0, -1, -1}};
  part.faces[0].items = {{0, {0, 1, 3}, {}, 0}, {0, {}, {}, 0}};
  PartsA thin, wide;
  thin.parts.emplace_back().AddLine({0, 0, 0}, {0, 0, 0});
  thin.parts[0].pen.width = 1e-300;
  wide.parts.emplace_back().AddLine({-1e9, 0, 0}, {1e9, 1, 0});
  const test::TemporaryFolder folder;
  for (const PartsA& model : {PartsA(), test::TriangleModel(1e-9), wide, thin, broken}) {
    const bool is_broken = !model.parts.empty() && model.parts[0].vertices.size() > 3;
    for (const Writer& writer : kWriters) {
      const std::string file = (folder / "a.").string() + writer.extension;
      const test::RecordingNotices notices;
      EXPECT_TRUE(writer.write_file(model, file).ok()) << writer.extension;
      const bool told = std::ranges::any_of(notices.messages, [](const std::u16string& message) {
        return message.find(u"finite") != message.npos;
      });
      EXPECT_EQ(told, is_broken) << writer.extension;
      EXPECT_EQ(test::OutputOf(writer.reader + file + " > /dev/null"), "");
      EXPECT_EQ(test::ReadBytes(file).find("nan"), std::string::npos) << writer.extension;
    }
  }
}

}  // namespace
}  // namespace kerno
