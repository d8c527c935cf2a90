#include <algorithm>
#include <utility>

#include "platform/device_context.h"
#include "platform/font_faces.h"
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
