// Manual pages in the mdoc language of mandoc and groff: ASCII, every other character as an escape.
#pragma once

#include <string>

#include "cli/manual/command_text.h"

namespace kerno {

struct PageFrame {
  std::string date;  // "2026-11-22"
};

// The page of kerno itself, "kerno(1)", with the list of its commands.
std::string ProgramPage(const CommandText& program, const PageFrame& frame);

// The page of one of its commands, "kerno-cut(1)", those within included.
std::string CommandPage(const CommandText& command, const PageFrame& frame);

// The page of the window, "kerno-desktop(1)".
std::string DesktopPage(const PageFrame& frame);

}  // namespace kerno
