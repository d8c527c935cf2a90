// Fonts: names, axes and details of any bytes; texts shaped in them, and the outlines of the
// glyphs, made bold and slanted, too. The first byte chooses the style and the place on the axes.
#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "font_mutator.h"
#include "outline/font_details.h"
#include "outline/scripts.h"
#include "outline/shaping_font.h"
#include "platform/font_file.h"

namespace kerno {
namespace {

class GivenBytes final : public FontBytes {
 public:
  explicit GivenBytes(std::string bytes) : bytes_(std::move(bytes)) {}
  std::string_view bytes() const override { return bytes_; }
  std::u16string name() const override { return u"the input"; }

 private:
  std::string bytes_;
};

// Letters with marks, ligatures, right to left, syllables that are put in another order, columns.
constexpr std::u16string_view kTexts[] = {u"Affi Öe\u0301", u"سلام", u"क्षि", u"縦、ー"};

void Draw(const FontData& data) {
  constexpr size_t kMostGlyphs = 16;
  std::unique_ptr<ShapingFont> font;
  if (!ShapingFont::Open(data, &font).ok()) return;
  for (const std::u16string_view text : kTexts) {
    for (const ShapeDirection direction :
         {ShapeDirection::kLeftToRight, ShapeDirection::kRightToLeft,
          ShapeDirection::kTopToBottom}) {
      const std::vector<ShapedGlyph> glyphs = font->Shape({.line = text,
                                                           .length = text.size(),
                                                           .direction = direction,
                                                           .script = ScriptOf(text[0])});
      const size_t count = std::min(glyphs.size(), kMostGlyphs);
      for (size_t i = 0; i < count; ++i) (void)font->Outline(glyphs[i].glyph);
    }
  }
}

void Run(std::string_view input) {
  if (input.empty()) return;
  const auto choice = static_cast<unsigned char>(input[0]);
  FontData data;
  data.file = std::make_shared<GivenBytes>(std::string(input.substr(1)));
  data.make_bold = (choice & 1) != 0;
  data.make_slanted = (choice & 2) != 0;
  if ((choice & 4) != 0) data.variations = "wght=650";
  FontDetails details;
  if (ReadFontDetails(data, &details).ok() && CheckWhole(data).ok()) Draw(data);
  for (const FontFileFace& face : FacesIn(data.file->bytes())) {
    data.index = face.index;
    data.instance = face.instance;
    if (face.instance > 2 || face.index > 2) break;
    if (face.instance > 0) Draw(data);
  }
}

}  // namespace
}  // namespace kerno

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t most, unsigned seed) {
  return kerno::fuzz::MutateFont(data, size, most, seed, 1);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  kerno::Run({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
