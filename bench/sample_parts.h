// Sample texts as the parts model.
#pragma once

#include <cstdint>

#include "app/rebuild.h"
#include "app/typesetter.h"
#include "sample_texts.h"

namespace kerno {

// The parts of so many characters of a sample, in lines.
inline PartsA PartsOf(const SampleText& sample, int64_t characters) {
  Typesetter typesetter;
  TextRequest request;
  request.face = sample.face;
  request.text = RepeatTo(sample.text, static_cast<size_t>(characters));
  auto set = typesetter.Set(request);
  StoreContours({}, &set->contours);
  PartsA parts;
  BuildParts(set->contours, {}, &parts);
  return parts;
}

}  // namespace kerno
