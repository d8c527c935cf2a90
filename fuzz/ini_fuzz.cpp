// INI files as private profiles: what is written is read back, and the rest of the text stays.
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/posix/ini_text.h"
#include "platform/posix/utf16_bytes.h"
#include "platform/private_profile.h"

namespace {

using namespace kerno::posix;

void Check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  ByteForm form;
  const std::u16string before = TextOfBytes(bytes, &form);
  for (const std::u16string_view key : {u"k", u"a=b", u"q"}) {
    if (const auto value = FindIniValue(before, u"A", key)) kerno::ParseProfileInt(*value);
    std::u16string text = before;
    const auto other = FindIniValue(before, u"A", u"zz");
    const std::u16string kept(other.value_or(u"-"));
    SetIniValue(&text, u"A", key, u"value");
    Check(FindIniValue(text, u"a", key) == u"value");
    Check(std::u16string(FindIniValue(text, u"A", u"zz").value_or(u"-")) == kept);
    const std::u16string once = text;
    SetIniValue(&text, u"A", key, u"value");
    Check(text == once);
    RemoveIniValue(&text, u"A", key);
    Check(text.size() < once.size());
  }
  return 0;
}
