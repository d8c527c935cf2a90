// Parts files of any bytes: they are read, the model can be walked, and what is written of it reads
// back.

#include <cstdlib>
#include <string>

#include "base/text.h"
#include "parts/ipx.h"
#include "parts/parts.h"
#include "parts/shapes.h"

namespace kerno {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// The bytes of the container. What was read can be written again.
std::string Encode(const PartsA& container) {
  std::string bytes;
  Require(EncodeIpx(container, u"fuzz", u"fuzz", [&](std::string_view piece) {
            bytes += piece;
            return Status::Ok();
          }).ok());
  return bytes;
}

PartsA Decode(std::string_view bytes) {
  PartsA container;
  Require(DecodeIpx(bytes, &container).ok());
  return container;
}

bool HoldsEscapes(const PartsA& container) {
  const auto escapes = [](const auto& array) {
    for (const auto& item : array.items) {
      if (EscapeText(item.text) != item.text) return true;
    }
    return false;
  };
  for (const PartsElement& part : container.parts) {
    if (escapes(part.texts) || escapes(part.more_texts) || escapes(part.horizontal_texts) ||
        escapes(part.vertical_texts)) {
      return true;
    }
  }
  return false;
}

void Walk(const PartsA& container) {
  container.Extent();
  ShapeSink sink;
  for (const VertexRule& rule : {kFiniteXY, kPicturedXYZ}) {
    (void)VisitShapes(container, ShapeOrder::kModel, rule, &sink);
    (void)VisitShapes(container, ShapeOrder::kPainting, rule, &sink);
  }
  Parts sum;
  for (const PartsElement& part : container.parts) {
    sum += part;
    sum.keeps_order = 1;
  }
}

void ReadAndWrite(std::string_view bytes) {
  const PartsA read = Decode(bytes);
  Walk(read);
  const PartsA again = Decode(Encode(read));
  Require(again.parts.size() == read.parts.size());
  for (size_t i = 0; i < read.parts.size(); ++i) {
    Require(again.parts[i].vertices.size() == read.parts[i].vertices.size());
    Require(again.parts[i].codes == read.parts[i].codes);
    Require(again.parts[i].name == read.parts[i].name);
  }
  // Numbers may lose digits by the first writing, and none by the next.
  if (HoldsEscapes(again)) return;
  const std::string second = Encode(again);
  Require(Encode(Decode(second)) == second);
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kerno::ReadAndWrite({reinterpret_cast<const char*>(data), size});
  return 0;
}
