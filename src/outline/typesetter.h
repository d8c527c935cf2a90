// Text set in a face: the contours and all that a user wants to know of how they came about.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "outline/text_contours.h"
#include "outline/text_layout.h"
#include "platform/device_context.h"

namespace kerno {

// A face, and whether its form for vertical writing is meant. Systems name that form by "@" before
// the name: at their edges, here and nowhere else.
struct FaceForm {
  std::u16string name;  // without "@"; empty: the system's own choice
  bool vertical = false;

  bool operator==(const FaceForm&) const = default;
};
std::u16string SystemFaceName(const FaceForm& face);
FaceForm FaceFormOf(std::u16string_view system_name);

// Everything that a string's outline depends on. Lengths are logical units of the device context.
struct TextRequest {
  std::u16string text;
  FaceForm face;
  int32_t height = 100;  // above 0 of a line, below 0 of an em, 0 the system's own choice
  int32_t width = 0;     // of an average character; 0: the face's own
  int32_t weight = 400;  // 400 normal, 700 bold
  bool italic = false;
  LayoutOptions layout;
  BlockPlacement placement;
};

// Makes the request one of vertical writing: the vertical form of the face, its characters turned
// upright, one below the other.
void SetVertical(TextRequest* request);

// A text that was set. Coordinates are those of LayoutString (y up) when it was laid out, y down
// when it was placed.
struct TypesetText {
  std::u16string face;  // the one really used, as the system names it
  TextMetrics metrics;
  TextContours contours;
  std::vector<char32_t> missing;  // distinct characters without a glyph, in order of appearance
  LayoutNotes notes;
  size_t characters = 0;  // up to a NUL; line ends and tabs do not count
  bool ended_by_nul = false;
};

// Sets texts in a device context, keeping the font of the last one: setting another text in the
// same face and size is warm. The context's own font is selected back at the end.
class Typesetter {
 public:
  explicit Typesetter(DeviceContext& context);
  ~Typesetter();
  Typesetter(const Typesetter&) = delete;
  Typesetter& operator=(const Typesetter&) = delete;

  // Lays the request's text out, without placing it. Nothing when the system has no face at all.
  std::optional<TypesetText> LayOut(const TextRequest& request);

  // LayOut, then the request's placement: y points down.
  std::optional<TypesetText> Typeset(const TextRequest& request);

  // The contours of Typeset alone, which replace what was in *contours. Returns their number; 0
  // when the system has no face at all.
  uint32_t Outline(const TextRequest& request, GlyphContours* contours);

 private:
  bool Select(const TextRequest& request);

  DeviceContext& context_;
  Font* before_;
  std::unique_ptr<Font> font_;
  LogFont wanted_;
};

// Outline with a typesetter of its own: creates and selects the font, lays out and places the text
// (y down), and selects the font before it back.
uint32_t StringOutline(DeviceContext& dc, const TextRequest& request, GlyphContours* contours);

}  // namespace kerno
