#include "platform/posix/sfnt_file.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <optional>
#include <vector>

#include "platform/posix/system_error.h"

namespace kerno {
namespace {

constexpr uint32_t Tag(const char (&name)[5]) {
  uint32_t tag = 0;
  for (int i = 0; i < 4; ++i) {
    tag = tag << 8 | static_cast<uint8_t>(name[i]);
  }
  return tag;
}

// Without one of these that the directory promises, glyphs are missing or cannot be had at all. The
// others, and hmtx, whose tail may be cut, the rasteriser can do without.
constexpr std::array kNeeded = {Tag("head"), Tag("hhea"), Tag("maxp"), Tag("cmap"),
                                Tag("loca"), Tag("glyf"), Tag("CFF "), Tag("CFF2")};
constexpr std::array kDirectories = {uint32_t{0x00010000}, Tag("OTTO"), Tag("true"), Tag("typ1")};

template <typename Range>
bool Contains(const Range& range, uint32_t value) {
  for (const uint32_t item : range) {
    if (item == value) {
      return true;
    }
  }
  return false;
}

uint32_t BigEndian32(const uint8_t* at) {
  return static_cast<uint32_t>(at[0]) << 24 | static_cast<uint32_t>(at[1]) << 16 |
         static_cast<uint32_t>(at[2]) << 8 | at[3];
}

uint32_t BigEndian16(const uint8_t* at) {
  return static_cast<uint32_t>(at[0]) << 8 | at[1];
}

class FileReader {
 public:
  explicit FileReader(const std::string& path)
      : path_(path), stream_(path, std::ios::binary | std::ios::ate) {
    size_ = stream_ ? static_cast<uint64_t>(stream_.tellg()) : 0;
    if (!stream_) {
      status_ = SystemError(path, errno);
    } else if (size_ == 0) {
      status_ = Status::Error(Failure::kOther, SystemText(path), u"is an empty file");
    }
  }

  uint64_t size() const { return size_; }
  const Status& status() const { return status_; }

  std::optional<std::vector<uint8_t>> Read(uint64_t offset, size_t length) {
    if (offset > size_ || length > size_ - offset) {
      return std::nullopt;
    }
    std::vector<uint8_t> bytes(length);
    stream_.seekg(static_cast<std::streamoff>(offset));
    stream_.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(length));
    if (!stream_ && status_.ok()) status_ = SystemError(path_, errno);
    return stream_ ? std::optional(std::move(bytes)) : std::nullopt;
  }

 private:
  std::string path_;
  std::ifstream stream_;
  Status status_;
  uint64_t size_ = 0;
};

void ReadOs2(FileReader* file, uint64_t offset, SfntFacts* facts) {
  constexpr size_t kPanose = 32;
  constexpr size_t kCodePageRange1 = 78;
  if (const auto table = file->Read(offset, kPanose + 10)) {
    facts->has_os2 = true;
    facts->panose_family = (*table)[kPanose];
    facts->panose_serif = (*table)[kPanose + 1];
    const uint32_t version = BigEndian16(table->data());
    const auto range = file->Read(offset + kCodePageRange1, 4);
    if (version >= 1 && range) {
      facts->code_page_range1 = BigEndian32(range->data());
    }
  }
}

// Where the table directory of a face starts; nothing when the file is no sfnt, and beyond the end
// when the collection has no such face.
std::optional<uint64_t> DirectoryOffset(FileReader* file, uint32_t index) {
  const auto head = file->Read(0, 4);
  if (!head) {
    return file->size();
  }
  const uint32_t tag = BigEndian32(head->data());
  if (Contains(kDirectories, tag)) {
    return 0;
  }
  if (tag != Tag("ttcf")) {
    return std::nullopt;
  }
  const auto offset = file->Read(12 + uint64_t{4} * index, 4);
  return offset ? BigEndian32(offset->data()) : file->size();
}

// What the table directory at this place tells.
SfntFacts ReadDirectory(FileReader* file, uint64_t directory) {
  SfntFacts facts;
  const auto header = file->Read(directory, 12);
  if (!header) {
    return facts;
  }
  const size_t count = BigEndian16(header->data() + 4);
  const auto records = file->Read(directory + 12, count * 16);
  if (!records) {
    return facts;
  }
  facts.whole = true;
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* record = records->data() + i * 16;
    const uint32_t tag = BigEndian32(record);
    const uint64_t offset = BigEndian32(record + 8);
    const uint64_t length = BigEndian32(record + 12);
    if (Contains(kNeeded, tag) && offset + length > file->size()) {
      facts.whole = false;
    }
    if (tag == Tag("OS/2")) {
      ReadOs2(file, offset, &facts);
    }
  }
  return facts;
}

}  // namespace

SfntFacts ReadSfntFacts(const std::string& path, uint32_t index) {
  FileReader file(path);
  SfntFacts facts;
  const auto directory = DirectoryOffset(&file, index);
  if (directory) {
    facts = ReadDirectory(&file, *directory);
  } else {
    facts.whole = true;
  }
  facts.reading = file.status();
  facts.whole = facts.whole && facts.reading.ok();
  return facts;
}

}  // namespace kerno
