// A font selected into a measuring context, asked in few words.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/device_context.h"
#include "platform/font_faces.h"
#include "support/native_records.h"

namespace kerno::test {

struct ProbedGlyph {
  uint32_t size = kGdiError;
  GlyphMetrics metrics;
  std::vector<std::byte> buffer;

  bool ok() const { return size != kGdiError; }
};

inline std::vector<std::u16string> Names(const std::vector<InstalledFace>& faces) {
  std::vector<std::u16string> names;
  names.reserve(faces.size());
  for (const InstalledFace& face : faces) names.push_back(face.name);
  return names;
}

class FontProbe {
 public:
  FontProbe(std::u16string_view face, int32_t height, int32_t width = 0, int32_t weight = 400) {
    LogFont wanted;
    wanted.face_name = face;
    wanted.height = height;
    wanted.width = width;
    wanted.weight = weight;
    font_ = context_->CreateFontIndirect(wanted);
    context_->SelectFont(font_.get());
  }
  ~FontProbe() { context_->SelectFont(nullptr); }
  FontProbe(const FontProbe&) = delete;
  FontProbe& operator=(const FontProbe&) = delete;

  // Null when the system has no face at all.
  const Font* font() const { return font_.get(); }
  std::u16string name() const { return font_ ? font_->FaceName() : u"(none)"; }

  // Zero when they cannot be had.
  TextMetrics metrics() const {
    TextMetrics metrics;
    context_->GetTextMetrics(&metrics);
    return metrics;
  }

  ProbedGlyph Glyph(char32_t ch) const {
    ProbedGlyph glyph;
    glyph.size = context_->GetGlyphOutline(ch, kGgoNative, &glyph.metrics, 0, nullptr, Mat2{});
    if (glyph.ok()) {
      glyph.buffer.resize(glyph.size);
      EXPECT_EQ(context_->GetGlyphOutline(ch, kGgoNative, &glyph.metrics, glyph.size,
                                          glyph.buffer.data(), Mat2{}),
                glyph.size);
    }
    return glyph;
  }

  // Every point of the outline, starts included.
  std::vector<FixedPoint> Points(char32_t ch) const {
    std::vector<FixedPoint> points;
    for (const NativeContour& contour : ReadNativeRecords(Glyph(ch).buffer)) {
      points.push_back(contour.start);
      for (const NativeRecord& record : contour.records) {
        points.insert(points.end(), record.points.begin(), record.points.end());
      }
    }
    return points;
  }

  Extent TextExtent(std::u16string_view text) const {
    Extent extent;
    context_->GetTextExtent(text, &extent);
    return extent;
  }

 private:
  std::unique_ptr<DeviceContext> context_ = CreateMeasuringContext();
  std::unique_ptr<Font> font_;
};

}  // namespace kerno::test
