#include <algorithm>
#include <utility>

#include "platform/device_context.h"
#include "platform/font_faces.h"
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

}  // namespace

// The system passes damaged files over by itself and does not tell which.
std::vector<InstalledFace> EnumerateFaces(std::vector<std::u16string>* skipped) {
  if (skipped != nullptr) skipped->clear();
  std::vector<InstalledFace> faces;
  EnumFontFamiliesW(ScreenContext().get(), nullptr, Collect, reinterpret_cast<LPARAM>(&faces));
  return faces;
}

// The system does not tell what a file brought: the new families are found by comparison.
Status AddFontFile(const std::filesystem::path& file, std::vector<std::u16string>* names) {
  names->clear();
  const std::vector<InstalledFace> before = EnumerateFaces();
  std::error_code error;
  const std::filesystem::path whole = std::filesystem::absolute(file, error);
  if (AddFontResourceExW(whole.c_str(), FR_PRIVATE, nullptr) == 0) {
    return Status::Error(Failure::kOther, SystemText(file), u"is no font that can be used");
  }
  for (const InstalledFace& face : EnumerateFaces()) {
    const bool known = std::any_of(before.begin(), before.end(), [&face](const InstalledFace& old) {
      return old.name == face.name;
    });
    const bool outlines = (face.font_type & kTrueTypeFontType) != 0;
    if (!known && outlines && !face.name.starts_with(u'@')) names->push_back(face.name);
  }
  if (!names->empty()) return Status::Ok();
  RemoveFontResourceExW(whole.c_str(), FR_PRIVATE, nullptr);
  return Status::Error(Failure::kOther, SystemText(file),
                       u"brings no outline face that is not installed already");
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

}  // namespace kerno
