#include "app/face_choice.h"

#include <utility>
#include <vector>

#include "base/nearest_names.h"
#include "platform/font_faces.h"

namespace kerno {
namespace {

std::u16string FirstVerticalFace() {
  for (const InstalledFace& face : EnumerateFaces()) {
    if (face.name.starts_with(u'@') && face.font_type == kTrueTypeFontType) return face.name;
  }
  return {};
}

// The installed names that a missing one may have meant, as the end of a sentence.
std::u16string NearestInstalled(std::u16string_view face) {
  constexpr size_t kSuggestions = 3;
  const bool vertical = face.starts_with(u'@');
  std::vector<std::u16string> names;
  for (InstalledFace& installed : EnumerateFaces()) {
    const bool alike = installed.name.starts_with(u'@') == vertical;
    if (installed.font_type == kTrueTypeFontType && alike) {
      names.push_back(std::move(installed.name));
    }
  }
  std::u16string text;
  for (const std::u16string& name : NearestNames(face, names, kSuggestions)) {
    text += (text.empty() ? u"; the nearest are \"" : u", \"") + name + u"\"";
  }
  return text;
}

}  // namespace

FaceChoice ChooseFace(std::u16string_view name, WritingDirection direction) {
  FaceChoice choice;
  choice.face = name;
  const bool vertical = direction == WritingDirection::kVertical;
  if (name.empty()) {
    if (vertical) choice.face = FirstVerticalFace();
    choice.installed = !vertical || !choice.face.empty();
    if (!choice.installed)
      choice.what = u"--vertical", choice.why = u"no installed face has an \"@\" form";
    return choice;
  }
  if (vertical && !name.starts_with(u'@')) choice.face.insert(0, 1, u'@');
  choice.installed = IsFaceInstalled(choice.face);
  if (!choice.installed) {
    const bool has_plain_form = vertical && IsFaceInstalled(choice.face.substr(1));
    choice.what = u"face";
    choice.why = has_plain_form ? u"\"" + choice.face.substr(1) + u"\" has no \"@\" form"
                                : u"\"" + choice.face + u"\" is not installed";
    choice.why += NearestInstalled(choice.face);
  }
  return choice;
}

bool IsNameOf(std::u16string_view wanted, std::u16string_view used) {
  return wanted.empty() || wanted == used || IsFaceInstalled(wanted);
}

}  // namespace kerno
