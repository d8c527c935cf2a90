// The families that are installed, as lists show them: what the system knows of them without a look
// into their files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/status.h"
#include "platform/style_choice.h"

namespace kerno {

struct FamilyName {
  std::u16string text;
  std::string language;  // a BCP 47 tag, "ja"; empty where it is not known

  bool operator==(const FamilyName&) const = default;
};

struct ListedFamily {
  std::u16string name;  // the one by which the system is asked, and which finds its data
  std::vector<FamilyName>
      names;  // in every language, those of parts of the family ("... Condensed")
              // included; the one to show where no other is wanted comes first
  std::vector<std::u16string> full_names;  // of its faces
  bool fixed_pitch = false;
  bool symbols = false;   // its characters are pictures
  bool all_names = true;  // otherwise the system told but one; ReadFamilyNames tells the others
};

// The families with outlines that can be read, in no order.
std::vector<ListedFamily> ListOutlineFamilies();

// Completes a family of which the system told but one name, by a look into a file. Its names stay
// as they are where the file cannot be read.
void ReadFamilyNames(ListedFamily* family);

// The styles of such a family, in the order of their likeness to a normal face; each name once.
struct ListedStyle {
  StyledFace face;
  bool variable = false;  // has axes
};
std::vector<ListedStyle> ListStyles(std::u16string_view family);

// Characters as ranges in ascending order, both ends included.
struct CharacterRange {
  char32_t first = 0, last = 0;
};
struct CharacterSet {
  std::vector<CharacterRange> ranges;
  bool all_planes = true;  // otherwise the system told those up to U+FFFF alone

  bool Has(char32_t ch) const;
};

// What is added grows the set at its end: in ascending order.
void Append(CharacterRange range, CharacterSet* characters);

// Those that the family's normal face has glyphs for. Fails with kNotFound for a family that is not
// installed.
[[nodiscard]] Status ReadCharacters(std::u16string_view family, CharacterSet* characters);

}  // namespace kerno
