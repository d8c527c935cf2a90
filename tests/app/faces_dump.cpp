// Prints the catalogue of faces as a JSON array, for a test that asks other programs about the same
// faces. Styles are asked for by the options that stand for them.
//
// usage: faces_dump LANGUAGE HAS SAMPLE [FILE...]
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>

#include "app/face_catalogue.h"
#include "app/face_samples.h"
#include "base/text.h"

namespace kerno {
namespace {

using nlohmann::json;

std::string Text(std::u16string_view text) {
  return Utf16ToUtf8(text);
}

json StyleJson(FaceCatalogue& catalogue, size_t entry, size_t number) {
  const FaceStyle& style = catalogue.StylesOf(entry)[number];
  json made = {{"name", Text(style.name)}, {"weight", style.weight}, {"width", style.width},
               {"slanted", style.slanted}, {"made", style.made},     {"axes", json::array()}};
  FacePick pick = {entry, number, {}};
  for (const FaceAxis& axis : catalogue.AxesOf(entry, number)) {
    made["axes"].push_back(
        {axis.axis.tag, axis.axis.least, axis.axis.usual, axis.axis.most, axis.place});
    pick.places.push_back((axis.axis.least + axis.axis.most + axis.place) / 3);
  }
  const auto options = catalogue.OptionsOf(pick);
  made["found_again"] = catalogue.PickOf(options) == pick;
  for (const auto& [option, value] : options) {
    if (!value.empty()) made["options"][std::string(option)] = Text(value);
  }
  FontData data;
  if (catalogue.entry(entry).kind != FaceKind::kStrokes &&
      FindFontData(catalogue.RequestOf({entry, number, {}}), &data).ok()) {
    made["file"] = data.path.string();
    made["index"] = data.index;
    made["found_style"] = Text(data.style);
    made["found_made"] = data.make_bold || data.make_slanted;
  }
  return made;
}

json EntryJson(FaceCatalogue& catalogue, size_t entry) {
  const FaceEntry& face = catalogue.entry(entry);
  json made = {{"name", Text(face.name)},
               {"given", Text(face.given)},
               {"kind", face.kind},
               {"fixed", face.fixed_pitch},
               {"regular", catalogue.RegularStyleOf(entry)},
               {"names", json::array()},
               {"styles", json::array()},
               {"scripts", json::array()},
               {"characters", json::array()}};
  for (const FamilyName& name : face.names)
    made["names"].push_back({Text(name.text), name.language});
  for (size_t i = 0; i < catalogue.StylesOf(entry).size(); ++i) {
    made["styles"].push_back(StyleJson(catalogue, entry, i));
  }
  for (size_t i = 0; i < FaceScripts().size(); ++i) {
    const bool covered = (catalogue.ScriptsOf(entry) >> i & 1) != 0;
    if (covered) made["scripts"].push_back(FaceScripts()[i].name);
  }
  for (const CharacterRange& range : catalogue.CharactersOf(entry).ranges) {
    made["characters"].push_back(
        {static_cast<uint32_t>(range.first), static_cast<uint32_t>(range.last)});
  }
  return made;
}

// The first drawn row and the last one, and how much ink there is.
json SampleJson(const BitmapSurface& picture) {
  size_t ink = 0, digest = 0;
  int first = picture.Height(), last = -1;
  for (size_t i = 0; i < picture.Pixels().size(); ++i) {
    const uint8_t value = picture.Pixels()[i];
    digest = digest * 31 + value;
    if (i % 4 == 3 || value == 255) continue;
    ink += 255U - value;
    last = static_cast<int>(i / 4) / picture.Width();
    if (first > last) first = last;
  }
  return {{"ink", ink}, {"digest", digest}, {"first", first}, {"last", last}};
}

}  // namespace
}  // namespace kerno

int main(int argc, char** argv) {
  using namespace kerno;
  if (argc < 4) return 2;
  FaceCatalogue catalogue;
  catalogue.Read(argv[1]);
  json all = json::array();
  for (int i = 4; i < argc; ++i) {
    size_t entry = 0;
    const Status added = catalogue.AddFile(argv[i], &entry);
    if (!added.ok()) all.push_back({{"file", argv[i]}, {"why", Text(added.why)}});
  }
  while (catalogue.ReadNext()) {
  }
  FaceFilter has;
  has.has = Utf8ToUtf16Lossy(argv[2]);
  std::vector<bool> passes(catalogue.size());
  for (const FaceRow& row : catalogue.Rows(has).rows) passes[row.entry] = true;
  FaceSamples samples(catalogue);
  const SampleLook look = {Utf8ToUtf16Lossy(argv[3]), 200, 32, 0, 0xFFFFFF};
  for (size_t i = 0; i < catalogue.size(); ++i) {
    json face = EntryJson(catalogue, i);
    face["has"] = static_cast<bool>(passes[i]);
    if (samples.PictureOf(i, look) == nullptr && samples.MakeNext()) {
      face["sample"] = SampleJson(*samples.PictureOf(i, look));
    }
    all.push_back(std::move(face));
  }
  std::printf("%s\n", all.dump(-1, ' ', false, json::error_handler_t::replace).c_str());
  return 0;
}
