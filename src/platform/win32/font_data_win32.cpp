#include <algorithm>
#include <cstring>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "platform/big_endian.h"
#include "platform/device_context.h"
#include "platform/fold_case.h"
#include "platform/folder_path.h"
#include "platform/font_data.h"
#include "platform/font_faces.h"
#include "platform/font_families.h"
#include "platform/font_file.h"
#include "platform/held_file.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

// Tags as GetFontData takes them: the first letter in the lowest byte.
constexpr DWORD kCollectionTag = 0x66637474;  // "ttcf"
constexpr DWORD kNamingTag = 0x656D616E;      // "name"
constexpr DWORD kVariationsTag = 0x72617666;  // "fvar"

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
  BytesInMemory(std::u16string name, std::string bytes)
      : name_(std::move(name)), bytes_(std::move(bytes)) {}
  std::string_view bytes() const override { return bytes_; }
  std::u16string name() const override { return name_; }

 private:
  std::u16string name_;
  std::string bytes_;
};

// Has a font selected for as long as it lives.
class SelectedFont {
 public:
  SelectedFont(HDC dc, const LOGFONTW& wanted)
      : dc_(dc), font_(CreateFontIndirectW(&wanted)), before_(SelectObject(dc, font_)) {}
  ~SelectedFont() {
    SelectObject(dc_, before_);
    DeleteObject(font_);
  }
  SelectedFont(const SelectedFont&) = delete;
  SelectedFont& operator=(const SelectedFont&) = delete;

 private:
  HDC dc_;
  HFONT font_;
  HGDIOBJ before_;
};

struct Member {
  LOGFONTW font;
  std::u16string style, full_name;
  bool outlines;
};

std::u16string FamilyOf(const Member& member) {
  return FromWideBuffer(member.font.lfFaceName, LF_FACESIZE);
}

// TrueType, or CFF in OpenType.
bool HasOutlines(const TEXTMETRICW* metrics, DWORD type) {
  const auto* facts = reinterpret_cast<const NEWTEXTMETRICEXW*>(metrics);
  const bool cff = (type & RASTER_FONTTYPE) == 0 && (facts->ntmTm.ntmFlags & NTM_PS_OPENTYPE) != 0;
  return (type & TRUETYPE_FONTTYPE) != 0 || cff;
}

int CALLBACK Collect(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD type, LPARAM target) {
  const auto* described = reinterpret_cast<const ENUMLOGFONTEXW*>(font);
  auto* members = reinterpret_cast<std::vector<Member>*>(target);
  members->push_back({*font, FromWideBuffer(described->elfStyle, LF_FACESIZE),
                      FromWideBuffer(described->elfFullName, LF_FULLFACESIZE),
                      HasOutlines(metrics, type)});
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

std::vector<Member> OutlineMembersOf(const MemoryDevice& device, std::u16string_view family) {
  std::vector<Member> members = MembersOf(device.get(), family);
  std::erase_if(members, [](const Member& member) { return !member.outlines; });
  return members;
}

struct FamilyList {
  std::vector<ListedFamily> families;
  std::unordered_map<std::u16string, size_t> places;
};

// Each family comes once for each of its character sets.
int CALLBACK CollectFamily(const LOGFONTW* font, const TEXTMETRICW* metrics, DWORD type,
                           LPARAM target) {
  auto* list = reinterpret_cast<FamilyList*>(target);
  std::u16string name = FromWideBuffer(font->lfFaceName, LF_FACESIZE);
  if (name.starts_with(u'@') || !HasOutlines(metrics, type)) return 1;
  const auto [place, is_new] = list->places.try_emplace(name, list->families.size());
  if (is_new) {
    ListedFamily& family = list->families.emplace_back();
    family.names = {{name, {}}};
    family.name = std::move(name);
    family.fixed_pitch = (font->lfPitchAndFamily & 3) == FIXED_PITCH;
    family.all_names = false;
  }
  if (font->lfCharSet == SYMBOL_CHARSET) list->families[place->second].symbols = true;
  return 1;
}

// What the system gives of the file of a face.
Status ReadFile(const MemoryDevice& device, const Member& member, FontData* data) {
  const SelectedFont selected(device.get(), member.font);
  std::string bytes = Bytes(device.get(), 0);
  if (std::string collection = Bytes(device.get(), kCollectionTag); !collection.empty()) {
    data->index = IndexIn(collection, bytes);
    bytes = std::move(collection);
  }
  if (bytes.empty()) {
    return Status::Error(Failure::kOther, data->family, u"the font's file cannot be read");
  }
  data->file = std::make_shared<BytesInMemory>(data->family, std::move(bytes));
  return CheckWhole(*data);
}

bool HasName(const std::vector<std::u16string>& names, std::u16string_view wanted) {
  return std::any_of(names.begin(), names.end(),
                     [&](const std::u16string& name) { return EqualWithoutCase(name, wanted); });
}

// Whether the naming table of the file has the name, in whatever language; *full tells whether it
// is not one of the family.
bool IsNamedInFile(const MemoryDevice& device, const Member& member, std::u16string_view wanted,
                   bool* full) {
  const SelectedFont selected(device.get(), member.font);
  const FontFileFace names = NamesIn(Bytes(device.get(), kNamingTag));
  *full = !HasName(names.families, wanted);
  return !*full || HasName(names.full_names, wanted);
}

struct Members {
  std::vector<Member> faces;  // the best first
  bool by_full_name = false;  // the name is that of a face, not of a family
};

// The faces of a family by the name that the system shows; else by a full name, and by the names in
// other languages, which stand in the files alone.
Members FindMembers(const MemoryDevice& device, std::u16string_view name) {
  Members found = {MembersOf(device.get(), name), false};
  if (!found.faces.empty()) return found;
  const std::vector<Member> all = MembersOf(device.get(), u"");
  for (const bool in_file : {false, true}) {
    for (const Member& first : all) {
      for (const Member& member : MembersOf(device.get(), FamilyOf(first))) {
        bool full = true;
        const bool named = in_file ? IsNamedInFile(device, member, name, &full)
                                   : EqualWithoutCase(member.full_name, name);
        if (!named) continue;
        if (full) return {{member}, true};
        return {MembersOf(device.get(), FamilyOf(member)), false};
      }
    }
  }
  return found;
}

// The family that the system takes when it is left the choice.
std::u16string MappedFamily(const MemoryDevice& device) {
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  wanted.lfOutPrecision = OUT_OUTLINE_PRECIS;
  std::copy_n(L"Arial", 6, wanted.lfFaceName);
  const SelectedFont selected(device.get(), wanted);
  wchar_t name[LF_FACESIZE] = {};
  GetTextFaceW(device.get(), LF_FACESIZE, name);
  return FromWideBuffer(name, LF_FACESIZE);
}

std::vector<StyledFace> StylesOf(const std::vector<Member>& members) {
  std::vector<StyledFace> styles;
  for (const Member& member : members) {
    styles.push_back({{member.style},
                      static_cast<int32_t>(member.font.lfWeight),
                      100,
                      member.font.lfItalic != 0});
  }
  return styles;
}

// The named instance of a variable font that a style is, where the system lists the font alone.
bool TakeInstance(const FaceRequest& request, FontData* data) {
  std::vector<FontFileFace> instances = FacesIn(data->file->bytes());
  std::erase_if(instances, [&](const FontFileFace& face) {
    return face.index != data->index || face.instance == 0;
  });
  std::vector<StyledFace> styles;
  for (const FontFileFace& face : instances) styles.push_back(face.style);
  if (styles.empty() || request.style.empty()) return false;
  const auto choice = ChooseStyle(request.style, styles);
  if (!choice || choice->make_bold || choice->make_slanted) return false;
  data->instance = instances[choice->face].instance;
  Describe(request, styles, *choice, data);
  return true;
}

}  // namespace

Status OpenFontBytes(const std::filesystem::path& path, std::shared_ptr<const FontBytes>* file) {
  const std::filesystem::path whole = LongPath(FullPath(path));
  if (IsFolder(whole)) {
    return Status::Error(Failure::kIsFolder, SystemText(path), u"it is a folder");
  }
  Status status;
  std::string bytes;
  const auto held = HeldFile::Open(whole, Deny::kWrite, &status);
  if (!held) return status;
  if (Status read = held->Read(&bytes); !read.ok()) return read;
  if (bytes.empty()) {
    return Status::Error(Failure::kOther, SystemText(path), u"is an empty file");
  }
  *file = std::make_shared<BytesInMemory>(SystemText(path), std::move(bytes));
  return Status::Ok();
}

Status FindFontData(const FaceRequest& request, FontData* data) {
  if (!request.file.empty()) return FindInFile(request, data);
  const MemoryDevice device;
  Members members =
      FindMembers(device, request.family.empty() ? MappedFamily(device) : request.family);
  std::u16string own;  // the style of a face that is named whole
  if (members.by_full_name && !request.style.empty()) {
    own = members.faces.front().style;
    members.faces = MembersOf(device.get(), FamilyOf(members.faces.front()));
  }
  const bool known = !members.faces.empty();
  std::erase_if(members.faces, [](const Member& member) { return !member.outlines; });
  if (members.faces.empty()) {
    return Status::Error(
        Failure::kNotFound, u"face",
        u"\"" + request.family + (known ? u"\" has no outlines" : u"\" is not installed"));
  }
  const std::vector<StyledFace> styles = StylesOf(members.faces);
  const auto choice = ChooseStyleOfFace(own, request.style, styles);
  const Member& chosen = members.faces[choice ? choice->face : 0];
  FontData found;
  found.family = FamilyOf(chosen);
  if (Status read = ReadFile(device, chosen, &found); !read.ok()) return read;
  const bool makes = own.empty() && (!choice || choice->make_bold || choice->make_slanted);
  if (!makes || !TakeInstance(request, &found)) {
    if (!choice)
      return NoSuchStyle(found.family, (own.empty() ? own : own + u" ") + request.style, styles);
    Describe(request, styles, *choice, &found);
    TakeStyleFromAxes(request.style, &found);
  }
  *data = std::move(found);
  return Status::Ok();
}

std::vector<ListedFace> ListFaces() {
  const MemoryDevice device;
  std::vector<ListedFace> faces;
  for (const Member& first : MembersOf(device.get(), u"")) {
    for (const Member& member : MembersOf(device.get(), FamilyOf(first))) {
      ListedFace face;
      face.families = {FamilyOf(member)};
      face.full_names = {member.full_name};
      face.styles = {member.style};
      face.has_outlines = member.outlines;
      if (!face.families.front().starts_with(u'@')) faces.push_back(std::move(face));
    }
  }
  // A face stands there once for each of its character sets.
  const auto key = [](const ListedFace& face) {
    return std::tie(face.families, face.styles, face.full_names);
  };
  std::stable_sort(faces.begin(), faces.end(),
                   [&](const ListedFace& a, const ListedFace& b) { return key(a) < key(b); });
  const auto same = [&](const ListedFace& a, const ListedFace& b) { return key(a) == key(b); };
  faces.erase(std::unique(faces.begin(), faces.end(), same), faces.end());
  for (ListedFace& face : faces) {
    face.has_vertical_form =
        !MembersOf(device.get(), (u"@" + face.families.front()).substr(0, kMaxFaceName)).empty();
  }
  return faces;
}

std::vector<ListedFamily> ListOutlineFamilies() {
  const MemoryDevice device;
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  FamilyList list;
  EnumFontFamiliesExW(device.get(), &wanted, CollectFamily, reinterpret_cast<LPARAM>(&list), 0);
  return std::move(list.families);
}

void ReadFamilyNames(ListedFamily* family) {
  family->all_names = true;
  const MemoryDevice device;
  const std::vector<Member> members = OutlineMembersOf(device, family->name);
  if (members.empty()) return;
  const SelectedFont selected(device.get(), members.front().font);
  const FontFileFace told = NamesIn(Bytes(device.get(), kNamingTag));
  for (const FamilyName& name : told.family_names) {
    const auto known = std::ranges::find(family->names, name.text, &FamilyName::text);
    if (known == family->names.end()) {
      family->names.push_back(name);
    } else if (known->language.empty()) {
      known->language = name.language;
    }
  }
  family->full_names = told.full_names;
}

// The system lists a variable font as one face, or each of its instances.
std::vector<ListedStyle> ListStyles(std::u16string_view family) {
  const MemoryDevice device;
  std::vector<ListedStyle> styles;
  const auto is_listed = [&](const StyledFace& face) {
    return std::ranges::any_of(styles, [&](const ListedStyle& other) {
      return other.face.styles.front() == face.styles.front();
    });
  };
  const std::vector<Member> members = OutlineMembersOf(device, family);
  const std::vector<StyledFace> faces = StylesOf(members);
  for (size_t i = 0; i < members.size(); ++i) {
    if (is_listed(faces[i])) continue;
    const SelectedFont selected(device.get(), members[i].font);
    const bool variable = !Bytes(device.get(), kVariationsTag).empty();
    styles.push_back({faces[i], variable});
    FontData data;
    if (!variable || !ReadFile(device, members[i], &data).ok()) continue;
    for (FontFileFace& face : FacesIn(data.file->bytes())) {
      const bool instance = face.index == data.index && face.instance > 0;
      if (!instance || face.style.styles.empty() || is_listed(face.style)) continue;
      styles.push_back({std::move(face.style), true});
    }
  }
  return styles;
}

// The system tells of characters up to U+FFFF alone.
Status ReadCharacters(std::u16string_view family, CharacterSet* characters) {
  const MemoryDevice device;
  const std::vector<Member> members = OutlineMembersOf(device, family);
  if (members.empty()) {
    return Status::Error(Failure::kNotFound, u"face",
                         u"\"" + std::u16string(family) + u"\" is not installed");
  }
  const SelectedFont selected(device.get(), members.front().font);
  const DWORD size = GetFontUnicodeRanges(device.get(), nullptr);
  std::vector<DWORD> memory(size / sizeof(DWORD) + 1);
  auto* set = reinterpret_cast<GLYPHSET*>(memory.data());
  *characters = {{}, false};
  if (size == 0 || GetFontUnicodeRanges(device.get(), set) == 0) return Status::Ok();
  for (DWORD i = 0; i < set->cRanges; ++i) {
    const WCRANGE& range = set->ranges[i];
    if (range.cGlyphs == 0) continue;
    const char32_t first = range.wcLow;
    Append({first, first + range.cGlyphs - 1}, characters);
  }
  return Status::Ok();
}

}  // namespace kerno
