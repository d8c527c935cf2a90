#include "outline/font_details.h"

#include <hb-ot.h>
#include <hb.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "platform/memory_watch.h"

namespace kerno {
namespace {

struct Destroy {
  void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
  void operator()(hb_face_t* face) const { hb_face_destroy(face); }
  void operator()(hb_set_t* set) const { hb_set_destroy(set); }
};
template <class Thing>
using Owned = std::unique_ptr<Thing, Destroy>;

std::string TagText(hb_tag_t tag) {
  char text[4];
  hb_tag_to_string(tag, text);
  return {text, sizeof text};
}

std::u16string NameOf(hb_face_t* face, hb_ot_name_id_t number) {
  constexpr unsigned kLongest = 256;
  uint16_t units[kLongest];
  unsigned length = kLongest;
  hb_ot_name_get_utf16(face, number, HB_LANGUAGE_INVALID, &length, units);
  return {units, units + std::min(length, kLongest - 1)};
}

std::vector<FontAxis> AxesOf(hb_face_t* face) {
  unsigned count = hb_ot_var_get_axis_count(face);
  std::vector<hb_ot_var_axis_info_t> infos(count);
  hb_ot_var_get_axis_infos(face, 0, &count, infos.data());
  std::vector<FontAxis> axes;
  axes.reserve(count);
  for (const hb_ot_var_axis_info_t& info : infos) {
    axes.push_back({TagText(info.tag), NameOf(face, info.name_id), info.min_value,
                    info.default_value, info.max_value,
                    (info.flags & HB_OT_VAR_AXIS_FLAG_HIDDEN) != 0});
  }
  return axes;
}

std::vector<std::string> ScriptsOf(hb_face_t* face) {
  const Owned<hb_set_t> characters(hb_set_create());
  hb_face_collect_unicodes(face, characters.get());
  std::map<std::string, uint32_t> counts;
  hb_unicode_funcs_t* unicode = hb_unicode_funcs_get_default();
  for (hb_codepoint_t ch = HB_SET_VALUE_INVALID; hb_set_next(characters.get(), &ch);) {
    const hb_script_t script = hb_unicode_script(unicode, ch);
    const bool shared =
        script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN;
    if (!shared) ++counts[TagText(hb_script_to_iso15924_tag(script))];
  }
  std::vector<std::string> scripts;
  for (const auto& [script, count] : counts) {
    if (count >= kScriptLeast) scripts.push_back(script);
  }
  return scripts;
}

std::vector<std::string> FeaturesOf(hb_face_t* face) {
  std::set<std::string> features;
  for (const hb_tag_t table : {HB_OT_TAG_GSUB, HB_OT_TAG_GPOS}) {
    unsigned count = hb_ot_layout_table_get_feature_tags(face, table, 0, nullptr, nullptr);
    std::vector<hb_tag_t> tags(count);
    hb_ot_layout_table_get_feature_tags(face, table, 0, &count, tags.data());
    for (const hb_tag_t tag : tags) features.insert(TagText(tag));
  }
  return {features.begin(), features.end()};
}

// fsType of the table "OS/2"; 0 without one.
unsigned PermissionsOf(hb_face_t* face) {
  constexpr unsigned kPlace = 8;
  const Owned<hb_blob_t> table(hb_face_reference_table(face, HB_TAG('O', 'S', '/', '2')));
  unsigned length = 0;
  const char* bytes = hb_blob_get_data(table.get(), &length);
  if (length < kPlace + 2) return 0;
  const auto byte = [&](unsigned at) { return static_cast<unsigned char>(bytes[at]); };
  return byte(kPlace) * 256U + byte(kPlace + 1);
}

Embedding EmbeddingOf(unsigned permissions) {
  // The least strict of several counts.
  if ((permissions & 8) != 0) return Embedding::kEditable;
  if ((permissions & 4) != 0) return Embedding::kPreviewPrint;
  return (permissions & 2) != 0 ? Embedding::kRestricted : Embedding::kInstallable;
}

// The face refers to the bytes of the data.
Status OpenFace(const FontData& data, Owned<hb_face_t>* face) {
  const MemoryWatch watch;
  const std::string_view bytes = data.file->bytes();
  const Owned<hb_blob_t> blob(hb_blob_create(bytes.data(), static_cast<unsigned>(bytes.size()),
                                             HB_MEMORY_MODE_READONLY, nullptr, nullptr));
  face->reset(hb_face_create(blob.get(), data.index));
  const unsigned glyphs = hb_face_get_glyph_count(face->get());
  watch.Check();
  if (glyphs == 0) {
    return Status::Error(Failure::kOther, data.family, u"its file holds no font that can be read");
  }
  return Status::Ok();
}

void PlaceInstance(hb_face_t* face, uint32_t instance, std::vector<double>* places) {
  auto count = static_cast<unsigned>(places->size());
  std::vector<float> coordinates(count);
  hb_ot_var_named_instance_get_design_coords(face, instance - 1, &count, coordinates.data());
  std::copy_n(coordinates.begin(), std::min<size_t>(count, coordinates.size()), places->begin());
}

// "wght=650,slnt=-8"; what cannot be read changes nothing.
void PlaceByText(std::string_view variations, const std::vector<FontAxis>& axes,
                 std::vector<double>* places) {
  while (!variations.empty()) {
    const size_t end = std::min(variations.find(','), variations.size());
    hb_variation_t one;
    if (hb_variation_from_string(variations.data(), static_cast<int>(end), &one)) {
      const auto axis = std::ranges::find(axes, TagText(one.tag), &FontAxis::tag);
      if (axis != axes.end()) (*places)[static_cast<size_t>(axis - axes.begin())] = one.value;
    }
    variations.remove_prefix(std::min(end + 1, variations.size()));
  }
}

}  // namespace

Status ReadFontDetails(const FontData& data, FontDetails* details) {
  const MemoryWatch watch;
  Owned<hb_face_t> face;
  if (Status opened = OpenFace(data, &face); !opened.ok()) return opened;
  *details = {AxesOf(face.get()), ScriptsOf(face.get()), FeaturesOf(face.get()),
              EmbeddingOf(PermissionsOf(face.get()))};
  watch.Check();
  return Status::Ok();
}

bool ForbidsOutlines(const FontData& data) {
  const MemoryWatch watch;
  Owned<hb_face_t> face;
  if (!OpenFace(data, &face).ok()) return false;
  constexpr unsigned kBitmapsOnly = 0x0200;
  const unsigned permissions = PermissionsOf(face.get());
  watch.Check();
  return EmbeddingOf(permissions) == Embedding::kRestricted || (permissions & kBitmapsOnly) != 0;
}

Status ReadAxes(const FontData& data, std::vector<FontAxis>* axes, std::vector<double>* places) {
  const MemoryWatch watch;
  Owned<hb_face_t> face;
  if (Status opened = OpenFace(data, &face); !opened.ok()) return opened;
  *axes = AxesOf(face.get());
  watch.Check();
  places->clear();
  for (const FontAxis& axis : *axes) places->push_back(axis.usual);
  if (data.instance > 0) PlaceInstance(face.get(), data.instance, places);
  PlaceByText(data.variations, *axes, places);
  return Status::Ok();
}

Status ReadCharacters(const FontData& data, CharacterSet* characters) {
  const MemoryWatch watch;
  Owned<hb_face_t> face;
  if (Status opened = OpenFace(data, &face); !opened.ok()) return opened;
  const Owned<hb_set_t> set(hb_set_create());
  hb_face_collect_unicodes(face.get(), set.get());
  watch.Check();
  *characters = {};
  hb_codepoint_t first = HB_SET_VALUE_INVALID, last = HB_SET_VALUE_INVALID;
  while (hb_set_next_range(set.get(), &first, &last)) Append({first, last}, characters);
  return Status::Ok();
}

}  // namespace kerno
