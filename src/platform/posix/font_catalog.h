// The installed faces as Fontconfig knows them, found by family name and weight.
//
// Fontconfig is started when the first face is asked for, and reads its configuration from where
// the user's environment points (FONTCONFIG_FILE and its fellows).
#pragma once

#include <fontconfig/fontconfig.h>

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/posix/sfnt_file.h"

namespace kerno {

// One face of one file.
struct CatalogFace {
  struct Name {
    std::u16string text;    // as the file spells it
    std::u16string system;  // the name of the same family that the system shows: the English one,
                            // cut to kMaxFaceName units
    std::string language;   // a BCP 47 tag, "ja"; empty where the file does not say
    bool own = true;        // the family of regular, bold and italic faces that the face is in; not
                            // a wider one of more weights and widths
  };

  std::string path;
  int index = 0;                       // face, and instance of a variable face in the upper 16 bits
  std::vector<Name> families;          // every localized name of its families
  std::vector<std::u16string> styles;  // every localized name of its style, "Bold Oblique"
  std::vector<std::u16string> full_names;  // of the face alone: "DejaVu Sans Bold Oblique"
  int32_t weight = 400;                    // 100 to 1000
  int32_t width = 100;                     // percent of the normal width
  bool slanted = false;                    // italic or oblique
  bool symbols = false;                    // its characters are pictures
  bool fixed_pitch = false;   // every character as wide as the next, or half as wide (dual)
  bool has_outlines = false;  // TrueType, CFF or Type 1
  bool is_sfnt = false;       // TrueType or CFF
  bool has_axes = false;      // is a variable font, or an instance of one
  bool covers_wide = false;   // covers East Asian full-width characters
  // Of the normal place on its axes; lives as long as the catalogue. Null where nothing is known.
  const FcCharSet* characters = nullptr;
};

// The family names of a face and whether it covers full-width characters, from what Fontconfig
// keeps of it.
std::vector<CatalogFace::Name> FamiliesOf(FcPattern* pattern);
bool CoversWide(FcPattern* pattern);

// How a face is wanted.
struct FaceWish {
  int32_t weight = 400;
  bool italic = false;
  bool vertical = false;  // the "@" form: only faces that cover full-width characters
};

class FontCatalog {
 public:
  // Whoever uses the catalogue, or faces of it, holds this: another thread may read it again.
  static std::recursive_mutex& Lock();

  // The catalogue of the process, read at the first call.
  static FontCatalog& Current();

  // Makes the next call of Current read the configuration again when it, or a folder, has changed
  // since. Faces found before lose their place.
  static void Refresh();
  // The same, whether something has changed or not.
  static void Forget();

  // Files besides those of the configuration, known to every catalogue that is read from now on.
  static std::vector<std::string>& AddedFiles();

  FontCatalog();
  ~FontCatalog();
  FontCatalog(const FontCatalog&) = delete;
  FontCatalog& operator=(const FontCatalog&) = delete;

  const std::vector<CatalogFace>& faces() const { return faces_; }

  // Members of the family with this name (without "@", which counts among the units that are
  // compared), the best for the wish first: outlines,
  // then slant, width nearest to normal, weight nearest to the wanted one.
  std::vector<const CatalogFace*> FindFamily(std::u16string_view name, const FaceWish& wish) const;

  // The faces of which this is the full name.
  std::vector<const CatalogFace*> FindFullName(std::u16string_view name) const;

  // What the font mapper takes for a name that is not installed, best first. It sorts all faces, so
  // its answers are kept.
  const std::vector<const CatalogFace*>& Substitutes(std::u16string_view name,
                                                     const FaceWish& wish) const;

  // Whether the face's file is whole. Looks at the file at the first call.
  const SfntFacts& FactsOf(const CatalogFace& face) const;

  // Folders that are searched for font files, sub-folders included.
  std::vector<std::string> Folders() const;

  bool IsUpToDate() const;

 private:
  std::vector<const CatalogFace*> FindSubstitutes(const std::u16string& name,
                                                  const FaceWish& wish) const;

  std::vector<CatalogFace> faces_;
  std::multimap<std::string, size_t> by_name_;
  std::multimap<std::string, size_t> by_vertical_name_;  // "@" leaves a unit less to compare
  mutable std::map<const CatalogFace*, SfntFacts> facts_;
  // By name, weight, slant and whether it is the vertical form.
  mutable std::map<std::tuple<std::u16string, int32_t, bool, bool>, std::vector<const CatalogFace*>>
      substitutes_;
  FcConfig* config_ = nullptr;
};

// The name by which the system shows the family that `face` was found by when `name` was asked for,
// with "@" in front for the vertical form. The first family when none matches.
std::u16string SystemName(const CatalogFace& face, std::u16string_view name, bool vertical);

}  // namespace kerno
