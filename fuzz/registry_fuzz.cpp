// Registry files: what is set is found, what is removed is gone.
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/posix/registry_text.h"
#include "platform/posix/utf16_bytes.h"

namespace {

using namespace kerno;

void Check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
  posix::ByteForm form;
  std::u16string text = posix::TextOfBytes({reinterpret_cast<const char*>(data), size}, &form);
  constexpr std::u16string_view kKey = u"HKEY_CURRENT_USER\\A";
  RegistryValue value;
  posix::FindRegistryValue(text, kKey, u"n", &value);
  if (!posix::IsRegistryText(text)) return 0;  // such a file is never edited
  for (const std::u16string_view name : {u"n", u"", u"q\"\\"}) {
    const RegistryValue written{RegistryType::kString, u"a \\ \"b\" [c]", 0};
    posix::SetRegistryText(&text, kKey, name, written);
    RegistryValue read;
    Check(posix::FindRegistryValue(text, kKey, name, &read) == RegistryOutcome::kDone);
    Check(read.type == RegistryType::kString && read.text == written.text);
    Check(posix::RemoveRegistryText(&text, kKey, name) == RegistryOutcome::kDone);
    Check(posix::FindRegistryValue(text, kKey, name, &read) != RegistryOutcome::kDone);
  }
  posix::RemoveRegistryKeyText(&text, kKey);
  return 0;
}
