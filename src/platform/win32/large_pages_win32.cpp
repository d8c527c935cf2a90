#include "platform/large_pages.h"

namespace kerno {

// The system gives large pages to privileged programs only, and by another way of allocating.
void PreferLargePages(void* /*memory*/, size_t /*size*/) {}

}  // namespace kerno
