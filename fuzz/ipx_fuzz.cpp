// Parts files of any bytes: they are read, the model can be walked, and what is written of it reads
// back.

#include <cstdlib>
#include <string>

#include "base/text.h"
#include "parts/ipx.h"
#include "parts/parts.h"

namespace kerno {
namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

// The bytes of the container; nothing when a text of it cannot stand in a file.
bool Encode(const PartsA& container, std::string* bytes) {
  return EncodeIpx(container, u"fuzz", u"fuzz",
                   [&](std::string_view piece) {
                     bytes->append(piece);
                     return Status::Ok();
                   })
      .ok();
}

PartsA Decode(std::string_view bytes) {
  PartsA container;
  Require(DecodeIpx(bytes, &container));
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
  Parts sum;
  for (const PartsElement& part : container.parts) {
    sum += part;
    sum.keeps_order = 1;
  }
}

void ReadAndWrite(std::string_view bytes) {
  const PartsA read = Decode(bytes);
  Walk(read);
  std::string first;
  if (!Encode(read, &first)) return;
  const PartsA again = Decode(first);
  Require(again.parts.size() == read.parts.size());
  for (size_t i = 0; i < read.parts.size(); ++i) {
    Require(again.parts[i].vertices.size() == read.parts[i].vertices.size());
    Require(again.parts[i].codes == read.parts[i].codes);
    Require(again.parts[i].name == read.parts[i].name);
  }
  // Numbers may lose digits by the first writing, and none by the next.
  if (HoldsEscapes(again)) return;
  std::string second;
  std::string third;
  Require(Encode(again, &second));
  Require(Encode(Decode(second), &third));
  Require(second == third);
}

}  // namespace
}  // namespace kerno

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kerno::ReadAndWrite({reinterpret_cast<const char*>(data), size});
  return 0;
}
