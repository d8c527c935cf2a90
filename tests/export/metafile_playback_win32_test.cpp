// Metafiles as the system draws them: Kerno's own records, played back into a bitmap and compared
// with Kerno's own picture of the same parts.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

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

Picture UpsideDown(const Picture& picture) {
  Picture turned{picture.width, picture.height, {}};
  const auto row = static_cast<ptrdiff_t>(picture.width) * 3;
  for (ptrdiff_t y = picture.height - 1; y >= 0; --y) {
    turned.rgb.insert(turned.rgb.end(), picture.rgb.begin() + y * row,
                      picture.rgb.begin() + (y + 1) * row);
  }
  return turned;
}

// With everything black that white does not reach from outside: the counters of letters.
Picture WithoutHoles(Picture picture) {
  const auto at = [&picture](int x, int y) { return static_cast<size_t>(y * picture.width + x); };
  std::vector<bool> outside(static_cast<size_t>(picture.width * picture.height));
  std::vector<std::pair<int, int>> open = {{0, 0}};
  while (!open.empty()) {
    const auto [x, y] = open.back();
    open.pop_back();
    if (x < 0 || y < 0 || x >= picture.width || y >= picture.height || outside[at(x, y)]) continue;
    if (picture.At(x, y, 0) < 250 || picture.At(x, y, 1) < 250 || picture.At(x, y, 2) < 250) {
      continue;
    }
    outside[at(x, y)] = true;
    for (const auto& [dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
      open.emplace_back(x + dx, y + dy);
    }
  }
  for (size_t i = 0; i < outside.size(); ++i) {
    if (!outside[i]) picture.rgb[3 * i] = picture.rgb[3 * i + 1] = picture.rgb[3 * i + 2] = 0;
  }
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

    // Each of these would be noticed.
    Affine moved = layout.fit;
    moved.to.x += 2;
    moved.to.y += 2;
    Affine larger = layout.fit;
    larger.xx *= 1.05;
    larger.yy *= 1.05;
    const std::pair<const char*, Picture> wrong[] = {
        {"moved", test::Drawn(model, width, height, moved)},
        {"larger", test::Drawn(model, width, height, larger)},
        {"upside down", UpsideDown(ours)},
        {"without holes", WithoutHoles(ours)},
    };
    for (const auto& [what, picture] : wrong) {
      EXPECT_LT(AgreementNearInk(picture, theirs), 0.9) << what;
    }
  }
}

}  // namespace
}  // namespace kerno
