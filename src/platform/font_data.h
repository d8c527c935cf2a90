// The bytes of a font, for those who shape text and read outlines themselves.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/status.h"

namespace kerno {

// How a face is asked for. What is empty is left to the system, or to the font.
struct FaceRequest {
  std::u16string family = {};       // any of its names in any language, or a face's full name
  std::u16string style = {};        // of the family; without one the upright face nearest to normal
                                    // weight and width
  std::filesystem::path file = {};  // a font file, which need not be installed; `family` and
                                    // `style` choose in it
  std::optional<uint32_t> index = {};  // the font of a collection in `file`, counted from 0
  std::string variations = {};         // "wght=650,slnt=-8": places on the axes of a variable font
  std::string features = {};  // "smcp,liga=0": OpenType features, as CSS and hb-shape take them
};

// A font file, or a collection of fonts, as it lies in memory.
class FontBytes {
 public:
  virtual ~FontBytes() = default;
  virtual std::string_view bytes() const = 0;
  virtual std::u16string name() const = 0;  // for messages
};

struct FontData {
  std::shared_ptr<const FontBytes> file;
  uint32_t index = 0;     // the font of a collection
  uint32_t instance = 0;  // above 0: the named instance of a variable font, counted from 1
  std::string variations, features;  // those of the request, not looked at yet; places on axes
                                     // that the wanted style takes stand before them
  std::u16string family;             // as the system shows it
  std::u16string style;              // "Bold Oblique"
  int32_t weight = 400;              // of that style, 100 to 1000
  int32_t width = 100;               // percent of the normal width
  bool slanted = false;              // whether that style is italic or oblique
  // The wanted style is not there: it can be made of this one by moving its outlines outwards, by
  // leaning them.
  bool make_bold = false, make_slanted = false;
  bool bold_by_axes = false, slanted_by_axes = false;  // `variations` makes the wanted style
  std::filesystem::path path;  // of the file; empty where the system does not tell
};

// Finds a face. Names are compared without case; "Italic" and "Oblique", "Book" and "Regular" and
// their like name the same style. Fails with kNotFound where there is no such face (`what` is then
// "face", "style" or the file, and the reason lists the styles or fonts that there are), and for a
// file that cannot be read or is no whole font.
[[nodiscard]] Status FindFontData(const FaceRequest& request, FontData* data);

// The bytes of a file, kept as long as anybody holds them.
[[nodiscard]] Status OpenFontBytes(const std::filesystem::path& path,
                                   std::shared_ptr<const FontBytes>* file);

}  // namespace kerno
