// For libraries that go on without what they found no memory for: a sign must not lose a letter so.
#pragma once

#include <cerrno>
#include <new>

namespace kerno {

// Made before calls of such a library.
class MemoryWatch {
 public:
  MemoryWatch() { errno = 0; }

  // Throws where an allocation has failed since; the C library leaves that in errno.
  void Check() const {
    if (errno == ENOMEM) throw std::bad_alloc();
  }
};

}  // namespace kerno
