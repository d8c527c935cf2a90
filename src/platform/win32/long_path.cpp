#include "platform/win32/long_path.h"

#include <string>

#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

constexpr size_t kShort = 240;  // room for the private names that files get beside their target

}  // namespace

std::filesystem::path LongPath(const std::filesystem::path& path) {
  const std::wstring& text = path.native();
  if (text.size() < kShort || text.starts_with(L"\\\\?\\") || text.starts_with(L"\\\\.\\")) {
    return path;
  }
  const DWORD size = GetFullPathNameW(text.c_str(), 0, nullptr, nullptr);
  std::wstring whole(size, L'\0');
  const DWORD length = GetFullPathNameW(text.c_str(), size, whole.data(), nullptr);
  if (length == 0 || length >= size) return path;
  whole.resize(length);
  if (whole.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + whole.substr(2);
  return L"\\\\?\\" + whole;
}

}  // namespace kerno
