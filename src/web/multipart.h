// The body of a form upload: multipart/form-data with one file in it.
//
//   --BOUNDARY CR LF
//   Content-Disposition: form-data; name="FIELD"; filename="NAME" CR LF
//   Content-Type: application/octet-stream CR LF
//   CR LF
//   the file's bytes
//   --BOUNDARY-- CR LF
//
// Classic: no line end stands between the file's last byte and the closing boundary, for receiving
// scripts take the bytes up to the closing boundary as the file.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/clock.h"

namespace kerno {

// "-----UpFile__" and the time as HHMMSS. When the file holds that text, the first later second
// that it does not hold (past midnight it goes on at 000000), so that a reader never takes a piece
// of the file for the end. Nothing when the file holds all 86400. All have the same length.
std::optional<std::string> ChooseBoundary(const LocalTime& now, std::string_view file);

// A file name for between the quotes of a header: UTF-8, with the quote, the backslash and control
// characters as %XX, so that it cannot end the quotes or the line.
std::string HeaderFileName(std::u16string_view name);

// What stands before the file's bytes; its size does not depend on the boundary.
std::string MultipartHead(std::string_view boundary, std::string_view field,
                          std::string_view header_name);

// What stands after them.
std::string MultipartTail(std::string_view boundary);

}  // namespace kerno
