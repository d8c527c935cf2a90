// The version resource of a PE file (32- and 64-bit images), read from its bytes.
//
// Everything is little-endian. Nothing outside the bytes is read, whatever stands in them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kerno {

// The VS_VERSIONINFO block in the image's resources; *present tells whether there is an entry for
// one at all, even where its data lies outside the file.
std::optional<std::string_view> FindVersionBlock(std::string_view image, bool* present);

// The value at a path of keys below the block's root, such as "\VarFileInfo\Translation"; keys are
// compared without case. Nothing when the path leads nowhere.
std::optional<std::string_view> QueryVersionBlock(std::string_view block, std::u16string_view path);

// A value's bytes as text, up to the first NUL.
std::u16string VersionText(std::string_view value);

}  // namespace kerno
