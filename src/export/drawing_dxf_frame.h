// What stands around the entities of a DXF file: header, tables, blocks and objects.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "drawing/drawing.h"
#include "drawing/vector.h"

namespace kerno {

struct DxfFrameFacts {
  bool modern = true;  // R2000; else R12
  LengthUnit unit = LengthUnit::kMillimetre;
  int decimals = 6;
  Box2 box;                         // of all that is drawn
  std::vector<std::string> layers;  // as DxfLayerText makes their names
  int color = 1;                    // of the layers
  size_t entities = 0;              // each has one handle
};

// Layers have the handles from this one on, entities those after them.
inline constexpr uint64_t kFirstDxfHandle = 0x100;
// The owner of entities.
inline constexpr std::string_view kDxfModelRecord = "1F";

// A layer's name without the characters that the format keeps for itself; what is not ASCII is
// escaped, so that every program reads it whatever its code page.
std::string DxfLayerText(std::u16string_view name);

// From the file's start to the first entity, and from the last entity to the file's end.
std::string DxfBeforeEntities(const DxfFrameFacts& facts);
std::string DxfAfterEntities(const DxfFrameFacts& facts);

}  // namespace kerno
