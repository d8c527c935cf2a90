// A hint about memory that is about to be filled from one end to the other.
#pragma once

#include <cstddef>

namespace kerno {

// Asks the system to back the memory by large pages, so that filling megabytes does not stop at
// every 4 KiB. Without effect where that is not possible; the content stays as it is.
void PreferLargePages(void* memory, size_t size);

}  // namespace kerno
