#include "parts/ipx_packed.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kerno::ipx {
namespace {

constexpr size_t kRun = 8;  // units of ASCII taken at once

// Appends `count` units, which unit_at tells by their places.
template <typename UnitAt>
void AppendUnits(std::string* packed, size_t count, UnitAt unit_at) {
  constexpr size_t kUnits = 128 * kRun;  // packed at a time
  char bytes[3 * kUnits];
  char* at = bytes;
  const auto put = [&](unsigned byte) { *at++ = static_cast<char>(byte); };
  const auto put_unit = [&](unsigned unit) {
    if (unit < 0x80) {
      put(unit);
    } else if (unit < 0x800) {
      put(0xC0 | (unit >> 6));
      put(0x80 | (unit & 0x3F));
    } else {
      put(0xE0 | (unit >> 12));
      put(0x80 | ((unit >> 6) & 0x3F));
      put(0x80 | (unit & 0x3F));
    }
  };
  for (size_t from = 0; from < count; from += kUnits) {
    const size_t end = std::min(count, from + kUnits);
    at = bytes;
    size_t i = from;
    for (; i + kRun <= end; i += kRun) {
      unsigned any = 0;
      for (size_t k = 0; k < kRun; ++k) any |= unit_at(i + k);
      if (any < 0x80) {
        for (size_t k = 0; k < kRun; ++k) at[k] = static_cast<char>(unit_at(i + k));
        at += kRun;
      } else {
        for (size_t k = 0; k < kRun; ++k) put_unit(unit_at(i + k));
      }
    }
    for (; i < end; ++i) put_unit(unit_at(i));
    packed->append(bytes, static_cast<size_t>(at - bytes));
  }
}

// Calls take(unit) for each unit. What a cut in the middle of one left is read as if zeros
// followed.
template <typename Take>
void EachUnit(std::string_view packed, Take take) {
  for (size_t at = 0; at < packed.size();) {
    const auto byte = [&](size_t i) -> unsigned {
      return at + i < packed.size() ? static_cast<unsigned char>(packed[at + i]) : 0u;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) {
      take(static_cast<char16_t>(lead));
      at += 1;
    } else if (lead < 0xE0) {
      take(static_cast<char16_t>((lead & 0x1F) << 6 | (byte(1) & 0x3F)));
      at += 2;
    } else {
      take(static_cast<char16_t>((lead & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F)));
      at += 3;
    }
  }
}

}  // namespace

void AppendPacked(std::string* packed, std::u16string_view text) {
  AppendUnits(packed, text.size(), [&](size_t i) -> unsigned { return text[i]; });
}

void AppendPackedBytes(std::string* packed, std::string_view bytes, ByteOrder order) {
  const auto byte = [&](size_t at) -> unsigned { return static_cast<unsigned char>(bytes[at]); };
  const size_t count = bytes.size() / 2;
  if (order == ByteOrder::kLittle) {
    AppendUnits(packed, count, [&](size_t i) { return byte(2 * i) | byte(2 * i + 1) << 8; });
  } else {
    AppendUnits(packed, count, [&](size_t i) { return byte(2 * i) << 8 | byte(2 * i + 1); });
  }
}

std::string Pack(std::u16string_view text) {
  std::string packed;
  packed.reserve(text.size());
  AppendPacked(&packed, text);
  return packed;
}

std::u16string Unpack(std::string_view packed) {
  std::u16string text;
  text.reserve(packed.size());
  EachUnit(packed, [&](char16_t unit) { text.push_back(unit); });
  return text;
}

std::string UnpackBytes(std::string_view packed) {
  std::string bytes(packed.size() * 2, '\0');
  char* at = bytes.data();
  EachUnit(packed, [&](char16_t unit) {
    *at++ = static_cast<char>(unit & 0xFF);
    *at++ = static_cast<char>(unit >> 8);
  });
  bytes.resize(static_cast<size_t>(at - bytes.data()));
  return bytes;
}

size_t AsciiPrefix(std::string_view bytes) {
  size_t at = 0;
  for (; at + 8 <= bytes.size(); at += 8) {
    uint64_t eight = 0;
    std::memcpy(&eight, bytes.data() + at, 8);
    if (eight & 0x8080808080808080u) break;
  }
  while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80) ++at;
  return at;
}

}  // namespace kerno::ipx
