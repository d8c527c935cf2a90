#include "platform/win32/long_path.h"

#include <string>

#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

// The calls take 259 units, for a folder 247; room is left for the private names that files get
// beside their target.
constexpr size_t kShort = 200;

bool HasPrefix(const std::wstring& text) {
  return text.starts_with(L"\\\\?\\") || text.starts_with(L"\\\\.\\");
}

}  // namespace

std::filesystem::path FullPath(const std::filesystem::path& path) {
  const std::wstring& text = path.native();
  if (text.empty() || text.starts_with(L"\\\\?\\")) return path;
  const DWORD size = GetFullPathNameW(text.c_str(), 0, nullptr, nullptr);
  std::wstring whole(size, L'\0');
  const DWORD length = GetFullPathNameW(text.c_str(), size, whole.data(), nullptr);
  if (length == 0 || length >= size) return path;
  whole.resize(length);
  return whole;
}

std::filesystem::path LongPath(const std::filesystem::path& path) {
  const std::wstring whole = FullPath(path).native();
  if (whole.size() < kShort || HasPrefix(whole)) return path;
  if (whole.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + whole.substr(2);
  return L"\\\\?\\" + whole;
}

std::filesystem::path WithoutSeparator(const std::filesystem::path& folder) {
  return folder.has_filename() || folder == folder.root_path() ? folder : folder.parent_path();
}

}  // namespace kerno
