// The ends of a run that the user does not ask the window for: signals and the session's end.
#pragma once

#include <functional>

class QObject;

namespace kerno {

// Calls `save` and ends the program's event loop when a signal asks the process to end; calls
// `save` alone when the desktop's session wants everything kept, and when the toolkit ends the
// process because the display is gone. `owner` is the window; when it goes, so does this.
void KeepAtTheEnd(QObject* owner, const std::function<void()>& save);

}  // namespace kerno
