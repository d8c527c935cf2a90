// Writes the page of a run's outputs, for tests in a browser.
//
// usage: write_page BASE TEXT FACE HEIGHT
#include <cstdio>

#include "base/text.h"
#include "web/output_run.h"

int main(int argc, char** argv) {
  if (argc != 5) return 2;
  const kerno::PageSource source = {kerno::Utf8ToUtf16Lossy(argv[2]),
                                    kerno::Utf8ToUtf16Lossy(argv[3]),
                                    kerno::Utf8ToUtf16Lossy(argv[4])};
  const kerno::Status status = kerno::WriteOutputPage(argv[1], source);
  if (status.ok()) return 0;
  std::fprintf(stderr, "%s: %s\n", kerno::Utf16ToUtf8(status.what).c_str(),
               kerno::Utf16ToUtf8(status.why).c_str());
  return 1;
}
