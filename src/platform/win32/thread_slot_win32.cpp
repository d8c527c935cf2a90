#include "platform/thread_slot.h"
#include "platform/win32/windows_api.h"

namespace kerno {

ThreadSlot::ThreadSlot(void (*destroy)(void*)) noexcept : key_(FlsAlloc(destroy)) {
  is_there_ = key_ != FLS_OUT_OF_INDEXES;
}

void* ThreadSlot::Get() const noexcept {
  return is_there_ ? FlsGetValue(key_) : nullptr;
}

bool ThreadSlot::Set(void* value) noexcept {
  return is_there_ && FlsSetValue(key_, value) != FALSE;
}

}  // namespace kerno
