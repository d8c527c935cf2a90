// An interface of the system's objects, released with its owner.
#pragma once

namespace kerno {

template <class T>
class Interface {
 public:
  Interface() = default;
  ~Interface() {
    if (pointer_ != nullptr) pointer_->Release();
  }
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;
  explicit operator bool() const { return pointer_ != nullptr; }
  T* operator->() const { return pointer_; }
  T* get() const { return pointer_; }
  // For the functions that hand one out; there is none yet.
  T** put() { return &pointer_; }
  void** put_void() { return reinterpret_cast<void**>(&pointer_); }

 private:
  T* pointer_ = nullptr;
};

}  // namespace kerno
