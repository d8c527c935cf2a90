// What stands around the entities of a DXF file: header, tables, blocks and objects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/drawing.h"
#include "drawing/vector.h"

namespace kerno {

// That of the bytes of names.
enum class DxfCodePage { k1252, k932 };

struct DxfFrameFacts {
  bool modern = true;  // R2000; else R12
  LengthUnit unit = LengthUnit::kMillimetre;
  int decimals = 6;
  DxfCodePage page = DxfCodePage::k1252;
  Box2 box;  // of all that is drawn
  struct Layer {
    std::string name;  // as DxfLayerText makes it
    int color = 1;
  };
  std::vector<Layer> layers;
  size_t entities = 0;  // each has one handle
};

// Layers have the handles from this one on, entities those after them.
inline constexpr uint64_t kFirstDxfHandle = 0x100;
// The owner of entities.
inline constexpr std::string_view kDxfModelRecord = "1F";

// The one that has all characters of the names; 1252 where none has.
DxfCodePage CodePageOf(std::span<const std::u16string> names);
// A layer's name in a code page; what that does not have is escaped, "\U+XXXX". The characters that
// the format keeps for itself become "_".
std::string DxfLayerText(std::u16string_view name, DxfCodePage page);
bool IsKeptByDxf(char16_t unit);

// From the file's start to the first entity, and from the last entity to the file's end.
std::string DxfBeforeEntities(const DxfFrameFacts& facts);
std::string DxfAfterEntities(const DxfFrameFacts& facts);

}  // namespace kerno
