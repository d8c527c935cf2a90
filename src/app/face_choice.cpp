#include "app/face_choice.h"

#include "platform/font_faces.h"

namespace kerno {
namespace {

std::u16string FirstVerticalFace() {
  for (const InstalledFace& face : EnumerateFaces()) {
    if (face.name.starts_with(u'@') && face.font_type == kTrueTypeFontType) return face.name;
  }
  return {};
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
  }
  return choice;
}

bool IsNameOf(std::u16string_view wanted, std::u16string_view used) {
  return wanted.empty() || wanted == used || IsFaceInstalled(wanted);
}

}  // namespace kerno
