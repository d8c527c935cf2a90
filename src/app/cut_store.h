// The Cut page's memory as a text file, "Kerno_Cut.txt" beside the settings.
//
// UTF-8, a line for each thing: its kind, then names and values, with tabs between them. In these a
// line end is \n, a tab \t and a backslash \\. Lines of unknown kinds are passed over.
//
//   form    NAME VALUE            a field
//   preset  PRESET [NAME VALUE]   a preset and a field of it; a line for each field
//   text    TEXT                  a recent text, the latest first
//   keep    NAME VALUE            everything else
#pragma once

#include <string>
#include <string_view>

#include "app/cut_memory.h"
#include "platform/status.h"

namespace kerno {

std::u16string StoredText(const CutMemory& memory);
CutMemory ReadStored(std::u16string_view text);

// What another window has kept since `before` was read, with what this one has changed.
CutMemory Merged(CutMemory kept, const CutMemory& before, const CutMemory& now);

// Fails where there is a file that cannot be read; none is the memory of a first run.
[[nodiscard]] Status LoadCutMemory(CutMemory* memory);
[[nodiscard]] Status SaveCutMemory(const CutMemory& memory);

}  // namespace kerno
