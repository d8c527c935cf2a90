// Completions for shells: a script of functions in which "@TABLES@" stands for what they go by.
#pragma once

#include <string>

#include "cli/manual/command_text.h"

namespace kerno {

std::string BashTables(const CommandText& program);
std::string ZshTables(const CommandText& program);
std::string FishTables(const CommandText& program);

}  // namespace kerno
