#include <pthread.h>

#include "platform/thread_slot.h"

namespace kerno {

ThreadSlot::ThreadSlot(void (*destroy)(void*)) noexcept
    : is_there_(pthread_key_create(&key_, destroy) == 0) {}

void* ThreadSlot::Get() const noexcept {
  return is_there_ ? pthread_getspecific(key_) : nullptr;
}

bool ThreadSlot::Set(void* value) noexcept {
  return is_there_ && pthread_setspecific(key_, value) == 0;
}

}  // namespace kerno
