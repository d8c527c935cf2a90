// Says what is wrong with the words of a command line, and what may have been meant.
#pragma once

#include <span>
#include <string>

namespace CLI {
class App;
}

namespace kerno {

// That there is no such command, and which one may have been meant.
void ReportUnknownCommand(const CLI::App& app, const std::string& word);

// Reports the first option among a command's words that stands as "--name=" without a value, for
// which the next word would be taken. False where there is none.
bool ReportEmptyOption(const CLI::App& command, std::span<const std::string> words);

// Names the word that was mistyped, where that is why the words (all of them, the program's name
// first) cannot be understood; else `why`, the parser's own reason.
void ReportUsage(const CLI::App& app, std::span<const std::string> words, const char* why);

}  // namespace kerno
