// Version resources of damaged program files.
#include <string>
#include <string_view>

#include "base/version_resource.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  bool present = false;
  const auto image_block = kerno::FindVersionBlock(bytes, &present);
  // The bytes as a block too, past the image's headers.
  for (const std::string_view block : {image_block.value_or(std::string_view()), bytes}) {
    for (const std::u16string_view path :
         {u"\\VarFileInfo\\Translation", u"\\StringFileInfo\\041104B0\\FileVersion", u"\\", u""}) {
      if (const auto value = kerno::QueryVersionBlock(block, path)) kerno::VersionText(*value);
    }
  }
  return 0;
}
