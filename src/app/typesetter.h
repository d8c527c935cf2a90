// Text set in a face: the contours and all that a user wants to know of how they came about.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "outline/text_layout.h"
#include "platform/device_context.h"

namespace kerno {

// Text set and placed. Coordinates are those of LayoutString (y up) until Place, then y down.
struct SetText {
  std::u16string face;  // the one really used
  TextMetrics metrics;
  GlyphContours contours;
  std::vector<char32_t> missing;  // distinct characters without a glyph, in order of appearance
  LayoutNotes notes;
  size_t characters = 0;  // up to a NUL; line ends and tabs do not count
  bool ended_by_nul = false;
};

// Sets texts, keeping the font of the last one: setting another text in the same face and size is
// warm.
class Typesetter {
 public:
  Typesetter();
  explicit Typesetter(std::unique_ptr<DeviceContext> context);  // tests bring their own
  ~Typesetter();
  Typesetter(const Typesetter&) = delete;
  Typesetter& operator=(const Typesetter&) = delete;

  // Lays the request's text out, without placing it. Nothing when the system has no face at all. A
  // face name with "@" in front turns the characters by -90 degrees and runs down the page,
  // whatever the request's layout says of them.
  std::optional<SetText> Lay(const TextRequest& request);

  // Lay, then the request's placement: y points down.
  std::optional<SetText> Set(const TextRequest& request);

  DeviceContext& context() { return *context_; }

 private:
  bool Select(const TextRequest& request);

  std::unique_ptr<DeviceContext> context_;
  std::unique_ptr<Font> font_;
  LogFont wanted_;
};

}  // namespace kerno
