// The program's arguments and its standard streams.
#pragma once

#include <string>
#include <vector>

namespace kerno {

// The arguments in UTF-8, the program's name first. POSIX systems hand them over in UTF-8 already,
// and bytes that are not stay as they are; a system of wide characters keeps its own copy.
std::vector<std::string> ProgramArguments(int argc, char** argv);

// Makes the standard streams carry bytes as they are written, with terminals that take them as
// UTF-8, and opens closed ones on the null device. Called once, before anything else.
void PrepareStandardStreams();

// Whether standard error is a terminal, where a line can be written over.
bool IsErrorTerminal();

// Whether standard output is a terminal, which control characters would steer.
bool IsOutputTerminal();

}  // namespace kerno
