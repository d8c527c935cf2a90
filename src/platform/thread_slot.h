// A pointer of each thread, for which the system asks no memory: a variable of a thread with a
// destructor ends the process where there is none for the note of it (a rule of Linux' C library).
#pragma once

namespace kerno {

class ThreadSlot {
 public:
  // `destroy` is called with the pointer of each thread that ends, where it is not null. A slot is
  // never given back.
  explicit ThreadSlot(void (*destroy)(void*)) noexcept;
  ThreadSlot(const ThreadSlot&) = delete;
  ThreadSlot& operator=(const ThreadSlot&) = delete;

  void* Get() const noexcept;  // null in a thread that has set none
  // Whether it was kept: no more than some hundred slots of a process are.
  [[nodiscard]] bool Set(void* value) noexcept;

 private:
  unsigned key_ = 0;
  bool is_there_ = false;
};

}  // namespace kerno
