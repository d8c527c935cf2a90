#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <utility>

#include "platform/font_data.h"
#include "platform/font_file.h"
#include "platform/posix/font_catalog.h"
#include "platform/posix/system_error.h"
#include "platform/style_choice.h"

namespace kerno {
namespace {

class MappedFile final : public FontBytes {
 public:
  MappedFile(std::string path, void* memory, size_t size)
      : path_(std::move(path)), memory_(memory), size_(size) {}
  ~MappedFile() override { munmap(memory_, size_); }
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  std::string_view bytes() const override { return {static_cast<const char*>(memory_), size_}; }
  std::u16string name() const override { return SystemText(path_); }

 private:
  std::string path_;
  void* memory_;
  size_t size_;
};

// The faces that a name stands for, the best first.
struct Members {
  std::vector<const CatalogFace*> faces;
  bool by_full_name = false;  // the name is that of a face, not of a family
  std::u16string own_style;   // of that face, where the request has a style beside it
};

bool CanBeShaped(const CatalogFace* face) {
  return face->has_outlines && face->is_sfnt;
}

// A full name with a style stands for its family.
Members MembersOf(const FontCatalog& catalog, const FaceRequest& request) {
  const auto family_of = [&](const std::vector<const CatalogFace*>& faces) {
    return catalog.FindFamily(faces.front()->families.front().text, {});
  };
  Members members;
  if (request.family.empty()) {
    members.faces = catalog.Substitutes(request.family, {});
    std::erase_if(members.faces, [](const CatalogFace* face) { return !CanBeShaped(face); });
    if (!members.faces.empty()) members.faces = family_of(members.faces);
  } else {
    members.faces = catalog.FindFamily(request.family, {});
    members.by_full_name = members.faces.empty();
  }
  if (members.by_full_name) {
    members.faces = catalog.FindFullName(request.family);
    if (!members.faces.empty() && !request.style.empty()) {
      const CatalogFace& face = *members.faces.front();
      if (!face.styles.empty()) members.own_style = face.styles.front();
      members.faces = family_of(members.faces);
    }
  }
  std::erase_if(members.faces, [](const CatalogFace* face) { return !CanBeShaped(face); });
  const auto has_axes = [](const CatalogFace* face) { return face->has_axes; };
  if (!request.variations.empty() && std::ranges::any_of(members.faces, has_axes)) {
    std::erase_if(members.faces, std::not_fn(has_axes));
  }
  return members;
}

Status NoSuchFace(const FontCatalog& catalog, const FaceRequest& request) {
  if (request.family.empty()) {
    return Status::Error(Failure::kNotFound, u"face", u"none is installed");
  }
  const auto known = catalog.FindFamily(request.family, {});
  const bool outlines =
      std::ranges::any_of(known, [](const CatalogFace* face) { return face->has_outlines; });
  const std::u16string why = known.empty() ? u" is not installed"
                             : outlines    ? u" is a Type 1 font, whose outlines are not read"
                                           : u" has no outlines";
  return Status::Error(Failure::kNotFound, u"face", u"\"" + request.family + u"\"" + why);
}

}  // namespace

Status OpenFontBytes(const std::filesystem::path& path, std::shared_ptr<const FontBytes>* file) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (descriptor < 0) return SystemError(path, errno);
  struct stat facts {};
  void* memory = MAP_FAILED;
  int error = fstat(descriptor, &facts) == 0 ? 0 : errno;
  if (error == 0 && S_ISDIR(facts.st_mode)) error = EISDIR;
  const bool is_file = S_ISREG(facts.st_mode);
  const auto size = static_cast<size_t>(facts.st_size);
  if (error == 0 && is_file && size > 0) {
    memory = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0);
    if (memory == MAP_FAILED) error = errno;
  }
  close(descriptor);
  if (error != 0) return SystemError(path, error);
  if (memory == MAP_FAILED) {
    return Status::Error(Failure::kOther, SystemText(path.native()),
                         is_file ? u"is an empty file" : u"is no file");
  }
  *file = std::make_shared<MappedFile>(path.native(), memory, size);
  return Status::Ok();
}

Status FindFontData(const FaceRequest& request, FontData* data) {
  const std::lock_guard held(FontCatalog::Lock());
  if (!request.file.empty()) return FindInFile(request, data);
  const FontCatalog& catalog = FontCatalog::Current();
  const Members members = MembersOf(catalog, request);
  if (members.faces.empty()) return NoSuchFace(catalog, request);
  std::vector<StyledFace> styles;
  for (const CatalogFace* face : members.faces) {
    styles.push_back({face->styles, face->weight, face->width, face->slanted});
  }
  const std::u16string family =
      SystemName(*members.faces.front(), members.by_full_name ? u"" : request.family, false);
  const auto choice = ChooseStyleOfFace(members.own_style, request.style, styles);
  if (!choice) {
    const std::u16string own = members.own_style.empty() ? u"" : members.own_style + u" ";
    return NoSuchStyle(family, own + request.style, styles);
  }
  const CatalogFace& face = *members.faces[choice->face];
  FontData found;
  found.index = static_cast<uint32_t>(face.index) & 0xFFFF;
  found.instance = static_cast<uint32_t>(face.index) >> 16;
  found.family = family;
  Describe(request, styles, *choice, &found);
  found.path = face.path;
  if (Status opened = OpenFontBytes(face.path, &found.file); !opened.ok()) return opened;
  TakeStyleFromAxes(request.style, &found);
  if (Status whole = CheckWhole(found); !whole.ok()) return whole;
  *data = std::move(found);
  return Status::Ok();
}

}  // namespace kerno
