// Free text and file names inside an HTML page.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kerno {

// UTF-8 for between tags and for between double quotes of an attribute: & < > " ' as character
// references, control characters that HTML does not know and lone surrogates as U+FFFD.
std::string EscapeHtml(std::u16string_view text);

// The text that EscapeHtml made this of, as far as it can be known; other references stay as they
// are.
std::u16string UnescapeHtml(std::string_view html);

// A link to a file of this name in the page's own folder: "./" and every byte but letters, digits
// and "-._~" as %XX, so that no name is taken for a scheme, a folder or a query.
std::string LinkTo(const std::filesystem::path& name);

}  // namespace kerno
