#include "platform/posix/free_type.h"

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <new>

#include "platform/posix/system_error.h"
#include FT_MODULE_H

namespace kerno {
namespace {

std::mutex library_lock;  // FreeType keeps a list of the open faces

void* Allocate(FT_Memory /*memory*/, long size) {
  return size > 0 ? std::malloc(static_cast<size_t>(size)) : nullptr;
}

void Release(FT_Memory /*memory*/, void* block) {
  std::free(block);
}

void* Reallocate(FT_Memory /*memory*/, long /*old_size*/, long new_size, void* block) {
  return new_size > 0 ? std::realloc(block, static_cast<size_t>(new_size)) : nullptr;
}

std::shared_ptr<FT_LibraryRec_> CreateLibrary() {
  static FT_MemoryRec_ memory = {nullptr, Allocate, Release, Reallocate};
  FT_Library library = nullptr;
  if (FT_New_Library(&memory, &library) != 0) {
    return nullptr;
  }
  FT_Add_Default_Modules(library);
  FT_UInt interpreter = 40;
  FT_Property_Set(library, "truetype", "interpreter-version", &interpreter);
  return {library, [](FT_Library done) { FT_Done_Library(done); }};
}

}  // namespace

void CheckMemory(FT_Error error) {
  if (error == FT_Err_Out_Of_Memory) throw std::bad_alloc();
}

void FaceCloser::operator()(FT_Face face) const noexcept {
  const std::lock_guard held(library_lock);
  FT_Done_Face(face);
}

FacePtr OpenFace(const std::string& path, long index, Status* reading) {
  const std::lock_guard held(library_lock);
  static const std::shared_ptr<FT_LibraryRec_> library = CreateLibrary();
  if (!library) throw std::bad_alloc();
  FT_Face face = nullptr;
  errno = 0;
  const FT_Error error = FT_New_Face(library.get(), path.c_str(), index, &face);
  *reading = error != 0 && errno != 0 ? SystemError(path, errno) : Status::Ok();
  CheckMemory(error);
  return FacePtr(error == 0 ? face : nullptr, FaceCloser{library});
}

}  // namespace kerno
