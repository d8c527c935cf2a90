// The signs of a process by the numbers that its callers hold. A number is looked up and never
// followed, so that one which was freed, or made up, is recognised.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "api/sign.h"

namespace kerno {

// Every number is given out once. For many threads at a time.
class SignTable {
 public:
  // The process's; it lives as long as that, for threads that are in a call when it ends.
  static SignTable& Current();

  uint64_t Add(std::shared_ptr<Sign> sign);
  // Null for a number that has no sign (any more). What is answered lives on when it is removed.
  std::shared_ptr<Sign> Find(uint64_t number) const;
  // Null where there was none.
  std::shared_ptr<Sign> Remove(uint64_t number);
  // Whether the number was ever given out.
  bool WasGiven(uint64_t number) const;

 private:
  mutable std::mutex lock_;
  uint64_t given_ = 0;  // numbers, so far
  std::unordered_map<uint64_t, std::shared_ptr<Sign>> signs_;
};

}  // namespace kerno
