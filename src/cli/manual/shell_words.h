// Pieces that the completions of more than one shell are made of.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "cli/manual/command_text.h"

namespace kerno {

// A word in single quotes, as bash and zsh read it; within it, fish wants backslashes.
std::string Quoted(std::string_view text);
std::string FishQuoted(std::string_view text);

// The kind of a value by its name in the scripts ("face"), empty where nothing can be offered, and
// its words with blanks between them.
std::string KindName(const Values& values);
std::string JoinedWords(const std::vector<std::string>& words);

// Calls `visit` with every command: kerno itself as "", "cut", ..., "settings get".
using CommandVisit = std::function<void(const std::string& path, const CommandText& command)>;
void ForEachCommand(const CommandText& program, const CommandVisit& visit);

}  // namespace kerno
