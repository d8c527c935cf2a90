// A context that measures and outlines through the graphics device interface, on a memory device
// context of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "platform/device_context.h"
#include "platform/win32/realized_font.h"
#include "platform/win32/windows_api.h"

namespace kerno {

class FontContext final : public DeviceContext {
 public:
  FontContext();
  ~FontContext() override;
  FontContext(const FontContext&) = delete;
  FontContext& operator=(const FontContext&) = delete;

  std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) override;
  Font* SelectFont(Font* font) override;
  Font* SelectedFont() const override { return selected_; }
  bool GetTextMetrics(TextMetrics* metrics) override;
  uint32_t GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics, uint32_t size,
                           void* buffer, const Mat2& matrix) override;
  bool GetTextExtent(std::u16string_view text, Extent* extent) override;

  // There is no surface: nothing is drawn.
  bool TextOut(int32_t /*x*/, int32_t /*y*/, std::u16string_view /*text*/) override { return true; }

 private:
  bool AdvanceFits(uint32_t what, uint32_t how) const;
  void PlaceTurned(uint32_t what, uint32_t how, const MAT2& transform, uint32_t size,
                   uint8_t* outline, GLYPHMETRICS* metrics);

  HDC dc_;
  HGDIOBJ stock_;  // what was selected at first
  Font* selected_ = nullptr;
  RealizedFont* realized_ = nullptr;  // selected_, when it is one of ours
};

}  // namespace kerno
