#include "api/sign_table.h"

#include <utility>

namespace kerno {
namespace {

// Numbers are scattered over all of 64 bits, each once: a small one, or a wrong one nearby, is
// none. The factors are odd, and each is the other's inverse.
constexpr uint64_t kScatter = 0x9E3779B97F4A7C15, kGather = 0xF1DE83E19937733D;
static_assert(kScatter * kGather == 1);

uint64_t NumberOf(uint64_t count) {
  return count * kScatter;
}

uint64_t CountOf(uint64_t number) {
  return number * kGather;
}

}  // namespace

SignTable& SignTable::Current() {
  static SignTable* const table = new SignTable;
  return *table;
}

uint64_t SignTable::Add(std::shared_ptr<Sign> sign) {
  const std::lock_guard held(lock_);
  const uint64_t number = NumberOf(given_ + 1);
  signs_.emplace(number, std::move(sign));
  ++given_;
  return number;
}

std::shared_ptr<Sign> SignTable::Find(uint64_t number) const {
  const std::lock_guard held(lock_);
  const auto found = signs_.find(number);
  return found == signs_.end() ? nullptr : found->second;
}

std::shared_ptr<Sign> SignTable::Remove(uint64_t number) {
  const std::lock_guard held(lock_);
  const auto found = signs_.find(number);
  if (found == signs_.end()) return nullptr;
  std::shared_ptr<Sign> sign = std::move(found->second);
  signs_.erase(found);
  return sign;
}

bool SignTable::WasGiven(uint64_t number) const {
  const std::lock_guard held(lock_);
  const uint64_t count = CountOf(number);
  return count > 0 && count <= given_;
}

}  // namespace kerno
