#include "ui/qt/leaving.h"

#include <fcntl.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSocketNotifier>
#include <array>
#include <csignal>
#include <cstdlib>

namespace kerno {
namespace {

std::array<int, 2> g_pipe = {-1, -1};  // a signal's number from the handler to the event loop
std::function<void()> g_last_save;     // empty without a window

extern "C" void TellSignal(int number) {
  const auto byte = static_cast<char>(number);
  const ssize_t written = write(g_pipe[1], &byte, 1);
  (void)written;  // a full pipe has told already
}

bool OpenPipe() {
  if (g_pipe[0] >= 0) return true;
  return pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) == 0;
}

// The toolkit answers the loss of its display by exit(), in the middle of the event loop.
void SaveAtExit() {
  if (g_last_save) g_last_save();
}

}  // namespace

void KeepAtTheEnd(QObject* owner, const std::function<void()>& save) {
  static const bool is_registered = std::atexit(SaveAtExit) == 0;
  (void)is_registered;  // without it a lost display loses the last words
  g_last_save = save;
  QObject::connect(owner, &QObject::destroyed, [] { g_last_save = nullptr; });
  QObject::connect(qApp, &QGuiApplication::commitDataRequest, owner, [save] { save(); });
  if (!OpenPipe()) return;
  auto* notifier = new QSocketNotifier(g_pipe[0], QSocketNotifier::Read, owner);
  QObject::connect(notifier, &QSocketNotifier::activated, owner, [save] {
    char number = 0;
    if (read(g_pipe[0], &number, 1) != 1) return;
    save();
    QCoreApplication::exit(0);
  });
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) std::signal(number, TellSignal);
}

}  // namespace kerno
