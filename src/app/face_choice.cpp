#include "app/face_choice.h"

#include <utility>
#include <vector>

#include "base/nearest_names.h"
#include "platform/font_faces.h"

namespace kerno {
namespace {

FaceForm FirstVerticalFace() {
  for (const InstalledFace& face : EnumerateFaces()) {
    const FaceForm form = FaceFormOf(face.name);
    if (form.vertical && face.font_type == kTrueTypeFontType) return form;
  }
  return {};
}

// The installed names that a missing one may have meant, as the end of a sentence.
std::u16string NearestInstalled(const FaceForm& face) {
  constexpr size_t kSuggestions = 3;
  std::vector<std::u16string> names;
  for (InstalledFace& installed : EnumerateFaces()) {
    const bool alike = FaceFormOf(installed.name).vertical == face.vertical;
    if (installed.font_type == kTrueTypeFontType && alike) {
      names.push_back(std::move(installed.name));
    }
  }
  std::u16string text;
  for (const std::u16string& name : NearestNames(SystemFaceName(face), names, kSuggestions)) {
    text += (text.empty() ? u"; the nearest are \"" : u", \"") + name + u"\"";
  }
  return text;
}

}  // namespace

FaceChoice ChooseFace(const FaceForm& wanted) {
  FaceChoice choice;
  choice.face = wanted;
  choice.what = u"face";
  if (wanted.name.empty()) {
    if (wanted.vertical) choice.face = FirstVerticalFace();
    choice.installed = !wanted.vertical || !choice.face.name.empty();
    if (!choice.installed) choice.why = u"none that is installed has a form for vertical writing";
    return choice;
  }
  const std::u16string name = SystemFaceName(wanted);
  choice.installed = IsFaceInstalled(name);
  if (choice.installed) return choice;
  const bool has_plain_form = wanted.vertical && IsFaceInstalled(wanted.name);
  choice.why = has_plain_form ? u"\"" + wanted.name + u"\" has no \"@\" form"
                              : u"\"" + name + u"\" is not installed";
  choice.why += NearestInstalled(wanted);
  return choice;
}

bool IsNameOf(const FaceForm& wanted, std::u16string_view used) {
  const std::u16string name = SystemFaceName(wanted);
  return wanted.name.empty() || name == used || IsFaceInstalled(name);
}

}  // namespace kerno
