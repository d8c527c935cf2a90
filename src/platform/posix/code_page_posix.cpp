#include <array>
#include <memory>

#include "code_page_table.h"
#include "platform/code_page.h"

namespace kerno {
namespace {

constexpr char16_t kInvalid = u'\u30FB';      // what stands for bytes without a character
constexpr char16_t kNoCharacter = u'\uFFFD';  // marks a pair without a character in the table
constexpr char16_t kUserDefined = 0xE000;     // first character of lead bytes 0xF0 to 0xF9
constexpr uint32_t kFirstUserLead = 0xF0;
constexpr uint32_t kLastUserLead = 0xF9;
constexpr size_t kUnits = 0x10000;

bool IsLead(uint32_t byte) {
  return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
}
bool IsTrail(uint32_t byte) {
  return byte >= 0x40 && byte <= 0xFC && byte != 0x7F;
}
// Copies of characters that the rows of 0xFA to 0xFC hold too; those are the ones to write.
bool IsDecodedOnly(uint32_t lead) {
  return lead == 0xED || lead == 0xEE;
}

char16_t DecodeSingle(uint32_t byte) {
  if (byte <= 0x80) return static_cast<char16_t>(byte);
  if (byte >= 0xA1 && byte <= 0xDF) return static_cast<char16_t>(0xFF61 + (byte - 0xA1));
  if (byte == 0xA0) return u'\uF8F0';
  if (byte >= 0xFD) return static_cast<char16_t>(0xF8F1 + (byte - 0xFD));
  return kInvalid;
}

char16_t DecodePair(uint32_t lead, uint32_t trail) {
  const uint32_t column = trail - (trail > 0x7F ? 0x41 : 0x40);
  if (lead >= kFirstUserLead && lead <= kLastUserLead) {
    return static_cast<char16_t>(kUserDefined + (lead - kFirstUserLead) * posix::kCodePageTrails +
                                 column);
  }
  const char16_t* row = posix::kCodePageRows[lead - (lead >= 0xE0 ? 0xC1 : 0x81)];
  return row ? row[column] : kNoCharacter;
}

// Bytes of every unit, 0 for a unit that has none (and for NUL, whose byte is 0).
using Encoding = std::array<uint16_t, kUnits>;

std::unique_ptr<const Encoding> BuildEncoding() {
  auto encoding = std::make_unique<Encoding>();
  const auto put = [&](char16_t unit, uint32_t bytes) {
    if (unit != kNoCharacter && (*encoding)[unit] == 0) {
      (*encoding)[unit] = static_cast<uint16_t>(bytes);
    }
  };
  for (uint32_t byte = 1; byte < 0x100; ++byte) {
    if (!IsLead(byte)) put(DecodeSingle(byte), byte);
  }
  for (uint32_t lead = 0x81; lead <= 0xFC; ++lead) {
    if (!IsLead(lead) || IsDecodedOnly(lead)) continue;
    for (uint32_t trail = 0x40; trail <= 0xFC; ++trail) {
      if (IsTrail(trail)) put(DecodePair(lead, trail), lead << 8 | trail);
    }
  }
  for (size_t i = 0; i < posix::kCodePageExtraCount; ++i) {
    (*encoding)[posix::kCodePageExtras[i].unit] = posix::kCodePageExtras[i].bytes;
  }
  return encoding;
}

}  // namespace

std::string EncodeCodePage932(std::u16string_view text, char default_byte, bool* used_default) {
  static const std::unique_ptr<const Encoding> kEncoding = BuildEncoding();
  std::string bytes;
  bytes.reserve(text.size() * 2);
  bool used = false;
  for (const char16_t unit : text) {
    const uint16_t code = (*kEncoding)[unit];
    if (code > 0xFF) bytes.push_back(static_cast<char>(code >> 8));
    if (code == 0 && unit != 0) {
      bytes.push_back(default_byte);
      used = true;
    } else {
      bytes.push_back(static_cast<char>(code & 0xFF));
    }
  }
  if (used_default) *used_default = used;
  return bytes;
}

std::u16string DecodeCodePage932(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (size_t at = 0; at < bytes.size(); ++at) {
    const uint32_t byte = static_cast<unsigned char>(bytes[at]);
    if (!IsLead(byte)) {
      text.push_back(DecodeSingle(byte));
      continue;
    }
    const uint32_t trail = at + 1 < bytes.size() ? static_cast<unsigned char>(bytes[at + 1]) : 0;
    if (!IsTrail(trail)) {
      text.push_back(kInvalid);
      continue;
    }
    const char16_t unit = DecodePair(byte, trail);
    text.push_back(unit == kNoCharacter ? kInvalid : unit);
    ++at;
  }
  return text;
}

}  // namespace kerno
