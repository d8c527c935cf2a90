// Rows of files: tables of comma-separated values (RFC 4180), and lines.
#pragma once

#include <memory>

#include "app/row_source.h"

namespace kerno {

// A list of the kind kTable or kLines. Lines end at LF, CR LF or CR; empty ones are no rows. In a
// table, fields may stand in quotes, which are doubled within, and then hold separators and line
// ends; a quote amid an unquoted field is a character of it, text after a closing quote a fault of
// its row.
[[nodiscard]] Status OpenTable(const RowList& list, std::unique_ptr<RowSource>* source);

}  // namespace kerno
