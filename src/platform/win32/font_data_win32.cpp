#include <algorithm>
#include <cstring>

#include "platform/device_context.h"
#include "platform/fold_case.h"
#include "platform/font_data.h"
#include "platform/win32/big_endian.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

constexpr DWORD kCollectionTag = 0x66637474;  // "ttcf", as GetFontData takes it

class MemoryDevice {
 public:
  MemoryDevice() : dc_(CreateCompatibleDC(nullptr)) {}
  ~MemoryDevice() { DeleteDC(dc_); }
  MemoryDevice(const MemoryDevice&) = delete;
  MemoryDevice& operator=(const MemoryDevice&) = delete;
  HDC get() const { return dc_; }

 private:
  HDC dc_;
};

class BytesInMemory final : public FontBytes {
 public:
  explicit BytesInMemory(std::string bytes) : bytes_(std::move(bytes)) {}
  std::string_view bytes() const override { return bytes_; }

 private:
  std::string bytes_;
};

struct Member {
  LOGFONTW font;
  std::u16string style;
  bool outlines;
};

int CALLBACK Collect(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD type, LPARAM target) {
  const auto* described = reinterpret_cast<const ENUMLOGFONTEXW*>(font);
  auto* members = reinterpret_cast<std::vector<Member>*>(target);
  const auto* facts = reinterpret_cast<const NEWTEXTMETRICEXW*>(metrics);
  const bool cff = (type & TRUETYPE_FONTTYPE) == 0 && (type & RASTER_FONTTYPE) == 0 &&
                   (facts->ntmTm.ntmFlags & NTM_PS_OPENTYPE) != 0;
  members->push_back({*font, FromWideBuffer(described->elfStyle, LF_FACESIZE),
                      (type & TRUETYPE_FONTTYPE) != 0 || cff});
  return 1;
}

std::vector<Member> MembersOf(HDC dc, std::u16string_view family) {
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  family = family.substr(0, kMaxFaceName);
  std::copy(family.begin(), family.end(), wanted.lfFaceName);
  std::vector<Member> members;
  EnumFontFamiliesExW(dc, &wanted, Collect, reinterpret_cast<LPARAM>(&members), 0);
  // A face stands there once for each of its character sets.
  std::stable_sort(members.begin(), members.end(), [](const Member& a, const Member& b) {
    const auto key = [](const Member& m) {
      return std::pair(m.font.lfItalic != 0, std::abs(m.font.lfWeight - FW_NORMAL));
    };
    return key(a) < key(b);
  });
  return members;
}

std::string Bytes(HDC dc, DWORD tag) {
  const DWORD size = GetFontData(dc, tag, 0, nullptr, 0);
  if (size == GDI_ERROR) return {};
  std::string bytes(size, '\0');
  if (GetFontData(dc, tag, 0, bytes.data(), size) != size) bytes.clear();
  return bytes;
}

// Which font of a collection begins with the bytes that the system gives for the selected one.
uint32_t IndexIn(std::string_view collection, std::string_view font) {
  constexpr size_t kDirectoryStart = 64;
  const std::string_view start = font.substr(0, kDirectoryStart);
  const uint32_t count = Big(collection, 8, 4);
  for (uint32_t i = 0; i < count; ++i) {
    const size_t offset = Big(collection, 12 + 4 * i, 4);
    if (offset < collection.size() && collection.substr(offset).starts_with(start)) return i;
  }
  return 0;
}

}  // namespace

Status FindFontData(std::u16string_view family, std::u16string_view style, FontData* data) {
  const MemoryDevice device;
  std::vector<Member> members = MembersOf(device.get(), family.empty() ? u"Arial" : family);
  const bool known = !members.empty();
  std::erase_if(members, [](const Member& member) { return !member.outlines; });
  if (members.empty()) {
    return Status::Error(
        Failure::kNotFound, u"face",
        u"\"" + std::u16string(family) + (known ? u"\" has no outlines" : u"\" is not installed"));
  }
  const Member* chosen = &members.front();
  if (!style.empty()) {
    const auto found = std::find_if(members.begin(), members.end(), [&](const Member& member) {
      return EqualWithoutCase(member.style, style);
    });
    if (found == members.end()) {
      std::u16string names;
      for (const Member& member : members) {
        const std::u16string quoted = u"\"" + member.style + u"\"";
        if (names.find(quoted) != names.npos) continue;
        names += (names.empty() ? u"" : u", ") + quoted;
      }
      return Status::Error(Failure::kNotFound, u"style",
                           u"\"" + FromWideBuffer(chosen->font.lfFaceName, LF_FACESIZE) +
                               u"\" has no \"" + std::u16string(style) + u"\"; it has " + names);
    }
    chosen = &*found;
  }
  data->family = FromWideBuffer(chosen->font.lfFaceName, LF_FACESIZE);
  data->style = chosen->style;
  const HFONT font = CreateFontIndirectW(&chosen->font);
  const HGDIOBJ before = SelectObject(device.get(), font);
  std::string bytes = Bytes(device.get(), 0);
  if (std::string collection = Bytes(device.get(), kCollectionTag); !collection.empty()) {
    data->index = IndexIn(collection, bytes);
    bytes = std::move(collection);
  }
  SelectObject(device.get(), before);
  DeleteObject(font);
  if (bytes.empty()) {
    return Status::Error(Failure::kOther, data->family, u"the font's file cannot be read");
  }
  data->file = std::make_shared<BytesInMemory>(std::move(bytes));
  return Status::Ok();
}

}  // namespace kerno
