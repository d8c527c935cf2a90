#include "app/font_face_list.h"

namespace kerno {

int FontFaceList::Enumerate() {
  faces_.clear();
  if (window_ == nullptr) {
    return 0;
  }
  for (const InstalledFace& face : EnumerateFaces()) {
    OnFamily(face);
  }
  return 1;
}

int FontFaceList::OnFamily(const InstalledFace& face) {
  if (IsAccepted(face)) {
    AddFace(face.name);
  }
  return 1;
}

bool FontFaceList::IsAccepted(const InstalledFace& face) const {
  const bool vertical = face.name.starts_with(u'@');
  if (WantTrueTypeOnly() != 0 && (face.font_type & kTrueTypeFontType) == 0) {
    return false;
  }
  if (ExcludeVerticalFaces() != 0 && vertical) {
    return false;
  }
  if (OnlyVerticalFaces() != 0 && !vertical) {
    return false;
  }
  if (UsePitchFilter() != 0 && (face.pitch_and_family & PitchMask()) == 0) {
    return false;
  }
  return UseCharSetFilter() == 0 || face.char_set == CharSetWanted();
}

int FontFaceList::AddFace(std::u16string_view name) {
  faces_.emplace_back(name);
  return 1;
}

std::vector<std::u16string> FontFaceList::Entries() const {
  return faces_.empty() ? DiagnosticLines() : faces_;
}

std::vector<std::u16string> FontFaceList::DiagnosticLines() const {
  return {u" ", u" ", u"ＦａｃｅＮａｍｅが求められない",
          window_ != nullptr ? u"Wnd!=NULL" : u"Wnd == NULL"};
}

}  // namespace kerno
