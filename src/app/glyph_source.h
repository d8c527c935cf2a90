// Where the letters of a cut come from: fonts of outlines, or a font of strokes.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/cut.h"
#include "outline/text_block.h"

namespace kerno {

class GlyphSource {
 public:
  virtual ~GlyphSource() = default;

  // Opens what the job names, whatever its text. Fails for what cannot be found or read. *source is
  // set on success only.
  [[nodiscard]] static Status Open(const CutJob& job, std::unique_ptr<GlyphSource>* source);

  // What Open goes by, as a text: jobs alike in it share a source.
  static std::u16string KeyOf(const CutJob& job);

  // Fails for strokes that the text needs and that cannot be read.
  [[nodiscard]] virtual Status Check(std::u16string_view text) const = 0;

  // Whether its paths are lines for a tool to follow, instead of outlines.
  virtual bool HoldsStrokes() const = 0;

  // Of the first font, in its own units; 0 where a height is not known.
  virtual const std::u16string& Family() const = 0;
  virtual double UnitsPerEm() const = 0;
  virtual double CapHeight() const = 0;

  virtual TextBlock Set(std::u16string_view text, const BlockOptions& options) const = 0;

  // The paths of a glyph of one of its fonts, in that one's units, y up. Kept: the reference lives
  // as long as the source.
  virtual const std::vector<Path>& PathsOf(size_t font, uint32_t glyph) const = 0;

  // The fonts, the first choice first; `block` is one that it has set.
  virtual std::vector<CutFace> FacesOf(const TextBlock& block) const = 0;
};

}  // namespace kerno
