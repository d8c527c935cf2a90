// What every device context of this system shares: fonts are chosen, selected, measured and
// outlined here; a context with a surface adds the drawing.
#pragma once

#include <memory>
#include <string_view>

#include "platform/device_context.h"
#include "platform/posix/realized_font.h"

namespace kerno {

class FontContext : public DeviceContext {
 public:
  std::unique_ptr<Font> CreateFontIndirect(const LogFont& wanted) override;
  Font* SelectFont(Font* font) override;
  Font* SelectedFont() const override { return selected_; }
  bool GetTextMetrics(TextMetrics* metrics) override;
  // The outline is had with the identity matrix only; another one fails.
  uint32_t GetGlyphOutline(char32_t ch, uint32_t format, GlyphMetrics* metrics, uint32_t size,
                           void* buffer, const Mat2& matrix) override;
  bool GetTextExtent(std::u16string_view text, Extent* extent) override;
  Status FontReading() const override { return reading_; }

 protected:
  // The font that measures and draws now: the selected one, or the stock font. Null when the system
  // has no face.
  RealizedFont* CurrentFont();

 private:
  Font* selected_ = nullptr;
  RealizedFont* realized_ = nullptr;  // selected_, when it is one of ours
  std::unique_ptr<RealizedFont> stock_;
  Status reading_;
};

// The font mapper: the installed face nearest to the wish, sized. Null when there is none. Where a
// nearer one was passed over because its file cannot be read, *reading gets the failure, unless it
// holds one.
std::unique_ptr<RealizedFont> RealizeFont(const LogFont& wanted, Status* reading);

}  // namespace kerno
