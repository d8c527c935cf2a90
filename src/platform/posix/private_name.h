// The names under which files stand until they are whole, and what killed processes leave of them.
#pragma once

#include <string>

namespace kerno::posix {

// ".kerno-<process>-<number>.tmp", new at each call.
std::string PrivateName();

// Shows other processes that the file's writer lives, until the file is closed: by a lock, as a
// process of another container has no number here. False when one of them took the name away just
// before.
bool MarkAsLive(int file);

// Removes the user's files of such names in a folder whose writers are gone: no such process lives,
// and nobody holds the file. Where other machines may write too, only those older than a day. Looks
// at a folder once in a process.
void RemoveLeftNames(int folder);

}  // namespace kerno::posix
