// Text files in any encoding: decoding ends and gives no more units than bytes.
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/text.h"
#include "base/text_file.h"

namespace {

void Check(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, size_t size) {
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  const std::u16string text = kerno::DecodeText(bytes);
  Check(text.size() <= size);
  kerno::DecodeText(bytes, kerno::TextForm::kRawUtf16);
  kerno::DetectXmlEncoding(text);
  const std::string utf16 = kerno::EncodeText(text, kerno::TextEncoding::kUtf16);
  Check(kerno::DecodeText(utf16) == text);
  size_t offset = size;
  const auto utf8 = kerno::Utf8ToUtf16(bytes, &offset);
  Check(utf8 ? kerno::Utf16ToUtf8(*utf8) == bytes : offset < size);
  Check(kerno::ToShiftJis(text).size() <= 2 * text.size());
  return 0;
}
