// Registry files: what is set is found, what is removed is gone, and nothing else changes with it.
#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>

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
  const auto other = [&text] {
    RegistryValue found;
    const auto outcome = posix::FindRegistryValue(text, u"HKEY_CURRENT_USER\\B", u"other", &found);
    return std::tuple(outcome, found.type, found.text, found.number);
  };
  const auto untouched = other();
  for (const std::u16string_view name : {u"n", u"", u"q\"\\"}) {
    const RegistryValue written{RegistryType::kString, u"a \\ \"b\" [c]", 0};
    RegistryValue read;
    const std::u16string before = text;
    if (posix::SetRegistryText(&text, kKey, name, written) != RegistryOutcome::kDone) {
      Check(text == before);  // refused for a damaged line
      continue;
    }
    Check(posix::FindRegistryValue(text, kKey, name, &read) == RegistryOutcome::kDone);
    Check(read.type == RegistryType::kString && read.text == written.text);
    Check(other() == untouched);
    const std::u16string set = text;
    if (posix::RemoveRegistryText(&text, kKey, name) != RegistryOutcome::kDone) {
      Check(text == set);
      continue;
    }
    Check(posix::FindRegistryValue(text, kKey, name, &read) != RegistryOutcome::kDone);
    Check(other() == untouched);
  }
  posix::RemoveRegistryKeyText(&text, kKey);
  return 0;
}
