// Work on all processors.
#pragma once

#include <cstddef>
#include <functional>

namespace kerno {

// Calls work(i) for every i below `count`, each once, from several threads at a time and in no
// order that one may rely on; returns after the last call. When calls throw, some others are left
// out and one of the exceptions comes out of here. What may be stopped here (base/stop.h) may be
// stopped there.
void ForEachInParallel(size_t count, const std::function<void(size_t)>& work);

// While it lives, this thread asks no others for help: it is one of many that share a larger work.
class SerialHere {
 public:
  SerialHere();
  ~SerialHere();
  SerialHere(const SerialHere&) = delete;
  SerialHere& operator=(const SerialHere&) = delete;

 private:
  bool before_;
};

}  // namespace kerno
