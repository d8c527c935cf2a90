#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/device_context.h"
#include "platform/folder_path.h"
#include "platform/font_faces.h"
#include "platform/held_file.h"
#include "platform/big_endian.h"
#include "platform/win32/long_path.h"
#include "platform/win32/system_error.h"
#include "platform/win32/wide_text.h"
#include "platform/win32/windows_api.h"

namespace kerno {
namespace {

// A device context of the screen for as long as an enumeration takes.
class ScreenContext {
 public:
  ScreenContext() : dc_(GetDC(nullptr)) {}
  ~ScreenContext() { ReleaseDC(nullptr, dc_); }
  ScreenContext(const ScreenContext&) = delete;
  ScreenContext& operator=(const ScreenContext&) = delete;
  HDC get() const { return dc_; }

 private:
  HDC dc_;
};

int CALLBACK Collect(const LOGFONTW* font, const TEXTMETRICW* /*metrics*/, DWORD type,
                     LPARAM target) {
  InstalledFace face;
  face.name = FromWideBuffer(font->lfFaceName, LF_FACESIZE);
  face.pitch_and_family = font->lfPitchAndFamily;
  face.char_set = font->lfCharSet;
  face.font_type = type;
  auto* faces = reinterpret_cast<std::vector<InstalledFace>*>(target);
  // Some systems answer once for each script of a family.
  const bool known = std::any_of(faces->begin(), faces->end(), [&face](const InstalledFace& other) {
    return other.name == face.name;
  });
  if (!known) faces->push_back(std::move(face));
  return 1;
}

int CALLBACK Find(const LOGFONTW* /*font*/, const TEXTMETRICW* /*metrics*/, DWORD /*type*/,
                  LPARAM found) {
  *reinterpret_cast<bool*>(found) = true;
  return 0;
}

// The family names in the naming table ("name") at an offset: records of platform 3 and name 1.
void AddFamilyNames(std::string_view bytes, size_t table, std::vector<std::u16string>* names) {
  constexpr size_t kRecordSize = 12;
  const size_t strings = table + Big(bytes, table + 4, 2);
  const uint32_t count = Big(bytes, table + 2, 2);
  for (size_t at = table + 6; at < table + 6 + count * kRecordSize; at += kRecordSize) {
    if (Big(bytes, at, 2) != 3 || Big(bytes, at + 6, 2) != 1) continue;
    const size_t text = strings + Big(bytes, at + 10, 2);
    const size_t units = std::min<size_t>(Big(bytes, at + 8, 2) / 2, kMaxFaceName);
    std::u16string name;
    for (size_t i = 0; i < units; ++i) {
      name.push_back(static_cast<char16_t>(Big(bytes, text + 2 * i, 2)));
    }
    names->push_back(std::move(name));
  }
}

// The family names that a font file, or a collection of fonts, holds.
std::vector<std::u16string> FamilyNames(std::string_view bytes) {
  constexpr uint32_t kCollection = 0x74746366;  // "ttcf"
  constexpr uint32_t kNaming = 0x6E616D65;      // "name"
  constexpr uint32_t kMostFonts = 256;
  const bool collection = Big(bytes, 0, 4) == kCollection;
  const uint32_t fonts = collection ? std::min(Big(bytes, 8, 4), kMostFonts) : 1;
  std::vector<std::u16string> names;
  for (uint32_t font = 0; font < fonts; ++font) {
    const size_t start = collection ? Big(bytes, 12 + font * 4, 4) : 0;
    for (uint32_t i = 0; i < Big(bytes, start + 4, 2); ++i) {
      const size_t entry = start + 12 + i * 16;
      if (Big(bytes, entry, 4) != kNaming) continue;
      AddFamilyNames(bytes, Big(bytes, entry + 8, 4), &names);
      break;
    }
  }
  return names;
}

// Those of the families that a font file names.
std::vector<std::u16string> NamedIn(const std::filesystem::path& file,
                                    const std::vector<std::u16string>& families) {
  Status status;
  std::string bytes;
  const auto held = HeldFile::Open(file, Deny::kWrite, &status);
  if (!held || !held->Read(&bytes).ok()) return {};
  const std::vector<std::u16string> spelt = FamilyNames(bytes);
  std::vector<std::u16string> named;
  std::copy_if(families.begin(), families.end(), std::back_inserter(named),
               [&spelt](const std::u16string& family) {
                 return std::find(spelt.begin(), spelt.end(), family) != spelt.end();
               });
  return named;
}

}  // namespace

// The system passes damaged files over by itself and does not tell which.
std::vector<InstalledFace> EnumerateFaces(std::vector<std::u16string>* skipped) {
  if (skipped != nullptr) skipped->clear();
  std::vector<InstalledFace> faces;
  EnumFontFamiliesW(ScreenContext().get(), nullptr, Collect, reinterpret_cast<LPARAM>(&faces));
  return faces;
}

std::vector<std::u16string> ListFamilies(FamilyForm form) {
  std::vector<std::u16string> names;
  for (InstalledFace& face : EnumerateFaces()) {
    const bool vertical = face.name.starts_with(u'@');
    const bool wanted = vertical == (form == FamilyForm::kVertical);
    if (wanted && (face.font_type & kTrueTypeFontType) != 0) names.push_back(std::move(face.name));
  }
  return names;
}

// The system does not tell what a file brought: its families are those that are new, or else those
// whose names stand in the file.
Status AddFontFile(const std::filesystem::path& file, std::vector<std::u16string>* names) {
  names->clear();
  const std::filesystem::path whole = LongPath(FullPath(file));
  if (!PathExists(whole)) return SystemError(file, ERROR_FILE_NOT_FOUND);
  const std::vector<InstalledFace> before = EnumerateFaces();
  if (AddFontResourceExW(whole.c_str(), FR_PRIVATE, nullptr) == 0) {
    return Status::Error(Failure::kOther, SystemText(file),
                         u"holds no outline face that can be used");
  }
  std::vector<std::u16string> known;
  const std::vector<InstalledFace> after = EnumerateFaces();
  for (const InstalledFace& face : after) {
    if ((face.font_type & kTrueTypeFontType) == 0 || face.name.starts_with(u'@')) continue;
    const bool old = std::any_of(before.begin(), before.end(), [&face](const InstalledFace& other) {
      return other.name == face.name;
    });
    (old ? known : *names).push_back(face.name);
  }
  if (names->empty()) *names = NamedIn(whole, known);
  if (!names->empty()) return Status::Ok();
  RemoveFontResourceExW(whole.c_str(), FR_PRIVATE, nullptr);
  return Status::Error(Failure::kOther, SystemText(file),
                       u"holds no outline face that can be used");
}

bool IsFaceInstalled(std::u16string_view name) {
  if (name.empty()) return false;  // asks the system for every family
  LOGFONTW wanted{};
  wanted.lfCharSet = DEFAULT_CHARSET;
  name = name.substr(0, kMaxFaceName);
  std::copy(name.begin(), name.end(), wanted.lfFaceName);
  bool found = false;
  EnumFontFamiliesExW(ScreenContext().get(), &wanted, Find, reinterpret_cast<LPARAM>(&found), 0);
  return found;
}

Status FontTrouble(std::u16string_view) {
  return Status::Ok();
}

}  // namespace kerno
