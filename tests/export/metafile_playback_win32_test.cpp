// Metafiles as the system draws them: Kerno's own records, played back into a bitmap and compared
// with Kerno's own picture of the same parts.
#include <gtest/gtest.h>

#include <string>

#include "export/draw_parts.h"
#include "export/emf_writer.h"
#include "platform/win32/windows_api.h"
#include "support/picture_compare.h"
#include "support/picture_models.h"
#include "support/temporary_folder.h"

namespace kerno {
namespace {

using test::AgreementNearInk;
using test::Picture;

constexpr int kFiner = 4;
constexpr double kAlike = 0.99;

// What the system draws of the file, on white: four times finer and averaged, since its lines have
// no smooth edges.
Picture Played(const std::filesystem::path& file, int width, int height) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width * kFiner;
  info.bmiHeader.biHeight = -height * kFiner;  // from the top down
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  const HDC dc = CreateCompatibleDC(nullptr);
  const HBITMAP bitmap = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(dc, bitmap);
  const RECT all = {0, 0, width * kFiner, height * kFiner};
  FillRect(dc, &all, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
  const HENHMETAFILE metafile = GetEnhMetaFileW(file.c_str());
  EXPECT_NE(metafile, nullptr) << file;
  EXPECT_TRUE(PlayEnhMetaFile(dc, metafile, &all)) << file;
  GdiFlush();
  Picture picture{width, height, {}};
  const auto* pixels = static_cast<const uint8_t*>(bits);
  for (int i = 0; i < width * height; ++i) {
    const uint8_t* block = pixels + 4 * kFiner * (i / width * kFiner * width + i % width);
    for (const int channel : {2, 1, 0}) {
      int sum = 0;
      for (int k = 0; k < kFiner * kFiner; ++k) {
        sum += block[4 * (k / kFiner * kFiner * width + k % kFiner) + channel];
      }
      picture.rgb.push_back(static_cast<uint8_t>(sum / (kFiner * kFiner)));
    }
  }
  DeleteEnhMetaFile(metafile);
  SelectObject(dc, before);
  DeleteObject(bitmap);
  DeleteDC(dc);
  return picture;
}

TEST(MetafilePlayback, TheSystemDrawsTheSamePicture) {
  const test::TemporaryFolder folder;
  for (const auto& [name, model] : test::PictureModels()) {
    SCOPED_TRACE(name);
    const auto fonts = CreateMeasuringContext();
    const EmfLayout layout = LayOutEmf(PictureBox(model, fonts.get()));
    const std::filesystem::path file = folder / (std::string(name) + ".emf");
    ASSERT_TRUE(ExportEmf(model, file).ok());
    const int width = layout.frame.width, height = layout.frame.height;
    const Picture theirs = Played(file, width, height);
    const Picture ours = test::Drawn(model, width, height, layout.fit);
    EXPECT_GE(AgreementNearInk(ours, theirs), kAlike);

    Affine moved = layout.fit;
    moved.to.x += 2;
    EXPECT_LT(AgreementNearInk(test::Drawn(model, width, height, moved), theirs), 0.9)
        << "a blind comparison";
  }
}

}  // namespace
}  // namespace kerno
