#include "platform/posix/system_error.h"

#include <cerrno>
#include <cwchar>
#include <locale>
#include <system_error>

#include "platform/no_memory.h"

namespace kerno {
namespace {

struct Reason {
  int error;
  Failure failure;
  const char16_t* why;
};

constexpr Reason kReasons[] = {
    {ENOENT, Failure::kNotFound, u"there is no such file or folder"},
    {ENOTDIR, Failure::kNotFound, u"a part of the path is not a folder"},
    {ELOOP, Failure::kNotFound, u"the symbolic links lead in a circle"},
    {ENAMETOOLONG, Failure::kNotFound, u"the name is too long"},
    {EACCES, Failure::kAccessDenied, u"no permission"},
    {EPERM, Failure::kAccessDenied, u"no permission"},
    {EROFS, Failure::kAccessDenied, u"the place can only be read"},
    {EISDIR, Failure::kIsFolder, u"it is a folder"},
    {ENOSPC, Failure::kNoSpace, u"the disk is full"},
    {EDQUOT, Failure::kNoSpace, u"the quota of the disk is used up"},
    {EFBIG, Failure::kNoSpace, u"the file would be larger than is allowed"},
    {EBUSY, Failure::kSharingViolation, u"the system holds it (a mount point, for instance)"},
    {ETXTBSY, Failure::kSharingViolation, u"it is a program that is running"},
    {ENOMEM, Failure::kOther, kNoMemoryReason},
    {EPIPE, Failure::kOther, u"the reader of the pipe has gone"},
    {ENXIO, Failure::kOther, u"nothing answers behind this name"},
};

}  // namespace

std::u16string SystemText(std::string_view bytes) {
  using Utf8 = std::codecvt<char16_t, char8_t, std::mbstate_t>;
  const auto& utf8 = std::use_facet<Utf8>(std::locale::classic());
  const std::u8string source(bytes.begin(), bytes.end());
  std::u16string text(source.size(), u'\0');  // never more units than bytes
  const char8_t* from = source.data();
  const char8_t* const end = from + source.size();
  char16_t* to = text.data();
  while (from < end) {
    std::mbstate_t state{};
    if (utf8.in(state, from, end, from, to, text.data() + text.size(), to) == Utf8::ok) break;
    if (from >= end) break;
    *to++ = u'\xFFFD';
    ++from;
  }
  text.resize(static_cast<size_t>(to - text.data()));
  return text;
}

Status SystemError(const std::filesystem::path& what, int error) {
  for (const Reason& reason : kReasons) {
    if (reason.error == error) {
      return Status::Error(reason.failure, SystemText(what.native()), reason.why);
    }
  }
  return Status::Error(Failure::kOther, SystemText(what.native()),
                       SystemText(std::generic_category().message(error)));
}

}  // namespace kerno
