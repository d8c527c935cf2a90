#include "app/face_choice.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

#include "base/nearest_names.h"
#include "outline/font_details.h"
#include "platform/font_faces.h"

namespace kerno {
namespace {

FaceForm FirstVerticalFace() {
  for (const InstalledFace& face : EnumerateFaces()) {
    FaceForm form = FaceFormOf(face.name);
    if (form.vertical && face.font_type == kTrueTypeFontType) return form;
  }
  return {};
}

// Faces of which each letter is as wide as that of a well-known one.
struct Twins {
  std::u16string_view known, twin;
};
constexpr std::array<Twins, 10> kTwins = {{{u"Arial", u"Liberation Sans"},
                                           {u"Arial Narrow", u"Liberation Sans Narrow"},
                                           {u"Times New Roman", u"Liberation Serif"},
                                           {u"Courier New", u"Liberation Mono"},
                                           {u"Helvetica", u"Nimbus Sans"},
                                           {u"Times", u"Nimbus Roman"},
                                           {u"Courier", u"Nimbus Mono PS"},
                                           {u"Calibri", u"Carlito"},
                                           {u"Cambria", u"Caladea"},
                                           {u"Georgia", u"Gelasio"}}};

struct KnownNames {
  std::vector<std::u16string> families, full;

  bool HasFamily(std::u16string_view name) const {
    return std::ranges::find(families, name) != families.end();
  }
};

KnownNames NamesOfOutlineFaces(bool vertical) {
  KnownNames names;
  for (const ListedFace& face : ListFaces()) {
    if (!face.has_outlines || (vertical && !face.has_vertical_form)) continue;
    names.families.insert(names.families.end(), face.families.begin(), face.families.end());
    names.full.insert(names.full.end(), face.full_names.begin(), face.full_names.end());
  }
  for (auto* list : {&names.families, &names.full}) {
    std::sort(list->begin(), list->end());
    list->erase(std::unique(list->begin(), list->end()), list->end());
  }
  return names;
}

// The twin of the well-known face that `wanted` is nearer to than `limit`.
const Twins* NearestTwin(std::u16string_view wanted, const KnownNames& names, size_t limit) {
  const Twins* nearest = nullptr;
  for (const Twins& twins : kTwins) {
    const size_t distance = EditDistance(wanted, twins.known);
    if (distance >= limit || names.HasFamily(twins.known) || !names.HasFamily(twins.twin)) continue;
    nearest = &twins;
    limit = distance;
  }
  return nearest;
}

// The end of a sentence that says that a face is not installed.
std::u16string NearestFaces(const FaceForm& face) {
  constexpr size_t kSuggestions = 3;
  const std::u16string& wanted = face.name;
  const KnownNames names = NamesOfOutlineFaces(face.vertical);
  std::vector<std::u16string> nearest = NearestNames(wanted, names.families, kSuggestions);
  for (const std::u16string& full : NearestNames(wanted, names.full, 1)) {
    const bool is_nearer =
        nearest.empty() || EditDistance(wanted, full) < EditDistance(wanted, nearest.front());
    if (is_nearer) nearest.insert(nearest.begin(), full);
  }
  // Of names that are farther away most of the letters are others.
  const size_t farthest = wanted.size() / 2;
  std::erase_if(nearest,
                [&](const std::u16string& name) { return EditDistance(wanted, name) > farthest; });
  const size_t limit = nearest.empty() ? farthest + 1 : EditDistance(wanted, nearest.front());
  std::u16string text;
  if (const Twins* twins = NearestTwin(wanted, names, limit); twins && !face.vertical) {
    std::erase(nearest, twins->twin);
    text = u"\"" + std::u16string(twins->twin) + u"\" (as wide as \"" +
           std::u16string(twins->known) + u"\")";
  }
  if (nearest.size() > kSuggestions) nearest.resize(kSuggestions);
  for (const std::u16string& name : nearest) {
    text += (text.empty() ? u"\"" : u", \"") + SystemFaceName({name, face.vertical}) + u"\"";
  }
  if (text.empty()) return u" (kerno faces lists those that are)";
  const bool several = text.find(u"\", \"") != text.npos || text.find(u"), ") != text.npos;
  return (several ? u"; the nearest are " : u"; the nearest is ") + text;
}

// The same end where the face may stand in a file that cannot be read; empty where there is none.
std::u16string UnreadFile(std::u16string_view name) {
  const Status trouble = FontTrouble(name);
  return trouble.ok() ? u"" : u"; " + trouble.what + u" cannot be read: " + trouble.why;
}

}  // namespace

Status FindFace(const FaceRequest& request, FontData* data) {
  Status found = FindFontData(request, data);
  const bool unknown = found.failure == Failure::kNotFound && found.what == u"face";
  if (!unknown || request.family.empty()) return found;
  if (const std::u16string unread = UnreadFile(request.family); !unread.empty()) {
    return Status::Error(Failure::kOther, std::move(found.what),
                         found.why + NearestFaces({request.family}) + unread);
  }
  found.why += NearestFaces({request.family});
  return found;
}

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
  FontData full;
  const Status found = FindFontData({.family = wanted.name}, &full);
  choice.installed = found.ok() && IsFaceInstalled(name);  // a failure of reading may have passed
  if (choice.installed) return choice;
  if (!found.ok() && found.what != u"face" && !IsFaceInstalled(wanted.name)) {
    choice.what = found.what;
    choice.why = found.why;
    choice.unreadable = true;
    return choice;
  }
  if (!wanted.vertical && found.ok()) {
    if (full.width != 100) {
      choice.why = u"\"" + wanted.name + u"\" is \"" + full.style + u"\" of \"" + full.family +
                   u"\", a width which the system is not asked for; use kerno cut";
      return choice;
    }
    choice.face.name = full.family;
    choice.style = {full.weight, full.slanted};
    choice.installed = IsFaceInstalled(full.family);
    if (choice.installed) return choice;
  }
  const bool has_plain_form = wanted.vertical && IsFaceInstalled(wanted.name);
  choice.why = has_plain_form ? u"\"" + wanted.name + u"\" has no \"@\" form"
                              : u"\"" + name + u"\" is not installed";
  const std::u16string unread = has_plain_form ? u"" : UnreadFile(wanted.name);
  choice.in_doubt = !unread.empty();
  choice.why += NearestFaces(wanted) + unread;
  return choice;
}

Status ChooseStyle(std::u16string_view style, std::u16string* name, SystemStyle* chosen) {
  FontData data;
  const FaceRequest request = {.family = *name, .style = std::u16string(style)};
  if (Status found = FindFace(request, &data); !found.ok()) return found;
  const auto refuse = [&](std::u16string why) {
    return Status::Error(Failure::kNotFound, u"style",
                         u"\"" + data.family + u"\" has " + std::move(why) + u"; use kerno cut");
  };
  if (data.width != 100) {
    return refuse(u"\"" + data.style + u"\" in another width, which the system is not asked for");
  }
  if (data.make_slanted) return refuse(u"no slanted letters, and the system makes none");
  // The system draws a variable font at its named instances only.
  if (data.slanted_by_axes) {
    return refuse(u"slanted letters on an axis, which the system does not set");
  }
  const bool made_bold = data.make_bold || data.bold_by_axes;
  *chosen = {made_bold ? 700 : data.weight, data.slanted, made_bold};
  *name = data.family;
  return Status::Ok();
}

bool LicenceForbids(std::u16string_view face, const SystemStyle& style) {
  constexpr int32_t kBoldFrom = 550;  // weights above count as bold
  FaceRequest request;
  request.family = face.substr(face.starts_with(u'@') ? 1 : 0);
  const bool bold = style.weight > kBoldFrom;
  if (bold || style.italic)
    request.style = !style.italic ? u"Bold" : bold ? u"Bold Italic" : u"Italic";
  FontData data;
  Status found = FindFontData(request, &data);
  request.style.clear();
  if (!found.ok()) found = FindFontData(request, &data);
  return found.ok() && ForbidsOutlines(data);
}

bool IsNameOf(const FaceForm& wanted, std::u16string_view used) {
  const std::u16string name = SystemFaceName(wanted);
  return wanted.name.empty() || name == used || IsFaceInstalled(name);
}

}  // namespace kerno
