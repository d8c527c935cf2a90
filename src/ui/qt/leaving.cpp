#include "ui/qt/leaving.h"

#include <fcntl.h>
#include <unistd.h>

#include <QGuiApplication>
#include <QSocketNotifier>
#include <array>
#include <csignal>

namespace kerno {
namespace {

std::array<int, 2> g_pipe = {-1, -1};  // a signal's number from the handler to the event loop

extern "C" void TellSignal(int number) {
  const auto byte = static_cast<char>(number);
  const ssize_t written = write(g_pipe[1], &byte, 1);
  (void)written;  // a full pipe has told already
}

bool OpenPipe() {
  if (g_pipe[0] >= 0) return true;
  return pipe2(g_pipe.data(), O_CLOEXEC | O_NONBLOCK) == 0;
}

}  // namespace

void KeepAtTheEnd(QObject* owner, std::function<void()> save) {
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
