#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "platform/font_data.h"
#include "platform/posix/font_catalog.h"
#include "platform/posix/system_error.h"
#include "platform/posix/unicode.h"

namespace kerno {
namespace {

class MappedFile final : public FontBytes {
 public:
  MappedFile(void* memory, size_t size) : memory_(memory), size_(size) {}
  ~MappedFile() override { munmap(memory_, size_); }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view bytes() const override { return {static_cast<const char*>(memory_), size_}; }

 private:
  void* memory_;
  size_t size_;
};

Status MapFile(const std::string& path, std::shared_ptr<const FontBytes>* file) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return SystemError(path, errno);
  struct stat facts {};
  void* memory = MAP_FAILED;
  int error = fstat(descriptor, &facts) == 0 ? 0 : errno;
  const auto size = static_cast<size_t>(facts.st_size);
  if (error == 0 && size > 0) {
    memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED) error = errno;
  }
  close(descriptor);
  if (error != 0) return SystemError(path, error);
  if (memory == MAP_FAILED) {
    return Status::Error(Failure::kOther, FromFontconfigText(path), u"is an empty file");
  }
  *file = std::make_shared<MappedFile>(memory, size);
  return Status::Ok();
}

bool HasStyle(const CatalogFace& face, std::u16string_view style) {
  constexpr size_t kWhole = std::numeric_limits<size_t>::max();
  return std::ranges::any_of(face.styles, [&](const std::u16string& name) {
    return FaceNameKey(name, kWhole) == FaceNameKey(style, kWhole);
  });
}

// "the styles are ..." of a family.
std::u16string StylesOf(const std::vector<const CatalogFace*>& members) {
  std::u16string names;
  for (const CatalogFace* face : members) {
    if (face->styles.empty()) continue;
    names += (names.empty() ? u"\"" : u", \"") + face->styles.front() + u"\"";
  }
  return names;
}

}  // namespace

Status FindFontData(std::u16string_view family, std::u16string_view style, FontData* data) {
  const FontCatalog& catalog = FontCatalog::Current();
  std::vector<const CatalogFace*> members =
      family.empty() ? catalog.Substitutes(family, {}) : catalog.FindFamily(family, {});
  std::erase_if(members, [](const CatalogFace* face) { return !face->has_outlines; });
  if (members.empty()) {
    if (family.empty()) return Status::Error(Failure::kNotFound, u"face", u"none is installed");
    const bool bitmaps = !catalog.FindFamily(family, {}).empty();
    return Status::Error(Failure::kNotFound, u"face",
                         u"\"" + std::u16string(family) +
                             (bitmaps ? u"\" has no outlines" : u"\" is not installed"));
  }
  const CatalogFace* face = members.front();
  if (!style.empty()) {
    const auto found = std::ranges::find_if(
        members, [&](const CatalogFace* member) { return HasStyle(*member, style); });
    if (found == members.end()) {
      return Status::Error(Failure::kNotFound, u"style",
                           u"\"" + SystemName(*face, family, false) + u"\" has no \"" +
                               std::u16string(style) + u"\"; it has " + StylesOf(members));
    }
    face = *found;
  }
  data->index = static_cast<uint32_t>(face->index) & 0xFFFF;
  data->instance = static_cast<uint32_t>(face->index) >> 16;
  data->family = SystemName(*face, family, false);
  data->style = face->styles.empty() ? u"" : face->styles.front();
  return MapFile(face->path, &data->file);
}

}  // namespace kerno
