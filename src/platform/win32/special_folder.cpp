#include "platform/win32/special_folder.h"

#include <shlobj.h>

#include <array>

#include "platform/win32/long_path.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

constexpr size_t kBufferSize = 264;
constexpr uint32_t kCreate = 0x8000;  // CSIDL_FLAG_CREATE

using ByPath = BOOL(WINAPI*)(HWND, LPWSTR, int, BOOL);

ByPath FindByPath() {
  const HMODULE shell = LoadLibraryW(L"Shell32.dll");
  if (shell == nullptr) return nullptr;
  return reinterpret_cast<ByPath>(
      reinterpret_cast<void*>(GetProcAddress(shell, "SHGetSpecialFolderPathW")));
}

}  // namespace

std::filesystem::path SpecialFolderByItemList(uint32_t id, MissingFolder missing) {
  if (missing == MissingFolder::kMake) id |= kCreate;
  LPITEMIDLIST list = nullptr;
  if (FAILED(SHGetSpecialFolderLocation(nullptr, static_cast<int>(id), &list))) return {};
  std::array<wchar_t, kBufferSize> buffer{};
  const BOOL known = SHGetPathFromIDListW(list, buffer.data());
  IMalloc* allocator = nullptr;
  if (SUCCEEDED(SHGetMalloc(&allocator))) {
    allocator->Free(list);
    allocator->Release();
  }
  // This route puts a separator at the end where the other one does not.
  return known ? WithoutSeparator(buffer.data()) : std::filesystem::path();
}

std::filesystem::path SpecialFolderPath(uint32_t id, MissingFolder missing) {
  static const ByPath by_path = FindByPath();
  if (by_path == nullptr) return SpecialFolderByItemList(id, missing);
  std::array<wchar_t, kBufferSize> buffer{};
  const BOOL make = missing == MissingFolder::kMake;
  const bool known = by_path(nullptr, buffer.data(), static_cast<int>(id), make) != 0;
  return known ? WithoutSeparator(buffer.data()) : std::filesystem::path();
}

}  // namespace kerno
