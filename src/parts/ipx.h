// The parts file (".ipx"): the model as lines of text that read back into the same model.
//
// Reading is lenient: what is missing is 0 or the default, what is too much is passed over, and
// nothing in a file's content is an error. Vertex indices are carried as they stand, whether or not
// the vertex exists: who follows one checks it.
//
// Writing, reading and writing again gives the same bytes as long as no text of the model holds a
// character that is escaped (base/text.h, EscapeText).
// Classic: the escaping is undone nowhere; other programs that share these files do not either.
// Numbers keep 15 significant digits and below 1 no more than 15 decimals; what vanishes so is
// written "0." and comes back as 0, and a "1." as 1. Not-a-number and infinities are written as
// "nan", "inf" and "-inf" and read back so.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "parts/ipx_fields.h"
#include "parts/ipx_parts.h"
#include "parts/parts.h"
#include "platform/status.h"

namespace kerno {

// --- Text of every class, and back ------------------------------------------------------------

// An element (P3 and those of parts/elements.h) is one line, without its CR LF. FromText sets every
// field, the missing ones to their defaults.
template <class Item>
requires requires(ipx::Writer* out, const Item& item) {
  ipx::Fields(out, item);
}
std::u16string ToText(const Item& item) {
  ipx::Writer out;
  ipx::Fields(&out, item);
  return ipx::Unpack(out.text());
}
template <class Item>
requires requires(ipx::Tokens* line, Item& item) {
  ipx::Fields(line, item);
}
void FromText(std::u16string_view text, Item* item) {
  const std::string packed = ipx::Pack(text);
  ipx::Tokens line(packed);
  *item = Item();
  ipx::Fields(&line, *item);
}

// An array is its header line and a line for each element, a part its two header lines and its
// thirteen arrays; each line ended by CR LF.
template <class Block>
requires requires(ipx::Writer* out, const Block& block) {
  ipx::Write(out, block);
}
std::u16string ToText(const Block& block) {
  ipx::Writer out;
  ipx::Write(&out, block);
  return ipx::Unpack(out.text());
}
template <class Block>
requires requires(ipx::Lines* lines, Block* block) {
  ipx::Read(lines, block);
}
void FromText(std::u16string_view text, Block* block) {
  const std::string packed = ipx::Pack(text);
  ipx::Lines lines(packed);
  ipx::Read(&lines, block);
}

// The container is the whole file; `program` is the path of the program that writes it, for the
// first line. Both show the progress; when the user stops it, the text or the container is empty
// and FromText answers false.
std::u16string ToText(const PartsA& container, std::u16string_view program);
[[nodiscard]] bool FromText(std::u16string_view text, PartsA* container);

// --- Files ------------------------------------------------------------------------------------

// Whether a file name's extension, in any case, is "ipx".
bool IsIpx(std::u16string_view path);

// Hands over the next bytes of a file.
using IpxSink = std::function<Status(std::string_view bytes)>;

// Encodes the container as a parts file: code page 932 when every text reads back the same from it,
// else UTF-16LE after its mark. Fails without a byte when a layer name, a part's second text or a
// face name is one that the file cannot hold (ipx::QuoteFor); fails when the sink does, and when
// the user stops it. Warns once when a number is not finite. `name` is what messages call the file.
[[nodiscard]] Status EncodeIpx(const PartsA& container, std::u16string_view program,
                               std::u16string_view name, const IpxSink& sink);

// Writes a parts file, whole or not at all. Waits for a file that another process holds.
[[nodiscard]] Status WriteIpxFile(const std::filesystem::path& path, const PartsA& container,
                                  std::u16string_view program);

// Decodes the bytes of a parts file: UTF-16 and UTF-8 by their marks, anything else as code page
// 932. Fails when the user stops it; the container is empty then.
[[nodiscard]] Status DecodeIpx(std::string_view bytes, PartsA* container);

// Reads a parts file. After a failure (the file is missing, empty or cannot be read, or the user
// stopped the reading) the container is empty.
[[nodiscard]] Status ReadIpxFile(const std::filesystem::path& path, PartsA* container);

}  // namespace kerno
