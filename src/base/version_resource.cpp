#include "base/version_resource.h"

#include <cstdint>

#include "platform/fold_case.h"

namespace kerno {
namespace {

// A window on bytes that answers nothing beyond them.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}

  std::optional<uint32_t> U16(uint64_t at) const {
    if (!Has(at, 2)) return std::nullopt;
    return Byte(at) | Byte(at + 1) << 8;
  }
  std::optional<uint32_t> U32(uint64_t at) const {
    if (!Has(at, 4)) return std::nullopt;
    return Byte(at) | Byte(at + 1) << 8 | Byte(at + 2) << 16 | Byte(at + 3) << 24;
  }
  std::optional<std::string_view> Part(uint64_t at, uint64_t size) const {
    if (!Has(at, size)) return std::nullopt;
    return bytes_.substr(static_cast<size_t>(at), static_cast<size_t>(size));
  }

 private:
  bool Has(uint64_t at, uint64_t size) const {
    return at <= bytes_.size() && size <= bytes_.size() - at;
  }
  uint32_t Byte(uint64_t at) const {
    return static_cast<unsigned char>(bytes_[static_cast<size_t>(at)]);
  }

  std::string_view bytes_;
};

constexpr uint32_t kResourceDirectory = 2;  // index among the data directories
constexpr uint32_t kVersionType = 16;       // RT_VERSION
constexpr uint32_t kSubdirectory = 0x80000000;

// Where the sections and the resources of an image are.
struct ImageLayout {
  uint64_t sections = 0;  // offset of the section headers
  uint32_t section_count = 0;
  uint32_t resources = 0;  // address of the resource directory
};

std::optional<ImageLayout> ReadLayout(const Bytes& image) {
  const auto dos = image.U16(0);
  const auto header = image.U32(0x3C);
  if (!dos || *dos != 0x5A4D || !header) return std::nullopt;  // "MZ"
  const auto signature = image.U32(*header);
  if (!signature || *signature != 0x00004550) return std::nullopt;  // "PE\0\0"
  const uint64_t coff = uint64_t{*header} + 4;
  const uint64_t optional = coff + 20;
  const auto sections = image.U16(coff + 2);
  const auto optional_size = image.U16(coff + 16);
  const auto magic = image.U16(optional);
  if (!sections || !optional_size || !magic) return std::nullopt;
  if (*magic != 0x10B && *magic != 0x20B) return std::nullopt;  // 32- and 64-bit images
  const uint64_t counts = optional + (*magic == 0x20B ? 108 : 92);
  const auto directories = image.U32(counts);
  const auto address = image.U32(counts + 4 + 8 * kResourceDirectory);
  if (!directories || *directories <= kResourceDirectory || !address || *address == 0) {
    return std::nullopt;
  }
  return ImageLayout{optional + *optional_size, *sections, *address};
}

// The offset in the file of an address of the loaded image, and how many bytes of the file follow
// in its section.
struct FilePlace {
  uint64_t offset = 0;
  uint64_t size = 0;
};

std::optional<FilePlace> PlaceOfAddress(const Bytes& image, const ImageLayout& layout,
                                        uint32_t address) {
  for (uint32_t i = 0; i < layout.section_count; ++i) {
    const uint64_t header = layout.sections + 40ull * i;
    const auto start = image.U32(header + 12);
    const auto size = image.U32(header + 16);
    const auto raw = image.U32(header + 20);
    if (!start || !size || !raw) return std::nullopt;
    if (address < *start || address - *start >= *size) continue;
    return FilePlace{uint64_t{*raw} + (address - *start), *size - (address - *start)};
  }
  return std::nullopt;
}

// The entry of a resource directory for `id`, or its first one.
std::optional<uint32_t> DirectoryEntry(const Bytes& resources, uint32_t directory,
                                       std::optional<uint32_t> id) {
  const auto named = resources.U16(uint64_t{directory} + 12);
  const auto numbered = resources.U16(uint64_t{directory} + 14);
  if (!named || !numbered) return std::nullopt;
  const uint32_t count = *named + *numbered;
  for (uint32_t i = id ? *named : 0; i < count; ++i) {
    const uint64_t entry = uint64_t{directory} + 16 + 8ull * i;
    const auto name = resources.U32(entry);
    const auto target = resources.U32(entry + 4);
    if (!name || !target) return std::nullopt;
    if (!id || *name == *id) return target;
  }
  return std::nullopt;
}

// The fields of a node of the version block, which begins at `at` within its parent.
struct Node {
  std::string_view key;
  std::string_view value;
  std::string_view below;
  uint64_t size = 0;  // of the whole node
};

uint64_t Aligned(uint64_t at) {
  return (at + 3) & ~uint64_t{3};
}

std::optional<Node> ReadNode(std::string_view block, uint64_t at) {
  const Bytes all(block);
  const auto length = all.U16(at);
  const auto value_length = all.U16(at + 2);
  const auto type = all.U16(at + 4);
  if (!length || !value_length || !type || *length < 6) return std::nullopt;
  const auto whole = all.Part(at, *length);
  if (!whole) return std::nullopt;
  const Bytes node(*whole);
  uint64_t key_end = 6;
  for (;; key_end += 2) {
    const auto unit = node.U16(key_end);
    if (!unit) return std::nullopt;
    if (*unit == 0) break;
  }
  const uint64_t value_at = Aligned(key_end + 2);
  // Texts count their value in characters.
  const uint64_t value_size = uint64_t{*value_length} * (*type == 1 ? 2 : 1);
  Node result;
  result.key = whole->substr(6, static_cast<size_t>(key_end - 6));
  result.size = *length;
  if (value_at >= whole->size()) return result;
  const uint64_t left = whole->size() - value_at;
  result.value = *node.Part(value_at, value_size < left ? value_size : left);
  const uint64_t below_at = Aligned(value_at + value_size);
  if (below_at < whole->size()) result.below = *node.Part(below_at, whole->size() - below_at);
  return result;
}

bool KeyIs(std::string_view key, std::u16string_view wanted) {
  if (key.size() != 2 * wanted.size()) return false;
  const Bytes bytes(key);
  for (size_t i = 0; i < wanted.size(); ++i) {
    if (FoldCase(static_cast<char16_t>(*bytes.U16(2 * i))) != FoldCase(wanted[i])) return false;
  }
  return true;
}

std::optional<Node> FindChild(std::string_view nodes, std::u16string_view key) {
  for (uint64_t at = 0; at < nodes.size();) {
    const auto node = ReadNode(nodes, at);
    if (!node) return std::nullopt;
    if (KeyIs(node->key, key)) return node;
    at = Aligned(at + node->size);
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string_view> FindVersionBlock(std::string_view image_bytes, bool* present) {
  *present = false;
  const Bytes image(image_bytes);
  const auto layout = ReadLayout(image);
  if (!layout) return std::nullopt;
  const auto place = PlaceOfAddress(image, *layout, layout->resources);
  if (!place) return std::nullopt;
  const uint64_t in_file =
      place->offset < image_bytes.size() ? image_bytes.size() - place->offset : 0;
  const auto part = image.Part(place->offset, place->size < in_file ? place->size : in_file);
  if (!part) return std::nullopt;
  const Bytes resources(*part);
  // Three levels: the type, its first name, its first language.
  const auto type = DirectoryEntry(resources, 0, kVersionType);
  if (!type) return std::nullopt;
  *present = true;
  if (!(*type & kSubdirectory)) return std::nullopt;
  const auto name = DirectoryEntry(resources, *type & ~kSubdirectory, std::nullopt);
  if (!name || !(*name & kSubdirectory)) return std::nullopt;
  const auto data = DirectoryEntry(resources, *name & ~kSubdirectory, std::nullopt);
  if (!data || (*data & kSubdirectory)) return std::nullopt;
  const auto address = resources.U32(*data);
  const auto size = resources.U32(uint64_t{*data} + 4);
  if (!address || !size) return std::nullopt;
  const auto block = PlaceOfAddress(image, *layout, *address);
  return block && *size <= block->size ? image.Part(block->offset, *size) : std::nullopt;
}

std::optional<std::string_view> QueryVersionBlock(std::string_view block,
                                                  std::u16string_view path) {
  auto node = ReadNode(block, 0);
  if (!node || !KeyIs(node->key, u"VS_VERSION_INFO")) return std::nullopt;
  while (!path.empty() && path.front() == u'\\') {
    path.remove_prefix(1);
    const size_t end = path.find(u'\\');
    node = FindChild(node->below, path.substr(0, end));
    if (!node) return std::nullopt;
    path.remove_prefix(end == path.npos ? path.size() : end);
  }
  return node->value;
}

std::u16string VersionText(std::string_view value) {
  const Bytes bytes(value);
  std::u16string text;
  for (uint64_t at = 0;; at += 2) {
    const auto unit = bytes.U16(at);
    if (!unit || *unit == 0) return text;
    text.push_back(static_cast<char16_t>(*unit));
  }
}

}  // namespace kerno
