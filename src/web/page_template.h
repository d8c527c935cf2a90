// The fixed pieces of the page of outputs.
#pragma once

#include <string_view>

namespace kerno {

extern const std::string_view kPageStyle;
extern const std::string_view kPageScript;

// SHA-256 of the two in base 64, for the page's content security policy: nothing else may run or
// style it, and nothing is fetched but pictures beside it.
extern const std::string_view kPageStyleHash;
extern const std::string_view kPageScriptHash;

}  // namespace kerno
