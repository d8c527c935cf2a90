// All that letters can be cut with: the families that are installed, fonts of strokes, font files
// that were opened. What a list of faces shows, in which order, and what a choice from it means.
//
// One thread at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/face_names.h"
#include "app/face_scripts.h"
#include "outline/font_details.h"
#include "platform/font_data.h"
#include "platform/font_families.h"
#include "platform/status.h"

namespace kerno {

enum class FaceKind : uint8_t {
  kOutlines,  // an installed family
  kSymbols,   // one whose characters are pictures
  kStrokes,   // a font of single lines
  kFile,      // a font file that was opened, installed or not
};

struct FaceEntry {
  FaceKind kind = FaceKind::kOutlines;
  std::u16string name;            // to show: in the reader's language where the font has it so
  std::u16string given;           // what finds it: a family, or the name of a font of strokes
  std::filesystem::path file;     // of a font of strokes and of an opened file
  std::vector<FamilyName> names;  // all that it is searched by
  bool fixed_pitch = false;
};

struct FaceStyle {
  std::u16string name;      // "Bold Oblique"; in a collection with the family before it
  std::u16string own_name;  // the same without a family
  int32_t weight = 400;
  int32_t width = 100;  // percent
  bool slanted = false;
  bool made = false;      // the family has no such letters: they are made of others
  bool variable = false;  // has axes
  uint32_t index = 0;     // of an opened file: the font of a collection
};

struct FaceAxis {
  FontAxis axis;
  double place = 0;  // where the style lies on it
};

// A face as it was chosen.
struct FacePick {
  size_t entry = 0;
  size_t style = 0;
  std::vector<double> places;  // on the axes of the style, in their order; empty: its own

  bool operator==(const FacePick&) const = default;
};

// An option of "kerno cut" and its value; empty: it is not given.
using FaceOption = std::pair<std::string_view, std::u16string>;

// What the list shows.
struct FaceFilter {
  std::u16string search = {};  // words in any order, any case, with or without
                               // accents, any width, either kana
  std::string script = {};     // the name of one of FaceScripts; empty: any
  std::u16string has = {};     // only faces with all of these characters; empty: any
  bool favourites = false;
  bool strokes = false;
};

struct FaceRow {
  std::u16string name;
  std::u16string note;  // what else there is to say of it, beside the name
  bool favourite = false;
  bool recent = false;
  FaceKind kind = FaceKind::kOutlines;
  size_t entry = 0;
};

struct FaceRows {
  std::vector<FaceRow> rows;
  bool complete = true;  // otherwise not all faces were read yet: again when ReadNext has ended
};

class FaceCatalogue {
 public:
  static constexpr size_t kMostRecent = 12;

  // Lists the names of all that is installed, those in `language` (a BCP 47 tag) for showing;
  // opened files stay. Entries get new numbers.
  void Read(std::string_view language);
  // A change of the language alone.
  void ShowNamesIn(std::string_view language);

  size_t size() const { return items_.size(); }
  const FaceEntry& entry(size_t entry) const { return items_[entry].entry; }

  // Adds a font file, of outlines or of strokes, or finds it among the entries. Fails for what is
  // no font. *entry is set on success only.
  [[nodiscard]] Status AddFile(const std::filesystem::path& file, size_t* entry);

  // Read when they are first asked for. A face that cannot be read, and one of strokes, has a
  // single style without a name; the former has no characters, either.
  const std::vector<FaceStyle>& StylesOf(size_t entry);  // by width and weight, made ones last
  size_t RegularStyleOf(size_t entry);                   // the first choice
  const std::vector<FaceAxis>& AxesOf(size_t entry, size_t style);
  const CharacterSet& CharactersOf(size_t entry);
  FaceScriptSet ScriptsOf(size_t entry);

  // Reads of one more face what filters and searches need; false where nothing is left. For the
  // time between events, while a list is open.
  bool ReadNext();

  // Recent faces, then favourites, then the others by name; with a search, the best finds first.
  // Faces whose characters are not known yet are looked at for a few milliseconds, then left out.
  FaceRows Rows(const FaceFilter& filter);
  // The scripts that the faces read so far cover: values of FaceFilter::script.
  std::vector<std::string> Scripts() const;

  bool IsFavourite(size_t entry) const;
  void ToggleFavourite(size_t entry);
  // Makes it the latest of the recent ones. The rows change their order by it.
  void NoteUse(size_t entry);
  // Both lists as texts that can be kept. Names of faces that
  // are not there stay in them.
  std::u16string StoredFavourites() const;
  std::u16string StoredRecent() const;
  void SetStored(std::u16string_view favourites, std::u16string_view recent);

  // How outlines of the face are asked for; not for fonts of strokes.
  FaceRequest RequestOf(const FacePick& pick);

  // --face, --style, --variation, --font-file and --stroke-font, all five in this order.
  std::array<FaceOption, 5> OptionsOf(const FacePick& pick);
  // The reverse, for whatever values a user may give these options; others are passed over.
  // Nothing for a face that is not there; a file is added.
  std::optional<FacePick> PickOf(std::span<const FaceOption> options);

 private:
  // An entry and what is known of it.
  struct Item {
    FaceEntry entry;
    ListedFamily family;  // of an installed one: its names
    bool opened = false;  // by AddFile
    SearchNames search;
    std::optional<std::vector<FaceStyle>> styles;
    size_t regular = 0;
    std::map<size_t, std::vector<FaceAxis>> axes;  // by style
    std::optional<CharacterSet> characters;
    FaceScriptSet scripts = 0;
    std::optional<bool> has;  // has_text_
  };

  void Add(Item item);
  void ShowName(Item* item) const;
  void SortByName();
  std::u16string KeyOf(const Item& item) const;
  Status AddOutlineFile(const std::filesystem::path& file, Item* item);
  std::vector<FaceStyle> ReadStyles(const Item& item, size_t* regular) const;
  FaceRequest StyleRequest(const Item& item, const FaceStyle& style) const;

  bool Passes(const FaceFilter& filter, Item* item);
  bool HasText(Item* item);
  std::u16string NoteOf(const Item& item, size_t found_name) const;

  std::string VariationsOf(const FacePick& pick);
  std::optional<size_t> FindFile(const std::filesystem::path& file) const;
  std::optional<size_t> FindFamily(std::u16string_view name) const;
  std::optional<FacePick> PickFamily(const std::u16string& name, std::u16string style);
  std::optional<FacePick> PickStrokes(std::u16string_view name);
  std::optional<FacePick> PickFile(std::u16string_view file, std::u16string_view style);
  size_t FindStyle(size_t entry, std::optional<uint32_t> index, std::u16string_view style);

  std::string language_;
  std::vector<Item> items_;
  std::vector<size_t> order_;  // of the items by name
  bool sorted_ = true;
  size_t next_ = 0;                                  // for ReadNext
  std::u16string has_text_;                          // of the last filter
  std::vector<char32_t> has_characters_;             // distinct ones of has_text_
  std::vector<std::u16string> favourites_, recent_;  // keys, the latest first
};

}  // namespace kerno
