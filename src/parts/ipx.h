// The parts file (".ipx"): the model as lines of text that read back into the same model.
//
// Reading is lenient: what is missing is 0 or the default, what is too much is passed over, and
// nothing in a file's content is an error. Vertex indices are carried as they stand, whether or not
// the vertex exists: who follows one checks it.
//
// Writing, reading and writing again gives the same bytes as long as no text of the model holds a
// character that is escaped (base/text.h, EscapeText): that is undone nowhere, which is meant.
// Numbers keep 15 significant digits and below 1 no more than 15 decimals; what vanishes so is
// written "0." and comes back as 0, and a "1." as 1. Not-a-number and infinities are written as
// "nan", "inf" and "-inf" and read back so.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "parts/elements.h"
#include "parts/parts.h"
#include "parts/vertex_pool.h"
#include "platform/status.h"

namespace kerno {

// Version text of the format, as the first line of a file names it.
inline constexpr std::u16string_view kIpxVersion = u"1.20 2018/07/26";

// --- Text of every class, and back ------------------------------------------------------------

// An element is one line, without its CR LF. FromText sets every field, the missing ones to their
// defaults.
std::u16string ToText(const P3& item);
void FromText(std::u16string_view line, P3* item);
std::u16string ToText(const TextItem& item);
void FromText(std::u16string_view line, TextItem* item);
std::u16string ToText(const TextLine& item);
void FromText(std::u16string_view line, TextLine* item);
std::u16string ToText(const LineItem& item);
void FromText(std::u16string_view line, LineItem* item);
std::u16string ToText(const CircleItem& item);
void FromText(std::u16string_view line, CircleItem* item);
std::u16string ToText(const FaceItem& item);
void FromText(std::u16string_view line, FaceItem* item);
std::u16string ToText(const EdgeItem& item);
void FromText(std::u16string_view line, EdgeItem* item);
std::u16string ToText(const PointSet& item);
void FromText(std::u16string_view line, PointSet* item);

// An array is its header line and a line for each element, each ended by CR LF.
std::u16string ToText(const P3A& array);
void FromText(std::u16string_view block, P3A* array);
std::u16string ToText(const TextA& array);
void FromText(std::u16string_view block, TextA* array);
std::u16string ToText(const LineA& array);
void FromText(std::u16string_view block, LineA* array);
std::u16string ToText(const CircleA& array);
void FromText(std::u16string_view block, CircleA* array);
std::u16string ToText(const FaceA& array);
void FromText(std::u16string_view block, FaceA* array);
std::u16string ToText(const EdgeA& array);
void FromText(std::u16string_view block, EdgeA* array);
std::u16string ToText(const PointA& array);
void FromText(std::u16string_view block, PointA* array);
std::u16string ToText(const TextHA& array);
void FromText(std::u16string_view block, TextHA* array);
std::u16string ToText(const TextVA& array);
void FromText(std::u16string_view block, TextVA* array);

// A part is its two header lines and its thirteen arrays.
std::u16string ToText(const PartsElement& part);
void FromText(std::u16string_view text, PartsElement* part);

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
// face name holds a double quote or a line break, which the file cannot hold; fails when the sink
// does, and when the user stops it. Warns once when a number is not finite. `name` is what messages
// call the file.
Status EncodeIpx(const PartsA& container, std::u16string_view program, std::u16string_view name,
                 const IpxSink& sink);

// Writes a parts file, whole or not at all. Waits for a file that another process holds.
Status WriteIpxFile(const std::filesystem::path& path, const PartsA& container,
                    std::u16string_view program);

// Decodes the bytes of a parts file: UTF-16 and UTF-8 by their marks, anything else as code page
// 932. False when the user stopped it; the container is empty then.
[[nodiscard]] bool DecodeIpx(std::string_view bytes, PartsA* container);

// Reads a parts file. After a failure (the file is missing, empty or cannot be read, or the user
// stopped the reading) the container is empty.
Status ReadIpxFile(const std::filesystem::path& path, PartsA* container);

}  // namespace kerno
