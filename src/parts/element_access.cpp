#include "parts/element_access.h"

namespace kerno {

std::vector<int32_t> OpenLoop(const Parts& part, const FaceItem& face) {
  for (const int32_t index : face.vertices) {
    if (!VertexAt(part, index)) return {};
  }
  std::vector<int32_t> loop = face.vertices;
  while (loop.size() > 1 && *VertexAt(part, loop.back()) == *VertexAt(part, loop.front())) {
    loop.pop_back();
  }
  return loop;
}

}  // namespace kerno
