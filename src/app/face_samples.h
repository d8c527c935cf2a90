// The user's own text in each face of a list, as small pictures.
//
// Pictures are made one at a time, between events, and kept while there is room.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "app/face_catalogue.h"
#include "platform/drawing.h"

namespace kerno {

// What all samples of a list have in common. Colours as in drawing.h.
struct SampleLook {
  std::u16string text;        // its first line counts
  int width = 0, height = 0;  // pixels
  uint32_t ink = 0, paper = 0xFFFFFF;

  bool operator==(const SampleLook&) const = default;
};

class FaceSamples {
 public:
  static constexpr size_t kMostPictures = 300;

  // The catalogue must outlive the samples; Forget after it was read again.
  explicit FaceSamples(FaceCatalogue& catalogue) : catalogue_(catalogue) {}

  // The picture of an entry, or null while it waits to be made: ask again after MakeNext. Another
  // look than the last one drops all pictures. A face that cannot be loaded has paper alone.
  const BitmapSurface* PictureOf(size_t entry, const SampleLook& look);

  // The sample of its entry is of this style and place on the axes from now on; those of others are
  // of their regular style.
  void Choose(const std::optional<FacePick>& pick);

  // Makes the picture that was asked for last; false where none waits. Takes as long as loading
  // one face and drawing a few letters.
  bool MakeNext();

  void Forget();

 private:
  using Picture = std::unique_ptr<BitmapSurface>;

  void Drop(size_t entry);

  FaceCatalogue& catalogue_;
  std::optional<FacePick> pick_;
  bool pick_is_regular_ = true;
  SampleLook look_;
  std::list<std::pair<size_t, Picture>> pictures_;  // the one asked for last comes first
  std::unordered_map<size_t, std::list<std::pair<size_t, Picture>>::iterator> places_;
  std::vector<size_t> waiting_;  // the one asked for last stands last
};

}  // namespace kerno
