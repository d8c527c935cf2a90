// Drawings that show something of everything, for comparing pictures of them.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "outline/typesetter.h"
#include "parts/color.h"
#include "parts/parts.h"
#include "platform/device_context.h"

namespace kerno::test {

inline PartsA TextModel(std::u16string text, std::u16string face, bool filled) {
  const auto dc = CreateMeasuringContext();
  TextRequest request;
  request.text = std::move(text);
  request.face = FaceFormOf(face);
  request.height = 90;
  if (request.face.vertical) SetVertical(&request);
  GlyphContours contours;
  EXPECT_GT(StringOutline(*dc, request, &contours), 0u);
  PartsA model;
  size_t at = 0;
  for (size_t i = 0; i < contours.counts.size(); ++i) {
    PartsElement& part = model.parts.emplace_back();
    part.pen.color = static_cast<int32_t>(HlsColor(static_cast<int>(i) * 30, 128, 128));
    part.brush.color = static_cast<int32_t>(HlsColor(static_cast<int>(i) * 30 + 180, 128, 128));
    std::vector<P3> loop;
    for (uint32_t k = 0; k < contours.counts[i]; ++k, ++at) {
      loop.push_back({contours.points[at].x, -contours.points[at].y, 0});
    }
    for (size_t k = 1; k < loop.size(); ++k) part.AddLine(loop[k - 1], loop[k]);
    if (filled) part.AddFace(loop, 0);
  }
  return model;
}

// A closed triangle of lines.
inline PartsA TriangleModel(double side) {
  PartsA model;
  model.parts.emplace_back().AddClosedLines(
      std::vector<P3>{{0, 0, 0}, {side, 0, 0}, {side, side, 0}});
  return model;
}

inline PartsA ShapesModel() {
  PartsA model;
  PartsElement& shapes = model.parts.emplace_back();
  shapes.pen.width = 3;
  shapes.pen.color = 0x0000FF;
  shapes.brush.color = 0xFFC080;
  const P3 low[] = {{0, 0, 0}, {80, 0, 0}, {80, 60, 0}};
  const P3 high[] = {{0, 0, 0}, {80, 60, 0}, {0, 60, 0}};
  shapes.AddFace(low, 0);
  shapes.AddFace(high, 0);
  shapes.AddLine({0, 0, 0}, {80, 60, 0});
  shapes.AddCircle({130, 30, 0}, 25, 0, {155, 30, 0}, {130, 5, 0});
  shapes.AddCircle({200, 30, 0}, 25, 0, {200, 55, 0}, {225, 30, 0});
  shapes.circles.items[0].first = -1;
  PartsElement& hatched = model.parts.emplace_back();
  hatched.brush.style = 2;
  hatched.brush.hatch = 5;
  const P3 square[] = {{240, 0, 0}, {300, 0, 0}, {300, 60, 0}, {240, 60, 0}};
  hatched.AddFace(square, 0);
  PartsElement& text = model.parts.emplace_back();
  text.brush.color = 0x00C0FF;
  TextLine line;
  line.text = u"Kerno 8あ";
  line.height = 40;
  line.rotation = 20;
  line.oblique = 10;
  line.face_name = u"IPAGothic";
  text.AddHorizontalText({150, -60, 0}, line);
  return model;
}

struct PictureModel {
  const char* name;
  PartsA model;
};

inline std::vector<PictureModel> PictureModels() {
  return {{"latin", TextModel(u"Kerno 8O&", u"DejaVu Serif", true)},
          {"japanese", TextModel(u"龍あ、日本語", u"IPAMincho", true)},
          {"vertical", TextModel(u"縦書きー8", u"@IPAGothic", true)},
          {"lines", TextModel(u"Kerno 8O&", u"DejaVu Sans", false)},
          {"shapes", ShapesModel()}};
}

}  // namespace kerno::test
