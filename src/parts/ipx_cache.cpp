#include "parts/ipx_cache.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "base/notices.h"
#include "base/number_text.h"
#include "base/settings_table.h"
#include "base/text.h"
#include "parts/ipx.h"
#include "parts/ipx_lexer.h"
#include "platform/file_replacement.h"
#include "platform/folder_path.h"
#include "platform/system.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

// Not among the known settings: no program here converts models.
constexpr SwitchSetting kUseCacheIpx{u"PartsAry\\Convert3D", u"UseCacheIPX", false,
                                     "1: keep an IPX copy of converted models"};

bool IsSameFile(const fs::path& a, const fs::path& b) {
  std::error_code error;
  if (fs::equivalent(a, b, error)) return true;
  return WholePath(a) == WholePath(b);
}

// Writes a copy without waiting for anybody.
Status WriteCopy(const fs::path& path, const PartsA& parts, std::u16string_view program) {
  return ReplaceFile(path, [&](FileReplacement* file) {
    return EncodeIpx(parts, program, PathText(path),
                     [&](std::string_view bytes) { return file->Write(bytes); });
  });
}

}  // namespace

double IpxVersionNumber(std::u16string_view version_text) {
  std::string number;
  for (const char16_t unit : version_text) {
    switch (unit) {
      case u'.':
      case u',':
      case u'/':
      case u'-':
        if (number.find('.') == number.npos) number.push_back('.');
        break;
      case u':':
      case u'\t':
      case u' ':
        break;
      default:
        ipx::AppendPacked(&number, {&unit, 1});
    }
  }
  return ipx::LeadingNumber(number);
}

bool UsesIpxCache() {
  return Get(kUseCacheIpx);
}

IpxCache::IpxCache(const fs::path& temporary, std::u16string program)
    : folder_(temporary / "PartsA.tmp" / NumberText(IpxVersionNumber(kIpxVersion), 15) / ""),
      program_(std::move(program)) {}

IpxCache::~IpxCache() {
  std::error_code error;
  for (const Copy& copy : copies_) {
    const bool same = fs::is_regular_file(fs::symlink_status(copy.path, error)) &&
                      fs::last_write_time(copy.path, error) == copy.time &&
                      fs::file_size(copy.path, error) == copy.size;
    if (same) fs::remove(copy.path, error);
  }
  // A folder that still holds something is not removed by this.
  for (size_t i = made_folders_.size(); i-- > 0;) fs::remove(made_folders_[i], error);
}

std::optional<fs::path> IpxCache::PathOfConverted(const fs::path& source) {
  if (!UsesIpxCache()) return std::nullopt;
  const std::u16string text = PathText(source);
  if (IsIpx(text)) return source;
  MakeFolder();
  const size_t name = text.find_last_of(u"/\\");
  return folder_ / TextPath(text.substr(name == text.npos ? 0 : name + 1) + u".ipx");
}

void IpxCache::KeepCopy(const PartsA& parts, const fs::path& written) {
  const SilentHere quiet;  // nobody asked for the copies, so nobody hears of them
  fs::path path = folder_ / written.stem();
  path += ".ipx";
  if (IsSameFile(path, written) || !MakeFolder()) return;
  if (WriteCopy(path, parts, program_).ok()) Remember(path);
}

bool IpxCache::MakeFolder() {
  const fs::path inner = folder_.parent_path();
  for (const fs::path& level : {inner.parent_path(), inner}) {
    std::error_code error;
    const bool was_there = fs::exists(fs::symlink_status(level, error));
    // Private: in a folder that others can write, a copy could be led to any file of the user.
    if (!CurrentSystem().MakePrivateFolder(level).ok()) return false;
    if (!was_there && std::ranges::find(made_folders_, level) == made_folders_.end()) {
      made_folders_.push_back(level);
    }
  }
  return true;
}

void IpxCache::Remember(const fs::path& path) {
  std::error_code error;
  Copy copy{path, fs::last_write_time(path, error), fs::file_size(path, error)};
  if (error) return;
  const auto same = std::ranges::find(copies_, path, &Copy::path);
  if (same == copies_.end()) {
    copies_.push_back(std::move(copy));
  } else {
    *same = std::move(copy);
  }
}

}  // namespace kerno
