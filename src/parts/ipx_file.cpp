#include <algorithm>
#include <memory>
#include <utility>

#include "base/file_wait.h"
#include "base/notices.h"
#include "base/text.h"
#include "base/text_file.h"
#include "parts/ipx.h"
#include "parts/ipx_lexer.h"
#include "parts/ipx_parts.h"
#include "parts/ipx_pieces.h"
#include "platform/code_page.h"
#include "platform/file_replacement.h"
#include "platform/folder_path.h"
#include "platform/held_file.h"

namespace kerno {
namespace {

namespace fs = std::filesystem;

constexpr size_t kReadAtOnce = 1 << 18;
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";

// A text that stands in the file unescaped, and what it is to the user.
struct PlainText {
  std::u16string_view what;
  std::u16string_view text;
};

// Calls `visit` with each unescaped text of a part until it answers false; false then.
template <class Visit>
bool EachPlainText(const PartsElement& part, const Visit& visit) {
  if (!visit(PlainText{u"layer name", part.name})) return false;
  if (!visit(PlainText{u"second text", part.second_text})) return false;
  const auto face_name = [&](const TextLine& line) {
    return visit(PlainText{u"face name", line.face_name});
  };
  return std::ranges::all_of(part.horizontal_texts.items, face_name) &&
         std::ranges::all_of(part.vertical_texts.items, face_name);
}

// Why a part cannot stand in a parts file; empty when it can.
std::u16string Unwritable(const PartsElement& part) {
  std::u16string why;
  EachPlainText(part, [&](const PlainText& plain) {
    if (ipx::QuoteFor(plain.text) != 0) return true;
    why = u"the " + std::u16string(plain.what) + u" \u201C" + std::u16string(plain.text) +
          u"\u201D holds a line break, or both kinds of quotes before blanks, which a parts file "
          u"cannot hold";
    return false;
  });
  return why;
}

bool ReadsBackFromCodePage(std::u16string_view text) {
  if (std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; })) return true;
  bool used_default = false;
  const std::string bytes = EncodeCodePage932(text, '_', &used_default);
  return !used_default && DecodeCodePage932(bytes) == text;
}

// The texts decide alone: everything else in the file is ASCII, and the code page has no state that
// one text could leave to the next.
TextEncoding EncodingFor(const PartsA& container, std::u16string_view program) {
  const auto item_fits = [](const auto& item) { return ReadsBackFromCodePage(item.text); };
  const auto fits = [&](const PartsElement& part) {
    return EachPlainText(part, [](const PlainText& p) { return ReadsBackFromCodePage(p.text); }) &&
           std::ranges::all_of(part.texts.items, item_fits) &&
           std::ranges::all_of(part.more_texts.items, item_fits) &&
           std::ranges::all_of(part.horizontal_texts.items, item_fits) &&
           std::ranges::all_of(part.vertical_texts.items, item_fits);
  };
  return ReadsBackFromCodePage(program) && std::ranges::all_of(PartsView(container), fits)
             ? TextEncoding::kCodePage932
             : TextEncoding::kUtf16;
}

std::string CodePageBytes(std::string_view packed) {
  std::string bytes;
  bytes.reserve(packed.size());
  while (!packed.empty()) {
    const size_t plain = ipx::AsciiPrefix(packed);
    bytes.append(packed.substr(0, plain));
    packed.remove_prefix(plain);
    size_t other = 0;
    while (other < packed.size() && static_cast<unsigned char>(packed[other]) >= 0x80) ++other;
    bytes += EncodeCodePage932(ipx::Unpack(packed.substr(0, other)), '_');
    packed.remove_prefix(other);
  }
  return bytes;
}

Status Stopped(std::u16string_view name) {
  return Status::Error(Failure::kOther, std::u16string(name), u"stopped by the user");
}

}  // namespace

bool IsIpx(std::u16string_view path) {
  return AsciiLower(Extension(path)) == u"ipx";
}

Status EncodeIpx(const PartsA& container, std::u16string_view program, std::u16string_view name,
                 const IpxSink& sink) {
  for (const PartsElement& part : PartsView(container)) {
    std::u16string why = Unwritable(part);
    if (!why.empty()) return Status::Error(Failure::kOther, std::u16string(name), std::move(why));
  }
  const TextEncoding encoding = EncodingFor(container, program);
  Status taken;
  if (encoding == TextEncoding::kUtf16) taken = sink(kLittleEndianMark);
  if (!taken.ok()) return taken;
  ipx::Writer out([&](std::string_view packed) {
    if (encoding == TextEncoding::kUtf16) {
      taken = sink(ipx::UnpackBytes(packed));
    } else if (ipx::AsciiPrefix(packed) == packed.size()) {
      taken = sink(packed);
    } else {
      taken = sink(CodePageBytes(packed));
    }
    return taken.ok();
  });
  const bool whole = Write(&out, container, program);
  if (!taken.ok()) return taken;
  if (!whole) return Stopped(name);
  if (out.wrote_non_finite()) {
    CurrentNotices().Message(
        std::u16string(name) +
        u": some numbers are not finite; they are written as nan, inf or -inf");
  }
  return Status::Ok();
}

Status WriteIpxFile(const fs::path& path, const PartsA& container, std::u16string_view program) {
  return ReplaceWhenFree(path, [&](FileReplacement* file) {
    return EncodeIpx(container, program, PathText(path),
                     [&](std::string_view bytes) { return file->Write(bytes); });
  });
}

Status DecodeIpx(std::string_view bytes, PartsA* container) {
  ipx::Pieces pieces(bytes);
  ipx::Lines lines([&](std::string_view* piece) { return pieces.Next(piece); }, bytes.size());
  return Read(&lines, container) ? Status::Ok() : Stopped(u"a parts file");
}

Status ReadIpxFile(const fs::path& path, PartsA* container) {
  *container = PartsA();
  std::unique_ptr<HeldFile> file;
  Status status = WaitForFile(path, FileWait::kRead, [&] {
    Status opened;
    file = HeldFile::Open(path, Deny::kWrite, &opened);
    return opened;
  });
  if (!status.ok()) return status;
  uint64_t have = 0;
  const auto read_more = [&](std::string* bytes) {
    const size_t before = bytes->size();
    if (status.ok()) status = file->ReadPiece(have, kReadAtOnce, bytes);
    have += bytes->size() - before;
    return bytes->size() > before;
  };
  ipx::Pieces pieces(read_more);
  ipx::Lines lines([&](std::string_view* piece) { return pieces.Next(piece); },
                   static_cast<size_t>(FactsOfPath(path).size));
  const bool whole = Read(&lines, container);
  if (whole && status.ok() && have > 0) return Status::Ok();
  *container = PartsA();
  if (!status.ok()) return status;
  if (!whole) return Stopped(PathText(path));
  return Status::Error(Failure::kOther, PathText(path), u"the file is empty");
}

}  // namespace kerno
