// The characters of code page 932, as data.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kerno::posix {

// Lead bytes 0x81 to 0x9F and 0xE0 to 0xFC, in this order; trail bytes 0x40 to 0x7E and 0x80 to
// 0xFC.
inline constexpr size_t kCodePageLeads = 60;
inline constexpr size_t kCodePageTrails = 188;

// What each lead byte's pairs decode to, kCodePageTrails units a row, U+FFFD for a pair without a
// character; null for a lead byte without characters in the table.
extern const char16_t* const kCodePageRows[kCodePageLeads];

// Units whose bytes are not found by turning the rows round: best-fit mappings, and characters that
// several pairs stand for where the later pair is the one to write.
struct CodePageExtra {
  char16_t unit;
  uint16_t bytes;  // lead byte in bits 8 and up, 0 when the unit has none
};
extern const CodePageExtra kCodePageExtras[];
extern const size_t kCodePageExtraCount;

}  // namespace kerno::posix
