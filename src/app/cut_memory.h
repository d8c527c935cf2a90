// What the Cut page keeps between runs.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kerno {

// Texts by names: those of the options of `kerno cut` ("--offset"), and the page's own without
// hyphens ("size-by"). What a form does not name has its default.
using FormTexts = std::vector<std::pair<std::string, std::u16string>>;

struct CutPreset {
  std::u16string name;
  FormTexts texts;
};

struct CutMemory {
  static constexpr size_t kMostRecentTexts = 12;

  FormTexts form;
  std::vector<CutPreset> presets;            // by their names
  std::vector<std::u16string> recent_texts;  // the latest first
  std::u16string favourites, recent;         // faces, as FaceCatalogue stores them
  std::u16string folder;                     // that was written to last; empty: documents
  std::u16string format = u"dxf";            // of the main button
  bool was_used = false;                     // otherwise the page begins with a sample
};

}  // namespace kerno
