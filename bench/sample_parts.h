// Sample texts as the parts model.
#pragma once

#include <cstdint>

#include "app/job.h"
#include "sample_texts.h"

namespace kerno {

// The parts of so many characters of a sample, in lines.
inline PartsA PartsOf(const SampleText& sample, int64_t characters) {
  const auto context = CreateMeasuringContext();
  Typesetter typesetter(*context);
  Job job;
  job.text.face.name = sample.face;
  job.text.text = RepeatTo(sample.text, static_cast<size_t>(characters));
  const auto set = Make(job, typesetter);
  PartsA parts;
  BuildParts(set->contours, {}, &parts);
  return parts;
}

}  // namespace kerno
