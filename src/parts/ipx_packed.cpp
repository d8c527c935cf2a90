#include "parts/ipx_packed.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace kerno::ipx {
namespace {

// Appends `count` units, which unit_at tells by their places.
template <typename UnitAt>
void AppendUnits(std::string* packed, size_t count, UnitAt unit_at) {
  constexpr size_t kUnits = 1024;  // packed at a time
  char bytes[3 * kUnits];
  for (size_t from = 0; from < count; from += kUnits) {
    const size_t end = std::min(count, from + kUnits);
    char* at = bytes;
    const auto put = [&](unsigned byte) { *at++ = static_cast<char>(byte); };
    for (size_t i = from; i < end; ++i) {
      const unsigned unit = unit_at(i);
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
    }
    packed->append(bytes, static_cast<size_t>(at - bytes));
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
  for (size_t at = 0; at < packed.size();) {
    const auto byte = [&](size_t i) -> unsigned {
      return at + i < packed.size() ? static_cast<unsigned char>(packed[at + i]) : 0u;
    };
    const unsigned lead = byte(0);
    if (lead < 0x80) {
      text.push_back(static_cast<char16_t>(lead));
      at += 1;
    } else if (lead < 0xE0) {
      text.push_back(static_cast<char16_t>((lead & 0x1F) << 6 | (byte(1) & 0x3F)));
      at += 2;
    } else {
      text.push_back(
          static_cast<char16_t>((lead & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F)));
      at += 3;
    }
  }
  return text;
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
