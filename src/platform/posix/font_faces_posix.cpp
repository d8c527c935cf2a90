#include <algorithm>
#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <new>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "platform/device_context.h"
#include "platform/folder_path.h"
#include "platform/font_faces.h"
#include "platform/posix/font_catalog.h"
#include "platform/posix/free_type.h"
#include "platform/posix/unicode.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr uint8_t kFixedPitch = 1;       // FIXED_PITCH
constexpr uint8_t kVariablePitch = 2;    // VARIABLE_PITCH
constexpr uint8_t kFamilyRoman = 0x10;   // FF_ROMAN
constexpr uint8_t kFamilySwiss = 0x20;   // FF_SWISS
constexpr uint8_t kFamilyModern = 0x30;  // FF_MODERN
constexpr uint8_t kFamilyScript = 0x40;  // FF_SCRIPT
constexpr uint8_t kFamilyDecorative = 0x50;

// The character set of a face by the bits of its code page range, in this order of preference: the
// system's own code page is 932.
struct CodePageBit {
  int bit;
  uint8_t char_set;
};
constexpr std::array<CodePageBit, 6> kCharSets = {
    {{17, 128}, {18, 134}, {19, 129}, {20, 136}, {21, 130}, {31, 2}}};
constexpr uint8_t kAnsiCharSet = 0;
constexpr uint8_t kShiftJisCharSet = 128;

uint8_t CharSetOf(const CatalogFace& face, const SfntFacts& facts) {
  for (const CodePageBit& known : kCharSets) {
    if ((facts.code_page_range1 >> known.bit & 1) != 0) {
      return known.char_set;
    }
  }
  return !facts.has_os2 && face.covers_wide ? kShiftJisCharSet : kAnsiCharSet;
}

// The family bits from the PANOSE classification.
uint8_t FamilyOf(const CatalogFace& face, const SfntFacts& facts) {
  if (face.fixed_pitch) {
    return kFamilyModern;
  }
  switch (facts.panose_family) {
    case 2:
      if (facts.panose_serif < 2) {
        return 0;
      }
      return facts.panose_serif < 11 ? kFamilyRoman : kFamilySwiss;
    case 3:
      return kFamilyScript;
    case 4:
      return kFamilyDecorative;
    default:
      return 0;
  }
}

InstalledFace Describe(const std::u16string& name, const CatalogFace& face,
                       const SfntFacts& facts) {
  InstalledFace described;
  described.name = name;
  const uint8_t pitch = face.fixed_pitch ? kFixedPitch : kVariablePitch;
  described.pitch_and_family = static_cast<uint8_t>(pitch | FamilyOf(face, facts));
  described.char_set = CharSetOf(face, facts);
  described.font_type = face.has_outlines ? kTrueTypeFontType : kRasterFontType;
  return described;
}

// Families under the names that the system shows; each with the member that stands for it.
std::map<std::string, std::u16string> ShownFamilies(const FontCatalog& catalog) {
  std::map<std::string, std::u16string> families;
  for (const CatalogFace& face : catalog.faces()) {
    for (const CatalogFace::Name& name : face.families) {
      families.emplace(FaceNameKey(name.system, kMaxFaceName), name.system);
    }
  }
  return families;
}

const CatalogFace* FirstWhole(const FontCatalog& catalog,
                              const std::vector<const CatalogFace*>& members) {
  const auto whole =
      std::find_if(members.begin(), members.end(),
                   [&catalog](const CatalogFace* face) { return catalog.FactsOf(*face).whole; });
  return whole != members.end() ? *whole : nullptr;
}

bool LooksLikeFontFile(const fs::path& path) {
  static const std::set<std::string> kExtensions = {".ttf", ".ttc", ".otf", ".otc",  ".pfa",
                                                    ".pfb", ".pcf", ".bdf", ".woff", ".woff2"};
  std::string extension = path.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return kExtensions.contains(extension);
}

// Folders and files of fonts that Fontconfig passes over because nothing can be had of them, and
// why: a failure of reading, or ok for a damaged file.
std::map<std::string, Status> PassedOverFiles(const FontCatalog& catalog) {
  std::map<std::string, Status> passed_over;
  std::set<std::string> listed;
  for (const CatalogFace& face : catalog.faces()) listed.insert(face.path);
  for (const std::string& folder : catalog.Folders()) {
    const Status read = ListFolder(folder, [&](const fs::path& path) {
      std::error_code no_file;
      Status opened;  // FreeType's own reason may be an older one
      if (LooksLikeFontFile(path) && !listed.contains(path) && fs::is_regular_file(path, no_file) &&
          !OpenFace(path, 0, &opened)) {
        passed_over.emplace(path, ReadSfntFacts(path, 0).reading);
      }
    });
    if (!read.ok() && read.failure != Failure::kNotFound) passed_over.emplace(folder, read);
  }
  return passed_over;
}

// Those, and the ones that end too early.
std::vector<std::u16string> DamagedFiles(const FontCatalog& catalog) {
  std::set<std::string> damaged;
  for (const CatalogFace& face : catalog.faces()) {
    if (!catalog.FactsOf(face).whole) {
      damaged.insert(face.path);
    }
  }
  for (const auto& [path, why] : PassedOverFiles(catalog)) damaged.insert(path);
  std::vector<std::u16string> names;
  names.reserve(damaged.size());
  for (const std::string& path : damaged) {
    names.push_back(FromFontconfigText(path));
  }
  return names;
}

}  // namespace

std::vector<InstalledFace> EnumerateFaces(std::vector<std::u16string>* skipped) {
  const std::lock_guard held(FontCatalog::Lock());
  FontCatalog::Refresh();
  const FontCatalog& catalog = FontCatalog::Current();
  std::vector<InstalledFace> faces;
  for (const auto& [key, name] : ShownFamilies(catalog)) {
    const auto* face = FirstWhole(catalog, catalog.FindFamily(name, FaceWish{}));
    if (face == nullptr) {
      continue;
    }
    faces.push_back(Describe(name, *face, catalog.FactsOf(*face)));
    FaceWish vertical;
    vertical.vertical = true;
    if (const auto* wide = FirstWhole(catalog, catalog.FindFamily(name, vertical))) {
      faces.push_back(
          Describe((u"@" + name).substr(0, kMaxFaceName), *wide, catalog.FactsOf(*wide)));
    }
  }
  if (skipped != nullptr) {
    *skipped = DamagedFiles(catalog);
  }
  return faces;
}

std::vector<std::u16string> ListFamilies(FamilyForm form) {
  const std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)> config(FcInitLoadConfigAndFonts(),
                                                                     &FcConfigDestroy);
  std::map<std::string, std::u16string> families;
  if (!config) throw std::bad_alloc();
  const FcFontSet* set = FcConfigGetFonts(config.get(), FcSetSystem);
  for (int i = 0; set != nullptr && i < set->nfont; ++i) {
    FcPattern* face = set->fonts[i];
    FcBool outlines = FcFalse;
    FcPatternGetBool(face, FC_OUTLINE, 0, &outlines);
    if (outlines == FcFalse || (form == FamilyForm::kVertical && !CoversWide(face))) continue;
    for (const CatalogFace::Name& name : FamiliesOf(face)) {
      families.emplace(FaceNameKey(name.system, kMaxFaceName), name.system);
    }
  }
  std::vector<std::u16string> names;
  for (const auto& [key, name] : families) {
    const bool vertical = form == FamilyForm::kVertical;
    names.push_back(vertical ? (u"@" + name).substr(0, kMaxFaceName) : name);
  }
  return names;
}

std::vector<ListedFace> ListFaces() {
  const std::lock_guard held(FontCatalog::Lock());
  FontCatalog::Refresh();
  std::vector<ListedFace> listed;
  for (const CatalogFace& face : FontCatalog::Current().faces()) {
    if (face.families.empty()) continue;
    ListedFace item;
    item.families.push_back(face.families.front().system);
    for (const CatalogFace::Name& name : face.families) {
      const bool known =
          std::find(item.families.begin(), item.families.end(), name.text) != item.families.end();
      if (!known) item.families.push_back(name.text);
    }
    item.full_names = face.full_names;
    item.styles = face.styles;
    item.file = face.path;
    item.index = static_cast<uint32_t>(face.index) & 0xFFFF;
    item.instance = static_cast<uint32_t>(face.index) >> 16;
    item.has_outlines = face.has_outlines && face.is_sfnt;
    item.has_vertical_form = face.covers_wide;
    listed.push_back(std::move(item));
  }
  std::sort(listed.begin(), listed.end(), [](const ListedFace& a, const ListedFace& b) {
    return std::tie(a.families, a.styles, a.file, a.index, a.instance) <
           std::tie(b.families, b.styles, b.file, b.index, b.instance);
  });
  return listed;
}

Status AddFontFile(const fs::path& file, std::vector<std::u16string>* names) {
  const std::lock_guard held(FontCatalog::Lock());
  names->clear();
  std::error_code error;
  const fs::path whole = fs::absolute(file, error);
  const std::string path = (error ? file : whole).native();
  std::vector<std::string>& added = FontCatalog::AddedFiles();
  const bool is_new = std::find(added.begin(), added.end(), path) == added.end();
  if (is_new) {
    added.push_back(path);
    FontCatalog::Forget();
  }
  const FontCatalog& catalog = FontCatalog::Current();
  for (const CatalogFace& face : catalog.faces()) {
    if (face.path != path || !face.has_outlines || face.families.empty()) {
      continue;
    }
    const std::u16string& name = face.families.front().system;
    const bool known = std::find(names->begin(), names->end(), name) != names->end();
    if (!known && IsFaceInstalled(name)) {
      names->push_back(name);
    }
  }
  if (!names->empty()) {
    return Status::Ok();
  }
  if (is_new) {
    added.pop_back();
    FontCatalog::Forget();
  }
  return Status::Error(Failure::kOther, FromFontconfigText(path),
                       u"holds no outline face that can be used");
}

bool IsFaceInstalled(std::u16string_view name) {
  const std::lock_guard held(FontCatalog::Lock());
  name = name.substr(0, kMaxFaceName);
  FaceWish wish;
  wish.vertical = name.starts_with(u'@');
  if (wish.vertical) {
    name.remove_prefix(1);
  }
  const FontCatalog& catalog = FontCatalog::Current();
  return FirstWhole(catalog, catalog.FindFamily(name, wish)) != nullptr;
}

Status FontTrouble(std::u16string_view name) {
  const std::lock_guard held(FontCatalog::Lock());
  const FontCatalog& catalog = FontCatalog::Current();
  for (const CatalogFace* face : catalog.FindFamily(name, FaceWish{})) {
    if (const Status& reading = catalog.FactsOf(*face).reading; !reading.ok()) return reading;
  }
  const std::map<std::string, Status> passed_over = PassedOverFiles(catalog);
  const auto unread =
      std::ranges::find_if(passed_over, [](const auto& file) { return !file.second.ok(); });
  return unread == passed_over.end() ? Status::Ok() : unread->second;
}

}  // namespace kerno
