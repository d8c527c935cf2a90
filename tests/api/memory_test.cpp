// Arrays for which there is no memory while a picture is written: a message, never a crash. That
// each of them fails once in turn needs an allocation of the whole program's.
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

#include "kerno.h"

namespace {

constexpr long kNever = -1;
std::atomic<long> arrays = 0;
std::atomic<long> fails_at = kNever;

}  // namespace

void* operator new[](size_t size) {
  if (arrays++ == fails_at) throw std::bad_alloc();
  if (void* const memory = std::malloc(size > 0 ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
  std::free(memory);
}

namespace {

int WritePicture() {
  const KernoSign sign = kerno_new();
  int result = kerno_set_text(sign, "A&8");
  if (result == KERNO_OK) result = kerno_set(sign, "face", "DejaVu Sans");
  if (result == KERNO_OK) result = kerno_write(sign, "/dev/null", "bmp");
  (void)kerno_free(sign);
  return result;
}

// In a child: the rest of what a failure gives up is no leak of the tests.
void WritePictureWithout(long array) {
  arrays = 0;
  fails_at = array;
  const int failed = WritePicture();
  const bool is_told = std::strstr(kerno_message(), "memory") != nullptr;
  fails_at = kNever;
  _exit(failed == KERNO_NO_MEMORY && is_told && WritePicture() == KERNO_OK ? 0 : 1);
}

TEST(MemoryTest, ArraysThatAreNotThereAreAMessage) {
  ASSERT_EQ(WritePicture(), KERNO_OK) << kerno_message();
  arrays = 0;
  ASSERT_EQ(WritePicture(), KERNO_OK);
  const long all = arrays;
  ASSERT_GT(all, 3);
  for (long array = 0; array < all; ++array) {
    EXPECT_EXIT(WritePictureWithout(array), testing::ExitedWithCode(0), "") << array;
  }
}

}  // namespace
