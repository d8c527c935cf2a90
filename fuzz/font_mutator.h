// Changes a font by its structure: one table grows, shrinks or changes, and the directory fits
// again, so that what reads the tables is reached and not only what refuses the file.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t most);

namespace kerno::fuzz {

inline uint32_t Big(const std::string& bytes, size_t at, int size) {
  uint32_t value = 0;
  for (int i = 0; i < size; ++i) {
    value = value << 8 | static_cast<uint8_t>(bytes[at + static_cast<size_t>(i)]);
  }
  return value;
}

inline void AppendBig(std::string* bytes, uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) bytes->push_back(static_cast<char>(value >> shift));
}

struct FontTable {
  std::string tag, bytes;
};

// The tables of a font without collections; none where its directory is damaged.
inline std::vector<FontTable> TablesOf(const std::string& font) {
  std::vector<FontTable> tables;
  if (font.size() < 12 || font.size() < 12 + 16 * Big(font, 4, 2)) return {};
  for (size_t i = 0; i < Big(font, 4, 2); ++i) {
    const size_t entry = 12 + 16 * i, offset = Big(font, entry + 8, 4);
    if (offset > font.size()) return {};
    tables.push_back({font.substr(entry, 4), font.substr(offset, Big(font, entry + 12, 4))});
  }
  return tables;
}

inline std::string FontOf(const std::string& head, const std::vector<FontTable>& tables) {
  std::string font = head.substr(0, 12), data;
  for (const FontTable& table : tables) {
    std::string padded = table.bytes;
    padded.resize((padded.size() + 3) / 4 * 4);
    uint32_t sum = 0;
    for (size_t at = 0; at < padded.size(); at += 4) sum += Big(padded, at, 4);
    font += table.tag;
    AppendBig(&font, sum);
    AppendBig(&font, static_cast<uint32_t>(12 + 16 * tables.size() + data.size()));
    AppendBig(&font, static_cast<uint32_t>(table.bytes.size()));
    data += padded;
  }
  return font + data;
}

// For LLVMFuzzerCustomMutator: the font begins after `options` bytes, which change now and then.
inline size_t MutateFont(uint8_t* data, size_t size, size_t most, unsigned seed, size_t options) {
  constexpr size_t kRoom = 64;  // how far a table may grow
  if (size <= options) return LLVMFuzzerMutate(data, size, most);
  std::string font(reinterpret_cast<char*>(data) + options, size - options);
  std::vector<FontTable> tables = TablesOf(font);
  if (tables.empty() || seed % 16 == 0) return LLVMFuzzerMutate(data, size, most);
  if (seed % 16 == 1) {
    LLVMFuzzerMutate(data, options, options);
    return size;
  }
  std::string& table = tables[seed / 16 % tables.size()].bytes;
  const size_t length = table.size();
  table.resize(length + kRoom);
  table.resize(LLVMFuzzerMutate(reinterpret_cast<uint8_t*>(table.data()), length, table.size()));
  font = FontOf(font, tables);
  if (options + font.size() > most) return LLVMFuzzerMutate(data, size, most);
  std::memcpy(data + options, font.data(), font.size());
  return options + font.size();
}

}  // namespace kerno::fuzz
